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

// Which loggers a command is about: one identity, every logger of a kind, or all.
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

class Directory {
  public:
    enum class Change { kAppeared, kChanged, kVanished };
    using Listener = std::function<void(Change, const LoggerInfo &)>;

    // Throws Failure.
    explicit Directory(const Session &session);

    DDS_Condition *condition() const { return reader_.condition(); }
    // Takes the States that have arrived. `listener`, if there is one, is told of each change, with
    // the description as it is afterwards (as it was last, of one that vanished).
    void update(const Listener &listener = {});

    // Collects until every writer of States that was found has spoken and nothing new has come for
    // a while, until `enough()` says so, until the deadline, or until the user wants to stop.
    void collect(StopSignal &stop, const Deadline &deadline, const std::function<bool()> &enough);

    const std::map<Identity, LoggerInfo> &loggers() const { return loggers_; }
    const LoggerInfo *find(const Identity &identity) const;
    std::vector<LoggerInfo> select(const Selector &selector) const;
    // What a person calls the logger: its kind, with the identity behind it when the kind is not
    // its alone; the identity when nothing else is known. Fit for a terminal.
    std::string label(const Identity &identity) const;

  private:
    // False when nothing changed.
    bool learn(const VUR_DL_ADMIN_State &sample, const Listener &listener);
    void forget(const Identity &identity, const Listener &listener);

    Reader<VUR_DL_ADMIN_State> reader_;
    std::map<Identity, LoggerInfo> loggers_;
    // Kinds stay known after their loggers: a last message may still be on its way.
    std::map<Identity, std::string> kinds_;
    std::map<std::string, int> kind_counts_;
};

}  // namespace distlog
