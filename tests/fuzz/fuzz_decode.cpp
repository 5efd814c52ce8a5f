// SPDX-License-Identifier: Apache-2.0
// Arbitrary bytes through the decoder alone, as it stands behind a data reader: one record a type
// that is used again and again. It checks little else, so that many inputs go through; fuzz_cdr.cpp
// checks fewer of them closely. Its inputs mean the same here as far as the fixed types go.
#include <kolt/cdr.h>

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <vector>

#include "fuzz/fixed_types.h"

namespace {

using namespace fuzz;  // NOLINT

// A type, its programs and the records that are decoded into.
class Subject {
  public:
    explicit Subject(const DDS_TypeCode *type)
        : type_(type),
          programs_(KOLT_TypePrograms_acquire(type)),
          first_(make_record(type)),
          second_(make_record(type)) {}
    ~Subject() {
        for (void *const record : {first_, second_}) {
            const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
            KOLT_Record_finalize_w_params(type_, record, &params);
            std::free(record);
        }
        KOLT_TypePrograms_release(programs_);
    }
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;

    // Writes an accepted sample in its own encapsulation; it must read and write the same again.
    void check(const std::uint8_t *bytes, std::size_t size) {
        if (!KOLT_Cdr_deserialize(programs_, bytes, size, first_)) {
            return;
        }
        const auto encapsulation = static_cast<DDS_UnsignedShort>(bytes[0] << 8 | bytes[1]);
        write(first_, encapsulation, &once_);
        if (!KOLT_Cdr_deserialize(programs_, once_.data(), once_.size(), second_)) {
            std::abort();
        }
        write(second_, encapsulation, &twice_);
        if (once_ != twice_) {
            std::abort();
        }
    }

    void check_key(const std::uint8_t *bytes, std::size_t size) {
        KOLT_Cdr_deserialize_key(programs_, bytes, size, first_);
    }

  private:
    static void *make_record(const DDS_TypeCode *type) {
        void *const record = std::calloc(1, type->access->record_size);
        const DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        if (!KOLT_Record_initialize_w_params(type, record, &params)) {
            std::abort();
        }
        return record;
    }

    void write(const void *record, DDS_UnsignedShort encapsulation,
               std::vector<std::uint8_t> *bytes) {
        const std::size_t size = KOLT_Cdr_serialized_size(programs_, encapsulation, record);
        bytes->resize(size);
        std::size_t length = 0;
        if (!KOLT_Cdr_serialize(programs_, encapsulation, record, bytes->data(), size, &length) ||
            length != size) {
            std::abort();
        }
    }

    const DDS_TypeCode *type_;
    const KOLT_TypePrograms *programs_;
    void *first_;
    void *second_;
    std::vector<std::uint8_t> once_;
    std::vector<std::uint8_t> twice_;
};

std::deque<Subject> &subjects() {
    static std::deque<Subject> all(fixed_types().begin(), fixed_types().end());
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::deque<Subject> &all = subjects();
    Subject &subject = all[data[0] % kTypeSelections % all.size()];
    subject.check(data + 1, size - 1);
    subject.check_key(data + 1, size - 1);
    return 0;
}
