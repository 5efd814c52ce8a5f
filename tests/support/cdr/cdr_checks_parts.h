// SPDX-License-Identifier: Apache-2.0
// The parts of the checks on samples' bytes: requirements, and records and values of any type.
#pragma once

#include <kolt/cdr.h>
#include <kolt/dynamic_data.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace support {

inline void require(bool condition, const char *what, const char *file, int line) {
    if (condition) {
        return;
    }
    std::fprintf(stderr, "%s:%d: %s\n", file, line, what);
    std::abort();
}
// Ends the process, for fuzzing as for tests, unless the condition holds.
#define REQUIRE(condition) \
    support::require(static_cast<bool>(condition), #condition, __FILE__, __LINE__)

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

// A dynamic value of any type.
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

// The bytes as the functions for dynamic data take them.
inline const DDS_Char *as_chars(const std::uint8_t *bytes) {
    return reinterpret_cast<const DDS_Char *>(bytes);
}

// Every way to the key of a sample leads to the same key. `record` was read from the bytes.
void check_keys(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                const void *record);

}  // namespace support
