// SPDX-License-Identifier: Apache-2.0
// Texts from the network made fit for a terminal, and times as text.
#pragma once

#include <kolt/infrastructure.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace distlog {

// Returns `text` as one line that cannot control a terminal. Control characters (C0, DEL, C1), line
// and paragraph separators, bidirectional overrides and bytes that are not UTF-8 appear as \n, \t,
// \xNN or \u{NNNN}. Everything else stays as it is. One newline at the end is dropped.
std::string printable(std::string_view text);

// Returns the text without the beginning of a UTF-8 character that a sender may have left when it cut
// the text to `bound` bytes. A text of any other length stays as it is.
std::string_view whole_characters(std::string_view text, std::size_t bound);

// Returns nanoseconds since the epoch; saturates when the time is too far away.
std::int64_t to_nanoseconds(const DDS_Time_t &time);
// Returns the time in the local time zone: "2026-03-01 14:05:09.123456".
std::string local_time(const DDS_Time_t &time);
// Returns the time of day at this moment: "14:05:09".
std::string local_clock();

}  // namespace distlog
