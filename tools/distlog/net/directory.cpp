// SPDX-License-Identifier: Apache-2.0
// The loggers of a domain, as they describe themselves.
#include "net/directory.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "text/text.hpp"

namespace distlog {
namespace {

// The time without anything new after which a collection counts as complete. It is long compared
// with the time that discovery takes between two loggers that are both there.
constexpr std::chrono::milliseconds kQuiet{500};

LoggerInfo describe(const VUR_DL_ADMIN_State &sample) {
    LoggerInfo info;
    info.identity = Identity(sample.hostAndAppId);
    info.kind = sample.applicationKind == nullptr ? "" : sample.applicationKind;
    info.domain = sample.administrationDomainId;
    info.state = sample.state;
    info.filter_level = sample.filterLevel;
    std::copy(std::begin(sample.vurLoggerVerbosities), std::end(sample.vurLoggerVerbosities),
              info.verbosities.begin());
    info.print_format = sample.vurLoggerPrintFormat;
    return info;
}

}  // namespace

bool LoggerInfo::operator==(const LoggerInfo &other) const {
    const auto same = [](const VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &left,
                         const VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &right) {
        return left.category == right.category && left.verbosity == right.verbosity;
    };
    return identity == other.identity && kind == other.kind && domain == other.domain &&
           state == other.state && filter_level == other.filter_level &&
           print_format == other.print_format &&
           std::equal(verbosities.begin(), verbosities.end(), other.verbosities.begin(), same);
}

Selector::Selector(const std::string &text)
    : text_(text), identity_(parse_identity(text)), all_(text == "all") {}

bool Selector::selects(const LoggerInfo &logger) const {
    if (identity_) {
        return logger.identity == *identity_;
    }
    return all_ || logger.kind == text_;
}

Directory::Directory(const Session &session)
    : reader_(session, ReaderSettings{DDS_TRANSIENT_LOCAL_DURABILITY_QOS, DDS_KEEP_LAST_HISTORY_QOS,
                                      1, DDS_LENGTH_UNLIMITED}) {}

void Directory::update(const Listener &listener) {
    reader_.take([&](const VUR_DL_ADMIN_State &sample, const DDS_SampleInfo &info) {
        if (info.valid_data) {
            learn(sample, listener);
        }
        if ((info.instance_state & DDS_NOT_ALIVE_INSTANCE_STATE) != 0) {
            forget(Identity(sample.hostAndAppId), listener);
        }
    });
}

void Directory::collect(StopSignal &stop, const Deadline &deadline,
                        const std::function<bool()> &enough) {
    Waiter waiter({condition(), stop.condition()});
    Deadline quiet_until = deadline_after(kQuiet);
    update();
    while (!stop.raised() && !is_over(deadline) && !enough()) {
        const bool all_spoke =
            !loggers_.empty() && static_cast<int>(loggers_.size()) >= reader_.matched_writers();
        if (all_spoke && is_over(quiet_until)) {
            return;
        }
        // The quiet time does not run while a writer has not sent its State.
        if (!all_spoke) {
            quiet_until = deadline_after(kQuiet);
        }
        if (waiter.wait(earlier(deadline, quiet_until))) {
            update();
            quiet_until = deadline_after(kQuiet);
        }
    }
}

const LoggerInfo *Directory::find(const Identity &identity) const {
    const auto found = loggers_.find(identity);
    return found == loggers_.end() ? nullptr : &found->second;
}

std::vector<LoggerInfo> Directory::select(const Selector &selector) const {
    std::vector<LoggerInfo> result;
    for (const auto &[identity, info] : loggers_) {
        if (selector.selects(info)) {
            result.push_back(info);
        }
    }
    return result;
}

std::string Directory::label(const Identity &identity) const {
    const auto known = kinds_.find(identity);
    if (known == kinds_.end() || known->second.empty()) {
        return to_string(identity);
    }
    const auto count = kind_counts_.find(known->second);
    const bool alone = count == kind_counts_.end() || count->second <= 1;
    const std::string kind = printable(known->second);
    return alone ? kind : fmt::format("{}({})", kind, to_string(identity));
}

bool Directory::learn(const VUR_DL_ADMIN_State &sample, const Listener &listener) {
    const LoggerInfo info = describe(sample);
    const auto [position, is_new] = loggers_.try_emplace(info.identity, info);
    if (!is_new && position->second == info) {
        return false;
    }
    if (is_new) {
        kind_counts_[info.kind] += 1;
    } else if (position->second.kind != info.kind) {
        kind_counts_[position->second.kind] -= 1;
        kind_counts_[info.kind] += 1;
    }
    position->second = info;
    kinds_[info.identity] = info.kind;
    if (listener) {
        listener(is_new ? Change::kAppeared : Change::kChanged, info);
    }
    return true;
}

void Directory::forget(const Identity &identity, const Listener &listener) {
    const auto found = loggers_.find(identity);
    if (found == loggers_.end()) {
        return;
    }
    const LoggerInfo info = found->second;
    loggers_.erase(found);
    kind_counts_[info.kind] -= 1;
    if (listener) {
        listener(Change::kVanished, info);
    }
}

}  // namespace distlog
