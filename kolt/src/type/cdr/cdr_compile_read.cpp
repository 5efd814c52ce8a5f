// SPDX-License-Identifier: Apache-2.0
// Type code to read program.
#include <algorithm>

#include "type/cdr/cdr_program.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::type {
namespace {

class ReadCompiler {
  public:
    ReadCompiler(const CompileOptions &options, ReadProgram *program)
        : version_(options.version), program_(program) {}

    // The one operation that reads a value at `offset`. `is_last` says that the end of the value is
    // the end of its frame, so that an appendable type may be cut off there.
    Op value(const DDS_TypeCode &type, std::size_t offset, const CompileOptions &options,
             bool is_last);

  private:
    using Options = CompileOptions;

    Op collection(const DDS_TypeCode &type, std::size_t offset, const Options &options);
    std::uint32_t add_aggregate(const DDS_TypeCode &type, const Options &options, bool is_last);
    ReadMember member(const DDS_TypeCode &type, DDS_UnsignedLong index, const Options &options,
                      Framing framing);
    std::uint32_t add_element(const DDS_TypeCode &type, const Options &options, bool is_last);
    // Appends `op`, moved by `offset`, with plain structures inlined.
    void flatten(Op op, std::size_t offset, std::vector<Op> *body) const;
    std::uint32_t fixed_size(const std::vector<Op> &body) const;
    std::size_t minimum_size(const Op &op) const;

    XcdrVersion version_;
    ReadProgram *program_;
};

Op ReadCompiler::value(const DDS_TypeCode &type, std::size_t offset, const Options &options,
                       bool is_last) {
    Op op;
    op.offset = offset;
    switch (type.kind) {
        case DDS_TK_STRING:
            op.code = OpCode::kString;
            op.alignment = 4;
            op.count = type.bound == 0 ? kUnbounded : type.bound;
            op.flags = type.bound == 0 ? std::uint8_t{kOpExactString} : std::uint8_t{0};
            return op;
        case DDS_TK_ARRAY:
        case DDS_TK_SEQUENCE:
            return collection(type, offset, options);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION: {
            op.code = OpCode::kAggregate;
            op.index = add_aggregate(type, nested_options(type, options), is_last);
            const Aggregate &aggregate = program_->aggregates[op.index];
            if (aggregate.framing >= Framing::kDelimited) {
                op.alignment = 4;
            } else if (aggregate.is_union) {
                op.alignment = aggregate.discriminator.alignment;
            } else if (!aggregate.members.empty()) {
                op.alignment = aggregate.members[0].op.alignment;
            }
            return op;
        }
        default: {
            const std::size_t width = primitive_size(type.kind);
            op.code = OpCode::kRun;
            op.width = static_cast<std::uint8_t>(width);
            op.alignment = alignment_of(version_, width);
            op.count = 1;
            return op;
        }
    }
}

Op ReadCompiler::collection(const DDS_TypeCode &type, std::size_t offset, const Options &options) {
    const DDS_TypeCode &content = *type.content_type;
    const bool is_array = type.kind == DDS_TK_ARRAY;
    const std::size_t width = primitive_size(content.kind);
    Op op;
    op.offset = offset;
    op.alignment = 4;
    if (is_array) {
        op.count = static_cast<std::uint32_t>(element_count(type));
    } else {
        op.count = type.bound == 0 ? kUnbounded : type.bound;
    }
    Options whole = options;
    whole.key_only = false;
    // Sequences of primitives need their element too, for the type of their memory.
    if (!is_array || width == 0) {
        op.index = add_element(content, whole, false);
        if (!is_array && content.kind == DDS_TK_STRING) {
            program_->elements[op.index].op.flags |= kOpExactString;
        }
    }
    if (width > 0) {
        op.code = is_array ? OpCode::kRun : OpCode::kPrimitiveSequence;
        op.width = static_cast<std::uint8_t>(width);
    } else {
        op.code = is_array ? OpCode::kElements : OpCode::kSequence;
    }
    if (needs_dheader(content, version_)) {
        op.flags = kOpHasDheader;
    } else if (is_array) {
        op.alignment =
            width > 0 ? alignment_of(version_, width) : program_->elements[op.index].op.alignment;
    }
    return op;
}

std::uint32_t ReadCompiler::add_element(const DDS_TypeCode &type, const Options &options,
                                        bool is_last) {
    ReadElement element;
    element.op = value(type, 0, options, is_last);
    element.stride = value_size(type);
    element.minimum_size = std::max<std::size_t>(minimum_size(element.op), 1);
    element.type = &type;
    program_->elements.push_back(element);
    return static_cast<std::uint32_t>(program_->elements.size() - 1);
}

std::uint32_t ReadCompiler::add_aggregate(const DDS_TypeCode &type, const Options &options,
                                          bool is_last) {
    Aggregate aggregate;
    aggregate.type = &type;
    aggregate.framing = framing_of(type, options);
    const bool appendable =
        type.extensibility == DDS_APPENDABLE_EXTENSIBILITY && !options.force_final;
    if (aggregate.framing == Framing::kPlain && appendable && is_last) {
        aggregate.framing = Framing::kOpen;
    }
    aggregate.is_union = type.kind == DDS_TK_UNION;
    aggregate.is_keyed = is_keyed(type);
    if (aggregate.is_union) {
        aggregate.discriminator =
            value(*type.discriminator_type, type.access->discriminator_offset, options, false);
        aggregate.discriminator_id = kDiscriminatorId;
    }
    for (const DDS_UnsignedLong index : select_members(type, options.key_only)) {
        aggregate.by_id.emplace_back(type.members[index].id,
                                     static_cast<std::uint32_t>(aggregate.members.size()));
        aggregate.members.push_back(member(type, index, options, aggregate.framing));
    }
    std::sort(aggregate.by_id.begin(), aggregate.by_id.end());
    if (!aggregate.is_union && aggregate.framing <= Framing::kDelimited) {
        for (const ReadMember &member : aggregate.members) {
            flatten(member.op, 0, &aggregate.body);
        }
        aggregate.fixed_size = fixed_size(aggregate.body);
    }
    program_->aggregates.push_back(std::move(aggregate));
    return static_cast<std::uint32_t>(program_->aggregates.size() - 1);
}

ReadMember ReadCompiler::member(const DDS_TypeCode &type, DDS_UnsignedLong index,
                                const Options &options, Framing framing) {
    const DDS_TypeCodeMember &member = type.members[index];
    const std::size_t offset = type.access->member_offsets[index];
    const bool own_frame =
        framing == Framing::kParameterList1 || framing == Framing::kParameterList2;
    ReadMember result;
    result.id = member.id;
    result.index = index;
    result.is_key = member.is_key != 0;
    if (!member.is_optional) {
        result.op = value(*member.type, offset, options, own_frame);
        return result;
    }
    // An optional member of a plain XCDR1 structure is a parameter, too: a frame of its own.
    result.op.code = own_frame ? OpCode::kOptionalPresent : OpCode::kOptional;
    result.op.offset = offset;
    result.op.index = add_element(*member.type, options, own_frame || version_ == XcdrVersion::k1);
    if (own_frame) {
        result.op.alignment = program_->elements[result.op.index].op.alignment;
    } else {
        result.op.alignment = version_ == XcdrVersion::k1 ? 4 : 1;
        result.op.constant = member.id;
    }
    return result;
}

void ReadCompiler::flatten(Op op, std::size_t offset, std::vector<Op> *body) const {
    if (op.code == OpCode::kAggregate) {
        const Aggregate &nested = program_->aggregates[op.index];
        if (nested.framing == Framing::kPlain && !nested.is_union) {
            for (const Op &inner : nested.body) {
                flatten(inner, offset + op.offset, body);
            }
            return;
        }
    }
    op.offset += offset;
    append_op(body, op);
}

std::uint32_t ReadCompiler::fixed_size(const std::vector<Op> &body) const {
    std::uint64_t size = 0;
    for (const Op &op : body) {
        if (op.code != OpCode::kRun || op.flags != 0) {
            return 0;
        }
        const std::uint64_t mask = op.alignment - 1U;
        size = ((size + mask) & ~mask) + std::uint64_t{op.count} * op.width;
    }
    return size <= INT32_MAX ? static_cast<std::uint32_t>(size) : 0;
}

std::size_t ReadCompiler::minimum_size(const Op &op) const {
    switch (op.code) {
        case OpCode::kRun:
            return std::size_t{op.count} * op.width;
        case OpCode::kElements:
            return (op.flags & kOpHasDheader) != 0
                       ? 4
                       : std::size_t{op.count} * program_->elements[op.index].minimum_size;
        case OpCode::kAggregate: {
            const Aggregate &aggregate = program_->aggregates[op.index];
            if (aggregate.framing >= Framing::kDelimited) {
                return 4;
            }
            if (aggregate.is_union) {
                return aggregate.discriminator.width;
            }
            std::size_t size = 0;
            for (const ReadMember &member : aggregate.members) {
                size += minimum_size(member.op);
            }
            return aggregate.framing == Framing::kOpen ? 0 : size;
        }
        case OpCode::kOptional:
            return version_ == XcdrVersion::k1 ? 4 : 1;
        default:
            return 4;  // a length
    }
}

}  // namespace

ReadProgram compile_read(const DDS_TypeCode &type, const CompileOptions &options) {
    ReadProgram program;
    program.version = options.version;
    program.root = ReadCompiler(options, &program).value(type, 0, options, true);
    return program;
}

}  // namespace kolt::type
