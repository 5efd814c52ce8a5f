// SPDX-License-Identifier: Apache-2.0
// Peers that behave as a test wants: a sender of log messages with numbers of its choice, and an
// administered logger with answers of its choice.
#pragma once

#include <vur_dl/DDSEntities.h>
#include <vur_dl/distlogSupport.h>

#include <cstdint>
#include <string>

#include "support/logger/monitor.h"

namespace support {

class FakeParticipant {
  public:
    explicit FakeParticipant(int domain);
    ~FakeParticipant();
    FakeParticipant(const FakeParticipant &) = delete;
    FakeParticipant &operator=(const FakeParticipant &) = delete;
    DDS_DomainParticipant *get() const { return participant_; }

  private:
    DDS_DomainParticipant *participant_;
};

// Writes to the log topic as a logger does: reliable, transient-local, the last ten of each level.
class FakeSender {
  public:
    FakeSender(const FakeParticipant &participant, Ids ids);
    ~FakeSender();
    FakeSender(const FakeSender &) = delete;
    FakeSender &operator=(const FakeSender &) = delete;

    bool wait_for_readers(int count);
    // The source time stamp is that of the call. Waits until it has been acknowledged.
    bool write(std::int64_t id, int level = 600, const std::string &message = "text",
               const std::string &category = "");

  private:
    DDS_Publisher *publisher_;
    DDS_DataWriter *writer_;
    Ids ids_;
};

// Takes requests and answers them with the given results.
class FakeResponder {
  public:
    explicit FakeResponder(const FakeParticipant &participant);

    // Waits for the next request and answers it under its target's ids.
    bool answer_one(VUR_DL_ADMIN_CommandResult result, const std::string &message);

  private:
    DDS_DataReader *requests_;
    DDS_DataWriter *responses_;
};

}  // namespace support
