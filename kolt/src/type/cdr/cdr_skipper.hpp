// SPDX-License-Identifier: Apache-2.0
// Passing over values without a place to put them.
#pragma once

#include <cstdint>

#include "type/cdr/cdr_cursor.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::type {

template <bool kSwap>
class Skipper {
  public:
    Skipper(const ReadProgram &program, Cursor<kSwap> *cursor)
        : program_(program), cursor_(*cursor) {}

    bool skip(const Op &op) {
        switch (op.code) {
            case OpCode::kRun:
                if ((op.flags & kOpHasDheader) != 0) {
                    return skip_delimited();
                }
                return cursor_.align(op.alignment) && cursor_.skip_words(op.count, op.width);
            case OpCode::kString: {
                std::uint32_t size = 0;
                return cursor_.word32(&size) && cursor_.skip(size);
            }
            case OpCode::kPrimitiveSequence: {
                if ((op.flags & kOpHasDheader) != 0) {
                    return skip_delimited();
                }
                std::uint32_t count = 0;
                if (!cursor_.word32(&count)) {
                    return false;
                }
                if (count == 0) {
                    return true;
                }
                return cursor_.align(alignment_of(program_.version, op.width)) &&
                       cursor_.skip_words(count, op.width);
            }
            case OpCode::kSequence: {
                if ((op.flags & kOpHasDheader) != 0) {
                    return skip_delimited();
                }
                std::uint32_t count = 0;
                return cursor_.word32(&count) && skip_elements(op.index, count);
            }
            case OpCode::kElements:
                if ((op.flags & kOpHasDheader) != 0) {
                    return skip_delimited();
                }
                return skip_elements(op.index, op.count);
            case OpCode::kAggregate:
                return skip_aggregate(program_.aggregates[op.index]);
            case OpCode::kOptional:
                return skip_optional(op);
            case OpCode::kOptionalPresent:
                return skip(program_.elements[op.index].op);
            default:
                return false;
        }
    }

    // `count` elements, each of which takes at least a byte.
    bool skip_elements(std::uint32_t index, std::uint32_t count) {
        const ReadElement &element = program_.elements[index];
        if (count > cursor_.left() / element.minimum_size) {
            return false;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!skip(element.op)) {
                return false;
            }
        }
        return true;
    }

  private:
    bool skip_delimited() {
        std::uint32_t size = 0;
        return cursor_.word32(&size) && cursor_.skip(size);
    }

    bool skip_optional(const Op &op) {
        if (program_.version == XcdrVersion::k1) {
            MemberHeader header;
            return read_parameter_header(&cursor_, &header) && cursor_.skip(header.size);
        }
        std::uint8_t present = 0;
        if (!cursor_.words(&present, 1, 1)) {
            return false;
        }
        return present == 0 || skip(program_.elements[op.index].op);
    }

    bool skip_parameters() {
        for (;;) {
            MemberHeader header;
            if (!read_parameter_header(&cursor_, &header)) {
                return false;
            }
            if (header.sentinel) {
                return true;
            }
            if (!cursor_.skip(header.size)) {
                return false;
            }
        }
    }

    bool skip_aggregate(const Aggregate &aggregate) {
        switch (aggregate.framing) {
            case Framing::kDelimited:
            case Framing::kParameterList2:
                return skip_delimited();
            case Framing::kParameterList1:
                return skip_parameters();
            default:
                break;
        }
        if (aggregate.is_union) {
            return skip_union(aggregate);
        }
        for (const ReadMember &member : aggregate.members) {
            if (aggregate.framing == Framing::kOpen && cursor_.at_end(member.op.alignment)) {
                break;
            }
            if (!skip(member.op)) {
                return false;
            }
        }
        return true;
    }

    bool skip_union(const Aggregate &aggregate) {
        const Op &op = aggregate.discriminator;
        std::uint64_t storage = 0;
        if (!cursor_.align(op.alignment) || !cursor_.words(&storage, 1, op.width)) {
            return false;
        }
        const std::int64_t value = load_integer(aggregate.type->discriminator_type->kind, &storage);
        const DDS_UnsignedLong selected = selected_member(*aggregate.type, value);
        return selected == aggregate.type->member_count || skip(aggregate.members[selected].op);
    }

    const ReadProgram &program_;
    Cursor<kSwap> &cursor_;
};

}  // namespace kolt::type
