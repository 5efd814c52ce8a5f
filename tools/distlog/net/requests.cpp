// SPDX-License-Identifier: Apache-2.0
// Remote commands: sends one command to several loggers and gathers what they answer.
#include "net/requests.hpp"

#include <fmt/format.h>

namespace distlog {
namespace {

// The time after which a request is sent again. An answer takes far less, and a reader that has
// just matched has to wait no longer than this.
constexpr std::chrono::milliseconds kRepeatAfter{300};

Outcome outcome_of(VUR_DL_ADMIN_CommandResult result) {
    switch (result) {
        case VUR_DL_COMMAND_RESULT_OK:
            return Outcome::kOk;
        case VUR_DL_COMMAND_RESULT_NOT_SUPPORTED:
            return Outcome::kNotSupported;
        case VUR_DL_COMMAND_RESULT_ERROR:
            break;
    }
    return Outcome::kError;
}

VUR_DL_HostAndAppId to_ids(const Identity &identity) {
    return VUR_DL_HostAndAppId{identity.host, identity.app};
}

}  // namespace

Requester::Requester(const Session &session)
    : self_(session.self()), responses_(session, ReaderSettings{}), requests_(session) {}

std::map<DDS_Long, Requester::Pending> Requester::prepare(const std::vector<Request> &requests) {
    std::map<DDS_Long, Pending> pending;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        auto sample = make_sample<VUR_DL_ADMIN_CommandRequest>();
        sample->targetHostAndAppId = to_ids(requests[i].target);
        sample->originatorHostAndAppId = to_ids(self_);
        sample->invocation = ++invocation_;
        requests[i].fill(sample->command);
        pending.emplace(invocation_, Pending{i, requests[i].target, std::move(sample)});
    }
    return pending;
}

void Requester::write(const std::map<DDS_Long, Pending> &pending) {
    for (const auto &[invocation, request] : pending) {
        const DDS_ReturnCode_t result = requests_.write(*request.sample);
        // A time-out means that a reader does not acknowledge; its request will be repeated.
        if (result != DDS_RETCODE_OK && result != DDS_RETCODE_TIMEOUT) {
            throw Failure(
                fmt::format("unable to write a request: {}", KOLT_ReturnCode_to_string(result)));
        }
    }
}

void Requester::take_responses(std::map<DDS_Long, Pending> &pending, std::vector<Answer> &answers) {
    responses_.take([&](const VUR_DL_ADMIN_CommandResponse &response, const DDS_SampleInfo &info) {
        if (!info.valid_data || Identity(response.originatorHostAndAppId) != self_) {
            return;
        }
        const auto asked = pending.find(response.invocation);
        if (asked == pending.end() || asked->second.target != Identity(response.hostAndAppId)) {
            return;
        }
        Answer &answer = answers[asked->second.index];
        answer.outcome = outcome_of(response.commandResult);
        answer.detail = response.message;
        pending.erase(asked);
    });
}

std::vector<Answer> Requester::send(const std::vector<Request> &requests, const Deadline &deadline,
                                    const StopSignal *stop) {
    std::vector<Answer> answers;
    answers.reserve(requests.size());
    for (const Request &request : requests) {
        answers.push_back(Answer{request.target, Outcome::kSilent, ""});
    }
    std::map<DDS_Long, Pending> pending = prepare(requests);
    std::vector<DDS_Condition *> conditions{responses_.condition(), requests_.match_condition()};
    if (stop != nullptr) {
        conditions.push_back(stop->condition());
    }
    Waiter waiter(conditions);
    int matched = 0;
    Deadline repeat_at;
    while (!pending.empty() && !is_over(deadline) && (stop == nullptr || !stop->raised())) {
        const int matched_now = requests_.matched_readers_in_total();
        if (matched_now > matched || (matched_now > 0 && is_over(repeat_at))) {
            matched = matched_now;
            repeat_at = deadline_after(kRepeatAfter);
            write(pending);
        }
        waiter.wait(earlier(deadline, repeat_at));
        take_responses(pending, answers);
    }
    return answers;
}

}  // namespace distlog
