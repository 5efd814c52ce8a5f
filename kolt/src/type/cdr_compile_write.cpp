// Type code to write program.
#include <algorithm>

#include "type/cdr_program.hpp"
#include "type/layout.hpp"

namespace kolt::type {
namespace {

class WriteCompiler {
  public:
    WriteCompiler(const CompileOptions &options, WriteProgram *program)
        : version_(options.version), program_(program) {}

    // The operations of a value that lies at `offset`.
    void Value(const DDS_TypeCode &type, size_t offset, const CompileOptions &options,
               std::vector<Op> *ops);
    Range Store(const std::vector<Op> &ops);

  private:
    using Options = CompileOptions;

    void Collection(const DDS_TypeCode &type, size_t offset, const Options &options,
                    std::vector<Op> *ops);
    void Aggregate(const DDS_TypeCode &type, size_t offset, const Options &options,
                   std::vector<Op> *ops);
    void Members(const DDS_TypeCode &type, size_t offset, const Options &options, Framing framing,
                 std::vector<Op> *ops);
    void Member(const DDS_TypeCode &type, DDS_UnsignedLong index, size_t offset,
                const Options &options, Framing framing, std::vector<Op> *ops);
    void Union(const DDS_TypeCode &type, size_t offset, const Options &options, Framing framing,
               std::vector<Op> *ops);
    // A value inside the header that the framing gives a member.
    void Framed(const DDS_TypeCode &type, size_t offset, const Options &options, Framing framing,
                uint32_t id, bool must_understand, std::vector<Op> *ops);

    Op MakeOp(OpCode code, size_t offset, uint8_t alignment) {
        Op op;
        op.code = code;
        op.offset = offset;
        op.alignment = alignment;
        return op;
    }
    Op MakeFrame(OpCode code, const std::vector<Op> &ops, size_t offset, uint8_t alignment) {
        Op op = MakeOp(code, offset, alignment);
        op.index = Element(ops, 0);
        return op;
    }
    // Neighbouring constants are one operation.
    void Constant(uint32_t value, std::vector<Op> *ops) { Constants({value}, ops); }
    void Constants(const std::vector<uint32_t> &values, std::vector<Op> *ops) {
        std::vector<uint32_t> joined;
        if (!ops->empty() && ops->back().code == OpCode::kConstants) {
            joined = ConstantsOf(ops->back());
            ops->pop_back();
        }
        joined.insert(joined.end(), values.begin(), values.end());
        Op op = MakeOp(OpCode::kConstants, 0, 4);
        op.index = static_cast<uint32_t>(program_->constants.size());
        op.count = static_cast<uint32_t>(joined.size());
        program_->constants.insert(program_->constants.end(), joined.begin(), joined.end());
        ops->push_back(op);
    }
    std::vector<uint32_t> ConstantsOf(const Op &op) const {
        const auto first = program_->constants.begin() + static_cast<std::ptrdiff_t>(op.index);
        return {first, first + static_cast<std::ptrdiff_t>(op.count)};
    }
    uint32_t Element(const std::vector<Op> &ops, size_t stride) {
        program_->elements.push_back({Store(ops), stride});
        return static_cast<uint32_t>(program_->elements.size() - 1);
    }
    void Delimited(const std::vector<Op> &content, std::vector<Op> *ops);
    Op Stretched(const Op *first, const Op *last);

    XcdrVersion version_;
    WriteProgram *program_;
};

// The bytes that `ops` write from an aligned position, if they are always the same; else kNone.
uint32_t ConstantSize(const std::vector<Op> &ops) {
    uint64_t size = 0;
    for (const Op &op : ops) {
        const uint64_t mask = op.alignment - 1U;
        size = (size + mask) & ~mask;
        if (op.code == OpCode::kRun) {
            size += uint64_t{op.count} * op.width;
        } else if (op.code == OpCode::kConstants) {
            size += uint64_t{op.count} * 4;
        } else {
            return kNone;
        }
    }
    return size < kNone ? static_cast<uint32_t>(size) : kNone;
}

// What may be part of a stretch: a few numbers of 4 or 8 bytes that need no padding behind others
// of their kind.
bool FitsStretch(const Op &op) {
    constexpr uint32_t kMostBytes = 64;
    if (op.code == OpCode::kConstants) return true;
    return op.code == OpCode::kRun && op.alignment == 4 && op.count <= kMostBytes / op.width;
}

// Headers and the members between them in one go, which takes one check for room.
Op WriteCompiler::Stretched(const Op *first, const Op *last) {
    std::vector<uint32_t> words;
    Stretch stretch;
    stretch.fields.first = static_cast<uint32_t>(program_->fields.size());
    for (const Op *op = first; op != last; ++op) {
        if (op->code == OpCode::kConstants) {
            const std::vector<uint32_t> constants = ConstantsOf(*op);
            words.insert(words.end(), constants.begin(), constants.end());
        } else {
            program_->fields.push_back({op->offset, words.size() * 4, op->count, op->width});
            words.resize(words.size() + size_t{op->count} * op->width / 4);
            ++stretch.fields.count;
        }
    }
    stretch.words = {static_cast<uint32_t>(program_->constants.size()),
                     static_cast<uint32_t>(words.size())};
    program_->constants.insert(program_->constants.end(), words.begin(), words.end());
    program_->stretches.push_back(stretch);
    Op op = MakeOp(OpCode::kStretch, 0, 4);
    op.index = static_cast<uint32_t>(program_->stretches.size() - 1);
    return op;
}

Range WriteCompiler::Store(const std::vector<Op> &ops) {
    Range range;
    range.first = static_cast<uint32_t>(program_->ops.size());
    const Op *const last = ops.data() + ops.size();
    for (const Op *op = ops.data(); op != last; ++range.count) {
        const Op *const end = std::find_if_not(op, last, FitsStretch);
        if (end - op > 1) {
            program_->ops.push_back(Stretched(op, end));
            op = end;
        } else {
            program_->ops.push_back(*op++);
        }
    }
    return range;
}

// The byte count of what has a constant size is a constant, and the content needs no frame.
void WriteCompiler::Delimited(const std::vector<Op> &content, std::vector<Op> *ops) {
    const uint32_t size = ConstantSize(content);
    if (size == kNone) {
        ops->push_back(MakeFrame(OpCode::kDelimited, content, 0, 4));
        return;
    }
    Constant(size, ops);
    for (const Op &op : content) {
        if (op.code == OpCode::kConstants) {
            Constants(ConstantsOf(op), ops);
        } else {
            AppendOp(ops, op);
        }
    }
}

void WriteCompiler::Value(const DDS_TypeCode &type, size_t offset, const Options &options,
                          std::vector<Op> *ops) {
    switch (type.kind) {
        case DDS_TK_STRING: {
            Op op = MakeOp(OpCode::kString, offset, 4);
            op.count = type.bound == 0 ? kUnbounded : type.bound;
            ops->push_back(op);
            break;
        }
        case DDS_TK_ARRAY:
        case DDS_TK_SEQUENCE:
            Collection(type, offset, options, ops);
            break;
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            Aggregate(type, offset, NestedOptions(type, options), ops);
            break;
        default: {
            const size_t width = PrimitiveSize(type.kind);
            Op op = MakeOp(OpCode::kRun, offset, AlignmentOf(version_, width));
            op.width = static_cast<uint8_t>(width);
            op.count = 1;
            AppendOp(ops, op);
            break;
        }
    }
}

void WriteCompiler::Collection(const DDS_TypeCode &type, size_t offset, const Options &options,
                               std::vector<Op> *ops) {
    const DDS_TypeCode &content = *type.content_type;
    const bool is_array = type.kind == DDS_TK_ARRAY;
    const size_t width = PrimitiveSize(content.kind);
    Op op = MakeOp(OpCode::kRun, offset, 4);
    if (is_array) {
        op.count = static_cast<uint32_t>(ElementCount(type));
    } else {
        op.count = type.bound == 0 ? kUnbounded : type.bound;
    }
    if (width > 0) {
        op.code = is_array ? OpCode::kRun : OpCode::kPrimitiveSequence;
        op.width = static_cast<uint8_t>(width);
        if (is_array) op.alignment = AlignmentOf(version_, width);
    } else {
        Options whole = options;
        whole.key_only = false;
        std::vector<Op> element;
        Value(content, 0, whole, &element);
        op.code = is_array ? OpCode::kElements : OpCode::kSequence;
        op.index = Element(element, ValueSize(content));
        op.alignment = is_array ? 1 : 4;
    }
    if (NeedsDheader(content, version_)) {
        Delimited({op}, ops);
    } else {
        AppendOp(ops, op);
    }
}

void WriteCompiler::Aggregate(const DDS_TypeCode &type, size_t offset, const Options &options,
                              std::vector<Op> *ops) {
    const Framing framing = FramingOf(type, options);
    const bool delimited = framing == Framing::kDelimited || framing == Framing::kParameterList2;
    std::vector<Op> content;
    std::vector<Op> *const target = delimited ? &content : ops;
    if (type.kind == DDS_TK_UNION) {
        Union(type, offset, options, framing, target);
    } else {
        Members(type, offset, options, framing, target);
    }
    if (framing == Framing::kParameterList1) target->push_back(MakeOp(OpCode::kSentinel, 0, 4));
    if (delimited) Delimited(content, ops);
}

void WriteCompiler::Members(const DDS_TypeCode &type, size_t offset, const Options &options,
                            Framing framing, std::vector<Op> *ops) {
    for (const DDS_UnsignedLong index : SelectMembers(type, options.key_only)) {
        Member(type, index, offset, options, framing, ops);
    }
}

void WriteCompiler::Member(const DDS_TypeCode &type, DDS_UnsignedLong index, size_t offset,
                           const Options &options, Framing framing, std::vector<Op> *ops) {
    const DDS_TypeCodeMember &member = type.members[index];
    const size_t place = offset + type.access->member_offsets[index];
    const bool must_understand = member.is_key || member.is_must_understand;
    if (!member.is_optional) {
        Framed(*member.type, place, options, framing, member.id, must_understand, ops);
        return;
    }
    std::vector<Op> value;
    if (version_ == XcdrVersion::k2) {
        Framed(*member.type, 0, options, framing, member.id, must_understand, &value);
        if (framing != Framing::kParameterList2) {
            ops->push_back(MakeOp(OpCode::kPresenceFlag, place, 1));
        }
        ops->push_back(MakeFrame(OpCode::kIfPresent, value, place, 1));
        return;
    }
    Value(*member.type, 0, options, &value);
    Op op = MakeFrame(OpCode::kParameter, value, place, 4);
    op.constant = member.id;
    op.flags = static_cast<uint8_t>(
        (must_understand ? kOpMustUnderstand : 0) |
        (framing == Framing::kParameterList1 ? kOpOptionalOmitted : kOpOptional));
    ops->push_back(op);
}

void WriteCompiler::Union(const DDS_TypeCode &type, size_t offset, const Options &options,
                          Framing framing, std::vector<Op> *ops) {
    Framed(*type.discriminator_type, offset + type.access->discriminator_offset, options, framing,
           kDiscriminatorId, true, ops);
    Selection selection;
    selection.discriminator_kind = type.discriminator_type->kind;
    selection.discriminator_offset = offset + type.access->discriminator_offset;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        std::vector<Op> branch;
        Framed(*member.type, offset + type.access->member_offsets[i], options, framing, member.id,
               member.is_must_understand != 0, &branch);
        const uint32_t element = Element(branch, 0);
        for (DDS_UnsignedLong j = 0; j < member.label_count; ++j) {
            selection.cases.emplace_back(member.labels[j], element);
        }
        if (member.is_default_label) selection.default_element = element;
    }
    program_->selections.push_back(std::move(selection));
    Op op = MakeOp(OpCode::kSelect, 0, 1);
    op.index = static_cast<uint32_t>(program_->selections.size() - 1);
    ops->push_back(op);
}

// The length code under which an XCDR2 member goes (XTypes 7.4.3.4.2): constant for one primitive,
// shared with the length that the value itself begins with where there is one.
LengthCode LengthCodeOf(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return kLengthShared;
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return kLengthNext;
        case DDS_TK_ARRAY:
            return IsPrimitive(type.content_type->kind) ? kLengthNext : kLengthShared;
        case DDS_TK_SEQUENCE:
            if (!IsPrimitive(type.content_type->kind)) return kLengthShared;
            switch (PrimitiveSize(type.content_type->kind)) {
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
    switch (PrimitiveSize(type.kind)) {
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

void WriteCompiler::Framed(const DDS_TypeCode &type, size_t offset, const Options &options,
                           Framing framing, uint32_t id, bool must_understand,
                           std::vector<Op> *ops) {
    if (framing != Framing::kParameterList1 && framing != Framing::kParameterList2) {
        Value(type, offset, options, ops);
        return;
    }
    if (framing == Framing::kParameterList1) {
        std::vector<Op> value;
        Value(type, offset, options, &value);
        Op op = MakeFrame(OpCode::kParameter, value, 0, 4);
        op.constant = id;
        op.flags = must_understand ? uint8_t{kOpMustUnderstand} : uint8_t{0};
        ops->push_back(op);
        return;
    }
    const LengthCode code = LengthCodeOf(type);
    Constant((must_understand ? kEmheaderMustUnderstand : 0) |
                 (uint32_t{code} << kEmheaderLengthShift) | id,
             ops);
    if (code != kLengthNext) {
        Value(type, offset, options, ops);
        return;
    }
    std::vector<Op> value;
    Value(type, offset, options, &value);
    Delimited(value, ops);
}

}  // namespace

WriteProgram CompileWrite(const DDS_TypeCode &type, const CompileOptions &options) {
    WriteProgram program;
    program.version = options.version;
    WriteCompiler compiler(options, &program);
    std::vector<Op> ops;
    // An unkeyed type has an empty key.
    if (!options.key_only || IsKeyed(type)) compiler.Value(type, 0, options, &ops);
    program.root = compiler.Store(ops);
    return program;
}

}  // namespace kolt::type
