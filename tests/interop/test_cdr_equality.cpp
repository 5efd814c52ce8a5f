// SPDX-License-Identifier: Apache-2.0
// Our bytes against those of an independent encoder: the engine's own serialiser, driven by what
// idlc made of the same types. Random samples of each topic type in XCDR2, byte for byte, both
// ways, and their keys.

#include <gtest/gtest.h>
// Before the engine's headers, which define some of the C API's names as macros.
#include <vur_dl/distlogPlugin.h>
// The engine's.
#include <dds/dds.h>
#include <dds/ddsi/ddsi_keyhash.h>
#include <dds/ddsi/ddsi_serdata.h>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "cdr_equality_types.h"
#include "support/types/coverage.h"

namespace {

using equality::CommandRequest;
using equality::CommandResponse;
using equality::LogMessage;
using equality::State;
using support::Coverage;

constexpr int kDomain = 40;
constexpr int kSampleCount = 10000;

using Bytes = std::vector<unsigned char>;

// ---- The engine's side ------------------------------------------------------------------------

struct SerdataDeleter {
    void operator()(ddsi_serdata *data) const { ddsi_serdata_unref(data); }
};
using Serdata = std::unique_ptr<ddsi_serdata, SerdataDeleter>;

// The engine's serialiser of one topic type. The engine makes its type object with a writer; a
// sample that goes to a reader in the same process brings it here.
class EngineType {
  public:
    EngineType(const dds_topic_descriptor_t &descriptor, const void *sample)
        : participant_(dds_create_participant(kDomain, nullptr, nullptr)) {
        dds_qos_t *const qos = dds_create_qos();
        const dds_data_representation_id_t xcdr2 = DDS_DATA_REPRESENTATION_XCDR2;
        dds_qset_data_representation(qos, 1, &xcdr2);
        dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
        const dds_entity_t topic =
            dds_create_topic(participant_, &descriptor, "equality", qos, nullptr);
        const dds_entity_t reader = dds_create_reader(participant_, topic, qos, nullptr);
        const dds_entity_t writer = dds_create_writer(participant_, topic, qos, nullptr);
        dds_delete_qos(qos);
        ddsi_serdata *taken = nullptr;
        dds_sample_info_t info = {};
        // Delivery within a process is done when the write returns.
        if (dds_write(writer, sample) == 0 &&
            dds_takecdr(reader, &taken, 1, &info, DDS_ANY_STATE) == 1) {
            first_.reset(taken);
        }
    }
    ~EngineType() {
        first_.reset();
        dds_delete(participant_);
    }
    EngineType(const EngineType &) = delete;
    EngineType &operator=(const EngineType &) = delete;

    bool is_usable() const { return first_ != nullptr; }

    Serdata make(const void *sample) const {
        return Serdata(ddsi_serdata_from_sample(first_->type, SDK_DATA, sample));
    }
    Serdata make_key(const void *sample) const {
        return Serdata(ddsi_serdata_from_sample(first_->type, SDK_KEY, sample));
    }
    Serdata make(const Bytes &bytes) const {
        Bytes copy = bytes;
        copy.resize((copy.size() + 3) / 4 * 4);  // what RTPS carries
        ddsrt_iovec_t vector = {};
        vector.iov_base = copy.data();
        vector.iov_len = copy.size();
        return Serdata(ddsi_serdata_from_ser_iov(first_->type, SDK_DATA, 1, &vector, copy.size()));
    }
    static Bytes bytes_of(const Serdata &data) {
        Bytes bytes(ddsi_serdata_size(data.get()));
        ddsi_serdata_to_ser(data.get(), 0, bytes.size(), bytes.data());
        return bytes;
    }

  private:
    dds_entity_t participant_;
    Serdata first_;
};

// ---- The comparisons --------------------------------------------------------------------------

template <typename Type>
class CdrEquality : public testing::Test {
  public:
    using Ours = typename Type::Ours;
    using Theirs = typename Type::Theirs;

    CdrEquality() {
        EXPECT_TRUE(Type::kInitialize(&ours_));
        EXPECT_TRUE(Type::kInitialize(&read_));
        type_.convert(theirs_, ours_);
        engine_ = std::make_unique<EngineType>(Type::kDescriptor, &theirs_);
    }
    ~CdrEquality() override {
        Type::kFinalize(&ours_);
        Type::kFinalize(&read_);
    }
    void SetUp() override { ASSERT_TRUE(engine_->is_usable()); }

    void next() {
        Type::fill(ours_, random_);
        type_.convert(theirs_, ours_);
    }
    Bytes our_bytes() const {
        DDS_UnsignedLong length = 0;
        EXPECT_TRUE(Type::kSerialize(nullptr, &length, &ours_, DDS_XCDR2_DATA_REPRESENTATION));
        Bytes bytes(length);
        EXPECT_TRUE(Type::kSerialize(reinterpret_cast<char *>(bytes.data()), &length, &ours_,
                                     DDS_XCDR2_DATA_REPRESENTATION));
        EXPECT_EQ(bytes.size(), length);
        return bytes;
    }
    Bytes our_swapped_bytes() const {
        const KOLT_TypePrograms *const programs = KOLT_TypePrograms_acquire(Type::kCode());
        const auto encapsulation = static_cast<DDS_UnsignedShort>(
            DDS_TypeCode_get_native_encapsulation(Type::kCode(), DDS_XCDR2_DATA_REPRESENTATION) ^
            1U);
        Bytes bytes(KOLT_Cdr_serialized_size(programs, encapsulation, &ours_));
        std::size_t length = 0;
        EXPECT_TRUE(KOLT_Cdr_serialize(programs, encapsulation, &ours_, bytes.data(), bytes.size(),
                                       &length));
        KOLT_TypePrograms_release(programs);
        return bytes;
    }
    // Returns the bytes that the engine writes for the sample that it has read.
    Bytes written_again(const Serdata &data) {
        auto *const sample = static_cast<Theirs *>(dds_alloc(sizeof(Theirs)));
        EXPECT_TRUE(ddsi_serdata_to_sample(data.get(), sample, nullptr, nullptr));
        Bytes again = EngineType::bytes_of(engine_->make(sample));
        dds_sample_free(sample, &Type::kDescriptor, DDS_FREE_ALL);
        return again;
    }
    // Fills the bytes up as RTPS does, to a multiple of four; the header counts the filling.
    static Bytes padded(Bytes bytes) {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        return bytes;
    }

    equality::Random random_{20260101};
    Type type_;
    Ours ours_ = {};
    Ours read_ = {};
    Theirs theirs_ = {};
    std::unique_ptr<EngineType> engine_;
};

using TopicTypes = testing::Types<LogMessage, State, CommandRequest, CommandResponse>;
TYPED_TEST_SUITE(CdrEquality, TopicTypes);

// The samples have everything in them that a sample can have.
TYPED_TEST(CdrEquality, SamplesReachEveryValue) {
    Coverage coverage;
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        coverage.add(*TypeParam::kCode(), &this->ours_, "");
    }
    coverage.expect_all(*TypeParam::kCode(), "");
}

TYPED_TEST(CdrEquality, SerialisesToTheSameBytes) {
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        const Serdata data = this->engine_->make(&this->theirs_);
        ASSERT_NE(data, nullptr);
        ASSERT_EQ(this->padded(this->our_bytes()), EngineType::bytes_of(data)) << "sample " << i;
    }
}

TYPED_TEST(CdrEquality, ReadsWhatTheOtherWrites) {
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        const Bytes bytes = EngineType::bytes_of(this->engine_->make(&this->theirs_));
        ASSERT_TRUE(TypeParam::kDeserialize(&this->read_,
                                            reinterpret_cast<const char *>(bytes.data()),
                                            static_cast<DDS_UnsignedLong>(bytes.size())))
            << "sample " << i;
        ASSERT_TRUE(KOLT_Record_equals(TypeParam::kCode(), &this->ours_, &this->read_))
            << "sample " << i;
    }
}

// The engine's reader is strict: what it takes, it gives back as the same bytes.
template <typename Test>
void expect_read_by_the_other(Test *test, const Bytes &bytes) {
    const Serdata data = test->engine_->make(bytes);
    ASSERT_NE(data, nullptr);
    const Bytes again = test->written_again(data);
    ASSERT_EQ(again, EngineType::bytes_of(test->engine_->make(&test->theirs_)));
}

TYPED_TEST(CdrEquality, WritesWhatTheOtherReads) {
    for (int i = 0; i < kSampleCount; ++i) {
        SCOPED_TRACE(i);
        this->next();
        ASSERT_NO_FATAL_FAILURE(expect_read_by_the_other(this, this->our_bytes()));
    }
}

// The other byte order comes from machines that this one can't ask: the engine reads it all the
// same.
TYPED_TEST(CdrEquality, WritesTheOtherByteOrder) {
    for (int i = 0; i < kSampleCount; ++i) {
        SCOPED_TRACE(i);
        this->next();
        ASSERT_NO_FATAL_FAILURE(expect_read_by_the_other(this, this->our_swapped_bytes()));
    }
}

template <typename Type>
class CdrKeyEquality : public CdrEquality<Type> {};
using KeyedTypes = testing::Types<LogMessage, State, CommandResponse>;
TYPED_TEST_SUITE(CdrKeyEquality, KeyedTypes);

TYPED_TEST(CdrKeyEquality, KeyHashesAreTheSame) {
    const KOLT_TypePrograms *const programs = TypeParam::kPrograms();
    ASSERT_NE(programs, nullptr);
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        for (const bool force_md5 : {false, true}) {
            ddsi_keyhash_t expected = {};
            ddsi_serdata_get_keyhash(this->engine_->make(&this->theirs_).get(), &expected,
                                     force_md5);
            std::array<DDS_Octet, 64> key = {};
            std::size_t length = key.size();
            ASSERT_TRUE(KOLT_Cdr_key_of_record(programs, &this->ours_, key.data(), &length));
            std::array<DDS_Octet, 16> hash = {};
            KOLT_Cdr_keyhash(programs, key.data(), length, force_md5, hash.data());
            ASSERT_EQ(std::memcmp(hash.data(), expected.value, hash.size()), 0)
                << "sample " << i << ", MD5 " << force_md5;
        }
    }
}

// Keys are read as the engine's disposes and unregisters carry them.
TYPED_TEST(CdrKeyEquality, ReadsTheKeysThatTheOtherWrites) {
    const KOLT_TypePrograms *const programs = TypeParam::kPrograms();
    ASSERT_NE(programs, nullptr);
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        const Bytes bytes = EngineType::bytes_of(this->engine_->make_key(&this->theirs_));
        std::array<DDS_Octet, 64> key = {};
        std::array<DDS_Octet, 64> expected = {};
        std::size_t length = key.size();
        std::size_t expected_length = expected.size();
        ASSERT_TRUE(KOLT_Cdr_key_of_serialized(programs, bytes.data(), bytes.size(),
                                               DDS_BOOLEAN_TRUE, key.data(), &length))
            << "sample " << i;
        ASSERT_TRUE(
            KOLT_Cdr_key_of_record(programs, &this->ours_, expected.data(), &expected_length));
        ASSERT_EQ(length, expected_length);
        ASSERT_EQ(key, expected) << "sample " << i;
    }
}

TYPED_TEST(CdrKeyEquality, KeyPayloadsAreTheSame) {
    const KOLT_TypePrograms *const programs = TypeParam::kPrograms();
    ASSERT_NE(programs, nullptr);
    const DDS_UnsignedShort encapsulation =
        DDS_TypeCode_get_native_encapsulation(TypeParam::kCode(), DDS_XCDR2_DATA_REPRESENTATION);
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        Bytes bytes(256);
        std::size_t length = 0;
        ASSERT_TRUE(KOLT_Cdr_serialize_key(programs, encapsulation, &this->ours_, bytes.data(),
                                           bytes.size(), &length));
        bytes.resize(length);
        ASSERT_EQ(this->padded(bytes),
                  EngineType::bytes_of(this->engine_->make_key(&this->theirs_)))
            << "sample " << i;
    }
}

}  // namespace
