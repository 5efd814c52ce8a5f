// SPDX-License-Identifier: Apache-2.0
// Texts from the network made fit for a terminal, and times as text.
#pragma once

#include <kolt/infrastructure.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace distlog {

// Returns `text` as one line that cannot control a terminal. Control characters (C0, DEL, C1), line
// and paragraph separators, bidirectional overrides and bytes that are not UTF-8 appear as \n, \t,
// \xNN or \u{NNNN}. Everything else stays as it is. One newline at the end is dropped.
std::string printable(std::string_view text);

// Returns nanoseconds since the epoch; saturates when the time is too far away.
std::int64_t to_nanoseconds(const DDS_Time_t &time);
// Returns the time in the local time zone: "2026-03-01 14:05:09.123456".
std::string local_time(const DDS_Time_t &time);
// Returns the time of day at this moment: "14:05:09".
std::string local_clock();

}  // namespace distlog
