// The checks on the bytes of samples.
#include "support/cdr/cdr_checks.h"

#include <kolt/cdr.h>
#include <kolt/print_format.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace support {
namespace {

// Fields of one sample that are looked at one by one.
constexpr unsigned kMaximumFields = 64;
constexpr std::size_t kMaximumKey = 4096;

void require(bool condition, const char *what, int line) {
    if (condition) {
        return;
    }
    std::fprintf(stderr, "cdr_checks.cpp:%d: %s\n", line, what);
    std::abort();
}
#define REQUIRE(condition) require(static_cast<bool>(condition), #condition, __LINE__)

// A reference on the programs of a type, for a scope.
class ProgramsOf {
  public:
    explicit ProgramsOf(const DDS_TypeCode *type) : programs_(KOLT_TypePrograms_acquire(type)) {
        REQUIRE(programs_ != nullptr);
    }
    ~ProgramsOf() { KOLT_TypePrograms_release(programs_); }
    ProgramsOf(const ProgramsOf &) = delete;
    ProgramsOf &operator=(const ProgramsOf &) = delete;
    operator const KOLT_TypePrograms *() const { return programs_; }

  private:
    const KOLT_TypePrograms *programs_;
};

// An initialised record of any type.
class AnyRecord {
  public:
    explicit AnyRecord(const DDS_TypeCode *type)
        : type_(type), memory_(std::calloc(1, type->access->record_size)) {
        const DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        REQUIRE(memory_ != nullptr && KOLT_Record_initialize_w_params(type, memory_, &params));
    }
    ~AnyRecord() {
        const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
        KOLT_Record_finalize_w_params(type_, memory_, &params);
        std::free(memory_);
    }
    AnyRecord(const AnyRecord &) = delete;
    AnyRecord &operator=(const AnyRecord &) = delete;
    void *get() { return memory_; }

  private:
    const DDS_TypeCode *type_;
    void *memory_;
};

class Value {
  public:
    explicit Value(const DDS_TypeCode *type) : data_(DDS_DynamicData_new(type, nullptr)) {
        REQUIRE(data_ != nullptr);
    }
    ~Value() { DDS_DynamicData_delete(data_); }
    Value(const Value &) = delete;
    Value &operator=(const Value &) = delete;
    operator DDS_DynamicData *() const { return data_; }

  private:
    DDS_DynamicData *data_;
};

// Every field of a type by its name for dynamic data and by its steps for the serialised sample.
class FieldWalk {
  public:
    virtual ~FieldWalk() = default;

  protected:
    static constexpr DDS_UnsignedLong kAllBranches = UINT32_MAX;

    explicit FieldWalk(DDS_DynamicData *data) : data_(data) {}

    // A primitive, enumeration or string.
    virtual void Leaf(const DDS_TypeCode &type) = 0;
    // The one branch of a union to walk, or kAllBranches.
    virtual DDS_UnsignedLong Branch(const DDS_TypeCode &) { return kAllBranches; }
    virtual bool EnterOptional() { return true; }
    virtual DDS_UnsignedLong SequenceLength(const DDS_TypeCode &type) = 0;

    void Walk(const DDS_TypeCode &type) {
        if (fields_ == kMaximumFields) {
            return;
        }
        switch (type.kind) {
            case DDS_TK_STRUCT:
            case DDS_TK_UNION:
                WalkMembers(type);
                break;
            case DDS_TK_ARRAY:
                WalkArray(type);
                break;
            case DDS_TK_SEQUENCE: {
                const DDS_UnsignedLong length = SequenceLength(type);
                for (DDS_UnsignedLong i = 0; i < length; ++i) {
                    Into(*type.content_type, "[" + std::to_string(i) + "]", {1, i});
                }
                break;
            }
            default:
                ++fields_;
                Leaf(type);
                break;
        }
    }

    DDS_DynamicData *data_;
    std::string name_;
    std::vector<KOLT_CdrPathStep> path_;

  private:
    void Into(const DDS_TypeCode &type, const std::string &suffix, KOLT_CdrPathStep step) {
        const std::size_t length = name_.size();
        name_ += suffix;
        path_.push_back(step);
        Walk(type);
        path_.pop_back();
        name_.resize(length);
    }

    void WalkMembers(const DDS_TypeCode &type) {
        const DDS_UnsignedLong branch = type.kind == DDS_TK_UNION ? Branch(type) : kAllBranches;
        for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
            const DDS_TypeCodeMember &member = type.members[i];
            if (branch != kAllBranches && branch != i) {
                continue;
            }
            if (member.is_optional && !EnterOptional()) {
                continue;
            }
            Into(*member.type, (name_.empty() ? "" : ".") + std::string(member.name), {0, i});
        }
    }

    void WalkArray(const DDS_TypeCode &type) {
        DDS_UnsignedLong count = 1;
        for (DDS_UnsignedLong i = 0; i < type.dimension_count; ++i) {
            count *= type.dimensions[i];
        }
        for (DDS_UnsignedLong flat = 0; flat < count; ++flat) {
            std::string indexes;
            DDS_UnsignedLong rest = flat;
            for (DDS_UnsignedLong i = type.dimension_count; i-- > 0;) {
                indexes = "[" + std::to_string(rest % type.dimensions[i]) + "]" + indexes;
                rest /= type.dimensions[i];
            }
            Into(*type.content_type, indexes, {1, flat});
        }
    }

    unsigned fields_ = 0;
};

// Compares what is found in the bytes with the value that was read from them.
class FindFields : FieldWalk {
  public:
    FindFields(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
               DDS_DynamicData *data)
        : FieldWalk(data), programs_(programs), bytes_(bytes), size_(size) {}

    void Run() { Walk(*KOLT_TypePrograms_type(programs_)); }

  private:
    DDS_UnsignedLong SequenceLength(const DDS_TypeCode &type) override {
        DDS_UnsignedLong length = 0;
        if (DDS_DynamicData_get_length(data_, &length, name_.c_str(), DDS_MEMBER_ID_INVALID) !=
            DDS_RETCODE_OK) {
            length = 0;
        }
        if (type.content_type->kind <= DDS_TK_STRING) {  // one past the end
            path_.push_back({1, length});
            KOLT_CdrValue found;
            REQUIRE(Find(&found));
            REQUIRE(found.kind == DDS_TK_NULL);
            path_.pop_back();
        }
        return length;
    }

    bool Find(KOLT_CdrValue *found) {
        return KOLT_Cdr_find_field(programs_, bytes_, size_, path_.data(), path_.size(), found) !=
               0;
    }

    void Leaf(const DDS_TypeCode &type) override {
        KOLT_CdrValue found;
        REQUIRE(Find(&found));
        const DDS_Boolean there =
            DDS_DynamicData_member_exists(data_, name_.c_str(), DDS_MEMBER_ID_INVALID);
        if (!there) {
            REQUIRE(found.kind == DDS_TK_NULL);
            return;
        }
        REQUIRE(found.kind == type.kind);
        if (type.kind == DDS_TK_STRING) {
            SameString(found);
        } else if (type.kind == DDS_TK_FLOAT || type.kind == DDS_TK_DOUBLE) {
            DDS_Double real = 0;
            REQUIRE(DDS_DynamicData_get_double(data_, &real, name_.c_str(),
                                               DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
            REQUIRE(std::memcmp(&real, &found.value.real, sizeof(real)) == 0);
        } else if (type.kind == DDS_TK_ULONGLONG) {
            DDS_UnsignedLongLong number = 0;
            REQUIRE(DDS_DynamicData_get_ulonglong(data_, &number, name_.c_str(),
                                                  DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
            REQUIRE(number == found.value.unsigned_integer);
        } else {
            DDS_LongLong number = 0;
            REQUIRE(DDS_DynamicData_get_longlong(data_, &number, name_.c_str(),
                                                 DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
            REQUIRE(number == found.value.integer);
        }
    }

    void SameString(const KOLT_CdrValue &found) {
        DDS_Char *text = nullptr;
        REQUIRE(DDS_DynamicData_get_string(data_, &text, nullptr, name_.c_str(),
                                           DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
        REQUIRE(found.value.string.length == std::strlen(text));
        REQUIRE(std::memcmp(found.value.string.characters, text, found.value.string.length) == 0);
        DDS_String_free(text);
    }

    const KOLT_TypePrograms *programs_;
    const std::uint8_t *bytes_;
    std::size_t size_;
};

// Looks for every field in bytes that can't be read as a whole, to no harm.
class SearchMalformed : FieldWalk {
  public:
    SearchMalformed(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                    DDS_DynamicData *data)
        : FieldWalk(data), programs_(programs), bytes_(bytes), size_(size) {}

    void Run() { Walk(*KOLT_TypePrograms_type(programs_)); }

  private:
    DDS_UnsignedLong SequenceLength(const DDS_TypeCode &) override { return 2; }

    void Leaf(const DDS_TypeCode &) override {
        KOLT_CdrValue found;
        if (!KOLT_Cdr_find_field(programs_, bytes_, size_, path_.data(), path_.size(), &found)) {
            return;
        }
        if (found.kind != DDS_TK_STRING) {
            return;
        }
        std::string copy(found.value.string.characters, found.value.string.length);
        REQUIRE(copy.size() == found.value.string.length);
    }

    const KOLT_TypePrograms *programs_;
    const std::uint8_t *bytes_;
    std::size_t size_;
};

// Sets every field that the decisions don't leave out.
class FillFields : FieldWalk {
  public:
    FillFields(DDS_DynamicData *data, Decisions *decisions)
        : FieldWalk(data), decisions_(*decisions) {}

    void Run() { Walk(*DDS_DynamicData_get_type(data_)); }

  private:
    DDS_UnsignedLong Branch(const DDS_TypeCode &type) override {
        const DDS_UnsignedLong branch = decisions_.Below(type.member_count + 1);
        if (branch == type.member_count) {
            SelectNothing(type);
        }
        return branch;
    }

    // Where the type has such a value, a discriminator without a branch.
    void SelectNothing(const DDS_TypeCode &type) {
        const std::string name = name_.empty() ? "_d" : name_ + "._d";
        const DDS_ReturnCode_t result = DDS_DynamicData_set_longlong(
            data_, name.c_str(), DDS_MEMBER_ID_INVALID, DDS_LongLong{100});
        const DDS_TCKind kind = type.discriminator_type->kind;
        const bool fits = kind != DDS_TK_ENUM && kind != DDS_TK_BOOLEAN;
        REQUIRE((result == DDS_RETCODE_OK) == fits);
    }

    bool EnterOptional() override { return decisions_.Below(3) != 2; }

    DDS_UnsignedLong SequenceLength(const DDS_TypeCode &type) override {
        const DDS_UnsignedLong length =
            decisions_.Below(type.bound == 0 ? 4 : (type.bound < 200 ? type.bound + 1 : 8));
        REQUIRE(DDS_DynamicData_set_length(data_, length, name_.c_str(), DDS_MEMBER_ID_INVALID) ==
                DDS_RETCODE_OK);
        if (type.bound > 0) {
            REQUIRE(DDS_DynamicData_set_length(data_, type.bound + 1, name_.c_str(),
                                               DDS_MEMBER_ID_INVALID) == DDS_RETCODE_BAD_PARAMETER);
        }
        return length;
    }

    void Leaf(const DDS_TypeCode &type) override {
        const char *const name = name_.c_str();
        switch (type.kind) {
            case DDS_TK_STRING:
                SetString(type);
                break;
            case DDS_TK_FLOAT: {
                const auto value = static_cast<DDS_Float>(decisions_.Byte()) / 8;
                REQUIRE(DDS_DynamicData_set_float(data_, name, DDS_MEMBER_ID_INVALID, value) ==
                        DDS_RETCODE_OK);
                break;
            }
            case DDS_TK_DOUBLE: {
                const auto value = static_cast<DDS_Double>(decisions_.Word()) / 3;
                REQUIRE(DDS_DynamicData_set_double(data_, name, DDS_MEMBER_ID_INVALID, value) ==
                        DDS_RETCODE_OK);
                break;
            }
            case DDS_TK_ULONGLONG:
                REQUIRE(DDS_DynamicData_set_ulonglong(data_, name, DDS_MEMBER_ID_INVALID,
                                                      decisions_.Word()) == DDS_RETCODE_OK);
                break;
            default: {
                const DDS_LongLong value = Integer(type);
                REQUIRE(DDS_DynamicData_set_longlong(data_, name, DDS_MEMBER_ID_INVALID, value) ==
                        DDS_RETCODE_OK);
                DDS_LongLong read = 0;
                REQUIRE(DDS_DynamicData_get_longlong(data_, &read, name, DDS_MEMBER_ID_INVALID) ==
                        DDS_RETCODE_OK);
                REQUIRE(read == value);
                break;
            }
        }
    }

    DDS_LongLong Integer(const DDS_TypeCode &type) {
        switch (type.kind) {
            case DDS_TK_BOOLEAN:
                return decisions_.Below(2);
            case DDS_TK_CHAR:
                return static_cast<std::int8_t>(decisions_.Byte());
            case DDS_TK_OCTET:
                return decisions_.Byte();
            case DDS_TK_SHORT:
                return static_cast<std::int16_t>(decisions_.Word());
            case DDS_TK_USHORT:
                return static_cast<std::uint16_t>(decisions_.Word());
            case DDS_TK_LONG:
                return static_cast<std::int32_t>(decisions_.Word());
            case DDS_TK_ULONG:
                return static_cast<std::uint32_t>(decisions_.Word());
            case DDS_TK_ENUM:
                return type.members[decisions_.Below(type.member_count)].ordinal;
            default:
                return static_cast<DDS_LongLong>(decisions_.Word());
        }
    }

    void SetString(const DDS_TypeCode &type) {
        std::string text(decisions_.Below(type.bound == 0 ? 20 : type.bound % 256 + 1), '\0');
        for (char &character : text) {
            const std::uint8_t byte = decisions_.Byte();
            character = static_cast<char>(byte == 0 ? 'a' : byte);
        }
        REQUIRE(DDS_DynamicData_set_string(data_, name_.c_str(), DDS_MEMBER_ID_INVALID,
                                           text.c_str()) == DDS_RETCODE_OK);
        DDS_UnsignedLong length = 0;
        REQUIRE(DDS_DynamicData_get_length(data_, &length, name_.c_str(), DDS_MEMBER_ID_INVALID) ==
                DDS_RETCODE_OK);
        REQUIRE(length == text.size());
    }

    Decisions &decisions_;
};

const DDS_Char *as_chars(const std::uint8_t *bytes) {
    return reinterpret_cast<const DDS_Char *>(bytes);
}

// Written in every encapsulation and read again, the record is the same.
void check_round_trip(const KOLT_TypePrograms *programs, const void *record) {
    const DDS_TypeCode *const type = KOLT_TypePrograms_type(programs);
    AnyRecord again(type);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const DDS_UnsignedLong size = KOLT_Cdr_serialized_size(programs, encapsulation, record);
        REQUIRE(size >= KOLT_Cdr_serialized_min_size(programs, encapsulation));
        REQUIRE(size <= KOLT_Cdr_serialized_max_size(programs, encapsulation));
        std::vector<DDS_Octet> bytes(size);
        std::size_t length = 0;
        REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size, &length) !=
                0);
        REQUIRE(length == size);
        REQUIRE(
            !KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size - 1, &length));
        REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size, &length));
        REQUIRE(KOLT_Cdr_deserialize(programs, bytes.data(), size, again.get()));
        REQUIRE(KOLT_Record_equals(type, record, again.get()));
    }
}

// How a type, or the key in it, stands on the wire.
struct KeyShape {
    bool is_framed = false;  // there is more than plain members
    bool varies = false;     // in size
};

void add_shape(const DDS_TypeCode &type, KeyShape *shape) {
    const bool structured = type.kind == DDS_TK_STRUCT || type.kind == DDS_TK_UNION;
    if (structured && type.extensibility != DDS_FINAL_EXTENSIBILITY) {
        shape->is_framed = true;
    }
    if (type.kind == DDS_TK_STRING || type.kind == DDS_TK_SEQUENCE || type.kind == DDS_TK_UNION) {
        shape->varies = true;
    }
    if (type.content_type != nullptr) {
        add_shape(*type.content_type, shape);
    }
    for (DDS_UnsignedLong i = 0; structured && i < type.member_count; ++i) {
        if (type.members[i].is_optional) {
            shape->varies = true;
        }
        add_shape(*type.members[i].type, shape);
    }
}

// An XCDR2 key is written plain, and read in the frames of its type as well. A plain one of another
// size than the framed ones can't pass for one of them; the rest may, by its content.
bool may_be_taken_for_framed(const DDS_TypeCode &type, DDS_UnsignedShort encapsulation) {
    KeyShape shape;
    shape.is_framed = type.extensibility != DDS_FINAL_EXTENSIBILITY;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].is_key) {
            add_shape(*type.members[i].type, &shape);
        }
    }
    return encapsulation >= KOLT_ENCAPSULATION_CDR2_BE && shape.is_framed && shape.varies;
}

// Every way to the key of a sample leads to the same key.
void check_keys(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                const void *record) {
    const DDS_TypeCode *const type = KOLT_TypePrograms_type(programs);
    std::vector<DDS_Octet> expected(kMaximumKey);
    std::size_t length = expected.size();
    if (!KOLT_Cdr_key_of_record(programs, record, expected.data(), &length)) {
        REQUIRE(length > kMaximumKey);
        return;
    }
    REQUIRE(length <= KOLT_Cdr_key_max_size(programs));
    expected.resize(length);
    std::vector<DDS_Octet> key(kMaximumKey);
    const auto same = [&](const std::uint8_t *from, std::size_t from_size, DDS_Boolean key_only) {
        std::size_t key_length = key.size();
        REQUIRE(KOLT_Cdr_key_of_serialized(programs, from, from_size, key_only, key.data(),
                                           &key_length));
        REQUIRE(key_length == length);
        REQUIRE(length == 0 || std::memcmp(key.data(), expected.data(), length) == 0);
    };
    same(bytes, size, DDS_BOOLEAN_FALSE);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const DDS_UnsignedLong key_size =
            KOLT_Cdr_serialized_key_size(programs, encapsulation, record);
        std::vector<DDS_Octet> payload(key_size);
        std::size_t written = 0;
        REQUIRE(KOLT_Cdr_serialize_key(programs, encapsulation, record, payload.data(), key_size,
                                       &written));
        REQUIRE(written == key_size);
        if (may_be_taken_for_framed(*type, encapsulation)) {
            continue;
        }
        same(payload.data(), key_size, DDS_BOOLEAN_TRUE);
    }
}

// The text has the size that is told, and nothing is written where it does not fit.
void check_text(const DDS_DynamicData *data) {
    for (const DDS_PrintFormatKind kind :
         {DDS_DEFAULT_PRINT_FORMAT, DDS_XML_PRINT_FORMAT, DDS_JSON_PRINT_FORMAT}) {
        DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
        property.kind = kind;
        DDS_PrintFormat format;
        REQUIRE(DDS_PrintFormatProperty_to_print_format(&property, &format) == DDS_RETCODE_OK);
        DDS_UnsignedLong size = 0;
        REQUIRE(DDS_DynamicDataFormatter_to_string_w_format(data, nullptr, &size, &format) ==
                DDS_RETCODE_OK);
        std::vector<DDS_Char> text(size, '#');
        DDS_UnsignedLong length = size - 1;
        REQUIRE(DDS_DynamicDataFormatter_to_string_w_format(data, text.data(), &length, &format) ==
                DDS_RETCODE_OUT_OF_RESOURCES);
        REQUIRE(length == size && text[0] == '#');
        REQUIRE(DDS_DynamicDataFormatter_to_string_w_format(data, text.data(), &length, &format) ==
                DDS_RETCODE_OK);
        REQUIRE(length == size && std::strlen(text.data()) == size - 1);
    }
}

// The bytes as a dynamic value: the same as the record that was read from them.
void check_dynamic(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                   const void *record) {
    const DDS_TypeCode *const type = KOLT_TypePrograms_type(programs);
    const Value value(type);
    REQUIRE(DDS_DynamicData_from_cdr_buffer(value, as_chars(bytes),
                                            static_cast<DDS_UnsignedLong>(size)) == DDS_RETCODE_OK);
    FindFields(programs, bytes, size, value).Run();
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const DDS_UnsignedShort encapsulation =
            DDS_TypeCode_get_native_encapsulation(type, representation);
        const std::vector<std::uint8_t> expected = checked_bytes(value, encapsulation);
        std::size_t length = 0;
        std::vector<DDS_Octet> written(expected.size());
        REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record, written.data(), written.size(),
                                   &length));
        REQUIRE(length == expected.size() && written == expected);
    }
    const Value copy(type);
    REQUIRE(DDS_DynamicData_copy(copy, value) == DDS_RETCODE_OK);
    REQUIRE(DDS_DynamicData_equals(copy, value));
    check_text(value);
    REQUIRE(DDS_DynamicData_clear_all_members(copy) == DDS_RETCODE_OK);
    const Value fresh(type);
    REQUIRE(DDS_DynamicData_equals(copy, fresh));
}

}  // namespace

std::vector<DDS_UnsignedShort> encapsulations_of(const DDS_TypeCode *type) {
    std::vector<DDS_UnsignedShort> all;
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const DDS_UnsignedShort native =
            DDS_TypeCode_get_native_encapsulation(type, representation);
        if (native == KOLT_ENCAPSULATION_INVALID) {
            continue;
        }
        all.push_back(native);
        all.push_back(native ^ 1U);
    }
    return all;
}

bool check_sample(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size) {
    const ProgramsOf programs(type);
    AnyRecord record(type);
    if (!KOLT_Cdr_deserialize(programs, bytes, size, record.get())) {
        const Value value(type);
        REQUIRE(DDS_DynamicData_from_cdr_buffer(
                    value, as_chars(bytes), static_cast<DDS_UnsignedLong>(size)) != DDS_RETCODE_OK);
        const Value fresh(type);
        REQUIRE(DDS_DynamicData_equals(value, fresh));
        SearchMalformed(programs, bytes, size, value).Run();
        DDS_Octet key[64];
        std::size_t length = sizeof(key);
        KOLT_Cdr_key_of_serialized(programs, bytes, size, DDS_BOOLEAN_FALSE, key, &length);
        return false;
    }
    check_round_trip(programs, record.get());
    check_keys(programs, bytes, size, record.get());
    check_dynamic(programs, bytes, size, record.get());
    return true;
}

bool check_key(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size) {
    const ProgramsOf programs(type);
    AnyRecord record(type);
    std::vector<DDS_Octet> key(kMaximumKey);
    std::size_t length = key.size();
    const bool has_key = KOLT_Cdr_key_of_serialized(programs, bytes, size, DDS_BOOLEAN_TRUE,
                                                    key.data(), &length) != 0;
    if (!KOLT_Cdr_deserialize_key(programs, bytes, size, record.get())) {
        REQUIRE(!has_key);
        return false;
    }
    std::vector<DDS_Octet> expected(kMaximumKey);
    std::size_t expected_length = expected.size();
    if (!KOLT_Cdr_key_of_record(programs, record.get(), expected.data(), &expected_length)) {
        REQUIRE(!has_key && expected_length > kMaximumKey);
        return true;
    }
    REQUIRE(has_key && length == expected_length);
    REQUIRE(length == 0 || std::memcmp(key.data(), expected.data(), length) == 0);
    // Written as a key and read again, it is the same.
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const DDS_UnsignedLong key_size =
            KOLT_Cdr_serialized_key_size(programs, encapsulation, record.get());
        std::vector<DDS_Octet> payload(key_size);
        std::size_t written = 0;
        REQUIRE(KOLT_Cdr_serialize_key(programs, encapsulation, record.get(), payload.data(),
                                       key_size, &written));
        if (may_be_taken_for_framed(*type, encapsulation)) {
            continue;
        }
        length = key.size();
        REQUIRE(KOLT_Cdr_key_of_serialized(programs, payload.data(), written, DDS_BOOLEAN_TRUE,
                                           key.data(), &length));
        REQUIRE(length == expected_length);
        REQUIRE(length == 0 || std::memcmp(key.data(), expected.data(), length) == 0);
    }
    DDS_Octet hash[16];
    KOLT_Cdr_keyhash(programs, expected.data(), expected_length, DDS_BOOLEAN_FALSE, hash);
    return true;
}

void checked_fill(DDS_DynamicData *data, Decisions *decisions) {
    FillFields(data, decisions).Run();
}

std::vector<std::uint8_t> checked_bytes(const DDS_DynamicData *data,
                                        DDS_UnsignedShort encapsulation) {
    const DDS_TypeCode *const type = DDS_DynamicData_get_type(data);
    const bool second = encapsulation >= KOLT_ENCAPSULATION_CDR2_BE;
    const DDS_DataRepresentationId_t representation =
        second ? DDS_XCDR2_DATA_REPRESENTATION : DDS_XCDR_DATA_REPRESENTATION;
    DDS_UnsignedLong length = 0;
    REQUIRE(DDS_DynamicData_to_cdr_buffer_ex(data, nullptr, &length, representation) ==
            DDS_RETCODE_OK);
    std::vector<std::uint8_t> bytes(length);
    REQUIRE(DDS_DynamicData_to_cdr_buffer_ex(data, reinterpret_cast<DDS_Char *>(bytes.data()),
                                             &length, representation) == DDS_RETCODE_OK);
    REQUIRE(length == bytes.size());
    if (encapsulation == DDS_TypeCode_get_native_encapsulation(type, representation)) {
        return bytes;
    }
    // The other byte order is the codec's alone.
    const ProgramsOf programs(type);
    AnyRecord record(type);
    REQUIRE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), record.get()));
    std::size_t written = 0;
    REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record.get(), bytes.data(), bytes.size(),
                               &written));
    REQUIRE(written == bytes.size());
    return bytes;
}

void check_evolution(const DDS_TypeCode *type, const DDS_TypeCode *shorter,
                     const DDS_DynamicData *data) {
    const DDS_TypeCodeMember &last = type->members[shorter->member_count];
    const bool must_understand = last.is_key || last.is_must_understand;
    const ProgramsOf programs(type);
    const ProgramsOf shorter_programs(shorter);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const std::vector<std::uint8_t> bytes = checked_bytes(data, encapsulation);
        AnyRecord full(type);
        AnyRecord record(shorter);
        REQUIRE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), full.get()));
        const bool read =
            KOLT_Cdr_deserialize(shorter_programs, bytes.data(), bytes.size(), record.get()) != 0;
        if (type->extensibility == DDS_FINAL_EXTENSIBILITY) {
            continue;
        }
        const bool refused = type->extensibility == DDS_MUTABLE_EXTENSIBILITY && must_understand &&
                             DDS_DynamicData_member_exists(data, last.name, DDS_MEMBER_ID_INVALID);
        REQUIRE(read == !refused);
        if (!read) {
            continue;
        }
        REQUIRE(KOLT_Record_equals(shorter, full.get(), record.get()));
        // And back.
        const DDS_UnsignedLong size =
            KOLT_Cdr_serialized_size(shorter_programs, encapsulation, record.get());
        std::vector<DDS_Octet> short_bytes(size);
        std::size_t length = 0;
        REQUIRE(KOLT_Cdr_serialize(shorter_programs, encapsulation, record.get(),
                                   short_bytes.data(), size, &length));
        REQUIRE(KOLT_Cdr_deserialize(programs, short_bytes.data(), size, full.get()));
        REQUIRE(KOLT_Record_equals(shorter, full.get(), record.get()));
        check_sample(type, short_bytes.data(), size);
    }
}

}  // namespace support
