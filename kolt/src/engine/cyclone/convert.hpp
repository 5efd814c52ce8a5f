// SPDX-License-Identifier: Apache-2.0
// Values of the standard, from KOLT's types to the engine's and back.
#pragma once

#include <cstdint>

#include "engine/cyclone/cyclone.hpp"
#include "kolt/status.h"

namespace kolt::engine {

// Returns the standard's code for a result of the engine; positive results are OK.
DDS_ReturnCode_t to_return_code(dds_return_t result);
// Returns what the code does not say of a failed creation, for the end of a message; "" for nothing.
const char *more_about(dds_return_t result);

// Translate durations; the engine counts nanoseconds. One that DDS_Duration_t cannot hold becomes
// infinite.
dds_duration_t to_engine(const DDS_Duration_t &duration);
DDS_Duration_t from_engine_duration(dds_duration_t duration);

// True for a point in time that a sample can carry (DDS 1.4, 2.3.3): up to the year 2106.
bool is_valid_time(const DDS_Time_t &time);
dds_time_t to_engine(const DDS_Time_t &time);
DDS_Time_t from_engine_time(dds_time_t time);

// Joins the three state masks to the engine's one. False when one of them selects nothing.
bool states_to_engine(DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,
                      DDS_InstanceStateMask instance_states, std::uint32_t *mask);

DDS_SampleInfo to_sample_info(const dds_sample_info_t &info);

}  // namespace kolt::engine
