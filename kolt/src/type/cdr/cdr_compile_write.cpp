// SPDX-License-Identifier: Apache-2.0
// Type code to write program.
#include <algorithm>

#include "type/cdr/cdr_program.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::type {
namespace {

class WriteCompiler {
  public:
    WriteCompiler(const CompileOptions &options, WriteProgram *program)
        : version_(options.version), program_(program) {}

    // The operations of a value that lies at `offset`.
    void add_value(const DDS_TypeCode &type, std::size_t offset, const CompileOptions &options,
                   std::vector<Op> *ops);
    Range store(const std::vector<Op> &ops);

  private:
    using Options = CompileOptions;

    void add_collection(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                        std::vector<Op> *ops);
    void add_aggregate(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                       std::vector<Op> *ops);
    void add_members(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                     Framing framing, std::vector<Op> *ops);
    void add_member(const DDS_TypeCode &type, DDS_UnsignedLong index, std::size_t offset,
                    const Options &options, Framing framing, std::vector<Op> *ops);
    void add_union(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                   Framing framing, std::vector<Op> *ops);
    // A value inside the header that the framing gives a member.
    void add_framed(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                    Framing framing, std::uint32_t id, bool must_understand, std::vector<Op> *ops);

    Op make_op(OpCode code, std::size_t offset, std::uint8_t alignment) {
        Op op;
        op.code = code;
        op.offset = offset;
        op.alignment = alignment;
        return op;
    }
    Op make_frame(OpCode code, const std::vector<Op> &ops, std::size_t offset,
                  std::uint8_t alignment) {
        Op op = make_op(code, offset, alignment);
        op.index = add_element(ops, 0);
        return op;
    }
    // Neighbouring constants are one operation.
    void add_constant(std::uint32_t value, std::vector<Op> *ops) { add_constants({value}, ops); }
    void add_constants(const std::vector<std::uint32_t> &values, std::vector<Op> *ops) {
        std::vector<std::uint32_t> joined;
        if (!ops->empty() && ops->back().code == OpCode::kConstants) {
            joined = constants_of(ops->back());
            ops->pop_back();
        }
        joined.insert(joined.end(), values.begin(), values.end());
        Op op = make_op(OpCode::kConstants, 0, 4);
        op.index = static_cast<std::uint32_t>(program_->constants.size());
        op.count = static_cast<std::uint32_t>(joined.size());
        program_->constants.insert(program_->constants.end(), joined.begin(), joined.end());
        ops->push_back(op);
    }
    std::vector<std::uint32_t> constants_of(const Op &op) const {
        const auto first = program_->constants.begin() + static_cast<std::ptrdiff_t>(op.index);
        return {first, first + static_cast<std::ptrdiff_t>(op.count)};
    }
    std::uint32_t add_element(const std::vector<Op> &ops, std::size_t stride) {
        program_->elements.push_back({store(ops), stride});
        return static_cast<std::uint32_t>(program_->elements.size() - 1);
    }
    void add_delimited(const std::vector<Op> &content, std::vector<Op> *ops);
    Op add_stretched(const Op *first, const Op *last);

    XcdrVersion version_;
    WriteProgram *program_;
};

// The bytes that `ops` write from an aligned position, if they are always the same; else kNone.
std::uint32_t constant_size(const std::vector<Op> &ops) {
    std::uint64_t size = 0;
    for (const Op &op : ops) {
        const std::uint64_t mask = op.alignment - 1U;
        size = (size + mask) & ~mask;
        if (op.code == OpCode::kRun) {
            size += std::uint64_t{op.count} * op.width;
        } else if (op.code == OpCode::kConstants) {
            size += std::uint64_t{op.count} * 4;
        } else {
            return kNone;
        }
    }
    return size < kNone ? static_cast<std::uint32_t>(size) : kNone;
}

// True for an operation that may be part of a stretch: a few numbers of 4 or 8 bytes that need no
// padding behind others of their kind.
bool fits_stretch(const Op &op) {
    constexpr std::uint32_t kMostBytes = 64;
    if (op.code == OpCode::kConstants) {
        return true;
    }
    return op.code == OpCode::kRun && op.alignment == 4 && op.count <= kMostBytes / op.width;
}

// Headers and the members between them in one go, which takes one check for room.
Op WriteCompiler::add_stretched(const Op *first, const Op *last) {
    std::vector<std::uint32_t> words;
    Stretch stretch;
    stretch.fields.first = static_cast<std::uint32_t>(program_->fields.size());
    for (const Op *op = first; op != last; ++op) {
        if (op->code == OpCode::kConstants) {
            const std::vector<std::uint32_t> constants = constants_of(*op);
            words.insert(words.end(), constants.begin(), constants.end());
        } else {
            program_->fields.push_back({op->offset, words.size() * 4, op->count, op->width});
            words.resize(words.size() + std::size_t{op->count} * op->width / 4);
            ++stretch.fields.count;
        }
    }
    stretch.words = {static_cast<std::uint32_t>(program_->constants.size()),
                     static_cast<std::uint32_t>(words.size())};
    program_->constants.insert(program_->constants.end(), words.begin(), words.end());
    program_->stretches.push_back(stretch);
    Op op = make_op(OpCode::kStretch, 0, 4);
    op.index = static_cast<std::uint32_t>(program_->stretches.size() - 1);
    return op;
}

Range WriteCompiler::store(const std::vector<Op> &ops) {
    Range range;
    range.first = static_cast<std::uint32_t>(program_->ops.size());
    const Op *const last = ops.data() + ops.size();
    for (const Op *op = ops.data(); op != last; ++range.count) {
        const Op *const end = std::find_if_not(op, last, fits_stretch);
        if (end - op > 1) {
            program_->ops.push_back(add_stretched(op, end));
            op = end;
        } else {
            program_->ops.push_back(*op++);
        }
    }
    return range;
}

// The byte count of what has a constant size is a constant, and the content needs no frame.
void WriteCompiler::add_delimited(const std::vector<Op> &content, std::vector<Op> *ops) {
    const std::uint32_t size = constant_size(content);
    if (size == kNone) {
        ops->push_back(make_frame(OpCode::kDelimited, content, 0, 4));
        return;
    }
    add_constant(size, ops);
    for (const Op &op : content) {
        if (op.code == OpCode::kConstants) {
            add_constants(constants_of(op), ops);
        } else {
            append_op(ops, op);
        }
    }
}

void WriteCompiler::add_value(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                              std::vector<Op> *ops) {
    switch (type.kind) {
        case DDS_TK_STRING: {
            Op op = make_op(OpCode::kString, offset, 4);
            op.count = type.bound == 0 ? kUnbounded : type.bound;
            ops->push_back(op);
            break;
        }
        case DDS_TK_ARRAY:
        case DDS_TK_SEQUENCE:
            add_collection(type, offset, options, ops);
            break;
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            add_aggregate(type, offset, nested_options(type, options), ops);
            break;
        default: {
            const std::size_t width = primitive_size(type.kind);
            Op op = make_op(OpCode::kRun, offset, alignment_of(version_, width));
            op.width = static_cast<std::uint8_t>(width);
            op.count = 1;
            append_op(ops, op);
            break;
        }
    }
}

void WriteCompiler::add_collection(const DDS_TypeCode &type, std::size_t offset,
                                   const Options &options, std::vector<Op> *ops) {
    const DDS_TypeCode &content = *type.content_type;
    const bool is_array = type.kind == DDS_TK_ARRAY;
    const std::size_t width = primitive_size(content.kind);
    Op op = make_op(OpCode::kRun, offset, 4);
    if (is_array) {
        op.count = static_cast<std::uint32_t>(element_count(type));
    } else {
        op.count = type.bound == 0 ? kUnbounded : type.bound;
    }
    if (width > 0) {
        op.code = is_array ? OpCode::kRun : OpCode::kPrimitiveSequence;
        op.width = static_cast<std::uint8_t>(width);
        if (is_array) {
            op.alignment = alignment_of(version_, width);
        }
    } else {
        Options whole = options;
        whole.key_only = false;
        std::vector<Op> element;
        add_value(content, 0, whole, &element);
        op.code = is_array ? OpCode::kElements : OpCode::kSequence;
        op.index = add_element(element, value_size(content));
        op.alignment = is_array ? 1 : 4;
    }
    if (needs_dheader(content, version_)) {
        add_delimited({op}, ops);
    } else {
        append_op(ops, op);
    }
}

void WriteCompiler::add_aggregate(const DDS_TypeCode &type, std::size_t offset,
                                  const Options &options, std::vector<Op> *ops) {
    const Framing framing = framing_of(type, options);
    const bool delimited = framing == Framing::kDelimited || framing == Framing::kParameterList2;
    std::vector<Op> content;
    std::vector<Op> *const target = delimited ? &content : ops;
    if (type.kind == DDS_TK_UNION) {
        add_union(type, offset, options, framing, target);
    } else {
        add_members(type, offset, options, framing, target);
    }
    if (framing == Framing::kParameterList1) {
        target->push_back(make_op(OpCode::kSentinel, 0, 4));
    }
    if (delimited) {
        add_delimited(content, ops);
    }
}

void WriteCompiler::add_members(const DDS_TypeCode &type, std::size_t offset,
                                const Options &options, Framing framing, std::vector<Op> *ops) {
    for (const DDS_UnsignedLong index : select_members(type, options.key_only)) {
        add_member(type, index, offset, options, framing, ops);
    }
}

void WriteCompiler::add_member(const DDS_TypeCode &type, DDS_UnsignedLong index, std::size_t offset,
                               const Options &options, Framing framing, std::vector<Op> *ops) {
    const DDS_TypeCodeMember &member = type.members[index];
    const std::size_t place = offset + type.access->member_offsets[index];
    const bool must_understand = member.is_key || member.is_must_understand;
    if (!member.is_optional) {
        add_framed(*member.type, place, options, framing, member.id, must_understand, ops);
        return;
    }
    std::vector<Op> value;
    if (version_ == XcdrVersion::k2) {
        add_framed(*member.type, 0, options, framing, member.id, must_understand, &value);
        if (framing != Framing::kParameterList2) {
            ops->push_back(make_op(OpCode::kPresenceFlag, place, 1));
        }
        ops->push_back(make_frame(OpCode::kIfPresent, value, place, 1));
        return;
    }
    add_value(*member.type, 0, options, &value);
    Op op = make_frame(OpCode::kParameter, value, place, 4);
    op.constant = member.id;
    op.flags = static_cast<std::uint8_t>(
        (must_understand ? kOpMustUnderstand : 0) |
        (framing == Framing::kParameterList1 ? kOpOptionalOmitted : kOpOptional));
    ops->push_back(op);
}

void WriteCompiler::add_union(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                              Framing framing, std::vector<Op> *ops) {
    add_framed(*type.discriminator_type, offset + type.access->discriminator_offset, options,
               framing, kDiscriminatorId, true, ops);
    Selection selection;
    selection.discriminator_kind = type.discriminator_type->kind;
    selection.discriminator_offset = offset + type.access->discriminator_offset;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        std::vector<Op> branch;
        add_framed(*member.type, offset + type.access->member_offsets[i], options, framing,
                   member.id, member.is_must_understand != 0, &branch);
        const std::uint32_t element = add_element(branch, 0);
        for (DDS_UnsignedLong j = 0; j < member.label_count; ++j) {
            selection.cases.emplace_back(member.labels[j], element);
        }
        if (member.is_default_label) {
            selection.default_element = element;
        }
    }
    program_->selections.push_back(std::move(selection));
    Op op = make_op(OpCode::kSelect, 0, 1);
    op.index = static_cast<std::uint32_t>(program_->selections.size() - 1);
    ops->push_back(op);
}

// The length code under which an XCDR2 member goes (XTypes 7.4.3.4.2): constant for one primitive,
// shared with the length that the value itself begins with where there is one.
LengthCode length_code_of(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return kLengthShared;
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return kLengthNext;
        case DDS_TK_ARRAY:
            return is_primitive(type.content_type->kind) ? kLengthNext : kLengthShared;
        case DDS_TK_SEQUENCE:
            if (!is_primitive(type.content_type->kind)) {
                return kLengthShared;
            }
            switch (primitive_size(type.content_type->kind)) {
                case 1:
                    return kLengthShared;
                case 4:
                    return kLengthShared4;
                case 8:
                    return kLengthShared8;
                default:
                    return kLengthNext;
            }
        default:
            break;
    }
    switch (primitive_size(type.kind)) {
        case 1:
            return kLength1;
        case 2:
            return kLength2;
        case 4:
            return kLength4;
        default:
            return kLength8;
    }
}

void WriteCompiler::add_framed(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                               Framing framing, std::uint32_t id, bool must_understand,
                               std::vector<Op> *ops) {
    if (framing != Framing::kParameterList1 && framing != Framing::kParameterList2) {
        add_value(type, offset, options, ops);
        return;
    }
    if (framing == Framing::kParameterList1) {
        std::vector<Op> value;
        add_value(type, offset, options, &value);
        Op op = make_frame(OpCode::kParameter, value, 0, 4);
        op.constant = id;
        op.flags = must_understand ? std::uint8_t{kOpMustUnderstand} : std::uint8_t{0};
        ops->push_back(op);
        return;
    }
    const LengthCode code = length_code_of(type);
    add_constant((must_understand ? kEmheaderMustUnderstand : 0) |
                     (std::uint32_t{code} << kEmheaderLengthShift) | id,
                 ops);
    if (code != kLengthNext) {
        add_value(type, offset, options, ops);
        return;
    }
    std::vector<Op> value;
    add_value(type, offset, options, &value);
    add_delimited(value, ops);
}

}  // namespace

WriteProgram compile_write(const DDS_TypeCode &type, const CompileOptions &options) {
    WriteProgram program;
    program.version = options.version;
    WriteCompiler compiler(options, &program);
    std::vector<Op> ops;
    // An unkeyed type has an empty key.
    if (!options.key_only || is_keyed(type)) {
        compiler.add_value(type, 0, options, &ops);
    }
    program.root = compiler.store(ops);
    return program;
}

}  // namespace kolt::type
