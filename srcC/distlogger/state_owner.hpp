// SPDX-License-Identifier: Apache-2.0
// Who may touch the State: one thread at a time owns the record and its writes.
//
// The application's threads, the threads that find a State reader and those that carry out commands
// all change the State. A write may block, and may call back into the logger on the same thread. So
// no lock is held over it: a thread that finds the State owned notes what it wants and goes on, and
// the owner carries that out before it gives the State up.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>

#include "DistLoggerRecord.hpp"
#include "lock_rules.hpp"

namespace vur_dl {

// What there is to do with the State, one bit each. A field is brought up to date from its source,
// so that a note needs no value.
enum StateWish : std::uint32_t {
    kRefreshKind = 1U,
    kRefreshFilterLevel = 2U,
    kRefreshVerbosities = 4U,
    kRefreshPrintFormat = 8U,
    kPublishFirst = 16U,
    kPublish = 32U,
};

class StateOwner {
  public:
    // Carries the wishes out, in the order of their bits, or leaves them to the owner. False when
    // the State could not be published on this thread.
    bool carry_out(VUR_DL_DistLogger &logger, std::uint32_t wishes);
    // Does the same for a reader that the State writer has found.
    void publish_first(VUR_DL_DistLogger &logger, DDS_DataWriter *writer);
    // Lets wishes in, or turns them away after the owner has carried out the last ones.
    void open();
    void close();

  private:
    // Returns the noted wishes; none, and the State is free, when there are none left.
    std::uint32_t next_wishes();

    std::atomic<DDS_DataWriter *> matched_writer_{nullptr};  // for kPublishFirst
    LeafMutex mutex_;                                        // guards what follows
    std::condition_variable_any free_;
    bool is_open_ = false;
    bool is_owned_ = false;
    std::uint32_t noted_ = 0;
};

// The owner of the process's one State.
StateOwner &state_owner();

}  // namespace vur_dl
