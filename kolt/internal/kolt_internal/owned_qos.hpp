// SPDX-License-Identifier: Apache-2.0
// The owner of a QoS record, for the C++ of the libraries, the command and the tests. Not installed.
#pragma once

#include "kolt/qos.h"

namespace kolt::qos {

// The functions that make and free a record, by its type.
template <typename Record>
struct RecordFunctions;

#define KOLT_RECORD_FUNCTIONS(Record)                                       \
    template <>                                                             \
    struct RecordFunctions<Record> {                                        \
        static void initialize(Record *self) { Record##_initialize(self); } \
        static void finalize(Record *self) { Record##_finalize(self); }     \
    }
KOLT_RECORD_FUNCTIONS(DDS_DomainParticipantFactoryQos);
KOLT_RECORD_FUNCTIONS(DDS_DomainParticipantQos);
KOLT_RECORD_FUNCTIONS(DDS_TopicQos);
KOLT_RECORD_FUNCTIONS(DDS_PublisherQos);
KOLT_RECORD_FUNCTIONS(DDS_SubscriberQos);
KOLT_RECORD_FUNCTIONS(DDS_DataWriterQos);
KOLT_RECORD_FUNCTIONS(DDS_DataReaderQos);
#undef KOLT_RECORD_FUNCTIONS

// Asks for a record that is not initialised: for functions that initialise what they fill.
struct Unfilled {};
inline constexpr Unfilled kUnfilled;

// A record that begins as the standard's default and frees itself.
template <typename Record>
class OwnedQos {
  public:
    OwnedQos() { RecordFunctions<Record>::initialize(&record_); }
    // Begins as zeros, which finalising takes for an empty record.
    explicit OwnedQos(Unfilled) {}
    ~OwnedQos() { RecordFunctions<Record>::finalize(&record_); }
    OwnedQos(const OwnedQos &) = delete;
    OwnedQos &operator=(const OwnedQos &) = delete;

    Record &operator*() { return record_; }
    const Record &operator*() const { return record_; }
    Record *operator->() { return &record_; }
    const Record *operator->() const { return &record_; }
    Record *get() { return &record_; }

  private:
    Record record_{};
};

using FactoryQos = OwnedQos<DDS_DomainParticipantFactoryQos>;
using ParticipantQos = OwnedQos<DDS_DomainParticipantQos>;
using TopicQos = OwnedQos<DDS_TopicQos>;
using PublisherQos = OwnedQos<DDS_PublisherQos>;
using SubscriberQos = OwnedQos<DDS_SubscriberQos>;
using WriterQos = OwnedQos<DDS_DataWriterQos>;
using ReaderQos = OwnedQos<DDS_DataReaderQos>;

}  // namespace kolt::qos
