// SPDX-License-Identifier: Apache-2.0
// Type codes that are made up from bytes, for tests that want any type.
#pragma once

#include <kolt/typecode.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace support {

// Decisions, one byte each; all of them 0 when the bytes have run out.
class Decisions {
  public:
    Decisions(const std::uint8_t *bytes, std::size_t size) : at_(bytes), left_(size) {}

    std::uint8_t byte();
    unsigned below(unsigned limit) { return byte() % limit; }
    // True in one of `rarity` cases; false when the bytes have run out.
    bool one_in(unsigned rarity) { return byte() % rarity == rarity - 1; }
    std::uint64_t word();
    bool empty() const { return left_ == 0; }
    std::size_t left() const { return left_; }

  private:
    const std::uint8_t *at_;
    std::size_t left_;
};

// A well-formed structure or union with all that it consists of, laid out as a C compiler would.
class RandomType {
  public:
    explicit RandomType(Decisions *decisions);
    RandomType(const RandomType &) = delete;
    RandomType &operator=(const RandomType &) = delete;

    const DDS_TypeCode *type() const { return type_; }
    // The same type without its last member, over the same record; nullptr for a union or a
    // structure with one member.
    const DDS_TypeCode *shorter() const { return shorter_; }

  private:
    const DDS_TypeCode *make(int depth);
    const DDS_TypeCode *make_enum();
    const DDS_TypeCode *make_string();
    const DDS_TypeCode *make_array(int depth);
    const DDS_TypeCode *make_sequence(int depth);
    const DDS_TypeCode *make_struct(int depth);
    const DDS_TypeCode *make_union(int depth);
    const DDS_TypeCode *discriminator();
    void give_default(DDS_TypeCodeMember *member);
    std::vector<DDS_TypeCodeMember> make_members(unsigned count, int depth, bool is_union);
    // Places the members behind the first `start` bytes of a record.
    const DDS_TypeCode *finish(DDS_TypeCode aggregate, std::vector<DDS_TypeCodeMember> members,
                               std::size_t start);
    void make_shorter();

    DDS_TypeCode *store(const DDS_TypeCode &type);
    const char *name(const std::string &prefix);
    DDS_ExtensibilityKind extensibility();

    Decisions &decisions_;
    unsigned budget_ = 24;  // types that may still be made
    unsigned names_ = 0;
    const DDS_TypeCode *type_ = nullptr;
    const DDS_TypeCode *shorter_ = nullptr;
    std::deque<DDS_TypeCode> types_;
    std::deque<std::vector<DDS_TypeCodeMember>> members_;
    std::deque<std::vector<DDS_Long>> labels_;
    std::deque<std::vector<std::size_t>> offsets_;
    std::deque<std::vector<DDS_UnsignedLong>> dimensions_;
    std::deque<DDS_SampleAccessInfo> access_;
    std::deque<std::string> texts_;
};

}  // namespace support
