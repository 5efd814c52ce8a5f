// SPDX-License-Identifier: Apache-2.0
// A test that loads QoS profiles: in a working directory of its own, with the messages that are
// logged.
#pragma once

#include <gtest/gtest.h>
#include <kolt/domain.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "kolt_internal/owned_qos.hpp"
#include "support/logger/log_capture.h"
#include "support/platform/work_folder.h"

namespace support {

using kolt::qos::FactoryQos;
using kolt::qos::ParticipantQos;
using kolt::qos::PublisherQos;
using kolt::qos::ReaderQos;
using kolt::qos::SubscriberQos;
using kolt::qos::TopicQos;
using kolt::qos::WriterQos;
using Strings = std::vector<std::string>;

inline DDS_DomainParticipantFactory *factory() {
    return DDS_DomainParticipantFactory_get_instance();
}

// Every test has a working directory of its own, and the factory as it is at the start of a
// process.
class QosProfilesTest : public testing::Test {
  protected:
    void SetUp() override {
        folder_.enter();
        unsetenv("KOLT_QOS_PROFILES");
    }

    std::string write(const std::string &name, const std::string &content) const {
        return folder_.write(name, content);
    }
    DDS_ReturnCode_t add(const std::string &content, const std::string &name = "a.xml") const {
        return KOLT_DomainParticipantFactory_add_profiles(factory(), write(name, content).c_str());
    }
    // A document with one library `L` of the given profiles.
    DDS_ReturnCode_t add_library(const std::string &profiles,
                                 const std::string &name = "a.xml") const {
        return add("<dds>\n<qos_library name=\"L\">\n" + profiles + "\n</qos_library>\n</dds>",
                   name);
    }

    static Strings libraries() {
        DDS_StringSeq names = DDS_SEQUENCE_INITIALIZER;
        EXPECT_EQ(DDS_DomainParticipantFactory_get_qos_profile_libraries(factory(), &names),
                  DDS_RETCODE_OK);
        return take(names);
    }
    static Strings profiles(const char *library, DDS_ReturnCode_t expected = DDS_RETCODE_OK) {
        DDS_StringSeq names = DDS_SEQUENCE_INITIALIZER;
        EXPECT_EQ(DDS_DomainParticipantFactory_get_qos_profiles(factory(), &names, library),
                  expected);
        return take(names);
    }
    static Strings take(DDS_StringSeq &names) {
        Strings result;
        for (DDS_UnsignedLong i = 0; i < DDS_StringSeq_get_length(&names); ++i) {
            result.emplace_back(DDS_StringSeq_get(&names, static_cast<DDS_Long>(i)));
        }
        DDS_StringSeq_finalize(&names);
        return result;
    }
    static DDS_Long depth(const char *profile, const char *topic = nullptr) {
        WriterQos qos;
        const DDS_ReturnCode_t result =
            topic == nullptr
                ? DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                               "L", profile)
                : DDS_DomainParticipantFactory_get_datawriter_qos_from_profile_w_topic_name(
                      factory(), qos.get(), "L", profile, topic);
        EXPECT_EQ(result, DDS_RETCODE_OK);
        return qos->history.depth;
    }
    static std::string profile(const std::string &attributes, int depth) {
        return "<qos_profile " + attributes + "><datawriter_qos><history><depth>" +
               std::to_string(depth) + "</depth></history></datawriter_qos></qos_profile>";
    }

    WorkFolder folder_;
    mutable LogCapture log_;
};

}  // namespace support
