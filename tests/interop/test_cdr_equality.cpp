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
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "distlog_idlc.h"

namespace {

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

    bool isUsable() const { return first_ != nullptr; }

    Serdata make(const void *sample) const {
        return Serdata(ddsi_serdata_from_sample(first_->type, SDK_DATA, sample));
    }
    Serdata makeKey(const void *sample) const {
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
    static Bytes bytesOf(const Serdata &data) {
        Bytes bytes(ddsi_serdata_size(data.get()));
        ddsi_serdata_to_ser(data.get(), 0, bytes.size(), bytes.data());
        return bytes;
    }

  private:
    dds_entity_t participant_;
    Serdata first_;
};

// ---- Random values ----------------------------------------------------------------------------

class Random {
  public:
    explicit Random(unsigned seed) : generator_(seed) {}

    DDS_Long number() { return static_cast<DDS_Long>(generator_()); }
    DDS_LongLong wide() {
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
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity categoryAndVerbosity() {
        return {enumerator<VUR_DL_ADMIN_VURLoggerCategory>(5),
                enumerator<VUR_DL_ADMIN_VURLoggerVerbosity>(6)};
    }

  private:
    std::mt19937 generator_;
};

// ---- The types, side by side
// ---------------------------------------------------------------------

void convert(com_vur_dl_HostAndAppId &to, const VUR_DL_HostAndAppId &from) {
    to = {from.rtps_host_id, from.rtps_app_id};
}
void convert(com_vur_dl_admin_VURLoggerCategoryAndVerbosity &to,
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
        ::convert(to.hostAndAppId, from.hostAndAppId);
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
            element = random.categoryAndVerbosity();
        }
        record.vurLoggerPrintFormat = random.enumerator<VUR_DL_ADMIN_VURLoggerPrintFormat>(7);
    }
    void convert(Theirs &to, const Ours &from) {
        ::convert(to.hostAndAppId, from.hostAndAppId);
        to.administrationDomainId = from.administrationDomainId;
        to.state = static_cast<com_vur_dl_admin_StateKind>(from.state);
        std::strcpy(to.applicationKind, from.applicationKind);
        to.filterLevel = from.filterLevel;
        for (size_t i = 0; i < std::size(to.vurLoggerVerbosities); ++i) {
            ::convert(to.vurLoggerVerbosities[i], from.vurLoggerVerbosities[i]);
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
                random.categoryAndVerbosity();
        }
        record.command._u.printFormat = random.enumerator<VUR_DL_ADMIN_VURLoggerPrintFormat>(7);
    }
    void convert(Theirs &to, const Ours &from) {
        ::convert(to.targetHostAndAppId, from.targetHostAndAppId);
        ::convert(to.originatorHostAndAppId, from.originatorHostAndAppId);
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
            convertSequence(command._u.categoryAndVerbosity);
            to.command.categoryAndVerbosity = &sequence_;
        }
    }

  private:
    void convertSequence(const VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq &from) {
        sequence_ = {};
        sequence_._maximum = static_cast<uint32_t>(elements_.size());
        sequence_._length = from._length;
        sequence_._buffer = elements_.data();
        for (DDS_UnsignedLong i = 0; i < from._length; ++i) {
            ::convert(elements_[i], from._contiguous_buffer[i]);
        }
    }

    std::array<com_vur_dl_admin_VURLoggerCategoryAndVerbosity, 5> elements_ = {};
    dds_sequence_com_vur_dl_admin_VURLoggerCategoryAndVerbosity sequence_ = {};
    int32_t filter_level_ = 0;
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
        ::convert(to.hostAndAppId, from.hostAndAppId);
        ::convert(to.originatorHostAndAppId, from.originatorHostAndAppId);
        to.invocation = from.invocation;
        to.commandResult = static_cast<com_vur_dl_admin_CommandResult>(from.commandResult);
        std::strcpy(to.message, from.message);
    }
};

// ---- The comparisons --------------------------------------------------------------------------

template <typename Type>
class CdrEquality : public testing::Test {
  protected:
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
    void SetUp() override { ASSERT_TRUE(engine_->isUsable()); }

    void next() {
        Type::fill(ours_, random_);
        type_.convert(theirs_, ours_);
    }
    Bytes ourBytes() const {
        DDS_UnsignedLong length = 0;
        EXPECT_TRUE(Type::kSerialize(nullptr, &length, &ours_, DDS_XCDR2_DATA_REPRESENTATION));
        Bytes bytes(length);
        EXPECT_TRUE(Type::kSerialize(reinterpret_cast<char *>(bytes.data()), &length, &ours_,
                                     DDS_XCDR2_DATA_REPRESENTATION));
        EXPECT_EQ(bytes.size(), length);
        return bytes;
    }
    // What RTPS carries is a multiple of four bytes; the header counts those that fill it up.
    static Bytes padded(Bytes bytes) {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        return bytes;
    }

    Random random_{20260101};
    Type type_;
    Ours ours_ = {};
    Ours read_ = {};
    Theirs theirs_ = {};
    std::unique_ptr<EngineType> engine_;
};

using TopicTypes = testing::Types<LogMessage, State, CommandRequest, CommandResponse>;
TYPED_TEST_SUITE(CdrEquality, TopicTypes);

TYPED_TEST(CdrEquality, SerialisesToTheSameBytes) {
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        const Serdata data = this->engine_->make(&this->theirs_);
        ASSERT_NE(data, nullptr);
        ASSERT_EQ(this->padded(this->ourBytes()), EngineType::bytesOf(data)) << "sample " << i;
    }
}

TYPED_TEST(CdrEquality, ReadsWhatTheOtherWrites) {
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        const Bytes bytes = EngineType::bytesOf(this->engine_->make(&this->theirs_));
        ASSERT_TRUE(TypeParam::kDeserialize(&this->read_,
                                            reinterpret_cast<const char *>(bytes.data()),
                                            static_cast<DDS_UnsignedLong>(bytes.size())))
            << "sample " << i;
        ASSERT_TRUE(KOLT_Record_equals(TypeParam::kCode(), &this->ours_, &this->read_))
            << "sample " << i;
    }
}

// The engine's reader is strict: what it takes, it gives back as the same bytes.
TYPED_TEST(CdrEquality, WritesWhatTheOtherReads) {
    for (int i = 0; i < kSampleCount; ++i) {
        this->next();
        const Serdata data = this->engine_->make(this->ourBytes());
        ASSERT_NE(data, nullptr) << "sample " << i;
        auto *const sample = static_cast<typename TypeParam::Theirs *>(
            dds_alloc(sizeof(typename TypeParam::Theirs)));
        ASSERT_TRUE(ddsi_serdata_to_sample(data.get(), sample, nullptr, nullptr));
        const Bytes again = EngineType::bytesOf(this->engine_->make(sample));
        dds_sample_free(sample, &TypeParam::kDescriptor, DDS_FREE_ALL);
        ASSERT_EQ(again, EngineType::bytesOf(this->engine_->make(&this->theirs_)))
            << "sample " << i;
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
            size_t length = key.size();
            ASSERT_TRUE(KOLT_Cdr_key_of_record(programs, &this->ours_, key.data(), &length));
            std::array<DDS_Octet, 16> hash = {};
            KOLT_Cdr_keyhash(programs, key.data(), length, force_md5, hash.data());
            ASSERT_EQ(std::memcmp(hash.data(), expected.value, hash.size()), 0)
                << "sample " << i << ", MD5 " << force_md5;
        }
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
        size_t length = 0;
        ASSERT_TRUE(KOLT_Cdr_serialize_key(programs, encapsulation, &this->ours_, bytes.data(),
                                           bytes.size(), &length));
        bytes.resize(length);
        ASSERT_EQ(this->padded(bytes), EngineType::bytesOf(this->engine_->makeKey(&this->theirs_)))
            << "sample " << i;
    }
}

}  // namespace
