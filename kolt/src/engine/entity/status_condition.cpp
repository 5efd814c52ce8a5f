// SPDX-License-Identifier: Apache-2.0
// The status condition, shown to waitsets by a guard condition of the engine.
#include "engine/entity/status_condition.hpp"

#include "engine/cyclone/convert.hpp"

namespace kolt::engine {

StatusCondition::StatusCondition(Entity &entity)
    : Condition(ConditionKind::kStatus, &handle_._condition), entity_(entity) {}

StatusCondition::~StatusCondition() {
    leave_waitsets();
    if (watched() > 0) {
        dds_delete(watched());
    }
}

StatusCondition *StatusCondition::of(DDS_StatusCondition *self) {
    return self != nullptr
               ? condition_cast<StatusCondition, ConditionKind::kStatus>(&self->_condition)
               : nullptr;
}

DDS_ReturnCode_t StatusCondition::set_enabled_statuses(DDS_StatusMask mask) {
    enabled_.store(mask);
    update();
    return DDS_RETCODE_OK;
}

// One thread at a time sets the guard condition, until nobody has asked for it meanwhile: so that the
// last value is that of the last change, without a lock over the call.
void StatusCondition::update() {
    if (updates_.fetch_add(1) != 0) {
        return;
    }
    unsigned seen = 1;
    do {
        seen = updates_.load();
        if (watched() > 0) {
            dds_set_guardcondition(watched(), is_triggered());
        }
    } while (!updates_.compare_exchange_strong(seen, 0));
}

DDS_ReturnCode_t StatusCondition::prepare_watching() {
    if (watched() == 0) {
        const dds_entity_t guard = dds_create_guardcondition(cyclone::kLibrary);
        if (guard < 0) {
            return to_return_code(guard);
        }
        watched_.store(guard);
        update();
    }
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
