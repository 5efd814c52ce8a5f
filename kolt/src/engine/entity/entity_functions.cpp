// SPDX-License-Identifier: Apache-2.0
// The C functions of any entity and of its status condition.
#include "engine/entity/entity.hpp"
#include "engine/entity/status_condition.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

namespace {

KOLT_EntityImpl *impl_of(DDS_Entity *self) {
    return self != nullptr ? self->_impl : nullptr;
}

}  // namespace

DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity *self) {
    KOLT_EntityImpl *const impl = impl_of(self);
    if (impl == nullptr) {
        return bad_parameter(__func__, "self");
    }
    if (impl->is_enabled()) {
        return DDS_RETCODE_OK;
    }
    return guarded(__func__, [&](const char *method) { return impl->enable_and_announce(method); });
}

DDS_Boolean DDS_Entity_is_enabled(DDS_Entity *self) {
    const KOLT_EntityImpl *const impl = impl_of(self);
    return impl != nullptr && impl->is_enabled() ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}

DDS_StatusMask DDS_Entity_get_status_changes(DDS_Entity *self) {
    KOLT_EntityImpl *const impl = impl_of(self);
    return impl != nullptr ? impl->status_condition().changed() : 0;
}

DDS_StatusCondition *DDS_Entity_get_statuscondition(DDS_Entity *self) {
    KOLT_EntityImpl *const impl = impl_of(self);
    return impl != nullptr ? impl->status_condition().handle() : nullptr;
}

DDS_InstanceHandle_t DDS_Entity_get_instance_handle(DDS_Entity *self) {
    const KOLT_EntityImpl *const impl = impl_of(self);
    return impl != nullptr ? impl->instance_handle() : DDS_HANDLE_NIL;
}

#define KOLT_DEFINE_AS_ENTITY(Type, member)               \
    DDS_Entity *Type##_as_entity(Type *self) {            \
        return self != nullptr ? &self->member : nullptr; \
    }
KOLT_DEFINE_AS_ENTITY(DDS_DomainParticipant, _entity)
KOLT_DEFINE_AS_ENTITY(DDS_Publisher, _entity)
KOLT_DEFINE_AS_ENTITY(DDS_Subscriber, _entity)
KOLT_DEFINE_AS_ENTITY(DDS_DataWriter, _entity)
KOLT_DEFINE_AS_ENTITY(DDS_DataReader, _entity)
KOLT_DEFINE_AS_ENTITY(DDS_Topic, _description._entity)
#undef KOLT_DEFINE_AS_ENTITY

// ---- Status condition ---------------------------------------------------------------------------

DDS_Condition *DDS_StatusCondition_as_condition(DDS_StatusCondition *self) {
    return self != nullptr ? &self->_condition : nullptr;
}

DDS_ReturnCode_t DDS_StatusCondition_set_enabled_statuses(DDS_StatusCondition *self,
                                                          DDS_StatusMask mask) {
    return forward(self, __func__, &StatusCondition::set_enabled_statuses, mask);
}

DDS_StatusMask DDS_StatusCondition_get_enabled_statuses(DDS_StatusCondition *self) {
    return forward(self, __func__, &StatusCondition::enabled_statuses);
}

DDS_Entity *DDS_StatusCondition_get_entity(DDS_StatusCondition *self) {
    return with<StatusCondition>(
        self, __func__, [](StatusCondition &condition) { return condition.entity().self(); });
}
