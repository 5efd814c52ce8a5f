// SPDX-License-Identifier: Apache-2.0
// An administration tool for tests: reads what loggers publish and sends them commands.
#pragma once

#include <vur_dl/DDSEntities.h>
#include <vur_dl/distlogSupport.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace support {

struct Ids {
    std::int32_t host = 0;
    std::int32_t app = 0;
    auto operator<=>(const Ids &) const = default;
};

struct LogSample {
    Ids sender;
    int level = 0;
    std::string category;
    std::string message;
    std::int64_t id = 0;
    DDS_Time_t time{};
};

struct StateSample {
    Ids sender;
    bool valid = false;  // false: only the instance's state has changed
    DDS_InstanceStateKind instance_state = 0;
    int domain = 0;
    VUR_DL_ADMIN_StateKind state = VUR_DL_STATE_INITIALIZING;
    std::string kind;
    int filter_level = 0;
    std::array<VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, 5> verbosities{};
    VUR_DL_ADMIN_VURLoggerPrintFormat format = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT;
};

struct ResponseSample {
    Ids responder;
    Ids originator;
    int invocation = 0;
    VUR_DL_ADMIN_CommandResult result = VUR_DL_COMMAND_RESULT_OK;
    std::string message;
};

// The lists only grow; asking for one takes what has arrived since. One thread at a time.
class Monitor {
  public:
    struct Settings {
        int domain = 0;
        bool log = true;
        bool state = true;
        bool commands = true;
        // The log reader's. Transient-local: messages from before the reader arrive, too.
        DDS_DurabilityQosPolicyKind durability = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    };

    explicit Monitor(const Settings &settings);
    ~Monitor();
    Monitor(const Monitor &) = delete;
    Monitor &operator=(const Monitor &) = delete;

    const std::vector<LogSample> &log();
    const std::vector<StateSample> &states();
    const std::vector<ResponseSample> &responses();

    // Waits for an event. False when it does not come in time.
    bool wait_for_log(std::size_t count);
    bool wait_for_log_writers(int count);
    bool wait_for_states(std::size_t count);
    bool wait_for_state(const std::function<bool(const StateSample &)> &wanted);
    bool wait_for_responses(std::size_t count);
    // Waits until the command topics of `target` and of this monitor have found each other in both
    // directions, so that requests and answers arrive. Requests the target's present filter level,
    // `level`, for that, which changes nothing. Those answers are not among the responses.
    bool handshake(const Ids &target, int level);
    // True while no logger that takes requests has been found.
    bool nobody_takes_requests();

    // Returns the last valid State; a default one when there is none.
    StateSample last_state();

    // Sends a request to `target` under this monitor's ids.
    bool request(const Ids &target, int invocation,
                 const std::function<void(VUR_DL_ADMIN_Command &)> &fill);
    Ids ids() const;
    DDS_DomainParticipant *participant() const;

  private:
    struct Endpoints;
    std::unique_ptr<Endpoints> endpoints_;
    std::vector<LogSample> log_;
    std::vector<StateSample> states_;
    std::vector<ResponseSample> responses_;
    std::set<Ids> shaken_;
};

}  // namespace support
