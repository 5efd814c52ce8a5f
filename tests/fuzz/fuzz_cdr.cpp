// Arbitrary bytes as samples and keys of several types. What is accepted must survive a round trip.
#include <kolt/cdr.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

// The targets of this folder link the libraries and nothing else.
#include "../support/test_types.cpp"

namespace {

using namespace support;  // NOLINT

void require(bool condition) {
    if (!condition) std::abort();
}

// Encapsulations that the type is sent in, for the round trip.
void roundTrip(const KOLT_TypePrograms *programs, const DDS_TypeCode *type, const void *record,
               void *scratch) {
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const DDS_UnsignedShort encapsulation =
            DDS_TypeCode_get_native_encapsulation(type, representation);
        const DDS_UnsignedLong size = KOLT_Cdr_serialized_size(programs, encapsulation, record);
        if (size == 0) continue;
        std::vector<DDS_Octet> bytes(size);
        size_t length = 0;
        require(KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size, &length));
        require(length == size);
        require(size <= KOLT_Cdr_serialized_max_size(programs, encapsulation));
        require(size >= KOLT_Cdr_serialized_min_size(programs, encapsulation));
        require(KOLT_Cdr_deserialize(programs, bytes.data(), size, scratch));
        require(KOLT_Record_equals(type, record, scratch));
    }
}

template <typename T>
void run(const DDS_TypeCode *type, const uint8_t *data, size_t size) {
    const Programs programs(type);
    Record<T> record(type);
    Record<T> scratch(type);
    DDS_Octet key[64];
    size_t key_length = sizeof(key);
    KOLT_Cdr_key_of_serialized(programs, data, size, DDS_BOOLEAN_TRUE, key, &key_length);
    key_length = sizeof(key);
    const bool has_key =
        KOLT_Cdr_key_of_serialized(programs, data, size, DDS_BOOLEAN_FALSE, key, &key_length) != 0;
    for (DDS_UnsignedLong i = 0; i < DDS_TypeCode_member_count(type); ++i) {
        const auto element = static_cast<DDS_UnsignedLong>(size % 3);
        const KOLT_CdrPathStep path[] = {{0, i}, {size > 4 && data[4] % 2 != 0, element}, {0, 0}};
        KOLT_CdrValue value;
        for (size_t steps = 1; steps <= 3; ++steps) {
            KOLT_Cdr_find_field(programs, data, size, path, steps, &value);
        }
    }
    KOLT_Cdr_deserialize_key(programs, data, size, scratch.get());
    if (!KOLT_Cdr_deserialize(programs, data, size, record.get())) return;
    roundTrip(programs, type, record.get(), scratch.get());
    // Both ways to the key of a sample lead to the same key.
    DDS_Octet record_key[64];
    size_t record_key_length = sizeof(record_key);
    if (has_key && KOLT_Cdr_key_of_record(programs, record.get(), record_key, &record_key_length)) {
        require(record_key_length == key_length);
        require(std::memcmp(record_key, key, key_length) == 0);
    }
}

}  // namespace

// The first byte chooses the type, the rest is the payload with its encapsulation header.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const uint8_t *const payload = data + 1;
    const size_t length = size - 1;
    switch (data[0] % 12) {
        case 0:
            run<Everything>(everythingType(), payload, length);
            break;
        case 1:
            run<Message>(messageType(), payload, length);
            break;
        case 2:
            run<Request>(mutableRequestType(), payload, length);
            break;
        case 3:
            run<Request>(finalRequestType(), payload, length);
            break;
        case 4:
            run<Options>(finalOptionsType(), payload, length);
            break;
        case 5:
            run<Options>(mutableOptionsType(), payload, length);
            break;
        case 6:
            run<Version2>(appendableVersion2Type(), payload, length);
            break;
        case 7:
            run<Version2>(mutableVersion2Type(), payload, length);
            break;
        case 8:
            run<Holder>(mutableHolderType(), payload, length);
            break;
        case 9:
            run<Holder>(appendableHolderType(), payload, length);
            break;
        case 10:
            run<Large>(largeType(), payload, length);
            break;
        default:
            run<Choice>(appendableChoiceType(), payload, length);
            break;
    }
    return 0;
}
