// SPDX-License-Identifier: Apache-2.0
// The logger's topic types and what idlc makes of them, side by side, with random samples.
#pragma once

#include <gtest/gtest.h>
// Before the engine's headers, which define some of the C API's names as macros.
#include <vur_dl/distlogPlugin.h>
// The engine's.
#include <dds/dds.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>

#include "distlog_idlc.h"

namespace equality {

// ---- Random values ----------------------------------------------------------------------------

class Random {
  public:
    explicit Random(unsigned seed) : generator_(seed) {}

    // Any number, and now and then one from the ends of its range.
    DDS_Long number() {
        constexpr DDS_Long kEnds[] = {INT32_MIN, INT32_MAX, 0, -1};
        const unsigned kind = below(16);
        return kind < 4 ? kEnds[kind] : static_cast<DDS_Long>(generator_());
    }
    DDS_LongLong wide() {
        constexpr DDS_LongLong kEnds[] = {INT64_MIN, INT64_MAX, 0, -1};
        const unsigned kind = below(16);
        if (kind < 4) {
            return kEnds[kind];
        }
        return static_cast<DDS_LongLong>(std::uint64_t{generator_()} << 32 | generator_());
    }
    template <typename Enum>
    Enum enumerator(unsigned count) {
        return static_cast<Enum>(below(count));
    }
    unsigned below(unsigned limit) { return static_cast<unsigned>(generator_() % limit); }

    // Short ones mostly, so that every alignment comes up often; now and then empty or full.
    void text(char *buffer, unsigned bound) {
        const unsigned kind = below(8);
        const unsigned length = kind == 0   ? 0
                                : kind == 1 ? bound
                                : kind == 2 ? below(bound + 1)
                                            : below(40);
        for (unsigned i = 0; i < length; ++i) {
            buffer[i] = static_cast<char>(1 + below(255));
        }
        buffer[length] = '\0';
    }
    VUR_DL_HostAndAppId identity() { return {number(), number()}; }
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity category_and_verbosity() {
        return {enumerator<VUR_DL_ADMIN_VURLoggerCategory>(5),
                enumerator<VUR_DL_ADMIN_VURLoggerVerbosity>(6)};
    }

  private:
    std::mt19937 generator_;
};

// ---- The types, side by side --------------------------------------------------------------------

inline void convert(com_vur_dl_HostAndAppId &to, const VUR_DL_HostAndAppId &from) {
    to = {from.rtps_host_id, from.rtps_app_id};
}
inline void convert(com_vur_dl_admin_VURLoggerCategoryAndVerbosity &to,
                    const VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &from) {
    to.category = static_cast<com_vur_dl_admin_VURLoggerCategory>(from.category);
    to.verbosity = static_cast<com_vur_dl_admin_VURLoggerVerbosity>(from.verbosity);
}

// One topic type: our record, idlc's, and how the second is made from the first. `Theirs` values
// that convert() makes may point into the object's buffers.
struct LogMessage {
    using Ours = VUR_DL_LogMessage;
    using Theirs = com_vur_dl_LogMessage;
    static constexpr const dds_topic_descriptor_t &kDescriptor = com_vur_dl_LogMessage_desc;
    static constexpr auto kInitialize = VUR_DL_LogMessage_initialize;
    static constexpr auto kFinalize = VUR_DL_LogMessage_finalize;
    static constexpr auto kCode = VUR_DL_LogMessage_get_typecode;
    static constexpr auto kSerialize = VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex;
    static constexpr auto kDeserialize = VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer;
    static constexpr auto kPrograms = VUR_DL_LogMessagePlugin_get_programs;

    static void fill(Ours &record, Random &random) {
        record.hostAndAppId = random.identity();
        record.level = random.number();
        random.text(record.category, VUR_DL_LOG_MESSAGE_CATEGORY_BOUND);
        random.text(record.message, VUR_DL_LOG_MESSAGE_MESSAGE_BOUND);
        record.messageId = random.wide();
    }
    void convert(Theirs &to, const Ours &from) {
        equality::convert(to.hostAndAppId, from.hostAndAppId);
        to.level = from.level;
        std::strcpy(to.category, from.category);
        std::strcpy(to.message, from.message);
        to.messageId = from.messageId;
    }
};

struct State {
    using Ours = VUR_DL_ADMIN_State;
    using Theirs = com_vur_dl_admin_State;
    static constexpr const dds_topic_descriptor_t &kDescriptor = com_vur_dl_admin_State_desc;
    static constexpr auto kInitialize = VUR_DL_ADMIN_State_initialize;
    static constexpr auto kFinalize = VUR_DL_ADMIN_State_finalize;
    static constexpr auto kCode = VUR_DL_ADMIN_State_get_typecode;
    static constexpr auto kSerialize = VUR_DL_ADMIN_StatePlugin_serialize_to_cdr_buffer_ex;
    static constexpr auto kDeserialize = VUR_DL_ADMIN_StatePlugin_deserialize_from_cdr_buffer;
    static constexpr auto kPrograms = VUR_DL_ADMIN_StatePlugin_get_programs;

    static void fill(Ours &record, Random &random) {
        record.hostAndAppId = random.identity();
        record.administrationDomainId = random.number();
        record.state = random.enumerator<VUR_DL_ADMIN_StateKind>(4);
        random.text(record.applicationKind, VUR_DL_ADMIN_STATE_APPLICATION_KIND_BOUND);
        record.filterLevel = random.number();
        for (VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &element : record.vurLoggerVerbosities) {
            element = random.category_and_verbosity();
        }
        record.vurLoggerPrintFormat = random.enumerator<VUR_DL_ADMIN_VURLoggerPrintFormat>(7);
    }
    void convert(Theirs &to, const Ours &from) {
        equality::convert(to.hostAndAppId, from.hostAndAppId);
        to.administrationDomainId = from.administrationDomainId;
        to.state = static_cast<com_vur_dl_admin_StateKind>(from.state);
        std::strcpy(to.applicationKind, from.applicationKind);
        to.filterLevel = from.filterLevel;
        for (std::size_t i = 0; i < std::size(to.vurLoggerVerbosities); ++i) {
            equality::convert(to.vurLoggerVerbosities[i], from.vurLoggerVerbosities[i]);
        }
        to.vurLoggerPrintFormat =
            static_cast<com_vur_dl_admin_VURLoggerPrintFormat>(from.vurLoggerPrintFormat);
    }
};

struct CommandRequest {
    using Ours = VUR_DL_ADMIN_CommandRequest;
    using Theirs = com_vur_dl_admin_CommandRequest;
    static constexpr const dds_topic_descriptor_t &kDescriptor =
        com_vur_dl_admin_CommandRequest_desc;
    static constexpr auto kInitialize = VUR_DL_ADMIN_CommandRequest_initialize;
    static constexpr auto kFinalize = VUR_DL_ADMIN_CommandRequest_finalize;
    static constexpr auto kCode = VUR_DL_ADMIN_CommandRequest_get_typecode;
    static constexpr auto kSerialize = VUR_DL_ADMIN_CommandRequestPlugin_serialize_to_cdr_buffer_ex;
    static constexpr auto kDeserialize =
        VUR_DL_ADMIN_CommandRequestPlugin_deserialize_from_cdr_buffer;

    static void fill(Ours &record, Random &random) {
        record.targetHostAndAppId = random.identity();
        record.originatorHostAndAppId = random.identity();
        record.invocation = random.number();
        record.command._d = random.enumerator<VUR_DL_ADMIN_CommandKind>(3);
        record.command._u.filterLevel = random.number();
        auto &sequence = record.command._u.categoryAndVerbosity;
        const auto length = static_cast<DDS_Long>(random.below(6));
        ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(&sequence, length));
        for (DDS_Long i = 0; i < length; ++i) {
            *VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(&sequence, i) =
                random.category_and_verbosity();
        }
        record.command._u.printFormat = random.enumerator<VUR_DL_ADMIN_VURLoggerPrintFormat>(7);
    }
    void convert(Theirs &to, const Ours &from) {
        equality::convert(to.targetHostAndAppId, from.targetHostAndAppId);
        equality::convert(to.originatorHostAndAppId, from.originatorHostAndAppId);
        to.invocation = from.invocation;
        const VUR_DL_ADMIN_Command &command = from.command;
        to.command = {};
        to.command.d = static_cast<com_vur_dl_admin_CommandKind>(command._d);
        if (command._d == VUR_DL_SET_LOG_LEVEL) {
            filter_level_ = command._u.filterLevel;
            to.command.filterLevel = &filter_level_;
        } else if (command._d == VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT) {
            print_format_ =
                static_cast<com_vur_dl_admin_VURLoggerPrintFormat>(command._u.printFormat);
            to.command.printFormat = &print_format_;
        } else {
            convert_sequence(command._u.categoryAndVerbosity);
            to.command.categoryAndVerbosity = &sequence_;
        }
    }

  private:
    void convert_sequence(const VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq &from) {
        sequence_ = {};
        sequence_._maximum = static_cast<std::uint32_t>(elements_.size());
        sequence_._length = from._length;
        sequence_._buffer = elements_.data();
        for (DDS_UnsignedLong i = 0; i < from._length; ++i) {
            equality::convert(elements_[i], from._contiguous_buffer[i]);
        }
    }

    std::array<com_vur_dl_admin_VURLoggerCategoryAndVerbosity, 5> elements_ = {};
    dds_sequence_com_vur_dl_admin_VURLoggerCategoryAndVerbosity sequence_ = {};
    std::int32_t filter_level_ = 0;
    com_vur_dl_admin_VURLoggerPrintFormat print_format_ = {};
};

struct CommandResponse {
    using Ours = VUR_DL_ADMIN_CommandResponse;
    using Theirs = com_vur_dl_admin_CommandResponse;
    static constexpr const dds_topic_descriptor_t &kDescriptor =
        com_vur_dl_admin_CommandResponse_desc;
    static constexpr auto kInitialize = VUR_DL_ADMIN_CommandResponse_initialize;
    static constexpr auto kFinalize = VUR_DL_ADMIN_CommandResponse_finalize;
    static constexpr auto kCode = VUR_DL_ADMIN_CommandResponse_get_typecode;
    static constexpr auto kSerialize =
        VUR_DL_ADMIN_CommandResponsePlugin_serialize_to_cdr_buffer_ex;
    static constexpr auto kDeserialize =
        VUR_DL_ADMIN_CommandResponsePlugin_deserialize_from_cdr_buffer;
    static constexpr auto kPrograms = VUR_DL_ADMIN_CommandResponsePlugin_get_programs;

    static void fill(Ours &record, Random &random) {
        record.hostAndAppId = random.identity();
        record.originatorHostAndAppId = random.identity();
        record.invocation = random.number();
        record.commandResult = random.enumerator<VUR_DL_ADMIN_CommandResult>(3);
        random.text(record.message, VUR_DL_ADMIN_COMMAND_RESPONSE_MESSAGE_BOUND);
    }
    void convert(Theirs &to, const Ours &from) {
        equality::convert(to.hostAndAppId, from.hostAndAppId);
        equality::convert(to.originatorHostAndAppId, from.originatorHostAndAppId);
        to.invocation = from.invocation;
        to.commandResult = static_cast<com_vur_dl_admin_CommandResult>(from.commandResult);
        std::strcpy(to.message, from.message);
    }
};

}  // namespace equality
