// SPDX-License-Identifier: Apache-2.0
// Our descriptions of types against those that idlc makes: of the logger's types, and of types in
// which everything occurs that idlc and type codes have in common.

#include <gtest/gtest.h>
// Before the engine's headers, which define some of the C API's names as macros.
#include <kolt/type_object.h>
#include <vur_dl/distlog.h>
// The engine's.
#include <dds/dds.h>

#include <cstdio>
#include <string>
#include <vector>

#include "distlog_idlc.h"
#include "type_kinds.h"
#include "type_kinds_idlc.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes bytes_of(const dds_type_meta_ser &serialised) {
    return Bytes(serialised.data, serialised.data + serialised.sz);
}

class Octets {
  public:
    ~Octets() { DDS_OctetSeq_finalize(&seq_); }
    DDS_OctetSeq *get() { return &seq_; }
    Bytes bytes() const {
        const DDS_Octet *const buffer = DDS_OctetSeq_get_contiguous_buffer(&seq_);
        return Bytes(buffer, buffer + DDS_OctetSeq_get_length(&seq_));
    }

  private:
    DDS_OctetSeq seq_ = DDS_SEQUENCE_INITIALIZER;
};

void expect_equal(const DDS_TypeCode *type, const dds_topic_descriptor_t &descriptor) {
    Octets information;
    Octets mapping;
    ASSERT_EQ(
        KOLT_TypeObject_describe(type, descriptor.m_typename, information.get(), mapping.get()), 0);
    EXPECT_EQ(information.bytes(), bytes_of(descriptor.type_information));
    EXPECT_EQ(mapping.bytes(), bytes_of(descriptor.type_mapping));
}

// ---- The logger's types -------------------------------------------------------------------------

TEST(TypeInformation, LogMessageIsIdlcs) {
    expect_equal(VUR_DL_LogMessage_get_typecode(), com_vur_dl_LogMessage_desc);
}

TEST(TypeInformation, StateIsIdlcs) {
    expect_equal(VUR_DL_ADMIN_State_get_typecode(), com_vur_dl_admin_State_desc);
}

TEST(TypeInformation, CommandResponseIsIdlcs) {
    expect_equal(VUR_DL_ADMIN_CommandResponse_get_typecode(),
                 com_vur_dl_admin_CommandResponse_desc);
}

// The numbers are those of docs/wire-format.md.
TEST(TypeInformation, IdentifiersAndSizesOfTheWireFormat) {
    const struct {
        const DDS_TypeCode *type;
        const char *name;
        const char *minimal;
        std::size_t size;
    } types[] = {{VUR_DL_LogMessage_get_typecode(), "com::vur::dl::LogMessage",
                  "8ac3e1b2e329472a38de0413d23c", 148},
                 {VUR_DL_ADMIN_State_get_typecode(), "com::vur::dl::admin::State",
                  "b27419768e0ea1a6e2816f2408b1", 388},
                 {VUR_DL_ADMIN_CommandResponse_get_typecode(),
                  "com::vur::dl::admin::CommandResponse", "3a7bc0583c677ace6bcf1a0e50e3", 196}};
    for (const auto &[type, name, minimal, size] : types) {
        Octets information;
        Octets mapping;
        ASSERT_EQ(KOLT_TypeObject_describe(type, name, information.get(), mapping.get()), 0);
        const Bytes bytes = information.bytes();
        EXPECT_EQ(bytes.size(), size);
        // Behind five lengths and the kind of the identifier.
        std::string identifier;
        for (std::size_t i = 21; i < 35; ++i) {
            char digits[3];
            std::snprintf(digits, sizeof(digits), "%02x", bytes.at(i));
            identifier += digits;
        }
        EXPECT_EQ(identifier, minimal);
    }
}

TEST(TypeInformation, NestedTypesAreIdlcs) {
    expect_equal(VUR_DL_HostAndAppId_get_typecode(), com_vur_dl_HostAndAppId_desc);
    expect_equal(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode(),
                 com_vur_dl_admin_VURLoggerCategoryAndVerbosity_desc);
}

// ---- type_kinds_idlc.idl ------------------------------------------------------------------------

class Kinds : public ::testing::Test {
  protected:
    interop::TypeKinds kinds_;
};

TEST_F(Kinds, EverythingIsIdlcs) {
    expect_equal(kinds_.everything(), kinds_Everything_desc);
}

TEST_F(Kinds, FinalStructureIsIdlcs) {
    expect_equal(kinds_.plain(), kinds_Plain_desc);
}

TEST_F(Kinds, AppendableStructureIsIdlcs) {
    expect_equal(kinds_.growing(), kinds_Growing_desc);
}

TEST_F(Kinds, UnionIsIdlcs) {
    expect_equal(kinds_.top(), kinds_Top_desc);
}

// A type of a module, made of types of the module around it.
TEST_F(Kinds, ModulesAreIdlcs) {
    expect_equal(kinds_.deep(), kinds_inner_Deep_desc);
}

}  // namespace
