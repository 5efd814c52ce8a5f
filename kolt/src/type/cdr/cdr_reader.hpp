// SPDX-License-Identifier: Apache-2.0
// The interpreter of read programs: bytes into an initialised record.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "type/cdr/cdr_skipper.hpp"
#include "type/record/record.hpp"

namespace kolt::type {

// Which members of a mutable type were there. Small types need no memory for it.
class SeenMembers {
  public:
    explicit SeenMembers(std::size_t count) {
        if (count > small_.size() * 64) {
            large_.resize((count + 63) / 64);
        }
    }
    void set(std::size_t i) { words()[i / 64] |= std::uint64_t{1} << (i % 64); }
    bool has(std::size_t i) const { return (words()[i / 64] >> (i % 64) & 1) != 0; }

  private:
    std::uint64_t *words() { return large_.empty() ? small_.data() : large_.data(); }
    const std::uint64_t *words() const { return large_.empty() ? small_.data() : large_.data(); }

    std::array<std::uint64_t, 2> small_{};
    std::vector<std::uint64_t> large_;
};

enum class ReadMode {
    kAll,
    kKeys,       // the key members of a sample; its other members are passed over
    kStrictKeys  // a key-only payload: all keys must be there, and nothing be cut off
};

// Every read that fails leaves the record safe to finalise and to read into again. May throw
// std::bad_alloc.
template <bool kSwap>
class Reader {
  public:
    Reader(const ReadProgram &program, const std::uint8_t *bytes, std::size_t size, ReadMode mode)
        : program_(program), cursor_(bytes, size), skipper_(program, &cursor_), mode_(mode) {}

    bool read(void *record) {
        return value(program_.root, static_cast<char *>(record), mode_ == ReadMode::kKeys);
    }

    // Bytes that were not read.
    std::size_t left() const { return cursor_.left(); }

  private:
    // `keys_only` reduces the structure that `op` reads to its key members.
    bool value(const Op &op, char *base, bool keys_only) {
        switch (op.code) {
            case OpCode::kRun:
                return run(op, base);
            case OpCode::kString:
                return string(op, base);
            case OpCode::kAggregate: {
                const Aggregate &aggregate = program_.aggregates[op.index];
                return read_aggregate(aggregate, base + op.offset, keys_only && aggregate.is_keyed);
            }
            case OpCode::kElements:
                return elements(op, base + op.offset);
            case OpCode::kPrimitiveSequence:
            case OpCode::kSequence:
                return sequence(op, base);
            case OpCode::kOptional:
                return optional(op, base);
            case OpCode::kOptionalPresent:
                return present_optional(op, base);
            default:
                return false;
        }
    }

    bool run(const Op &op, char *base) {
        if ((op.flags & kOpHasDheader) == 0) {
            return cursor_.align(op.alignment) &&
                   cursor_.words(base + op.offset, op.count, op.width);
        }
        const std::uint8_t *outer = nullptr;
        if (!cursor_.open_count(&outer)) {
            return false;
        }
        const bool read = cursor_.words(base + op.offset, op.count, op.width);
        cursor_.close_frame(outer);
        return read;
    }

    bool string(const Op &op, char *base) {
        std::uint32_t size = 0;
        if (!cursor_.word32(&size) || size > cursor_.left()) {
            return false;
        }
        const auto *text = reinterpret_cast<const char *>(cursor_.at());
        if (size == 0) {  // not by the standard, yet sent by some for ""
            text = "";
            size = 1;
        } else {
            if (text[size - 1] != '\0') {
                return false;
            }
            cursor_.skip(size);
        }
        if (size - 1 > op.count) {
            return false;
        }
        char *const place = base + op.offset;
        auto *buffer = static_cast<char *>(load_pointer(place));
        const bool exact = (op.flags & kOpExactString) != 0;
        if (exact || buffer == nullptr) {
            char *const fresh = DDS_String_alloc(exact ? size - 1 : op.count);
            if (fresh == nullptr) {
                return false;
            }
            DDS_String_free(buffer);
            buffer = fresh;
            store_pointer(place, buffer);
        }
        std::memcpy(buffer, text, size);
        return true;
    }

    bool elements(const Op &op, char *first) {
        const std::uint8_t *outer = nullptr;
        const bool framed = (op.flags & kOpHasDheader) != 0;
        if (framed && !cursor_.open_count(&outer)) {
            return false;
        }
        const ReadElement &element = program_.elements[op.index];
        for (std::size_t i = 0; i < op.count; ++i) {
            if (!value(element.op, first + i * element.stride, false)) {
                return false;
            }
        }
        if (framed) {
            cursor_.close_frame(outer);
        }
        return true;
    }

    bool sequence(const Op &op, char *base) {
        const std::uint8_t *outer = nullptr;
        const bool framed = (op.flags & kOpHasDheader) != 0;
        if (framed && !cursor_.open_count(&outer)) {
            return false;
        }
        auto *const sequence = reinterpret_cast<KOLT_Sequence *>(base + op.offset);
        const bool read = op.code == OpCode::kSequence ? sequence_elements(op, sequence)
                                                       : sequence_words(op, sequence);
        if (!read) {
            return false;
        }
        if (framed) {
            cursor_.close_frame(outer);
        }
        return true;
    }

    // Room for as many elements as the bytes that are left can hold at most.
    bool resize(const Op &op, KOLT_Sequence *sequence, std::uint32_t count,
                std::size_t element_size) {
        if (count > op.count || count > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM ||
            count > cursor_.left() / element_size) {
            return false;
        }
        const TypeCodeElementOps ops(*program_.elements[op.index].type);
        sequence_ensure_initialized(sequence);
        if (count > sequence->_maximum) {
            // The old elements need not be copied into the new buffer.
            if (!sequence_set_length(sequence, ops, 0)) {
                return false;
            }
        }
        return sequence_set_length(sequence, ops, static_cast<DDS_Long>(count));
    }

    static char *sequence_element_at(KOLT_Sequence *sequence, std::size_t index,
                                     std::size_t stride) {
        if (sequence->_contiguous_buffer != nullptr) {
            return static_cast<char *>(sequence->_contiguous_buffer) + index * stride;
        }
        return static_cast<char *>(load_pointer(sequence->_discontiguous_buffer + index));
    }

    bool sequence_words(const Op &op, KOLT_Sequence *sequence) {
        std::uint32_t count = 0;
        if (!cursor_.word32(&count)) {
            return false;
        }
        if (count > 0 && !cursor_.align(alignment_of(program_.version, op.width))) {
            return false;
        }
        if (!resize(op, sequence, count, op.width)) {
            return false;
        }
        if (count == 0) {
            return true;
        }
        if (sequence->_contiguous_buffer != nullptr) {
            return cursor_.words(sequence->_contiguous_buffer, count, op.width);
        }
        for (std::size_t i = 0; i < count; ++i) {
            char *const element = sequence_element_at(sequence, i, op.width);
            if (element == nullptr || !cursor_.words(element, 1, op.width)) {
                return false;
            }
        }
        return true;
    }

    bool sequence_elements(const Op &op, KOLT_Sequence *sequence) {
        const ReadElement &element = program_.elements[op.index];
        std::uint32_t count = 0;
        if (!cursor_.word32(&count) || !resize(op, sequence, count, element.minimum_size)) {
            return false;
        }
        for (std::size_t i = 0; i < count; ++i) {
            char *const place = sequence_element_at(sequence, i, element.stride);
            if (place == nullptr || !value(element.op, place, false)) {
                return false;
            }
        }
        return true;
    }

    bool optional(const Op &op, char *base) {
        if (program_.version == XcdrVersion::k2) {
            std::uint8_t present = 0;
            if (!cursor_.words(&present, 1, 1)) {
                return false;
            }
            return present != 0 ? present_optional(op, base) : absent_optional(op, base);
        }
        MemberHeader header;
        if (!read_parameter_header(&cursor_, &header) || header.sentinel || header.ignored ||
            header.id != op.constant) {
            return false;
        }
        if (header.size == 0) {
            return absent_optional(op, base);
        }
        return in_frame(header.size, [&] { return present_optional(op, base); });
    }

    bool absent_optional(const Op &op, char *base) {
        char *const place = base + op.offset;
        delete_optional(*program_.elements[op.index].type, load_pointer(place));
        store_pointer(place, nullptr);
        return true;
    }

    bool present_optional(const Op &op, char *base) {
        const ReadElement &element = program_.elements[op.index];
        char *const place = base + op.offset;
        void *target = load_pointer(place);
        if (target == nullptr) {
            target = new_optional(*element.type, kDefaultAllocation);
            if (target == nullptr) {
                return false;
            }
            store_pointer(place, target);
        }
        return value(element.op, static_cast<char *>(target), false);
    }

    // Reads inside a frame of `size` bytes, in which XCDR1 counts alignment anew (XTypes 7.4.1.2).
    template <typename Function>
    bool in_frame(std::size_t size, Function &&read) {
        const std::uint8_t *outer = nullptr;
        if (!cursor_.open_frame(size, &outer)) {
            return false;
        }
        const std::uint8_t *const origin = cursor_.origin();
        if (program_.version == XcdrVersion::k1) {
            cursor_.set_origin(cursor_.at());
        }
        if (!read()) {
            return false;
        }
        cursor_.close_frame(outer);
        cursor_.set_origin(origin);
        return true;
    }

    bool read_aggregate(const Aggregate &aggregate, char *record, bool keys_only) {
        switch (aggregate.framing) {
            case Framing::kPlain:
            case Framing::kOpen:
                return members(aggregate, record, keys_only);
            case Framing::kDelimited: {
                const std::uint8_t *outer = nullptr;
                if (!cursor_.open_count(&outer)) {
                    return false;
                }
                if (!members(aggregate, record, keys_only)) {
                    return false;
                }
                if (mode_ == ReadMode::kStrictKeys && cursor_.left() > 0) {
                    return false;
                }
                cursor_.close_frame(outer);
                return true;
            }
            case Framing::kParameterList1:
                return parameters(aggregate, record, keys_only);
            case Framing::kParameterList2: {
                const std::uint8_t *outer = nullptr;
                if (!cursor_.open_count(&outer)) {
                    return false;
                }
                if (!parameters(aggregate, record, keys_only)) {
                    return false;
                }
                cursor_.close_frame(outer);
                return true;
            }
        }
        return false;
    }

    // Members one after the other.
    bool members(const Aggregate &aggregate, char *record, bool keys_only) {
        if (aggregate.is_union) {
            return plain_union(aggregate, record);
        }
        const bool complete = aggregate.framing == Framing::kPlain ||
                              (aggregate.fixed_size > 0 && cursor_.padding(8) == 0 &&
                               aggregate.fixed_size <= cursor_.left()) ||
                              (aggregate.fixed_size > 0 && program_.version == XcdrVersion::k2 &&
                               aggregate.fixed_size <= cursor_.left());
        if (complete && !keys_only) {
            for (const Op &op : aggregate.body) {
                if (!value(op, record, false)) {
                    return false;
                }
            }
            return true;
        }
        const bool open = aggregate.framing != Framing::kPlain;
        for (const ReadMember &member : aggregate.members) {
            if (open && cursor_.at_end(member.op.alignment)) {
                return reset_from(aggregate, record, member.index, keys_only);
            }
            const bool wanted = !keys_only || member.is_key;
            if (!(wanted ? value(member.op, record, keys_only) : skipper_.skip(member.op))) {
                return false;
            }
        }
        return true;
    }

    bool reset_from(const Aggregate &aggregate, char *record, DDS_UnsignedLong first,
                    bool keys_only) {
        if (mode_ == ReadMode::kStrictKeys) {
            return false;
        }
        for (DDS_UnsignedLong i = first; i < aggregate.type->member_count; ++i) {
            if (keys_only && !aggregate.type->members[i].is_key) {
                continue;
            }
            if (!reset_member(*aggregate.type, record, i)) {
                return false;
            }
        }
        return true;
    }

    bool discriminator(const Aggregate &aggregate, char *record, DDS_UnsignedLong *selected) {
        if (!run(aggregate.discriminator, record)) {
            return false;
        }
        *selected = selected_member(*aggregate.type, load_discriminator(*aggregate.type, record));
        return true;
    }

    // A discriminator that selects no branch stays as it came, and no branch follows.
    bool plain_union(const Aggregate &aggregate, char *record) {
        DDS_UnsignedLong selected = 0;
        if (!discriminator(aggregate, record, &selected)) {
            return false;
        }
        if (selected == aggregate.type->member_count) {
            return true;
        }
        const ReadMember &member = aggregate.members[selected];
        if (aggregate.framing != Framing::kPlain && cursor_.at_end(member.op.alignment)) {
            return mode_ != ReadMode::kStrictKeys &&
                   reset_member(*aggregate.type, record, selected);
        }
        return value(member.op, record, false);
    }

    // The next member header of either version. False when the list is malformed; `*done` at its
    // end.
    bool next_header(const Aggregate &aggregate, MemberHeader *header, bool *done) {
        if (aggregate.framing == Framing::kParameterList1) {
            if (!read_parameter_header(&cursor_, header)) {
                return false;
            }
            *done = header->sentinel;
            return true;
        }
        *done = cursor_.at_end(4);
        return *done || read_member_header(&cursor_, header);
    }

    // Members under headers of their own, in any order. Writers keep the order of declaration, so
    // the member after the last one is tried first.
    bool parameters(const Aggregate &aggregate, char *record, bool keys_only) {
        if (aggregate.is_union) {
            return parameter_union(aggregate, record);
        }
        SeenMembers seen(aggregate.members.size());
        std::size_t expected = 0;
        std::size_t found = 0;
        for (;;) {
            MemberHeader header;
            bool done = false;
            if (!next_header(aggregate, &header, &done)) {
                return false;
            }
            if (done) {
                break;
            }
            const std::size_t place = header.ignored ? kNone : find(aggregate, header.id, expected);
            if (place == kNone) {
                if (header.must_understand && !header.ignored) {
                    return false;
                }
                if (!cursor_.skip(header.size)) {
                    return false;
                }
                continue;
            }
            const ReadMember &member = aggregate.members[place];
            expected = place + 1;
            const bool repeated = seen.has(place);
            if (!repeated) {
                ++found;
            }
            seen.set(place);
            // The first of several values counts, as it does where one field is looked for.
            if (repeated || (keys_only && !member.is_key)) {
                if (!cursor_.skip(header.size)) {
                    return false;
                }
                continue;
            }
            if (!in_frame(header.size, [&] { return value(member.op, record, keys_only); })) {
                return false;
            }
        }
        return found == aggregate.members.size() ||
               reset_unseen(aggregate, record, seen, keys_only);
    }

    static std::size_t find(const Aggregate &aggregate, std::uint32_t id, std::size_t expected) {
        if (expected < aggregate.members.size() && aggregate.members[expected].id == id) {
            return expected;
        }
        const auto place = std::lower_bound(aggregate.by_id.begin(), aggregate.by_id.end(),
                                            std::make_pair(id, std::uint32_t{0}));
        return place != aggregate.by_id.end() && place->first == id ? place->second : kNone;
    }

    bool reset_unseen(const Aggregate &aggregate, char *record, const SeenMembers &seen,
                      bool keys_only) {
        for (std::size_t i = 0; i < aggregate.members.size(); ++i) {
            const ReadMember &member = aggregate.members[i];
            if (seen.has(i) || (keys_only && !member.is_key)) {
                continue;
            }
            const bool optional = aggregate.type->members[member.index].is_optional != 0;
            if (mode_ == ReadMode::kStrictKeys && !optional) {
                return false;
            }
            if (!reset_member(*aggregate.type, record, member.index)) {
                return false;
            }
        }
        return true;
    }

    // The discriminator comes first. A branch other than the selected one is passed over; the
    // selected one keeps its initial value when it is absent.
    bool parameter_union(const Aggregate &aggregate, char *record) {
        const DDS_UnsignedLong no_branch = aggregate.type->member_count;
        DDS_UnsignedLong selected = no_branch;
        bool has_discriminator = false;
        bool has_branch = false;
        for (;;) {
            MemberHeader header;
            bool done = false;
            if (!next_header(aggregate, &header, &done)) {
                return false;
            }
            if (done) {
                break;
            }
            if (!header.ignored && header.id == aggregate.discriminator_id && !has_discriminator) {
                has_discriminator = in_frame(
                    header.size, [&] { return discriminator(aggregate, record, &selected); });
                if (!has_discriminator) {
                    return false;
                }
                continue;
            }
            const std::size_t place = header.ignored ? kNone : find(aggregate, header.id, kNone);
            if (place == kNone) {
                if (header.must_understand && !header.ignored) {
                    return false;
                }
            } else if (!has_discriminator) {
                return false;
            } else if (aggregate.members[place].index == selected && !has_branch) {
                has_branch = true;
                if (!in_frame(header.size,
                              [&] { return value(aggregate.members[place].op, record, false); })) {
                    return false;
                }
                continue;
            }
            if (!cursor_.skip(header.size)) {
                return false;
            }
        }
        if (!has_discriminator) {
            return false;
        }
        return has_branch || selected == no_branch ||
               reset_member(*aggregate.type, record, selected);
    }

    const ReadProgram &program_;
    Cursor<kSwap> cursor_;
    Skipper<kSwap> skipper_;
    ReadMode mode_;
};

}  // namespace kolt::type
