// SPDX-License-Identifier: Apache-2.0
// Creation, deletion and wrapping of participants, and the QoS of the factory.
#include "engine/domain/participant_factory.hpp"

#include <string>

#include "engine/cyclone/convert.hpp"
#include "engine/cyclone/log_sink.hpp"
#include "engine/entity/owned_list.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"

namespace kolt::engine {

namespace {

// The last domain id whose ports, which follow from the id, exist (RTPS 2.3, 9.6.1.1).
constexpr DDS_DomainId_t kLastDomain = 230;

}  // namespace

Factory &Factory::instance() {
    static auto *factory = new Factory;  // outlives every static object
    return *factory;
}

DDS_ReturnCode_t Factory::finalize(const char *method) {
    const std::lock_guard lock(mutex_);
    if (!participants_.empty()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "%zu participants still exist: delete them first", participants_.size());
    }
    DDS_DomainParticipantFactoryQos_finalize(qos_.get());
    DDS_DomainParticipantFactoryQos_initialize(qos_.get());
    default_participant_qos_.reset();
    kolt::qos::profile_store().reset();
    return DDS_RETCODE_OK;
}

DDS_DomainParticipant *Factory::create_participant(DDS_DomainId_t domain_id,
                                                   const DDS_DomainParticipantQos *qos,
                                                   const DDS_DomainParticipantListener *listener,
                                                   DDS_StatusMask mask, const char *method) {
    if (domain_id < 0 || domain_id > kLastDomain) {
        fail(DDS_RETCODE_BAD_PARAMETER, method,
             "the domain id %d is out of range: it must be 0 to %d", static_cast<int>(domain_id),
             static_cast<int>(kLastDomain));
        return nullptr;
    }
    kolt::qos::OwnedQos<DDS_DomainParticipantQos> chosen;
    if (!choose_qos(qos, DDS_PARTICIPANT_QOS_DEFAULT, chosen.get(),
                    [&](DDS_DomainParticipantQos *q) { return get_default_participant_qos(q); })) {
        throw std::bad_alloc();
    }
    if (check_qos(*chosen, method) != DDS_RETCODE_OK) {
        return nullptr;
    }
    auto participant = std::make_unique<Participant>(domain_id, *chosen);
    if (participant->set_listener(listener, mask, method) != DDS_RETCODE_OK) {
        return nullptr;
    }
    bool autoenable = false;
    {
        const std::lock_guard lock(mutex_);
        autoenable = (*qos_).entity_factory.autoenable_created_entities != 0;
    }
    if (autoenable && participant->enable(method) != DDS_RETCODE_OK) {
        return nullptr;
    }
    DDS_DomainParticipant *const handle = participant->handle();
    const std::lock_guard lock(mutex_);
    participants_.push_back(std::move(participant));
    note_entity(method, "created", "participant in domain", std::to_string(domain_id).c_str());
    return handle;
}

DDS_ReturnCode_t Factory::remove(Participant *participant, bool wrapper, const char *method) {
    std::unique_ptr<Participant> removed;  // deleted outside the lock
    DDS_DomainId_t domain_id = 0;
    {
        const std::lock_guard lock(mutex_);
        if (!contains_pointer(participants_, participant)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the participant does not belong to the factory: it was deleted");
        }
        if (participant->is_wrapper() != wrapper) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        wrapper
                            ? "the participant does not wrap one of the engine's: delete it with "
                              "DDS_DomainParticipantFactory_delete_participant"
                            : "the participant wraps one of the engine's: give it back with "
                              "KOLT_DomainParticipant_unwrap");
        }
        if (!participant->is_empty()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the participant still contains entities: delete them first");
        }
        domain_id = participant->domain_id();
        removed = extract(participants_, participant);
    }
    note_entity(method, wrapper ? "unwrapped" : "deleted", "participant in domain",
                std::to_string(domain_id).c_str());
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t Factory::delete_participant(Participant *participant, const char *method) {
    return remove(participant, false, method);
}

DDS_ReturnCode_t Factory::unwrap(Participant *participant, const char *method) {
    return remove(participant, true, method);
}

DDS_DomainParticipant *Factory::lookup_participant(DDS_DomainId_t domain_id) {
    const std::lock_guard lock(mutex_);
    for (const auto &participant : participants_) {
        if (participant->domain_id() == domain_id) {
            return participant->handle();
        }
    }
    return nullptr;
}

DDS_DomainParticipant *Factory::wrap(dds_entity_t engine_participant, const char *method) {
    install_log_sink();
    dds_domainid_t domain_id = 0;
    if (engine_participant <= 0 || dds_get_participant(engine_participant) != engine_participant ||
        dds_get_domainid(engine_participant, &domain_id) < 0) {
        fail(DDS_RETCODE_BAD_PARAMETER, method,
             "the handle %d is not that of a participant of the engine",
             static_cast<int>(engine_participant));
        return nullptr;
    }
    const EngineQos engine_qos(dds_create_qos());
    kolt::qos::OwnedQos<DDS_DomainParticipantQos> qos;
    if (engine_qos == nullptr || dds_get_qos(engine_participant, engine_qos.get()) < 0 ||
        !from_engine(engine_qos.get(), qos.get())) {
        throw std::bad_alloc();
    }
    const std::lock_guard lock(mutex_);
    for (const auto &participant : participants_) {
        if (participant->engine() == engine_participant) {
            return participant->handle();
        }
    }
    auto participant = std::make_unique<Participant>(static_cast<DDS_DomainId_t>(domain_id), *qos,
                                                     engine_participant);
    DDS_DomainParticipant *const handle = participant->handle();
    participants_.push_back(std::move(participant));
    note_entity(method, "wrapped", "participant in domain", std::to_string(domain_id).c_str());
    return handle;
}

// ---- QoS ----------------------------------------------------------------------------------------

DDS_ReturnCode_t Factory::get_default_participant_qos(DDS_DomainParticipantQos *qos) {
    {
        const std::lock_guard lock(mutex_);
        if (default_participant_qos_.is_set()) {
            return default_participant_qos_.get(qos) ? DDS_RETCODE_OK
                                                     : DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    return profile_default(qos, nullptr) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t Factory::set_default_participant_qos(const DDS_DomainParticipantQos &qos,
                                                      const char *method) {
    const DDS_ReturnCode_t checked = check_qos(qos, method);
    if (checked != DDS_RETCODE_OK) {
        return checked;
    }
    const std::lock_guard lock(mutex_);
    return default_participant_qos_.set(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t Factory::get_qos(DDS_DomainParticipantFactoryQos *qos) {
    const std::lock_guard lock(mutex_);
    return DDS_DomainParticipantFactoryQos_copy(qos, qos_.get());
}

DDS_ReturnCode_t Factory::set_qos(const DDS_DomainParticipantFactoryQos &qos) {
    const DDS_ReturnCode_t result = kolt::qos::profile_store().set_sources(qos.profile);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    const std::lock_guard lock(mutex_);
    return DDS_DomainParticipantFactoryQos_copy(qos_.get(), &qos);
}

}  // namespace kolt::engine
