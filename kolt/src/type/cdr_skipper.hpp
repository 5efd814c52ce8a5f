// Passing over values without a place to put them.
#ifndef KOLT_SRC_TYPE_CDR_SKIPPER_HPP
#define KOLT_SRC_TYPE_CDR_SKIPPER_HPP

#include "type/cdr_cursor.hpp"
#include "type/layout.hpp"

namespace kolt::type {

template <bool kSwap>
class Skipper {
  public:
    Skipper(const ReadProgram &program, Cursor<kSwap> *cursor)
        : program_(program), cursor_(*cursor) {}

    bool Skip(const Op &op) {
        switch (op.code) {
            case OpCode::kRun:
                if ((op.flags & kOpHasDheader) != 0) return SkipDelimited();
                return cursor_.Align(op.alignment) && cursor_.SkipWords(op.count, op.width);
            case OpCode::kString: {
                uint32_t size = 0;
                return cursor_.Word32(&size) && cursor_.Skip(size);
            }
            case OpCode::kPrimitiveSequence: {
                if ((op.flags & kOpHasDheader) != 0) return SkipDelimited();
                uint32_t count = 0;
                if (!cursor_.Word32(&count)) return false;
                if (count == 0) return true;
                return cursor_.Align(AlignmentOf(program_.version, op.width)) &&
                       cursor_.SkipWords(count, op.width);
            }
            case OpCode::kSequence: {
                if ((op.flags & kOpHasDheader) != 0) return SkipDelimited();
                uint32_t count = 0;
                return cursor_.Word32(&count) && SkipElements(op.index, count);
            }
            case OpCode::kElements:
                if ((op.flags & kOpHasDheader) != 0) return SkipDelimited();
                return SkipElements(op.index, op.count);
            case OpCode::kAggregate:
                return SkipAggregate(program_.aggregates[op.index]);
            case OpCode::kOptional:
                return SkipOptional(op);
            case OpCode::kOptionalPresent:
                return Skip(program_.elements[op.index].op);
            default:
                return false;
        }
    }

    // `count` elements, each of which takes at least a byte.
    bool SkipElements(uint32_t index, uint32_t count) {
        const ReadElement &element = program_.elements[index];
        if (count > cursor_.left() / element.minimum_size) return false;
        for (uint32_t i = 0; i < count; ++i) {
            if (!Skip(element.op)) return false;
        }
        return true;
    }

  private:
    bool SkipDelimited() {
        uint32_t size = 0;
        return cursor_.Word32(&size) && cursor_.Skip(size);
    }

    bool SkipOptional(const Op &op) {
        if (program_.version == XcdrVersion::k1) {
            MemberHeader header;
            return ReadParameterHeader(&cursor_, &header) && cursor_.Skip(header.size);
        }
        uint8_t present = 0;
        if (!cursor_.Words(&present, 1, 1)) return false;
        return present == 0 || Skip(program_.elements[op.index].op);
    }

    bool SkipParameters() {
        for (;;) {
            MemberHeader header;
            if (!ReadParameterHeader(&cursor_, &header)) return false;
            if (header.sentinel) return true;
            if (!cursor_.Skip(header.size)) return false;
        }
    }

    bool SkipAggregate(const Aggregate &aggregate) {
        switch (aggregate.framing) {
            case Framing::kDelimited:
            case Framing::kParameterList2:
                return SkipDelimited();
            case Framing::kParameterList1:
                return SkipParameters();
            default:
                break;
        }
        if (aggregate.is_union) return SkipUnion(aggregate);
        for (const ReadMember &member : aggregate.members) {
            if (aggregate.framing == Framing::kOpen && cursor_.AtEnd(member.op.alignment)) break;
            if (!Skip(member.op)) return false;
        }
        return true;
    }

    bool SkipUnion(const Aggregate &aggregate) {
        const Op &op = aggregate.discriminator;
        uint64_t storage = 0;
        if (!cursor_.Align(op.alignment) || !cursor_.Words(&storage, 1, op.width)) return false;
        const int64_t value = LoadInteger(aggregate.type->discriminator_type->kind, &storage);
        const DDS_UnsignedLong selected = SelectedMember(*aggregate.type, value);
        return selected == aggregate.type->member_count || Skip(aggregate.members[selected].op);
    }

    const ReadProgram &program_;
    Cursor<kSwap> &cursor_;
};

}  // namespace kolt::type

#endif  // KOLT_SRC_TYPE_CDR_SKIPPER_HPP
