// SPDX-License-Identifier: Apache-2.0
// The interpreter of write programs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "type/cdr/cdr_sink.hpp"
#include "type/sequence/sequence_core.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::type {

// Runs `program` over `record`. False when the sink is full, or the record can't be serialised: a
// string that is NULL, or a string or sequence beyond its bound.
template <typename Sink>
class Writer {
  public:
    Writer(const WriteProgram &program, Sink *sink) : program_(program), sink_(*sink) {}

    bool write(const void *record) { return run(program_.root, static_cast<const char *>(record)); }

  private:
    // The operations that samples consist of mostly, in line; the others behind a call.
    bool run(Range range, const char *base) {
        const Op *const end = program_.end(range);
        for (const Op *op = program_.begin(range); op != end; ++op) {
            bool written = false;
            if (op->code == OpCode::kRun) {
                written = sink_.align(op->alignment) &&
                          sink_.words(base + op->offset, op->count, op->width);
            } else if (op->code == OpCode::kString) {
                written = string(*op, base);
            } else if (op->code == OpCode::kStretch) {
                written = write_stretch(program_.stretches[op->index], base);
            } else if (op->code == OpCode::kConstants) {
                written = sink_.align(4) &&
                          sink_.words(program_.constants.data() + op->index, op->count, 4);
            } else {
                written = step(*op, base);
            }
            if (!written) {
                return false;
            }
        }
        return true;
    }

    bool run_element(std::uint32_t index, const char *base) {
        return run(program_.elements[index].ops, base);
    }

    bool step(const Op &op, const char *base) {
        switch (op.code) {
            case OpCode::kParameter:
                return parameter(op, base);
            case OpCode::kDelimited: {
                std::size_t mark = 0;
                return sink_.align(4) && sink_.open_count(&mark) &&
                       run_element(op.index, base + op.offset) && sink_.close_count(mark);
            }
            case OpCode::kPrimitiveSequence:
                return primitive_sequence(op, base);
            case OpCode::kSequence:
                return sequence(op, base);
            case OpCode::kElements:
                return elements(op, base + op.offset);
            case OpCode::kSelect:
                return select(op, base);
            case OpCode::kPresenceFlag: {
                const std::uint8_t present = load_pointer(base + op.offset) != nullptr;
                return sink_.words(&present, 1, 1);
            }
            case OpCode::kIfPresent: {
                const void *const value = load_pointer(base + op.offset);
                return value == nullptr || run_element(op.index, static_cast<const char *>(value));
            }
            case OpCode::kSentinel:
                return sink_.sentinel();
            default:
                return false;
        }
    }

    bool string(const Op &op, const char *base) {
        const auto *const text = static_cast<const char *>(load_pointer(base + op.offset));
        if (text == nullptr) {
            return false;
        }
        const std::size_t length =
            op.count == kUnbounded ? std::strlen(text) : strnlen(text, std::size_t{op.count} + 1);
        if (length >= UINT32_MAX || length > op.count) {
            return false;
        }
        return sink_.string(text, static_cast<std::uint32_t>(length + 1));
    }

    bool write_stretch(const Stretch &stretch, const char *base) {
        const StretchField *const fields = program_.fields.data() + stretch.fields.first;
        return sink_.align(4) &&
               sink_.patched(program_.constants.data() + stretch.words.first, stretch.words.count,
                             fields, fields + stretch.fields.count, base);
    }

    bool parameter(const Op &op, const char *base) {
        const char *value = base + op.offset;
        if ((op.flags & (kOpOptional | kOpOptionalOmitted)) != 0) {
            value = static_cast<const char *>(load_pointer(value));
            if (value == nullptr && (op.flags & kOpOptionalOmitted) != 0) {
                return true;
            }
        }
        ParameterMark mark;
        return sink_.open_parameter(op, &mark) &&
               (value == nullptr || run_element(op.index, value)) &&
               sink_.close_parameter(op, mark);
    }

    // The sequence that a record holds: NULL when it does not hold to its rules or bound. One that
    // was never touched is empty.
    static const KOLT_Sequence *checked_sequence(const Op &op, const char *base) {
        static constexpr KOLT_Sequence kEmpty = DDS_SEQUENCE_INITIALIZER;
        const auto *const sequence = reinterpret_cast<const KOLT_Sequence *>(base + op.offset);
        if (sequence->_sequence_init != KOLT_SEQUENCE_MAGIC) {
            return &kEmpty;
        }
        const bool has_buffer =
            sequence->_contiguous_buffer != nullptr || sequence->_discontiguous_buffer != nullptr;
        if (sequence->_length > op.count || (sequence->_length > 0 && !has_buffer)) {
            return nullptr;
        }
        return sequence;
    }

    static const char *sequence_element_at(const KOLT_Sequence *sequence, std::size_t index,
                                           std::size_t stride) {
        if (sequence->_contiguous_buffer != nullptr) {
            return static_cast<const char *>(sequence->_contiguous_buffer) + index * stride;
        }
        return static_cast<const char *>(load_pointer(sequence->_discontiguous_buffer + index));
    }

    bool primitive_sequence(const Op &op, const char *base) {
        const KOLT_Sequence *const sequence = checked_sequence(op, base);
        if (sequence == nullptr || !sink_.align(4) || !sink_.word32(sequence->_length)) {
            return false;
        }
        if (sequence->_length == 0) {
            return true;
        }
        if (!sink_.align(alignment_of(program_.version, op.width))) {
            return false;
        }
        if (sequence->_contiguous_buffer != nullptr) {
            return sink_.words(sequence->_contiguous_buffer, sequence->_length, op.width);
        }
        for (std::size_t i = 0; i < sequence->_length; ++i) {
            const char *const element = sequence_element_at(sequence, i, op.width);
            if (element == nullptr || !sink_.words(element, 1, op.width)) {
                return false;
            }
        }
        return true;
    }

    bool sequence(const Op &op, const char *base) {
        const KOLT_Sequence *const sequence = checked_sequence(op, base);
        if (sequence == nullptr || !sink_.align(4) || !sink_.word32(sequence->_length)) {
            return false;
        }
        const std::size_t stride = program_.elements[op.index].stride;
        for (std::size_t i = 0; i < sequence->_length; ++i) {
            const char *const element = sequence_element_at(sequence, i, stride);
            if (element == nullptr || !run_element(op.index, element)) {
                return false;
            }
        }
        return true;
    }

    bool elements(const Op &op, const char *first) {
        const WriteElement &element = program_.elements[op.index];
        for (std::size_t i = 0; i < op.count; ++i) {
            if (!run(element.ops, first + i * element.stride)) {
                return false;
            }
        }
        return true;
    }

    bool select(const Op &op, const char *base) {
        const Selection &selection = program_.selections[op.index];
        const std::int64_t discriminator =
            load_integer(selection.discriminator_kind, base + selection.discriminator_offset);
        for (const auto &[label, element] : selection.cases) {
            if (label == discriminator) {
                return run_element(element, base);
            }
        }
        return selection.default_element == kNone || run_element(selection.default_element, base);
    }

    const WriteProgram &program_;
    Sink &sink_;
};

}  // namespace kolt::type
