// The largest and smallest size that a write program can produce.
//
// The end of every operation grows with its start and with its content, so that the largest content
// everywhere gives the largest end, whatever the padding in between.
#include <algorithm>

#include "type/cdr_program.hpp"

namespace kolt::type {
namespace {

constexpr uint64_t kSaturated = UINT64_MAX;
// Far above every size that is of use, far below where additions could wrap.
constexpr uint64_t kLimit = uint64_t{1} << 40;

template <bool kMaximum>
class Bounds {
  public:
    explicit Bounds(const WriteProgram &program) : program_(program) {}

    uint64_t Run(Range range, uint64_t position) const {
        const Op *const end = program_.end(range);
        for (const Op *op = program_.begin(range); op != end; ++op) {
            position = Step(*op, position);
            if (position > kLimit) return kSaturated;
        }
        return position;
    }

  private:
    static uint64_t Align(uint64_t position, uint64_t alignment) {
        return (position + alignment - 1) & ~(alignment - 1);
    }

    uint64_t Element(uint32_t index, uint64_t position) const {
        return Run(program_.elements[index].ops, position);
    }

    uint64_t Step(const Op &op, uint64_t position) const {
        switch (op.code) {
            case OpCode::kRun:
                return Align(position, op.alignment) + uint64_t{op.count} * op.width;
            case OpCode::kString:
                if (kMaximum && op.count == kUnbounded) return kSaturated;
                return Align(position, 4) + 4 + (kMaximum ? uint64_t{op.count} + 1 : 1);
            case OpCode::kPrimitiveSequence:
                position = Align(position, 4) + 4;
                if (!kMaximum || op.count == 0) return position;
                if (op.count == kUnbounded) return kSaturated;
                return Align(position, AlignmentOf(program_.version, op.width)) +
                       uint64_t{op.count} * op.width;
            case OpCode::kSequence:
                position = Align(position, 4) + 4;
                if (!kMaximum) return position;
                return op.count == kUnbounded ? kSaturated : Repeat(op.index, op.count, position);
            case OpCode::kElements:
                return Repeat(op.index, op.count, position);
            case OpCode::kConstants:
                return Align(position, 4) + uint64_t{op.count} * 4;
            case OpCode::kStretch:
                return Align(position, 4) + uint64_t{program_.stretches[op.index].words.count} * 4;
            case OpCode::kSentinel:
                return Align(position, 4) + 4;
            case OpCode::kDelimited:
                return Element(op.index, Align(position, 4) + 4);
            case OpCode::kPresenceFlag:
                return position + 1;
            case OpCode::kIfPresent:
                return kMaximum ? Element(op.index, position) : position;
            case OpCode::kParameter:
                return Parameter(op, position);
            case OpCode::kSelect:
                return Select(op, position);
            default:
                return kSaturated;
        }
    }

    uint64_t Parameter(const Op &op, uint64_t position) const {
        const bool may_be_absent = (op.flags & (kOpOptional | kOpOptionalOmitted)) != 0;
        if (!kMaximum && (op.flags & kOpOptionalOmitted) != 0) return position;
        const bool extended = op.constant > kLargestShortId;
        const uint64_t start = Align(position, 4) + (extended ? 12 : 4);
        if (!kMaximum && may_be_absent) return start;
        const uint64_t length = Element(op.index, 0);
        if (length > kLimit) return kSaturated;
        return start + length + (!extended && length > kLargestShortLength ? 8 : 0);
    }

    // Positions modulo 8 repeat after at most 8 elements, and with them the growth.
    uint64_t Repeat(uint32_t index, uint64_t count, uint64_t position) const {
        uint64_t seen_at[8];
        uint64_t seen_position[8];
        std::fill(std::begin(seen_at), std::end(seen_at), kSaturated);
        for (uint64_t i = 0; i < count; ++i) {
            const uint64_t residue = position % 8;
            if (seen_at[residue] != kSaturated) {
                const uint64_t period = i - seen_at[residue];
                const uint64_t growth = position - seen_position[residue];
                const uint64_t rounds = (count - i) / period;
                if (growth > 0 && rounds > kLimit / growth) return kSaturated;
                position += rounds * growth;
                i += rounds * period;
                for (; i < count; ++i) position = Element(index, position);
                return position;
            }
            seen_at[residue] = i;
            seen_position[residue] = position;
            position = Element(index, position);
            if (position > kLimit) return kSaturated;
        }
        return position;
    }

    uint64_t Select(const Op &op, uint64_t position) const {
        const Selection &selection = program_.selections[op.index];
        // Without a default branch a discriminator may select nothing.
        uint64_t result = selection.default_element == kNone
                              ? position
                              : Element(selection.default_element, position);
        for (const auto &[label, element] : selection.cases) {
            const uint64_t end = Element(element, position);
            result = kMaximum ? std::max(result, end) : std::min(result, end);
        }
        return result;
    }

    const WriteProgram &program_;
};

}  // namespace

uint64_t MaximumEnd(const WriteProgram &program, uint64_t start) {
    return Bounds<true>(program).Run(program.root, start);
}

uint64_t MinimumEnd(const WriteProgram &program, uint64_t start) {
    return Bounds<false>(program).Run(program.root, start);
}

}  // namespace kolt::type
