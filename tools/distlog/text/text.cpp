// Texts from the network made fit for a terminal, and times as text.
#include "text/text.hpp"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <ctime>

namespace distlog {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

struct CodePoint {
    std::uint32_t value = 0;
    std::size_t length = 0;  // bytes; 0 when the bytes are not UTF-8
};

// Decodes one sequence as RFC 3629 defines it: no overlong forms, no surrogates, nothing above
// U+10FFFF.
CodePoint decode(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return {};
    }
    std::uint32_t value = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return {};
        }
        value = (value << 6) | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < kSmallest[length] || surrogate || value > 0x10FFFF) {
        return {};
    }
    return {value, length};
}

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
    while (!text.empty()) {
        const CodePoint c = decode(text);
        if (c.length == 0) {
            out += fmt::format("\\x{:02x}", static_cast<unsigned char>(text.front()));
        } else if (is_control(c.value)) {
            append_control(out, c.value);
        } else {
            out += text.substr(0, c.length);
        }
        text.remove_prefix(c.length == 0 ? 1 : c.length);
    }
    return out;
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
