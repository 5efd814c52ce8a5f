// SPDX-License-Identifier: Apache-2.0
// Status masks, from KOLT's bits to the engine's and back.
#include "engine/entity/statuses.hpp"

namespace kolt::engine {

namespace {

struct StatusBit {
    DDS_StatusMask standard;
    std::uint32_t engine;
};

#define KOLT_STATUS_BIT(Name, name, NAME) {DDS_##NAME##_STATUS, cyclone::k##Name##Status},
constexpr StatusBit kStatusBits[] = {
    KOLT_TOPIC_STATUSES(KOLT_STATUS_BIT)   //
    KOLT_WRITER_STATUSES(KOLT_STATUS_BIT)  //
    KOLT_READER_STATUSES(KOLT_STATUS_BIT)  //
    {DDS_DATA_AVAILABLE_STATUS, cyclone::kDataAvailableStatus},
    {DDS_DATA_ON_READERS_STATUS, cyclone::kDataOnReadersStatus},
};
#undef KOLT_STATUS_BIT

}  // namespace

std::uint32_t status_to_engine(DDS_StatusMask mask) {
    std::uint32_t result = 0;
    for (const StatusBit &bit : kStatusBits) {
        if ((mask & bit.standard) != 0) {
            result |= bit.engine;
        }
    }
    return result;
}

DDS_StatusMask status_from_engine(std::uint32_t mask) {
    DDS_StatusMask result = 0;
    for (const StatusBit &bit : kStatusBits) {
        if ((mask & bit.engine) != 0) {
            result |= bit.standard;
        }
    }
    return result;
}

}  // namespace kolt::engine
