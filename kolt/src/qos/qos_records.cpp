// SPDX-License-Identifier: Apache-2.0
// The C functions of the QoS records.

#include "kolt/qos.h"
#include "qos/qos_values.hpp"

namespace {

template <typename Qos>
DDS_ReturnCode_t initialize_record(Qos *self) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    kolt::qos::initialize(*self);
    return DDS_RETCODE_OK;
}

template <typename Qos>
DDS_ReturnCode_t finalize_record(Qos *self) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    kolt::qos::finalize(*self);
    return DDS_RETCODE_OK;
}

template <typename Qos>
DDS_ReturnCode_t copy_record(Qos *self, const Qos *source) {
    if (self == nullptr || source == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (self == source || kolt::qos::copy(*self, *source)) {
        return DDS_RETCODE_OK;
    }
    return DDS_RETCODE_OUT_OF_RESOURCES;
}

template <typename Qos>
DDS_Boolean equal_records(const Qos *left, const Qos *right) {
    const bool equal = left != nullptr && right != nullptr && kolt::qos::equals(*left, *right);
    return equal ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}

}  // namespace

#define KOLT_QOS_DEFINE(Qos)                                      \
    DDS_ReturnCode_t Qos##_initialize(Qos *self) {                \
        return initialize_record(self);                           \
    }                                                             \
    DDS_ReturnCode_t Qos##_finalize(Qos *self) {                  \
        return finalize_record(self);                             \
    }                                                             \
    DDS_ReturnCode_t Qos##_copy(Qos *self, const Qos *source) {   \
        return copy_record(self, source);                         \
    }                                                             \
    DDS_Boolean Qos##_equals(const Qos *left, const Qos *right) { \
        return equal_records(left, right);                        \
    }

KOLT_QOS_DEFINE(DDS_DomainParticipantFactoryQos)
KOLT_QOS_DEFINE(DDS_DomainParticipantQos)
KOLT_QOS_DEFINE(DDS_TopicQos)
KOLT_QOS_DEFINE(DDS_PublisherQos)
KOLT_QOS_DEFINE(DDS_SubscriberQos)
KOLT_QOS_DEFINE(DDS_DataWriterQos)
KOLT_QOS_DEFINE(DDS_DataReaderQos)
