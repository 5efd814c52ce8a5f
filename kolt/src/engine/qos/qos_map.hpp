// QoS records as the engine takes them.
//
// Policies that the engine knows are handed over one by one. What it has no policy for stays in
// KOLT: the entity factory (creation of disabled entities), the properties that begin with "dds."
// and the marks that (K) policies carry.
#pragma once

#include <memory>

#include "engine/cyclone/cyclone.hpp"
#include "engine/data/registered_type.hpp"
#include "kolt/qos.h"

namespace kolt::engine {

struct EngineQosDeleter {
    void operator()(dds_qos_t *qos) const { dds_delete_qos(qos); }
};
using EngineQos = std::unique_ptr<dds_qos_t, EngineQosDeleter>;

EngineQos to_engine(const DDS_DomainParticipantQos &qos);
EngineQos to_engine(const DDS_TopicQos &qos);
EngineQos to_engine(const DDS_PublisherQos &qos);
EngineQos to_engine(const DDS_SubscriberQos &qos);
// The representations of writers and readers depend on what the type allows.
EngineQos to_engine(const DDS_DataWriterQos &qos, const RegisteredType &type);
EngineQos to_engine(const DDS_DataReaderQos &qos, const RegisteredType &type);

// Is the property there, with this value?
bool has_property(const DDS_PropertyQosPolicy &policy, const char *name, const char *value);

// The representation that a writer of this QoS uses, resolved for the type. False when the type
// does not allow it.
bool writer_representation(const DDS_DataWriterQos &qos, const RegisteredType &type,
                           DDS_DataRepresentationId_t *representation);

// What the engine's participant has of the policies that `qos` holds, into an initialised record.
// False when memory runs out.
bool from_engine(const dds_qos_t *engine_qos, DDS_DomainParticipantQos *qos);

}  // namespace kolt::engine
