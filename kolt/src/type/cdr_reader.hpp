// The interpreter of read programs: bytes into an initialised record.
#ifndef KOLT_SRC_TYPE_CDR_READER_HPP
#define KOLT_SRC_TYPE_CDR_READER_HPP

#include <algorithm>
#include <array>
#include <vector>

#include "type/cdr_skipper.hpp"
#include "type/record.hpp"

namespace kolt::type {

// Which members of a mutable type were there. Small types need no memory for it.
class SeenMembers {
  public:
    explicit SeenMembers(size_t count) {
        if (count > small_.size() * 64) large_.resize((count + 63) / 64);
    }
    void Set(size_t i) { Words()[i / 64] |= uint64_t{1} << (i % 64); }
    bool Has(size_t i) const { return (Words()[i / 64] >> (i % 64) & 1) != 0; }

  private:
    uint64_t *Words() { return large_.empty() ? small_.data() : large_.data(); }
    const uint64_t *Words() const { return large_.empty() ? small_.data() : large_.data(); }

    std::array<uint64_t, 2> small_{};
    std::vector<uint64_t> large_;
};

enum class ReadMode {
    kAll,
    kKeys,       // the key members of a sample; what else it holds is passed over
    kStrictKeys  // a key-only payload: all keys must be there, and nothing be cut off
};

// Every read that fails leaves the record safe to finalise and to read into again. May throw
// std::bad_alloc.
template <bool kSwap>
class Reader {
  public:
    Reader(const ReadProgram &program, const uint8_t *bytes, size_t size, ReadMode mode)
        : program_(program), cursor_(bytes, size), skipper_(program, &cursor_), mode_(mode) {}

    bool Read(void *record) {
        return Value(program_.root, static_cast<char *>(record), mode_ == ReadMode::kKeys);
    }

    // Bytes that were not read.
    size_t left() const { return cursor_.left(); }

  private:
    // `keys_only` reduces the structure that `op` reads to its key members.
    bool Value(const Op &op, char *base, bool keys_only) {
        switch (op.code) {
            case OpCode::kRun:
                return Run(op, base);
            case OpCode::kString:
                return String(op, base);
            case OpCode::kAggregate: {
                const Aggregate &aggregate = program_.aggregates[op.index];
                return ReadAggregate(aggregate, base + op.offset, keys_only && aggregate.is_keyed);
            }
            case OpCode::kElements:
                return Elements(op, base + op.offset);
            case OpCode::kPrimitiveSequence:
            case OpCode::kSequence:
                return Sequence(op, base);
            case OpCode::kOptional:
                return Optional(op, base);
            case OpCode::kOptionalPresent:
                return PresentOptional(op, base);
            default:
                return false;
        }
    }

    bool Run(const Op &op, char *base) {
        if ((op.flags & kOpHasDheader) == 0) {
            return cursor_.Align(op.alignment) &&
                   cursor_.Words(base + op.offset, op.count, op.width);
        }
        const uint8_t *outer = nullptr;
        if (!cursor_.OpenCount(&outer)) return false;
        const bool read = cursor_.Words(base + op.offset, op.count, op.width);
        cursor_.CloseFrame(outer);
        return read;
    }

    bool String(const Op &op, char *base) {
        uint32_t size = 0;
        if (!cursor_.Word32(&size) || size > cursor_.left()) return false;
        const auto *text = reinterpret_cast<const char *>(cursor_.at());
        if (size == 0) {  // not by the standard, yet sent by some for ""
            text = "";
            size = 1;
        } else {
            if (text[size - 1] != '\0') return false;
            cursor_.Skip(size);
        }
        if (size - 1 > op.count) return false;
        char *const place = base + op.offset;
        auto *buffer = static_cast<char *>(LoadPointer(place));
        const bool exact = (op.flags & kOpExactString) != 0;
        if (exact || buffer == nullptr) {
            char *const fresh = DDS_String_alloc(exact ? size - 1 : op.count);
            if (fresh == nullptr) return false;
            DDS_String_free(buffer);
            buffer = fresh;
            StorePointer(place, buffer);
        }
        std::memcpy(buffer, text, size);
        return true;
    }

    bool Elements(const Op &op, char *first) {
        const uint8_t *outer = nullptr;
        const bool framed = (op.flags & kOpHasDheader) != 0;
        if (framed && !cursor_.OpenCount(&outer)) return false;
        const ReadElement &element = program_.elements[op.index];
        for (size_t i = 0; i < op.count; ++i) {
            if (!Value(element.op, first + i * element.stride, false)) return false;
        }
        if (framed) cursor_.CloseFrame(outer);
        return true;
    }

    bool Sequence(const Op &op, char *base) {
        const uint8_t *outer = nullptr;
        const bool framed = (op.flags & kOpHasDheader) != 0;
        if (framed && !cursor_.OpenCount(&outer)) return false;
        auto *const sequence = reinterpret_cast<KOLT_Sequence *>(base + op.offset);
        const bool read = op.code == OpCode::kSequence ? SequenceElements(op, sequence)
                                                       : SequenceWords(op, sequence);
        if (!read) return false;
        if (framed) cursor_.CloseFrame(outer);
        return true;
    }

    // Room for as many elements as the bytes that are left can hold at most.
    bool Resize(const Op &op, KOLT_Sequence *sequence, uint32_t count, size_t element_size) {
        if (count > op.count || count > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM ||
            count > cursor_.left() / element_size) {
            return false;
        }
        const TypeCodeElementOps ops(*program_.elements[op.index].type);
        SequenceEnsureInitialized(sequence);
        if (count > sequence->_maximum) {
            // What is there need not be copied into the new buffer.
            if (!SequenceSetLength(sequence, ops, 0)) return false;
        }
        return SequenceSetLength(sequence, ops, static_cast<DDS_Long>(count));
    }

    static char *SequenceElementAt(KOLT_Sequence *sequence, size_t index, size_t stride) {
        if (sequence->_contiguous_buffer != nullptr) {
            return static_cast<char *>(sequence->_contiguous_buffer) + index * stride;
        }
        return static_cast<char *>(LoadPointer(sequence->_discontiguous_buffer + index));
    }

    bool SequenceWords(const Op &op, KOLT_Sequence *sequence) {
        uint32_t count = 0;
        if (!cursor_.Word32(&count)) return false;
        if (count > 0 && !cursor_.Align(AlignmentOf(program_.version, op.width))) return false;
        if (!Resize(op, sequence, count, op.width)) return false;
        if (count == 0) return true;
        if (sequence->_contiguous_buffer != nullptr) {
            return cursor_.Words(sequence->_contiguous_buffer, count, op.width);
        }
        for (size_t i = 0; i < count; ++i) {
            char *const element = SequenceElementAt(sequence, i, op.width);
            if (element == nullptr || !cursor_.Words(element, 1, op.width)) return false;
        }
        return true;
    }

    bool SequenceElements(const Op &op, KOLT_Sequence *sequence) {
        const ReadElement &element = program_.elements[op.index];
        uint32_t count = 0;
        if (!cursor_.Word32(&count) || !Resize(op, sequence, count, element.minimum_size)) {
            return false;
        }
        for (size_t i = 0; i < count; ++i) {
            char *const place = SequenceElementAt(sequence, i, element.stride);
            if (place == nullptr || !Value(element.op, place, false)) return false;
        }
        return true;
    }

    bool Optional(const Op &op, char *base) {
        if (program_.version == XcdrVersion::k2) {
            uint8_t present = 0;
            if (!cursor_.Words(&present, 1, 1)) return false;
            return present != 0 ? PresentOptional(op, base) : AbsentOptional(op, base);
        }
        MemberHeader header;
        if (!ReadParameterHeader(&cursor_, &header) || header.sentinel || header.ignored ||
            header.id != op.constant) {
            return false;
        }
        if (header.size == 0) return AbsentOptional(op, base);
        return InFrame(header.size, [&] { return PresentOptional(op, base); });
    }

    bool AbsentOptional(const Op &op, char *base) {
        char *const place = base + op.offset;
        DeleteOptional(*program_.elements[op.index].type, LoadPointer(place));
        StorePointer(place, nullptr);
        return true;
    }

    bool PresentOptional(const Op &op, char *base) {
        const ReadElement &element = program_.elements[op.index];
        char *const place = base + op.offset;
        void *value = LoadPointer(place);
        if (value == nullptr) {
            value = NewOptional(*element.type, kDefaultAllocation);
            if (value == nullptr) return false;
            StorePointer(place, value);
        }
        return Value(element.op, static_cast<char *>(value), false);
    }

    // Reads inside a frame of `size` bytes, in which XCDR1 counts alignment anew (XTypes 7.4.1.2).
    template <typename Function>
    bool InFrame(size_t size, Function &&read) {
        const uint8_t *outer = nullptr;
        if (!cursor_.OpenFrame(size, &outer)) return false;
        const uint8_t *const origin = cursor_.origin();
        if (program_.version == XcdrVersion::k1) cursor_.set_origin(cursor_.at());
        if (!read()) return false;
        cursor_.CloseFrame(outer);
        cursor_.set_origin(origin);
        return true;
    }

    bool ReadAggregate(const Aggregate &aggregate, char *record, bool keys_only) {
        switch (aggregate.framing) {
            case Framing::kPlain:
            case Framing::kOpen:
                return Members(aggregate, record, keys_only);
            case Framing::kDelimited: {
                const uint8_t *outer = nullptr;
                if (!cursor_.OpenCount(&outer)) return false;
                if (!Members(aggregate, record, keys_only)) return false;
                if (mode_ == ReadMode::kStrictKeys && cursor_.left() > 0) return false;
                cursor_.CloseFrame(outer);
                return true;
            }
            case Framing::kParameterList1:
                return Parameters(aggregate, record, keys_only);
            case Framing::kParameterList2: {
                const uint8_t *outer = nullptr;
                if (!cursor_.OpenCount(&outer)) return false;
                if (!Parameters(aggregate, record, keys_only)) return false;
                cursor_.CloseFrame(outer);
                return true;
            }
        }
        return false;
    }

    // Members one after the other.
    bool Members(const Aggregate &aggregate, char *record, bool keys_only) {
        if (aggregate.is_union) return PlainUnion(aggregate, record);
        const bool complete = aggregate.framing == Framing::kPlain ||
                              (aggregate.fixed_size > 0 && cursor_.Padding(8) == 0 &&
                               aggregate.fixed_size <= cursor_.left()) ||
                              (aggregate.fixed_size > 0 && program_.version == XcdrVersion::k2 &&
                               aggregate.fixed_size <= cursor_.left());
        if (complete && !keys_only) {
            for (const Op &op : aggregate.body) {
                if (!Value(op, record, false)) return false;
            }
            return true;
        }
        const bool open = aggregate.framing != Framing::kPlain;
        for (const ReadMember &member : aggregate.members) {
            if (open && cursor_.AtEnd(member.op.alignment)) {
                return ResetFrom(aggregate, record, member.index, keys_only);
            }
            const bool wanted = !keys_only || member.is_key;
            if (!(wanted ? Value(member.op, record, keys_only) : skipper_.Skip(member.op))) {
                return false;
            }
        }
        return true;
    }

    bool ResetFrom(const Aggregate &aggregate, char *record, DDS_UnsignedLong first,
                   bool keys_only) {
        if (mode_ == ReadMode::kStrictKeys) return false;
        for (DDS_UnsignedLong i = first; i < aggregate.type->member_count; ++i) {
            if (keys_only && !aggregate.type->members[i].is_key) continue;
            if (!ResetMember(*aggregate.type, record, i)) return false;
        }
        return true;
    }

    bool Discriminator(const Aggregate &aggregate, char *record, DDS_UnsignedLong *selected) {
        if (!Run(aggregate.discriminator, record)) return false;
        *selected = SelectedMember(*aggregate.type, LoadDiscriminator(*aggregate.type, record));
        return true;
    }

    // A discriminator that selects no branch stays as it came, and no branch follows.
    bool PlainUnion(const Aggregate &aggregate, char *record) {
        DDS_UnsignedLong selected = 0;
        if (!Discriminator(aggregate, record, &selected)) return false;
        if (selected == aggregate.type->member_count) return true;
        const ReadMember &member = aggregate.members[selected];
        if (aggregate.framing != Framing::kPlain && cursor_.AtEnd(member.op.alignment)) {
            return mode_ != ReadMode::kStrictKeys && ResetMember(*aggregate.type, record, selected);
        }
        return Value(member.op, record, false);
    }

    // The next member header of either version. False when the list is malformed; `*done` at its
    // end.
    bool NextHeader(const Aggregate &aggregate, MemberHeader *header, bool *done) {
        if (aggregate.framing == Framing::kParameterList1) {
            if (!ReadParameterHeader(&cursor_, header)) return false;
            *done = header->sentinel;
            return true;
        }
        *done = cursor_.AtEnd(4);
        return *done || ReadMemberHeader(&cursor_, header);
    }

    // Members under headers of their own, in any order. Writers keep the order of declaration, so
    // the member after the last one is tried first.
    bool Parameters(const Aggregate &aggregate, char *record, bool keys_only) {
        if (aggregate.is_union) return ParameterUnion(aggregate, record);
        SeenMembers seen(aggregate.members.size());
        size_t expected = 0;
        size_t found = 0;
        for (;;) {
            MemberHeader header;
            bool done = false;
            if (!NextHeader(aggregate, &header, &done)) return false;
            if (done) break;
            const size_t place = header.ignored ? kNone : Find(aggregate, header.id, expected);
            if (place == kNone) {
                if (header.must_understand && !header.ignored) return false;
                if (!cursor_.Skip(header.size)) return false;
                continue;
            }
            const ReadMember &member = aggregate.members[place];
            expected = place + 1;
            const bool repeated = seen.Has(place);
            if (!repeated) ++found;
            seen.Set(place);
            // The first of several values counts, as it does for who looks for one field.
            if (repeated || (keys_only && !member.is_key)) {
                if (!cursor_.Skip(header.size)) return false;
                continue;
            }
            if (!InFrame(header.size, [&] { return Value(member.op, record, keys_only); })) {
                return false;
            }
        }
        return found == aggregate.members.size() || ResetUnseen(aggregate, record, seen, keys_only);
    }

    static size_t Find(const Aggregate &aggregate, uint32_t id, size_t expected) {
        if (expected < aggregate.members.size() && aggregate.members[expected].id == id) {
            return expected;
        }
        const auto place = std::lower_bound(aggregate.by_id.begin(), aggregate.by_id.end(),
                                            std::make_pair(id, uint32_t{0}));
        return place != aggregate.by_id.end() && place->first == id ? place->second : kNone;
    }

    bool ResetUnseen(const Aggregate &aggregate, char *record, const SeenMembers &seen,
                     bool keys_only) {
        for (size_t i = 0; i < aggregate.members.size(); ++i) {
            const ReadMember &member = aggregate.members[i];
            if (seen.Has(i) || (keys_only && !member.is_key)) continue;
            const bool optional = aggregate.type->members[member.index].is_optional != 0;
            if (mode_ == ReadMode::kStrictKeys && !optional) return false;
            if (!ResetMember(*aggregate.type, record, member.index)) return false;
        }
        return true;
    }

    // The discriminator comes first. A branch other than the selected one is passed over; the
    // selected one keeps its initial value when it is absent.
    bool ParameterUnion(const Aggregate &aggregate, char *record) {
        const DDS_UnsignedLong no_branch = aggregate.type->member_count;
        DDS_UnsignedLong selected = no_branch;
        bool has_discriminator = false;
        bool has_branch = false;
        for (;;) {
            MemberHeader header;
            bool done = false;
            if (!NextHeader(aggregate, &header, &done)) return false;
            if (done) break;
            if (!header.ignored && header.id == aggregate.discriminator_id && !has_discriminator) {
                has_discriminator = InFrame(
                    header.size, [&] { return Discriminator(aggregate, record, &selected); });
                if (!has_discriminator) return false;
                continue;
            }
            const size_t place = header.ignored ? kNone : Find(aggregate, header.id, kNone);
            if (place == kNone) {
                if (header.must_understand && !header.ignored) return false;
            } else if (!has_discriminator) {
                return false;
            } else if (aggregate.members[place].index == selected && !has_branch) {
                has_branch = true;
                if (!InFrame(header.size,
                             [&] { return Value(aggregate.members[place].op, record, false); })) {
                    return false;
                }
                continue;
            }
            if (!cursor_.Skip(header.size)) return false;
        }
        if (!has_discriminator) return false;
        return has_branch || selected == no_branch ||
               ResetMember(*aggregate.type, record, selected);
    }

    const ReadProgram &program_;
    Cursor<kSwap> cursor_;
    Skipper<kSwap> skipper_;
    ReadMode mode_;
};

}  // namespace kolt::type

#endif  // KOLT_SRC_TYPE_CDR_READER_HPP
