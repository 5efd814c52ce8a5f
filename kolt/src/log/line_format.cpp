// SPDX-License-Identifier: Apache-2.0
// Formatting: one table of bits and fields. A message is printed as the fields that its format
// selects, in the order of the table, separated by blanks, then a colon and the text.

#include "log/line_format.hpp"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>

#include "kolt/os.h"

namespace kolt::log {

namespace {

// Two bits select no field but the form of the text.
constexpr std::uint32_t kLinesAsTheyStand = 0x0001;  // otherwise later lines are indented
constexpr std::uint32_t kTextOnFieldsLine = 0x0010;  // otherwise it starts a line of its own
constexpr std::string_view kIndent = "    ";

constexpr const char *kLevelNames[] = {"FATAL", "ERROR", "WARNING", "LOCAL", "REMOTE", "DEBUG"};
constexpr const char *kCategoryNames[] = {"platform", "communication", "database", "entities",
                                          "api",      "discovery",     "security", "user"};
constexpr const char *kFacilityNames[] = {"middleware", "user", "security_event", "service"};
constexpr const char *kModuleNames[] = {"kolt", "engine"};

template <std::size_t kCount, typename Value>
const char *name_of(const char *const (&names)[kCount], Value value) {
    const auto index = static_cast<std::size_t>(value);
    return index < kCount ? names[index] : "?";
}

[[gnu::format(printf, 2, 3)]] void print(TextBuffer &out, const char *format, ...) {
    std::array<char, 64> text{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    out.append(text.data());
}

// ISO 8601, UTC, microseconds.
void put_time(const Event &event, TextBuffer &out) {
    tm utc{};
    gmtime_r(&event.time.tv_sec, &utc);
    print(out, "%04d-%02d-%02dT%02d:%02d:%02d.%06ldZ", utc.tm_year + 1900, utc.tm_mon + 1,
          utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, event.time.tv_nsec / 1000);
}

void put_level(const Event &event, TextBuffer &out) {
    out.append(name_of(kLevelNames, event.level));
}

void put_security_mark(const Event &event, TextBuffer &out) {
    if (is_security_message(event)) {
        out.append("[security]");
    }
}

void put_module(const Event &event, TextBuffer &out) {
    out.append(name_of(kModuleNames, event.module));
}

void put_category(const Event &event, TextBuffer &out) {
    print(out, "category=%s", name_of(kCategoryNames, event.category));
}

void put_facility(const Event &event, TextBuffer &out) {
    print(out, "facility=%s", name_of(kFacilityNames, facility_of(event)));
}

void put_process_id(const Event &, TextBuffer &out) {
    print(out, "pid=%d", getpid());
}

void put_thread_id(const Event &, TextBuffer &out) {
    print(out, "tid=%" PRIu64, KOLT_Thread_current_id());
}

void put_thread_name(const Event &, TextBuffer &out) {
    std::array<char, 32> name{};
    if (pthread_getname_np(pthread_self(), name.data(), name.size()) == 0) {
        print(out, "thread=%s", name.data());
    }
}

void put_message_id(const Event &event, TextBuffer &out) {
    print(out, "id=%" PRIu32, event.id);
}

void put_method_name(const Event &event, TextBuffer &out) {
    if (event.method_name != nullptr) {
        out.append(event.method_name);
    }
}

struct Field {
    std::uint32_t bit;
    void (*put)(const Event &event, TextBuffer &out);  // may print nothing
};

constexpr Field kFields[] = {
    {0x0100, put_time},       {0x0002, put_level},       {0x2000, put_security_mark},
    {0x1000, put_module},     {0x0004, put_category},    {0x0008, put_facility},
    {0x0020, put_process_id}, {0x0040, put_thread_id},   {0x0200, put_thread_name},
    {0x0800, put_message_id}, {0x0400, put_method_name},
};

constexpr std::uint32_t all_bits() {
    std::uint32_t bits = kLinesAsTheyStand | kTextOnFieldsLine;
    for (const Field &field : kFields) {
        bits |= field.bit;
    }
    return bits;
}
static_assert(all_bits() == KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL,
              "every bit that a format may have means something, and no other does");

void put_fields(const Event &event, std::uint32_t format, TextBuffer &out) {
    for (const Field &field : kFields) {
        if ((format & field.bit) == 0) {
            continue;
        }
        TextBuffer text;
        field.put(event, text);
        if (!text.empty()) {
            out.append(out.empty() ? "" : " ");
            out.append(text.view());
        }
    }
}

void put_text(std::string_view text, std::uint32_t format, TextBuffer &out) {
    while (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
    }
    if ((format & kLinesAsTheyStand) != 0) {
        out.append(text);
        return;
    }
    std::size_t newline = text.find('\n');
    while (newline != std::string_view::npos) {
        out.append(text.substr(0, newline + 1));
        out.append(kIndent);
        text.remove_prefix(newline + 1);
        newline = text.find('\n');
    }
    out.append(text);
}

constinit std::atomic<std::uint32_t> current_format{KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT};

}  // namespace

std::uint32_t print_format() {
    return current_format.load(std::memory_order_relaxed);
}

bool set_print_format(std::uint32_t mask) {
    if (mask == 0 || (mask & ~all_bits()) != 0) {
        return false;
    }
    current_format.store(mask, std::memory_order_relaxed);
    return true;
}

void format_event(const Event &event, std::uint32_t format, TextBuffer &out) {
    put_fields(event, format, out);
    if (!out.empty()) {
        out.append((format & kTextOnFieldsLine) != 0 ? ": " : ":\n");
    }
    put_text(event.text, format, out);
}

}  // namespace kolt::log
