#include "engine/entity/entity.hpp"

#include <mutex>

#include "engine/condition/condition.hpp"
#include "engine/cyclone/convert.hpp"
#include "engine/cyclone/log_sink.hpp"

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

void KOLT_EntityImpl::set_engine(dds_entity_t engine) {
    engine_.store(engine, std::memory_order_release);
    if (valid_statuses_ != 0) {
        status_condition_->apply_mask();
    }
    status_condition_->start_watching();
}

void KOLT_EntityImpl::delete_engine(const char *method) {
    const dds_entity_t entity = engine();
    if (entity == 0) {
        return;
    }
    status_condition_->stop_watching();
    const dds_return_t result = dds_delete(entity);
    engine_.store(0, std::memory_order_release);
    if (result < 0) {
        kolt::engine::fail(kolt::engine::to_return_code(result), method,
                           "the engine did not delete the entity");
    }
}

void KOLT_EntityImpl::release_engine() {
    status_condition_->stop_watching();
    engine_.store(0, std::memory_order_release);
}

namespace kolt::engine {

DDS_ReturnCode_t not_enabled(const char *method) {
    return fail(DDS_RETCODE_NOT_ENABLED, method, "the entity is not enabled");
}

void prepare_engine() {
    static std::once_flag once;
    std::call_once(once, install_log_sink);
}

}  // namespace kolt::engine

// ---- The C functions ----------------------------------------------------------------------------

namespace {

KOLT_EntityImpl *impl_of(DDS_Entity *self) {
    return self != nullptr ? self->_impl : nullptr;
}

}  // namespace

DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity *self) {
    KOLT_EntityImpl *const impl = impl_of(self);
    if (impl == nullptr) {
        return kolt::engine::bad_parameter(__func__, "self");
    }
    if (impl->is_enabled()) {
        return DDS_RETCODE_OK;
    }
    return kolt::engine::guarded(__func__, [&] { return impl->enable("DDS_Entity_enable"); });
}

DDS_Boolean DDS_Entity_is_enabled(DDS_Entity *self) {
    const KOLT_EntityImpl *const impl = impl_of(self);
    return impl != nullptr && impl->is_enabled() ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}

DDS_StatusMask DDS_Entity_get_status_changes(DDS_Entity *self) {
    const KOLT_EntityImpl *const impl = impl_of(self);
    std::uint32_t mask = 0;
    if (impl == nullptr || !impl->is_enabled() || impl->valid_statuses() == 0) {
        return 0;
    }
    if (dds_get_status_changes(impl->engine(), &mask) < 0) {
        return 0;
    }
    return kolt::engine::status_from_engine(mask) & impl->valid_statuses();
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
