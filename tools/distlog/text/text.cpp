// SPDX-License-Identifier: Apache-2.0
// Texts from the network made fit for a terminal, and times as text.
#include "text/text.hpp"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <utf8/unchecked.h>

#include <ctime>

namespace distlog {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

// Characters that act on the terminal instead of appearing on it.
bool is_control(std::uint32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 ||
           (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

void append_control(std::string &out, std::uint32_t c) {
    switch (c) {
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\t':
            out += "\\t";
            return;
        default:
            break;
    }
    out += c < 0x80 ? fmt::format("\\x{:02x}", c) : fmt::format("\\u{{{:04x}}}", c);
}

std::tm local_broken_down(std::int64_t seconds) {
    const std::time_t time = static_cast<std::time_t>(seconds);
    std::tm result{};
    // A time too far away for a calendar stays the zero record; the fraction still tells it apart.
    if (localtime_r(&time, &result) == nullptr) {
        result = std::tm{};
        result.tm_mday = 1;
    }
    return result;
}

}  // namespace

std::string printable(std::string_view text) {
    if (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
    }
    std::string out;
    out.reserve(text.size());
    const char *next = text.data();
    const char *const end = next + text.size();
    while (next != end) {
        const char *const end_of_valid = utf8::find_invalid(next, end);
        while (next != end_of_valid) {
            const char *const start = next;
            const std::uint32_t c = utf8::unchecked::next(next);
            if (is_control(c)) {
                append_control(out, c);
            } else {
                out.append(start, next);
            }
        }
        if (next != end) {
            out += fmt::format("\\x{:02x}", static_cast<unsigned char>(*next));
            ++next;
        }
    }
    return out;
}

std::string_view whole_characters(std::string_view text, std::size_t bound) {
    if (text.size() != bound) {
        return text;
    }
    constexpr std::size_t kLongest = 4;
    for (std::size_t length = 1; length < kLongest && length <= text.size(); ++length) {
        const std::string_view tail = text.substr(text.size() - length);
        const auto lead = static_cast<unsigned char>(tail[0]);
        if ((lead & 0xc0U) == 0x80U) {
            continue;  // in the midst of a character
        }
        const std::size_t needed = lead >= 0xf0U ? 4 : lead >= 0xe0U ? 3 : lead >= 0xc0U ? 2 : 1;
        return needed > length ? text.substr(0, text.size() - length) : text;
    }
    return text;
}

std::int64_t to_nanoseconds(const DDS_Time_t &time) {
    // Saturates: the seconds come from the network and need not be a sensible time.
    std::int64_t result = 0;
    if (__builtin_mul_overflow(time.sec, kNanosecondsPerSecond, &result) ||
        __builtin_add_overflow(result, static_cast<std::int64_t>(time.nanosec), &result)) {
        return time.sec < 0 ? INT64_MIN : INT64_MAX;
    }
    return result;
}

std::string local_time(const DDS_Time_t &time) {
    return fmt::format("{:%Y-%m-%d %H:%M:%S}.{:06}", local_broken_down(time.sec),
                       time.nanosec / 1000);
}

std::string local_clock() {
    return fmt::format("{:%H:%M:%S}", local_broken_down(std::time(nullptr)));
}

}  // namespace distlog
