// SPDX-License-Identifier: Apache-2.0
// The account of message numbers of every sender.
#include "tail/loss_ledger.hpp"

namespace distlog {

LossLedger::Verdict LossLedger::record(const Entry &entry) {
    const auto [position, is_new] = accounts_.try_emplace(entry.sender);
    Account &account = position->second;
    const bool new_writer = account.publication != entry.publication;
    // When numbers start over on the same writer, a later time tells a restart from a repetition.
    const bool backwards = entry.id <= account.last_id;
    const bool restarted =
        is_new || new_writer || (backwards && entry.timestamp > account.last_timestamp);

    Verdict verdict;
    if (backwards && !restarted) {
        verdict.repeated = true;
        return verdict;
    }
    if (!restarted && !entry.historical && entry.id > account.last_id + 1) {
        verdict.gap = Gap{account.last_id + 1, entry.id - 1};
        account.lost += verdict.gap->count();
    }
    account.publication = entry.publication;
    account.last_id = entry.id;
    account.last_timestamp = entry.timestamp;
    account.received += 1;
    return verdict;
}

}  // namespace distlog
