// SPDX-License-Identifier: Apache-2.0
// QoS records in the form that the engine takes.
//
// Policies that the engine knows are handed over one by one. The others stay in KOLT:
//   - the entity factory (creation of disabled entities);
//   - the properties that begin with "dds.", except those of security;
//   - wire_protocol and protocol, which are KOLT's own.
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

// True when the property is there and has this value.
bool has_property(const DDS_PropertyQosPolicy &policy, const char *name, const char *value);

// Gets the representation that a writer of this QoS uses, resolved for the type. False when the
// type does not allow it.
bool writer_representation(const DDS_DataWriterQos &qos, const RegisteredType &type,
                           DDS_DataRepresentationId_t *representation);

// Copies the policies of the engine's participant that `qos` has, too, into that initialised
// record. False when memory runs out.
bool from_engine(const dds_qos_t *engine_qos, DDS_DomainParticipantQos *qos);

}  // namespace kolt::engine
