// SPDX-License-Identifier: Apache-2.0
// Remote commands: sends one command to several loggers and gathers what they answer.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "net/directory.hpp"
#include "net/endpoints.hpp"
#include "net/identity.hpp"
#include "net/waiting.hpp"

namespace distlog {

// What became of a request; kSilent when no answer came.
enum class Outcome { kOk, kNotSupported, kError, kSilent };

struct Answer {
    Identity target;
    Outcome outcome = Outcome::kSilent;
    std::string detail;  // the text of the logger's answer
};

// Fills the command of a request; the sample is initialised and its sequence has room for five.
using FillCommand = std::function<void(VUR_DL_ADMIN_Command &)>;
struct Request {
    Identity target;
    FillCommand fill;
};

// Numbers requests, sends them and matches the answers.
class Requester {
  public:
    // Throws Failure.
    explicit Requester(const Session &session);

    // Sends every request and waits until all are answered, until the deadline is over, or, if
    // `stop` is given, until the user wants to stop. Returns one answer per request, in their
    // order.
    //
    // A request that is not answered is sent again with the same number, for three reasons:
    //
    //   - This side cannot see whether the target's reader has matched yet.
    //   - A volatile reader misses the samples that were written before it matched.
    //   - The target may answer before it knows our reader.
    //
    // Commands set a value, so carrying one out twice does no harm.
    std::vector<Answer> send(const std::vector<Request> &requests, const Deadline &deadline,
                             const StopSignal *stop);

  private:
    struct Pending {
        std::size_t index;
        Identity target;
        Sample<VUR_DL_ADMIN_CommandRequest> sample;
    };

    std::map<DDS_Long, Pending> prepare(const std::vector<Request> &requests);
    void write(const std::map<DDS_Long, Pending> &pending);
    void take_responses(std::map<DDS_Long, Pending> &pending, std::vector<Answer> &answers);

    Identity self_;
    // The reader is made before the writer, because a logger that answers has to know it.
    Reader<VUR_DL_ADMIN_CommandResponse> responses_;
    Writer<VUR_DL_ADMIN_CommandRequest> requests_;
    DDS_Long invocation_ = 0;
};

}  // namespace distlog
