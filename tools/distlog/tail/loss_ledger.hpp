// SPDX-License-Identifier: Apache-2.0
// The account of message numbers of every sender: those that came and those that are missing.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "net/identity.hpp"

namespace distlog {

// Finds the numbers that are missing.
//
// A logger numbers its messages 1, 2, 3 ... over all levels, also those that its queue refused. So
// a number that never comes was dropped at the sender or lost on the way. This holds only for
// messages that were sent while this reader was listening: the history that a late joiner gets is
// the last few messages of each level, whose gaps are not losses.
//
// The messages of one sender have to be recorded in the order of their numbers, as far as they have
// arrived. The middleware delivers the samples of one writer in order, but a take returns them
// grouped by instance, and each level is an instance. Sorting the samples of one take gives the
// order.
class LossLedger {
  public:
    struct Entry {
        Identity sender;
        std::uint64_t publication = 0;  // which writer; a sender that starts anew has a new one
        std::int64_t id = 0;
        std::int64_t timestamp = 0;  // source time stamp, nanoseconds
        bool historical = false;     // sent before this reader listened
    };
    struct Gap {
        std::int64_t first = 0;
        std::int64_t last = 0;
        std::int64_t count() const { return last - first + 1; }
    };
    struct Verdict {
        bool repeated = false;   // this message was recorded before
        std::optional<Gap> gap;  // numbers that are missing before it
    };
    struct Account {
        std::uint64_t publication = 0;
        std::int64_t last_id = 0;
        std::int64_t last_timestamp = 0;
        std::int64_t received = 0;
        std::int64_t lost = 0;
    };

    Verdict record(const Entry &entry);

    const std::map<Identity, Account> &accounts() const { return accounts_; }
    bool knows(const Identity &sender) const { return accounts_.count(sender) != 0; }

  private:
    std::map<Identity, Account> accounts_;
};

}  // namespace distlog
