// The interpreter of write programs.
#ifndef KOLT_SRC_TYPE_CDR_WRITER_HPP
#define KOLT_SRC_TYPE_CDR_WRITER_HPP

#include "type/cdr_sink.hpp"
#include "type/layout.hpp"
#include "type/sequence_core.hpp"

namespace kolt::type {

// Runs `program` over `record`. False when the sink is full, or the record can't be serialised: a
// string that is NULL, or a string or sequence beyond its bound.
template <typename Sink>
class Writer {
  public:
    Writer(const WriteProgram &program, Sink *sink) : program_(program), sink_(*sink) {}

    bool Write(const void *record) { return Run(program_.root, static_cast<const char *>(record)); }

  private:
    // The operations that samples consist of mostly, in line; the others behind a call.
    bool Run(Range range, const char *base) {
        const Op *const end = program_.end(range);
        for (const Op *op = program_.begin(range); op != end; ++op) {
            bool written = false;
            if (op->code == OpCode::kRun) {
                written = sink_.Align(op->alignment) &&
                          sink_.Words(base + op->offset, op->count, op->width);
            } else if (op->code == OpCode::kString) {
                written = String(*op, base);
            } else if (op->code == OpCode::kStretch) {
                written = WriteStretch(program_.stretches[op->index], base);
            } else if (op->code == OpCode::kConstants) {
                written = sink_.Align(4) &&
                          sink_.Words(program_.constants.data() + op->index, op->count, 4);
            } else {
                written = Step(*op, base);
            }
            if (!written) return false;
        }
        return true;
    }

    bool RunElement(uint32_t index, const char *base) {
        return Run(program_.elements[index].ops, base);
    }

    bool Step(const Op &op, const char *base) {
        switch (op.code) {
            case OpCode::kParameter:
                return Parameter(op, base);
            case OpCode::kDelimited: {
                size_t mark = 0;
                return sink_.Align(4) && sink_.OpenCount(&mark) &&
                       RunElement(op.index, base + op.offset) && sink_.CloseCount(mark);
            }
            case OpCode::kPrimitiveSequence:
                return PrimitiveSequence(op, base);
            case OpCode::kSequence:
                return Sequence(op, base);
            case OpCode::kElements:
                return Elements(op, base + op.offset);
            case OpCode::kSelect:
                return Select(op, base);
            case OpCode::kPresenceFlag: {
                const uint8_t present = LoadPointer(base + op.offset) != nullptr;
                return sink_.Words(&present, 1, 1);
            }
            case OpCode::kIfPresent: {
                const void *const value = LoadPointer(base + op.offset);
                return value == nullptr || RunElement(op.index, static_cast<const char *>(value));
            }
            case OpCode::kSentinel:
                return sink_.Sentinel();
            default:
                return false;
        }
    }

    bool String(const Op &op, const char *base) {
        const auto *const text = static_cast<const char *>(LoadPointer(base + op.offset));
        if (text == nullptr) return false;
        const size_t length =
            op.count == kUnbounded ? std::strlen(text) : strnlen(text, size_t{op.count} + 1);
        if (length >= UINT32_MAX || length > op.count) return false;
        return sink_.String(text, static_cast<uint32_t>(length + 1));
    }

    bool WriteStretch(const Stretch &stretch, const char *base) {
        const StretchField *const fields = program_.fields.data() + stretch.fields.first;
        return sink_.Align(4) &&
               sink_.Patched(program_.constants.data() + stretch.words.first, stretch.words.count,
                             fields, fields + stretch.fields.count, base);
    }

    bool Parameter(const Op &op, const char *base) {
        const char *value = base + op.offset;
        if ((op.flags & (kOpOptional | kOpOptionalOmitted)) != 0) {
            value = static_cast<const char *>(LoadPointer(value));
            if (value == nullptr && (op.flags & kOpOptionalOmitted) != 0) return true;
        }
        ParameterMark mark;
        return sink_.OpenParameter(op, &mark) &&
               (value == nullptr || RunElement(op.index, value)) && sink_.CloseParameter(op, mark);
    }

    // The sequence that a record holds: NULL when it does not hold to its rules or bound. One that
    // was never touched is empty.
    static const KOLT_Sequence *CheckedSequence(const Op &op, const char *base) {
        static constexpr KOLT_Sequence kEmpty = DDS_SEQUENCE_INITIALIZER;
        const auto *const sequence = reinterpret_cast<const KOLT_Sequence *>(base + op.offset);
        if (sequence->_sequence_init != KOLT_SEQUENCE_MAGIC) return &kEmpty;
        const bool has_buffer =
            sequence->_contiguous_buffer != nullptr || sequence->_discontiguous_buffer != nullptr;
        if (sequence->_length > op.count || (sequence->_length > 0 && !has_buffer)) return nullptr;
        return sequence;
    }

    static const char *SequenceElementAt(const KOLT_Sequence *sequence, size_t index,
                                         size_t stride) {
        if (sequence->_contiguous_buffer != nullptr) {
            return static_cast<const char *>(sequence->_contiguous_buffer) + index * stride;
        }
        return static_cast<const char *>(LoadPointer(sequence->_discontiguous_buffer + index));
    }

    bool PrimitiveSequence(const Op &op, const char *base) {
        const KOLT_Sequence *const sequence = CheckedSequence(op, base);
        if (sequence == nullptr || !sink_.Align(4) || !sink_.Word32(sequence->_length)) {
            return false;
        }
        if (sequence->_length == 0) return true;
        if (!sink_.Align(AlignmentOf(program_.version, op.width))) return false;
        if (sequence->_contiguous_buffer != nullptr) {
            return sink_.Words(sequence->_contiguous_buffer, sequence->_length, op.width);
        }
        for (size_t i = 0; i < sequence->_length; ++i) {
            const char *const element = SequenceElementAt(sequence, i, op.width);
            if (element == nullptr || !sink_.Words(element, 1, op.width)) return false;
        }
        return true;
    }

    bool Sequence(const Op &op, const char *base) {
        const KOLT_Sequence *const sequence = CheckedSequence(op, base);
        if (sequence == nullptr || !sink_.Align(4) || !sink_.Word32(sequence->_length)) {
            return false;
        }
        const size_t stride = program_.elements[op.index].stride;
        for (size_t i = 0; i < sequence->_length; ++i) {
            const char *const element = SequenceElementAt(sequence, i, stride);
            if (element == nullptr || !RunElement(op.index, element)) return false;
        }
        return true;
    }

    bool Elements(const Op &op, const char *first) {
        const WriteElement &element = program_.elements[op.index];
        for (size_t i = 0; i < op.count; ++i) {
            if (!Run(element.ops, first + i * element.stride)) return false;
        }
        return true;
    }

    bool Select(const Op &op, const char *base) {
        const Selection &selection = program_.selections[op.index];
        const int64_t discriminator =
            LoadInteger(selection.discriminator_kind, base + selection.discriminator_offset);
        for (const auto &[label, element] : selection.cases) {
            if (label == discriminator) return RunElement(element, base);
        }
        return selection.default_element == kNone || RunElement(selection.default_element, base);
    }

    const WriteProgram &program_;
    Sink &sink_;
};

}  // namespace kolt::type

#endif  // KOLT_SRC_TYPE_CDR_WRITER_HPP
