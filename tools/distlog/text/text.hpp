// Texts from the network made fit for a terminal, and times as text.
#pragma once

#include <kolt/infrastructure.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace distlog {

// `text` on one line that moves no terminal: control characters (C0, DEL, C1), line and paragraph
// separators and bidirectional overrides appear as \n, \t, \xNN or \u{NNNN}, and so does every byte
// that is not UTF-8. Everything else stays as it is. One newline at the end is dropped.
std::string printable(std::string_view text);

// Nanoseconds since the epoch.
std::int64_t to_nanoseconds(const DDS_Time_t &time);
// "2026-03-01 14:05:09.123456" in the local time zone.
std::string local_time(const DDS_Time_t &time);
// The same for this moment, without the date: "14:05:09".
std::string local_clock();

}  // namespace distlog
