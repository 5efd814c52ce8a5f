// SPDX-License-Identifier: Apache-2.0
// The status condition, on the mask of its entity in the engine.
#include "engine/entity/status_condition.hpp"

#include "engine/cyclone/convert.hpp"
#include "engine/entity/statuses.hpp"

namespace kolt::engine {

StatusCondition::StatusCondition(Entity &entity)
    : Condition(&handle_._condition), entity_(entity) {}

StatusCondition *StatusCondition::of(DDS_StatusCondition *self) {
    return self != nullptr ? static_cast<StatusCondition *>(self->_condition._impl) : nullptr;
}

DDS_ReturnCode_t StatusCondition::set_enabled_statuses(DDS_StatusMask mask) {
    enabled_.store(mask);
    return entity_.is_enabled() ? apply_mask() : DDS_RETCODE_OK;
}

DDS_ReturnCode_t StatusCondition::apply_mask() {
    const DDS_StatusMask mask = enabled_.load() & entity_.valid_statuses();
    return to_return_code(dds_set_status_mask(entity_.engine(), status_to_engine(mask)));
}

}  // namespace kolt::engine
