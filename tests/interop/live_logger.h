// SPDX-License-Identifier: Apache-2.0
// The common part of the tests with idlc's programs: a logger whose writers speak XCDR2 and keep
// everything, as a QoS profile says, and lines with tabs between their fields.
#pragma once

#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/Options.h>

#include <unistd.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace interop {

using Fields = std::vector<std::string>;

inline constexpr const char *kProfiles = R"(<dds>
  <qos_library name="Interop">
    <qos_profile name="Xcdr2">
      <datawriter_qos topic_filter="vur/distlog*">
        <reliability>
          <kind>RELIABLE_RELIABILITY_QOS</kind>
          <max_blocking_time><sec>60</sec></max_blocking_time>
        </reliability>
        <history><kind>KEEP_ALL_HISTORY_QOS</kind></history>
        <representation>
          <value><element>XCDR2_DATA_REPRESENTATION</element></value>
        </representation>
      </datawriter_qos>
    </qos_profile>
    <qos_profile name="Impatient" base_name="Xcdr2">
      <datawriter_qos topic_filter="vur/distlog*">
        <reliability><max_blocking_time><nanosec>20000000</nanosec></max_blocking_time></reliability>
      </datawriter_qos>
    </qos_profile>
    <qos_profile name="Bounded" base_name="Xcdr2">
      <datawriter_qos topic_filter="vur/distlog">
        <reliability>
          <max_blocking_time><sec>DURATION_INFINITE_SEC</sec></max_blocking_time>
        </reliability>
        <resource_limits><max_samples>100</max_samples></resource_limits>
        <durability_service>
          <history_kind>KEEP_LAST_HISTORY_QOS</history_kind><history_depth>10</history_depth>
        </durability_service>
      </datawriter_qos>
    </qos_profile>
  </qos_library>
</dds>)";

// The factory's profiles, in a process that has asked for none so far.
inline bool load_profiles() {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantFactoryQos qos;
    DDS_DomainParticipantFactoryQos_initialize(&qos);
    char *fragments[] = {const_cast<char *>(kProfiles)};
    const bool ok = DDS_DomainParticipantFactory_get_qos(factory, &qos) == DDS_RETCODE_OK &&
                    DDS_StringSeq_from_array(&qos.profile.string_profile, fragments, 1) &&
                    DDS_DomainParticipantFactory_set_qos(factory, &qos) == DDS_RETCODE_OK;
    DDS_DomainParticipantFactoryQos_finalize(&qos);
    return ok;
}

// The application's kind, which tells this process's logger from others in the domain.
inline std::string kind() {
    return "interop " + std::to_string(getpid());
}

struct LiveSettings {
    int queue_size = 128;  // in messages
    const char *profile = "Xcdr2";
};

inline bool store_options(int domain, int filter_level, const LiveSettings &settings) {
    VUR_DL_Options *const options = VUR_DL_Options_createDefault();
    const bool ok = VUR_DL_Options_setDomainId(options, domain) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setFilterLevel(options, filter_level) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setQueueSize(options, settings.queue_size) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setEchoToStdout(options, 0) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setLogInfrastructureMessages(options, 0) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setRemoteAdministrationEnabled(options, 1) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setApplicationKind(options, kind().c_str()) == DDS_RETCODE_OK &&
                    VUR_DL_Options_setQosLibrary(options, "Interop") == DDS_RETCODE_OK &&
                    VUR_DL_Options_setQosProfile(options, settings.profile) == DDS_RETCODE_OK &&
                    VUR_DL_DistLogger_setOptions(options) == 1;
    VUR_DL_Options_delete(options);
    return ok;
}

// The logger of this process, until the scope ends.
class LiveLogger {
  public:
    LiveLogger(int domain, int filter_level, const LiveSettings &settings = {})
        : logger_(load_profiles() && store_options(domain, filter_level, settings)
                      ? VUR_DL_DistLogger_getInstance()
                      : nullptr) {}
    ~LiveLogger() { end(); }
    LiveLogger(const LiveLogger &) = delete;
    LiveLogger &operator=(const LiveLogger &) = delete;

    VUR_DL_DistLogger *get() const { return logger_; }
    // Returns the identity in the logger's State; zeros when no State comes.
    support::Ids ids(int domain) const {
        support::Monitor monitor({.domain = domain, .log = false, .commands = false});
        support::Ids found;
        EXPECT_TRUE(monitor.wait_for_state([&found](const support::StateSample &state) {
            found = state.sender;
            return state.valid && state.kind == kind();
        }));
        return found;
    }
    void end() {
        logger_ = nullptr;
        VUR_DL_DistLogger_finalizeInstance();
    }

  private:
    VUR_DL_DistLogger *logger_;
};

inline Fields split(const std::string &line) {
    Fields fields;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = line.find('\t', begin);
        fields.push_back(line.substr(begin, end - begin));
        if (end == std::string::npos) {
            return fields;
        }
        begin = end + 1;
    }
}

// Reads on until a line satisfies `wanted`; no fields when none does.
inline Fields read_until(support::ChildProcess &peer,
                         const std::function<bool(const Fields &)> &wanted) {
    while (const std::optional<std::string> line = peer.read_line()) {
        Fields fields = split(*line);
        if (wanted(fields)) {
            return fields;
        }
    }
    return {};
}
inline Fields read_until(support::ChildProcess &peer, const std::string &first) {
    return read_until(peer, [&first](const Fields &fields) { return fields[0] == first; });
}

// The peer ends in good order and has not complained.
inline void dismiss(support::ChildProcess &peer) {
    peer.close_input();
    EXPECT_EQ(peer.wait(), 0);
    EXPECT_EQ(peer.lines(support::ChildProcess::Stream::kErr), Fields{});
}

}  // namespace interop
