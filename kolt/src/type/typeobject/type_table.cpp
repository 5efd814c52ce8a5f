// SPDX-License-Identifier: Apache-2.0
// Collecting the parts of a type, and writing their identifiers.
#include "type/typeobject/type_table.hpp"

#include <md5.h>

#include <algorithm>

namespace kolt::type {
namespace {

// Identifiers that describe their type themselves (XTypes 1.3, 7.3.4.2 and Annex B).
constexpr std::uint8_t kStringSmall = 0x70;
constexpr std::uint8_t kStringLarge = 0x71;
constexpr std::uint8_t kSequenceSmall = 0x80;
constexpr std::uint8_t kSequenceLarge = 0x81;
constexpr std::uint8_t kArraySmall = 0x90;
constexpr std::uint8_t kArrayLarge = 0x91;
// The only flag of a collection's elements: a value that cannot be constructed is discarded.
constexpr std::uint16_t kTryConstructDiscard = 1;
constexpr DDS_UnsignedLong kLargestSmallBound = 255;

std::uint8_t primitive_kind(DDS_TCKind kind) {
    switch (kind) {
        case DDS_TK_BOOLEAN:
            return 0x01;
        case DDS_TK_OCTET:
            return 0x02;
        case DDS_TK_SHORT:
            return 0x03;
        case DDS_TK_LONG:
            return 0x04;
        case DDS_TK_LONGLONG:
            return 0x05;
        case DDS_TK_USHORT:
            return 0x06;
        case DDS_TK_ULONG:
            return 0x07;
        case DDS_TK_ULONGLONG:
            return 0x08;
        case DDS_TK_FLOAT:
            return 0x09;
        case DDS_TK_DOUBLE:
            return 0x0a;
        default:
            return 0x10;  // char
    }
}

// The innermost element type of a collection, or the type itself.
const DDS_TypeCode &innermost(const DDS_TypeCode &type) {
    const DDS_TypeCode *element = &type;
    while (is_collection(*element)) {
        element = element->content_type;
    }
    return *element;
}

void write_bound(DDS_UnsignedLong bound, bool small, Xcdr2Output *output) {
    if (small) {
        output->write8(static_cast<std::uint8_t>(bound));
    } else {
        output->write32(bound);
    }
}

TypeObject make_object(Bytes bytes) {
    TypeObject object{std::move(bytes), {}};
    const std::array<std::uint8_t, 16> digest = md5(object.bytes.data(), object.bytes.size());
    std::copy_n(digest.begin(), object.hash.size(), object.hash.begin());
    return object;
}

}  // namespace

std::array<std::uint8_t, 16> md5(const void *bytes, std::size_t length) {
    std::array<std::uint8_t, 16> digest{};
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, static_cast<const std::uint8_t *>(bytes), length);
    MD5Final(digest.data(), &context);
    return digest;
}

TypeTable::TypeTable(const DDS_TypeCode &type, const ModuleMove &names) : names_(names) {
    add(type);
    remove_duplicates();
}

// A type takes its place before its parts do, but its objects hold their identifiers.
void TypeTable::add(const DDS_TypeCode &type) {
    const DDS_TypeCode &element = innermost(type);
    if (!is_hashed(element)) {
        return;
    }
    if (std::any_of(types_.begin(), types_.end(),
                    [&](const HashedType &known) { return known.type == &element; })) {
        return;
    }
    const std::size_t place = types_.size();
    types_.push_back({&element});
    if (element.kind == DDS_TK_UNION) {
        add(*element.discriminator_type);
    }
    if (element.kind != DDS_TK_ENUM) {
        for (DDS_UnsignedLong i = 0; i < element.member_count; ++i) {
            add(*element.members[i].type);
        }
    }
    TypeObject minimal =
        make_object(write_type_object(element, Equivalence::kMinimal, *this, names_));
    TypeObject complete =
        make_object(write_type_object(element, Equivalence::kComplete, *this, names_));
    types_[place].minimal = std::move(minimal);
    types_[place].complete = std::move(complete);
}

// Several type codes may stand for one type.
void TypeTable::remove_duplicates() {
    std::vector<HashedType> distinct;
    for (HashedType &type : types_) {
        if (std::none_of(distinct.begin(), distinct.end(), [&](const HashedType &earlier) {
                return earlier.complete.hash == type.complete.hash;
            })) {
            distinct.push_back(std::move(type));
        }
    }
    types_ = std::move(distinct);
}

const HashedType &TypeTable::find(const DDS_TypeCode &type) const {
    return *std::find_if(types_.begin(), types_.end(),
                         [&](const HashedType &known) { return known.type == &type; });
}

void TypeTable::write_identifier(const DDS_TypeCode &type, Equivalence kind,
                                 Xcdr2Output *output) const {
    if (is_hashed(type)) {
        output->write8(static_cast<std::uint8_t>(kind));
        output->write_raw(find(type).object(kind).hash);
    } else if (type.kind == DDS_TK_STRING) {
        const bool small = type.bound <= kLargestSmallBound;
        output->write8(small ? kStringSmall : kStringLarge);
        write_bound(type.bound, small, output);
    } else if (is_collection(type)) {
        write_collection(type, kind, output);
    } else {
        output->write8(primitive_kind(type.kind));
    }
}

void TypeTable::write_collection(const DDS_TypeCode &type, Equivalence kind,
                                 Xcdr2Output *output) const {
    const bool is_array = type.kind == DDS_TK_ARRAY;
    const DDS_UnsignedLong *const bounds = is_array ? type.dimensions : &type.bound;
    const DDS_UnsignedLong count = is_array ? type.dimension_count : 1;
    const bool small = std::all_of(
        bounds, bounds + count, [](DDS_UnsignedLong bound) { return bound <= kLargestSmallBound; });
    if (is_array) {
        output->write8(small ? kArraySmall : kArrayLarge);
    } else {
        output->write8(small ? kSequenceSmall : kSequenceLarge);
    }
    const Equivalence elements = is_hashed(innermost(type)) ? kind : Equivalence::kBoth;
    output->write8(static_cast<std::uint8_t>(elements));
    output->write16(kTryConstructDiscard);
    if (is_array) {
        output->write32(count);
    }
    for (DDS_UnsignedLong i = 0; i < count; ++i) {
        write_bound(bounds[i], small, output);
    }
    write_identifier(*type.content_type, kind, output);
}

}  // namespace kolt::type
