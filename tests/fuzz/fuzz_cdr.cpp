// SPDX-License-Identifier: Apache-2.0
// Arbitrary bytes as samples and keys of many types, types that are made up included. An accepted
// sample must read the same in every way there is to read it, and survive a round trip.
//
// The first byte of an input chooses the type. For the fixed types the rest is a payload with its
// encapsulation header. For a made-up type a second byte counts the bytes that describe it; what
// follows them is taken as a payload, as the decisions that fill a value, and as edits of that
// value's bytes.
#include <kolt/cdr.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "fuzz/fixed_types.h"
#include "support/cdr/cdr_checks.h"

namespace {

using namespace fuzz;  // NOLINT
using namespace support;

// Programs that stay: otherwise every input would compile its type again.
void keep_programs() {
    static const bool kKept = [] {
        for (const DDS_TypeCode *type : fixed_types()) {
            KOLT_TypePrograms_acquire(type);
        }
        return true;
    }();
    static_cast<void>(kKept);
}

// Bytes of a good sample with a few of them changed.
void check_edited(const DDS_TypeCode *type, std::vector<std::uint8_t> bytes, Decisions decisions) {
    for (int edits = 0; edits < 4 && !decisions.empty(); ++edits) {
        const std::size_t at = decisions.word() % bytes.size();
        bytes[at] = decisions.byte();
        if (decisions.one_in(8)) {
            bytes.resize(at + 1);
        }
    }
    check_sample(type, bytes.data(), bytes.size());
    check_key(type, bytes.data(), bytes.size());
}

void run_made_up(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return;
    }
    const std::size_t description = data[0] < size ? data[0] : size - 1;
    Decisions decisions(data + 1, description);
    const RandomType made(&decisions);
    const DDS_TypeCode *const type = made.type();
    const KOLT_TypePrograms *const programs = KOLT_TypePrograms_acquire(type);
    const std::uint8_t *const payload = data + 1 + description;
    const std::size_t length = size - 1 - description;
    check_sample(type, payload, length);
    check_key(type, payload, length);
    DDS_DynamicData *const value = DDS_DynamicData_new(type, nullptr);
    Decisions content(payload, length);
    checked_fill(value, &content);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const std::vector<std::uint8_t> bytes = checked_bytes(value, encapsulation);
        if (!check_sample(type, bytes.data(), bytes.size())) {
            std::abort();
        }
        check_edited(type, bytes, Decisions(payload, length));
    }
    if (made.shorter() != nullptr) {
        check_evolution(type, made.shorter(), value);
    }
    DDS_DynamicData_delete(value);
    KOLT_TypePrograms_release(programs);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    keep_programs();
    const std::uint8_t selection = data[0] % kTypeSelections;
    const std::vector<const DDS_TypeCode *> &types = fixed_types();
    if (selection >= types.size()) {
        run_made_up(data + 1, size - 1);
        return 0;
    }
    check_sample(types[selection], data + 1, size - 1);
    check_key(types[selection], data + 1, size - 1);
    return 0;
}
