// SPDX-License-Identifier: Apache-2.0
// The largest and smallest size that a write program can produce.
//
// The end of every operation grows with its start and with its content, so that the largest content
// everywhere gives the largest end, whatever the padding in between.
#include <algorithm>

#include "type/cdr/cdr_program.hpp"

namespace kolt::type {
namespace {

constexpr std::uint64_t kSaturated = UINT64_MAX;
// Far above every size that is of use, far below where additions could wrap.
constexpr std::uint64_t kLimit = std::uint64_t{1} << 40;

template <bool kMaximum>
class Bounds {
  public:
    explicit Bounds(const WriteProgram &program) : program_(program) {}

    std::uint64_t run(Range range, std::uint64_t position) const {
        const Op *const end = program_.end(range);
        for (const Op *op = program_.begin(range); op != end; ++op) {
            position = step(*op, position);
            if (position > kLimit) {
                return kSaturated;
            }
        }
        return position;
    }

  private:
    static std::uint64_t align(std::uint64_t position, std::uint64_t alignment) {
        return (position + alignment - 1) & ~(alignment - 1);
    }

    std::uint64_t element(std::uint32_t index, std::uint64_t position) const {
        return run(program_.elements[index].ops, position);
    }

    std::uint64_t step(const Op &op, std::uint64_t position) const {
        switch (op.code) {
            case OpCode::kRun:
                return align(position, op.alignment) + std::uint64_t{op.count} * op.width;
            case OpCode::kString:
                if (kMaximum && op.count == kUnbounded) {
                    return kSaturated;
                }
                return align(position, 4) + 4 + (kMaximum ? std::uint64_t{op.count} + 1 : 1);
            case OpCode::kPrimitiveSequence:
                position = align(position, 4) + 4;
                if (!kMaximum || op.count == 0) {
                    return position;
                }
                if (op.count == kUnbounded) {
                    return kSaturated;
                }
                return align(position, alignment_of(program_.version, op.width)) +
                       std::uint64_t{op.count} * op.width;
            case OpCode::kSequence:
                position = align(position, 4) + 4;
                if (!kMaximum) {
                    return position;
                }
                return op.count == kUnbounded ? kSaturated : repeat(op.index, op.count, position);
            case OpCode::kElements:
                return repeat(op.index, op.count, position);
            case OpCode::kConstants:
                return align(position, 4) + std::uint64_t{op.count} * 4;
            case OpCode::kStretch:
                return align(position, 4) +
                       std::uint64_t{program_.stretches[op.index].words.count} * 4;
            case OpCode::kSentinel:
                return align(position, 4) + 4;
            case OpCode::kDelimited:
                return element(op.index, align(position, 4) + 4);
            case OpCode::kPresenceFlag:
                return position + 1;
            case OpCode::kIfPresent:
                return kMaximum ? element(op.index, position) : position;
            case OpCode::kParameter:
                return parameter(op, position);
            case OpCode::kSelect:
                return select(op, position);
            default:
                return kSaturated;
        }
    }

    std::uint64_t parameter(const Op &op, std::uint64_t position) const {
        const bool may_be_absent = (op.flags & (kOpOptional | kOpOptionalOmitted)) != 0;
        if (!kMaximum && (op.flags & kOpOptionalOmitted) != 0) {
            return position;
        }
        const bool extended = op.constant > kLargestShortId;
        const std::uint64_t start = align(position, 4) + (extended ? 12 : 4);
        if (!kMaximum && may_be_absent) {
            return start;
        }
        const std::uint64_t length = element(op.index, 0);
        if (length > kLimit) {
            return kSaturated;
        }
        return start + length + (!extended && length > kLargestShortLength ? 8 : 0);
    }

    // Positions modulo 8 repeat after at most 8 elements, and with them the growth.
    std::uint64_t repeat(std::uint32_t index, std::uint64_t count, std::uint64_t position) const {
        std::uint64_t seen_at[8];
        std::uint64_t seen_position[8];
        std::fill(std::begin(seen_at), std::end(seen_at), kSaturated);
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t residue = position % 8;
            if (seen_at[residue] != kSaturated) {
                const std::uint64_t period = i - seen_at[residue];
                const std::uint64_t growth = position - seen_position[residue];
                const std::uint64_t rounds = (count - i) / period;
                if (growth > 0 && rounds > kLimit / growth) {
                    return kSaturated;
                }
                position += rounds * growth;
                i += rounds * period;
                for (; i < count; ++i) {
                    position = element(index, position);
                }
                return position;
            }
            seen_at[residue] = i;
            seen_position[residue] = position;
            position = element(index, position);
            if (position > kLimit) {
                return kSaturated;
            }
        }
        return position;
    }

    std::uint64_t select(const Op &op, std::uint64_t position) const {
        const Selection &selection = program_.selections[op.index];
        // Without a default branch a discriminator may select nothing.
        std::uint64_t result = selection.default_element == kNone
                                   ? position
                                   : element(selection.default_element, position);
        for (const auto &[label, branch] : selection.cases) {
            const std::uint64_t end = element(branch, position);
            result = kMaximum ? std::max(result, end) : std::min(result, end);
        }
        return result;
    }

    const WriteProgram &program_;
};

}  // namespace

std::uint64_t maximum_end(const WriteProgram &program, std::uint64_t start) {
    return Bounds<true>(program).run(program.root, start);
}

std::uint64_t minimum_end(const WriteProgram &program, std::uint64_t start) {
    return Bounds<false>(program).run(program.root, start);
}

}  // namespace kolt::type
