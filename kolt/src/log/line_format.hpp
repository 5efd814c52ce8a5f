// SPDX-License-Identifier: Apache-2.0
// Line formats: which fields of a message are printed, and how.
#pragma once

#include <cstdint>

#include "log/event.hpp"
#include "log/text_buffer.hpp"

namespace kolt::log {

// The format in force, and its change; false for a mask that is empty or has unknown bits.
std::uint32_t print_format();
bool set_print_format(std::uint32_t mask);

// Appends the message in the given format, without a newline at its end.
void format_event(const Event &event, std::uint32_t format, TextBuffer &out);

}  // namespace kolt::log
