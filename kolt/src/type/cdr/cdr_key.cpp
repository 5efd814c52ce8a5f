// SPDX-License-Identifier: Apache-2.0
// Keys: key-only payloads, canonical keys, key hashes.
#include <md5.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "type/cdr/cdr_codec.hpp"
#include "type/record/record.hpp"

namespace {

using kolt::type::Encapsulation;
using kolt::type::Part;

constexpr std::size_t kKeyHashSize = 16;

// A record of zero bytes for key members to be read into, on the stack while it is small.
class ScratchRecord {
  public:
    explicit ScratchRecord(const KOLT_TypePrograms &programs) : programs_(programs) {
        const std::size_t size = kolt::type::value_size(*programs.type);
        if (size > sizeof(small_)) {
            large_.reset(std::calloc(1, size));
            record_ = large_.get();
        } else {
            std::memset(small_, 0, size);
            record_ = small_;
        }
    }
    ~ScratchRecord() {
        if (record_ != nullptr && programs_.key_owns_memory) {
            kolt::type::finalize_value(*programs_.type, record_, kolt::type::kDefaultDeallocation);
        }
    }
    ScratchRecord(const ScratchRecord &) = delete;
    ScratchRecord &operator=(const ScratchRecord &) = delete;

    // NULL when memory ran out.
    void *record() { return record_; }

  private:
    struct Free {
        void operator()(void *memory) const { std::free(memory); }
    };

    const KOLT_TypePrograms &programs_;
    std::unique_ptr<void, Free> large_;
    void *record_ = nullptr;
    alignas(std::max_align_t) unsigned char small_[512];
};

}  // namespace

DDS_UnsignedLong KOLT_Cdr_key_max_size(const KOLT_TypePrograms *self) {
    return self == nullptr ? 0 : self->key_max_size;
}

DDS_Boolean KOLT_Cdr_key_of_record(const KOLT_TypePrograms *self, const void *record,
                                   DDS_Octet *key, std::size_t *length) {
    if (self == nullptr || record == nullptr || length == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    if (key == nullptr) {
        *length = 0;
    }
    return kolt::type::canonical_key(*self, record, key, length);
}

DDS_Boolean KOLT_Cdr_key_of_serialized(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                       std::size_t length, DDS_Boolean is_key_only, DDS_Octet *key,
                                       std::size_t *key_length) {
    if (self == nullptr || bytes == nullptr || key_length == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    const Part part = is_key_only ? Part::kKey : Part::kSample;
    DDS_UnsignedShort identifier = 0;
    std::size_t body = 0;
    Encapsulation encapsulation;
    if (!kolt::type::read_header(bytes, length, &identifier, &body) ||
        !kolt::type::resolve_encapsulation(*self, identifier, part, &encapsulation)) {
        return DDS_BOOLEAN_FALSE;
    }
    ScratchRecord scratch(*self);
    if (scratch.record() == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    const auto decode = is_key_only ? kolt::type::decode_key : kolt::type::decode_key_of_sample;
    if (!decode(*self, encapsulation, bytes + KOLT_ENCAPSULATION_HEADER_SIZE, body,
                scratch.record())) {
        return DDS_BOOLEAN_FALSE;
    }
    return KOLT_Cdr_key_of_record(self, scratch.record(), key, key_length);
}

void KOLT_Cdr_keyhash(const KOLT_TypePrograms *self, const DDS_Octet *key, std::size_t key_length,
                      DDS_Boolean force_md5, DDS_Octet hash[16]) {
    if (hash == nullptr) {
        return;
    }
    std::memset(hash, 0, kKeyHashSize);
    if (self == nullptr || (key == nullptr && key_length > 0)) {
        return;
    }
    if (!force_md5 && self->key_max_size <= kKeyHashSize && key_length <= kKeyHashSize) {
        if (key_length > 0) {
            std::memcpy(hash, key, key_length);
        }
        return;
    }
    MD5_CTX context;
    MD5Init(&context);
    if (key_length > 0) {
        MD5Update(&context, key, key_length);
    }
    MD5Final(hash, &context);
}
