// SPDX-License-Identifier: Apache-2.0
// The life of an entity's counterpart in the engine.
#include "engine/entity/entity.hpp"

#include "engine/cyclone/convert.hpp"
#include "engine/entity/status_condition.hpp"

using kolt::engine::StatusCondition;

KOLT_EntityImpl::KOLT_EntityImpl(kolt::engine::EntityKind kind, DDS_Entity *self,
                                 DDS_StatusMask valid_statuses)
    : kind_(kind),
      self_(self),
      valid_statuses_(valid_statuses),
      status_condition_(std::make_unique<StatusCondition>(*this)) {}

KOLT_EntityImpl::~KOLT_EntityImpl() = default;

DDS_InstanceHandle_t KOLT_EntityImpl::instance_handle() const {
    dds_instance_handle_t handle = DDS_HANDLE_NIL;
    if (is_enabled()) {
        dds_get_instance_handle(engine(), &handle);
    }
    return handle;
}

DDS_ReturnCode_t KOLT_EntityImpl::enable_and_announce(const char *method) {
    const DDS_ReturnCode_t result = enable(method);
    if (is_enabled()) {
        announce();
    }
    return result;
}

void KOLT_EntityImpl::set_engine(dds_entity_t engine) {
    engine_.store(engine, std::memory_order_release);
}

void KOLT_EntityImpl::delete_engine(const char *method) {
    const dds_entity_t entity = engine();
    if (entity == 0) {
        return;
    }
    const dds_return_t result = dds_delete(entity);
    engine_.store(0, std::memory_order_release);
    if (result < 0) {
        kolt::engine::fail(kolt::engine::to_return_code(result), method,
                           "the DDS engine could not delete its entity");
    }
}

void KOLT_EntityImpl::release_engine() {
    engine_.store(0, std::memory_order_release);
}

namespace kolt::engine {

DDS_ReturnCode_t assert_liveliness(const Entity &entity, const char *method) {
    if (!entity.is_enabled()) {
        return not_enabled(method);
    }
    return to_return_code(dds_assert_liveliness(entity.engine()));
}

}  // namespace kolt::engine
