// SPDX-License-Identifier: Apache-2.0
// Tables and arithmetic of the translation between KOLT's values and the engine's.
#include "engine/cyclone/convert.hpp"

#include <array>
#include <limits>
#include <utility>

namespace kolt::engine {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1000000000;
// A message has 32 bits for the seconds, without a sign; the last value stands for an invalid time
// (RTPS 2.3, 9.3.2.1).
constexpr std::int64_t kSecondsOnTheWire = std::int64_t{1} << 32;
constexpr std::int64_t kLatestSecond = kSecondsOnTheWire - 2;

constexpr std::array<std::pair<dds_return_t, DDS_ReturnCode_t>, 14> kReturnCodes = {{
    {cyclone::kOk, DDS_RETCODE_OK},
    {cyclone::kError, DDS_RETCODE_ERROR},
    {cyclone::kUnsupported, DDS_RETCODE_UNSUPPORTED},
    {cyclone::kBadParameter, DDS_RETCODE_BAD_PARAMETER},
    {cyclone::kPreconditionNotMet, DDS_RETCODE_PRECONDITION_NOT_MET},
    {cyclone::kOutOfResources, DDS_RETCODE_OUT_OF_RESOURCES},
    {cyclone::kNotEnabled, DDS_RETCODE_NOT_ENABLED},
    {cyclone::kImmutablePolicy, DDS_RETCODE_IMMUTABLE_POLICY},
    {cyclone::kInconsistentPolicy, DDS_RETCODE_INCONSISTENT_POLICY},
    {cyclone::kAlreadyDeleted, DDS_RETCODE_ALREADY_DELETED},
    {cyclone::kTimeout, DDS_RETCODE_TIMEOUT},
    {cyclone::kNoData, DDS_RETCODE_NO_DATA},
    {cyclone::kIllegalOperation, DDS_RETCODE_ILLEGAL_OPERATION},
    {cyclone::kNotAllowedBySecurity, DDS_RETCODE_PRECONDITION_NOT_MET},
}};

struct StateBit {
    std::uint32_t standard;
    std::uint32_t engine;
};
constexpr std::array<StateBit, 2> kSampleStates = {{
    {DDS_READ_SAMPLE_STATE, cyclone::kReadState},
    {DDS_NOT_READ_SAMPLE_STATE, cyclone::kNotReadState},
}};
constexpr std::array<StateBit, 2> kViewStates = {{
    {DDS_NEW_VIEW_STATE, cyclone::kNewView},
    {DDS_NOT_NEW_VIEW_STATE, cyclone::kNotNewView},
}};
constexpr std::array<StateBit, 3> kInstanceStates = {{
    {DDS_ALIVE_INSTANCE_STATE, cyclone::kAlive},
    {DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE, cyclone::kNotAliveDisposed},
    {DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE, cyclone::kNotAliveNoWriters},
}};

template <std::size_t kCount>
std::uint32_t translate_states(const std::array<StateBit, kCount> &table, std::uint32_t mask) {
    std::uint32_t result = 0;
    for (const StateBit &bit : table) {
        if ((mask & bit.standard) != 0) {
            result |= bit.engine;
        }
    }
    return result;
}

template <std::size_t kCount>
std::uint32_t state_from_engine(const std::array<StateBit, kCount> &table, std::uint32_t state) {
    for (const StateBit &bit : table) {
        if (bit.engine == state) {
            return bit.standard;
        }
    }
    return table[0].standard;
}

}  // namespace

DDS_ReturnCode_t to_return_code(dds_return_t result) {
    if (result >= 0) {
        return DDS_RETCODE_OK;
    }
    for (const auto &[engine_code, code] : kReturnCodes) {
        if (engine_code == result) {
            return code;
        }
    }
    return DDS_RETCODE_ERROR;
}

const char *more_about(dds_return_t result) {
    return result == cyclone::kNotAllowedBySecurity
               ? ": the security permissions of the participant do not allow it"
               : "";
}

dds_duration_t to_engine(const DDS_Duration_t &duration) {
    if (DDS_Duration_is_infinite(&duration)) {
        return cyclone::kInfinity;
    }
    return static_cast<std::int64_t>(duration.sec) * kNanosecondsPerSecond + duration.nanosec;
}

DDS_Duration_t from_engine_duration(dds_duration_t duration) {
    constexpr std::int64_t kLongest = std::numeric_limits<DDS_Long>::max();
    if (duration == cyclone::kInfinity || duration / kNanosecondsPerSecond > kLongest) {
        return DDS_DURATION_INFINITE;
    }
    return {static_cast<DDS_Long>(duration / kNanosecondsPerSecond),
            static_cast<DDS_UnsignedLong>(duration % kNanosecondsPerSecond)};
}

bool is_valid_time(const DDS_Time_t &time) {
    return time.sec >= 0 && time.sec <= kLatestSecond && time.nanosec < kNanosecondsPerSecond;
}

dds_time_t to_engine(const DDS_Time_t &time) {
    return time.sec * kNanosecondsPerSecond + time.nanosec;
}

// The engine takes the seconds on the wire for signed ones: what comes after the year 2038 arrives as
// a time before 1970.
DDS_Time_t from_engine_time(dds_time_t time) {
    if (time < 0) {
        time += kSecondsOnTheWire * kNanosecondsPerSecond;
    }
    if (time < 0) {
        return DDS_TIME_INVALID;
    }
    return {time / kNanosecondsPerSecond,
            static_cast<DDS_UnsignedLong>(time % kNanosecondsPerSecond)};
}

bool states_to_engine(DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,
                      DDS_InstanceStateMask instance_states, std::uint32_t *mask) {
    const std::uint32_t sample = translate_states(kSampleStates, sample_states);
    const std::uint32_t view = translate_states(kViewStates, view_states);
    const std::uint32_t instance = translate_states(kInstanceStates, instance_states);
    *mask = sample | view | instance;
    return sample != 0 && view != 0 && instance != 0;
}

DDS_SampleInfo to_sample_info(const dds_sample_info_t &info) {
    DDS_SampleInfo result{};
    result.sample_state = state_from_engine(kSampleStates, info.sample_state);
    result.view_state = state_from_engine(kViewStates, info.view_state);
    result.instance_state = state_from_engine(kInstanceStates, info.instance_state);
    result.source_timestamp = from_engine_time(info.source_timestamp);
    result.instance_handle = info.instance_handle;
    result.publication_handle = info.publication_handle;
    result.disposed_generation_count = static_cast<DDS_Long>(info.disposed_generation_count);
    result.no_writers_generation_count = static_cast<DDS_Long>(info.no_writers_generation_count);
    result.sample_rank = static_cast<DDS_Long>(info.sample_rank);
    result.generation_rank = static_cast<DDS_Long>(info.generation_rank);
    result.absolute_generation_rank = static_cast<DDS_Long>(info.absolute_generation_rank);
    result.valid_data = info.valid_data ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    return result;
}

}  // namespace kolt::engine
