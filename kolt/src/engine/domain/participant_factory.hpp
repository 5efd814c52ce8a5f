// SPDX-License-Identifier: Apache-2.0
// The participant factory of the process.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "engine/domain/participant.hpp"
#include "engine/qos/default_qos.hpp"
#include "kolt/domain.h"

// Stands for the factory in the application's hands.
struct DDS_DomainParticipantFactory {};

namespace kolt::engine {

class Factory final : public DDS_DomainParticipantFactory {
  public:
    static Factory &instance();
    static Factory *of(DDS_DomainParticipantFactory *self) { return static_cast<Factory *>(self); }

    DDS_ReturnCode_t finalize(const char *method);
    DDS_DomainParticipant *create_participant(DDS_DomainId_t domain_id,
                                              const DDS_DomainParticipantQos *qos,
                                              const DDS_DomainParticipantListener *listener,
                                              DDS_StatusMask mask, const char *method);
    DDS_ReturnCode_t delete_participant(Participant *participant, const char *method);
    DDS_DomainParticipant *lookup_participant(DDS_DomainId_t domain_id);
    DDS_DomainParticipant *wrap(dds_entity_t engine_participant, const char *method);
    DDS_ReturnCode_t unwrap(Participant *participant, const char *method);

    DDS_ReturnCode_t get_default_participant_qos(DDS_DomainParticipantQos *qos);
    DDS_ReturnCode_t set_default_participant_qos(const DDS_DomainParticipantQos &qos,
                                                 const char *method);
    DDS_ReturnCode_t get_qos(DDS_DomainParticipantFactoryQos *qos);
    DDS_ReturnCode_t set_qos(const DDS_DomainParticipantFactoryQos &qos);

  private:
    Factory() = default;
    DDS_ReturnCode_t remove(Participant *participant, bool wrapper, const char *method);

    std::mutex mutex_;
    // Guarded by mutex_:
    kolt::qos::OwnedQos<DDS_DomainParticipantFactoryQos> qos_;
    DefaultQos<DDS_DomainParticipantQos> default_participant_qos_;
    std::vector<std::unique_ptr<Participant>> participants_;
};

}  // namespace kolt::engine
