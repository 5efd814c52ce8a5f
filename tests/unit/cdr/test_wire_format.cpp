// SPDX-License-Identifier: Apache-2.0
// The bytes that docs/wire-format.md shows are the ones that are written and read.
#include <gtest/gtest.h>
#include <vur_dl/distlogPlugin.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "support/types/test_types.h"

namespace {

using support::Bytes;
using support::from_hex;
using support::Programs;
using support::Record;
using support::to_hex;

// The page's blocks of bytes by "<section>/<subsection>", and its table of sizes.
struct Page {
    std::map<std::string, Bytes> blocks;
    std::map<std::string, std::pair<unsigned, unsigned>> sizes;
};

// The bytes of a line: pairs of digits with a space or two between them. Three spaces end them.
Bytes bytes_of_line(const std::string &line) {
    const std::size_t begin = line.find_first_not_of(' ');
    const std::size_t end = line.find("   ", begin);
    const std::string digits = line.substr(begin, end == std::string::npos ? end : end - begin);
    EXPECT_EQ(digits.find_first_not_of("0123456789abcdef "), std::string::npos) << line;
    return from_hex(digits);
}

// "| `LogMessage` | 4672 | 4680 |".
void read_sizes(const std::string &line, Page *page) {
    char name[32];
    unsigned xcdr1 = 0;
    unsigned xcdr2 = 0;
    if (std::sscanf(line.c_str(), "| `%31[A-Za-z]` | %u | %u |", name, &xcdr1, &xcdr2) == 3) {
        page->sizes[name] = {xcdr1, xcdr2};
    }
}

bool has_bytes(const std::string &section) {
    return section.rfind("Bytes of", 0) == 0 || section == "Keys";
}

Page read_page() {
    Page page;
    const char *const source = std::getenv("VUR_DL_TEST_SOURCE_DIR");
    std::ifstream file(std::string(source == nullptr ? "." : source) + "/docs/wire-format.md");
    EXPECT_TRUE(file.is_open());
    std::string section;
    std::string subsection;
    bool in_block = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("```", 0) == 0) {
            in_block = line.size() == 3 && !in_block && has_bytes(section);
        } else if (in_block) {
            Bytes &block = page.blocks[section + "/" + subsection];
            const Bytes more = bytes_of_line(line);
            block.insert(block.end(), more.begin(), more.end());
        } else if (line.rfind("## ", 0) == 0) {
            section = line.substr(3);
            subsection.clear();
        } else if (line.rfind("### ", 0) == 0) {
            subsection = line.substr(4);
        } else {
            read_sizes(line, &page);
        }
    }
    return page;
}

// One sample of each topic type, as the page describes it.
class WireFormat : public testing::Test {
  protected:
    WireFormat()
        : message_(VUR_DL_LogMessage_get_typecode()),
          state_(VUR_DL_ADMIN_State_get_typecode()),
          request_(VUR_DL_ADMIN_CommandRequest_get_typecode()),
          response_(VUR_DL_ADMIN_CommandResponse_get_typecode()) {
        message_->hostAndAppId = {0x01020304, 0x05060708};
        message_->level = 300;
        support::set_text(message_->category, "pump");
        support::set_text(message_->message, "hot");
        message_->messageId = 9;
        state_->hostAndAppId = {0x01020304, 0x05060708};
        state_->administrationDomainId = 7;
        state_->state = VUR_DL_STATE_OPERATIONAL;
        support::set_text(state_->applicationKind, "rig");
        state_->filterLevel = 600;
        for (int i = 0; i < 5; ++i) {
            state_->vurLoggerVerbosities[i] = {static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i),
                                               VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING};
        }
        request_->targetHostAndAppId = response_->hostAndAppId = {1, 2};
        request_->originatorHostAndAppId = response_->originatorHostAndAppId = {3, 4};
        request_->invocation = response_->invocation = 5;
        request_->command._u.filterLevel = 800;
        support::set_text(response_->message, "ok");
    }

    // Takes the block away.
    Bytes block(const std::string &name) {
        const Bytes bytes = page_.blocks[name];
        EXPECT_FALSE(bytes.empty()) << "no bytes under " << name;
        page_.blocks.erase(name);
        return bytes;
    }
    void expect_sample(const std::string &name, const DDS_TypeCode *type, const void *record) {
        for (const unsigned encapsulation :
             {KOLT_ENCAPSULATION_PL_CDR_LE, KOLT_ENCAPSULATION_PL_CDR2_LE}) {
            const bool first = encapsulation == KOLT_ENCAPSULATION_PL_CDR_LE;
            const std::string place = "Bytes of a " + name + (first ? "/XCDR1" : "/XCDR2");
            SCOPED_TRACE(place);
            const Bytes expected = block(place);
            const Programs programs(type);
            EXPECT_EQ(to_hex(support::serialize(programs, encapsulation, record)),
                      to_hex(expected));
            EXPECT_TRUE(reads(type, expected, record));
        }
        const auto &[xcdr1, xcdr2] = page_.sizes[name];
        const Programs programs(type);
        EXPECT_EQ(KOLT_Cdr_serialized_max_size(programs, KOLT_ENCAPSULATION_PL_CDR_LE), xcdr1);
        EXPECT_EQ(KOLT_Cdr_serialized_max_size(programs, KOLT_ENCAPSULATION_PL_CDR2_LE), xcdr2);
    }
    static bool reads(const DDS_TypeCode *type, const Bytes &bytes, const void *expected) {
        std::vector<std::max_align_t> memory(type->access->record_size / sizeof(std::max_align_t) +
                                             1);
        const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
        EXPECT_TRUE(KOLT_Record_initialize_w_params(type, memory.data(), &allocation));
        const Programs programs(type);
        const bool same =
            KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), memory.data()) != 0 &&
            KOLT_Record_equals(type, memory.data(), expected) != 0;
        KOLT_Record_finalize_w_params(type, memory.data(), &deallocation);
        return same;
    }
    void expect_keys() {
        const Programs programs(VUR_DL_LogMessage_get_typecode());
        EXPECT_EQ(
            to_hex(support::serialize_key(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, message_.get())),
            to_hex(block("Keys/Payload of a dispose in XCDR2")));
        EXPECT_EQ(
            to_hex(support::serialize_key(programs, KOLT_ENCAPSULATION_PL_CDR_LE, message_.get())),
            to_hex(block("Keys/Payload of a dispose in XCDR1")));
        Bytes key(64);
        std::size_t length = key.size();
        ASSERT_TRUE(KOLT_Cdr_key_of_record(programs, message_.get(), key.data(), &length));
        Bytes hash(16);
        KOLT_Cdr_keyhash(programs, key.data(), length, DDS_BOOLEAN_FALSE, hash.data());
        EXPECT_EQ(to_hex(hash), to_hex(block("Keys/Key hash")));
    }

    Page page_ = read_page();
    Record<VUR_DL_LogMessage> message_;
    Record<VUR_DL_ADMIN_State> state_;
    Record<VUR_DL_ADMIN_CommandRequest> request_;
    Record<VUR_DL_ADMIN_CommandResponse> response_;
};

TEST_F(WireFormat, ThePageShowsWhatIsWritten) {
    expect_sample("LogMessage", VUR_DL_LogMessage_get_typecode(), message_.get());
    expect_sample("State", VUR_DL_ADMIN_State_get_typecode(), state_.get());
    expect_sample("CommandRequest", VUR_DL_ADMIN_CommandRequest_get_typecode(), request_.get());
    expect_sample("CommandResponse", VUR_DL_ADMIN_CommandResponse_get_typecode(), response_.get());
    expect_keys();
    for (const auto &[name, bytes] : page_.blocks) {
        ADD_FAILURE() << "nothing checks " << name;
    }
}

}  // namespace
