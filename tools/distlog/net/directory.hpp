// SPDX-License-Identifier: Apache-2.0
// The loggers of a domain, as they describe themselves.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "net/endpoints.hpp"
#include "net/identity.hpp"
#include "net/waiting.hpp"

namespace distlog {

// The description of one logger: the contents of its State.
struct LoggerInfo {
    Identity identity;
    std::string kind;
    int domain = 0;
    int state = 0;
    int filter_level = 0;
    std::array<VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT>
        verbosities{};
    int print_format = 0;
    bool operator==(const LoggerInfo &other) const;
};

// Selects the loggers that a command is about: one identity, every logger of a kind, or all.
class Selector {
  public:
    explicit Selector(const std::string &text);

    bool selects(const LoggerInfo &logger) const;
    // Set when the text is an identity.
    const std::optional<Identity> &identity() const { return identity_; }
    bool all() const { return all_; }
    const std::string &text() const { return text_; }

  private:
    std::string text_;
    std::optional<Identity> identity_;
    bool all_ = false;
};

// Knows the loggers of a domain from the States that they publish.
class Directory {
  public:
    enum class Change { kAppeared, kChanged, kVanished };
    using Listener = std::function<void(Change, const LoggerInfo &)>;

    // Throws Failure.
    explicit Directory(const Session &session);

    DDS_Condition *condition() const { return reader_.condition(); }
    // Takes the States that have arrived. Tells `listener`, if there is one, of each change, with
    // the description as it is afterwards; for a logger that vanished, with its last description.
    void update(const Listener &listener = {});

    // Collects States until one of these holds:
    //
    //   - Every writer of States that was found has sent one, and nothing new has come for a while.
    //   - `enough()` returns true.
    //   - The deadline is over.
    //   - The user wants to stop.
    void collect(StopSignal &stop, const Deadline &deadline, const std::function<bool()> &enough);

    const std::map<Identity, LoggerInfo> &loggers() const { return loggers_; }
    const LoggerInfo *find(const Identity &identity) const;
    std::vector<LoggerInfo> select(const Selector &selector) const;
    // Returns the name for people: the logger's kind, followed by its identity when other loggers
    // have the same kind, or the identity when the kind is not known. Fit for a terminal.
    std::string label(const Identity &identity) const;

  private:
    // Notes a State. False when nothing changed.
    bool learn(const VUR_DL_ADMIN_State &sample, const Listener &listener);
    void forget(const Identity &identity, const Listener &listener);

    Reader<VUR_DL_ADMIN_State> reader_;
    std::map<Identity, LoggerInfo> loggers_;
    // Kinds stay known when their loggers are gone: a last message may still be on its way.
    std::map<Identity, std::string> kinds_;
    std::map<std::string, int> kind_counts_;
};

}  // namespace distlog
