// SPDX-License-Identifier: Apache-2.0
// Reading one field out of serialised bytes.
#include "type/cdr/cdr_codec.hpp"
#include "type/cdr/cdr_skipper.hpp"

namespace {

using namespace kolt::type;

// Returns a default value as a field of single precision holds it.
DDS_Double round_to_float(DDS_Double real) {
    return static_cast<DDS_Double>(static_cast<DDS_Float>(real));
}

// The value that a field has when it is not in the bytes.
bool default_value(const DDS_TypeCode *type, const DDS_TypeCodeMember *member,
                   const KOLT_CdrPathStep *path, std::size_t path_length, KOLT_CdrValue *value) {
    for (std::size_t i = 0; i < path_length; ++i) {
        const bool is_collection = type->kind == DDS_TK_ARRAY || type->kind == DDS_TK_SEQUENCE;
        if (path[i].is_element != 0) {
            if (!is_collection) {
                return false;
            }
            // A sequence that is absent is empty.
            if (type->kind == DDS_TK_SEQUENCE || path[i].index >= element_count(*type)) {
                return true;
            }
            type = type->content_type;
        } else {
            if (type->kind != DDS_TK_STRUCT && type->kind != DDS_TK_UNION) {
                return false;
            }
            if (path[i].index >= type->member_count) {
                return false;
            }
            member = &type->members[path[i].index];
            if (type->kind == DDS_TK_UNION &&
                selected_member(*type, type->default_discriminator) != path[i].index) {
                return true;
            }
            if (member->is_optional) {
                return true;
            }
            type = member->type;
        }
    }
    const DDS_AnnotationParameterValue *annotation =
        member != nullptr && member->default_value.kind != DDS_TK_NULL ? &member->default_value
                                                                       : nullptr;
    value->kind = type->kind;
    switch (type->kind) {
        case DDS_TK_STRING: {
            const DDS_Char *text = annotation == nullptr ? nullptr : annotation->value.string;
            value->value.string.characters = text == nullptr ? "" : text;
            value->value.string.length = text == nullptr ? 0 : std::strlen(text);
            return true;
        }
        case DDS_TK_FLOAT:
            value->value.real =
                annotation == nullptr ? 0.0 : round_to_float(annotation->value.real);
            return true;
        case DDS_TK_DOUBLE:
            value->value.real = annotation == nullptr ? 0.0 : annotation->value.real;
            return true;
        case DDS_TK_ENUM:
            value->value.integer = annotation != nullptr    ? annotation->value.integer
                                   : type->member_count > 0 ? type->members[0].ordinal
                                                            : 0;
            return true;
        default:
            value->value.integer = annotation == nullptr ? 0 : annotation->value.integer;
            return is_primitive(type->kind);
    }
}

template <bool kSwap>
class Finder {
  public:
    Finder(const ReadProgram &program, const std::uint8_t *bytes, std::size_t size)
        : program_(program), cursor_(bytes, size), skipper_(program, &cursor_) {}

    bool find(const DDS_TypeCode &type, const KOLT_CdrPathStep *path, std::size_t length,
              KOLT_CdrValue *value) {
        type_ = &type;
        path_ = path;
        left_ = length;
        value_ = value;
        return at(program_.root);
    }

  private:
    // The cursor is where `op` begins, which reads a value of `*type_`.
    bool at(const Op &op) {
        switch (op.code) {
            case OpCode::kAggregate:
                return at_aggregate(program_.aggregates[op.index]);
            case OpCode::kRun:
                return type_->kind == DDS_TK_ARRAY ? at_words(op) : leaf(op);
            case OpCode::kString:
                return leaf(op);
            case OpCode::kElements:
            case OpCode::kSequence:
            case OpCode::kPrimitiveSequence:
                return at_elements(op);
            case OpCode::kOptional:
                return at_optional(op);
            case OpCode::kOptionalPresent:
                return at(program_.elements[op.index].op);
            default:
                return false;
        }
    }

    const KOLT_CdrPathStep *take_step(bool element) {
        if (left_ == 0 || (path_->is_element != 0) != element) {
            return nullptr;
        }
        --left_;
        return path_++;
    }

    // An optional member that is not set has no value, not even its default one.
    bool take_absent() {
        if (member_ != nullptr && member_->is_optional) {
            value_->kind = DDS_TK_NULL;
            return true;
        }
        return default_value(type_, member_, path_, left_, value_);
    }

    bool at_aggregate(const Aggregate &aggregate) {
        const KOLT_CdrPathStep *const step = take_step(false);
        if (step == nullptr || step->index >= type_->member_count) {
            return false;
        }
        const std::uint8_t *outer = nullptr;
        const bool counted = aggregate.framing == Framing::kDelimited ||
                             aggregate.framing == Framing::kParameterList2;
        if (counted && !cursor_.open_count(&outer)) {
            return false;
        }
        const bool parameters = aggregate.framing == Framing::kParameterList1 ||
                                aggregate.framing == Framing::kParameterList2;
        if (aggregate.is_union) {
            return in_union(aggregate, step->index, parameters);
        }
        return parameters ? in_parameters(aggregate, step->index)
                          : in_members(aggregate, step->index);
    }

    void enter(const Aggregate &aggregate, DDS_UnsignedLong index) {
        member_ = &aggregate.type->members[index];
        type_ = member_->type;
    }

    bool in_members(const Aggregate &aggregate, DDS_UnsignedLong index) {
        const bool open = aggregate.framing != Framing::kPlain;
        for (const ReadMember &member : aggregate.members) {
            const bool absent = open && cursor_.at_end(member.op.alignment);
            if (absent || member.index == index) {
                enter(aggregate, index);
                return absent ? take_absent() : at(member.op);
            }
            if (!skipper_.skip(member.op)) {
                return false;
            }
        }
        return false;
    }

    bool in_parameters(const Aggregate &aggregate, DDS_UnsignedLong index) {
        const std::uint32_t id = aggregate.type->members[index].id;
        for (;;) {
            MemberHeader header;
            const bool list1 = aggregate.framing == Framing::kParameterList1;
            bool done = !list1 && cursor_.at_end(4);
            if (!done) {
                if (!(list1 ? read_parameter_header(&cursor_, &header)
                            : read_member_header(&cursor_, &header))) {
                    return false;
                }
                done = header.sentinel;
            }
            if (done) {
                enter(aggregate, index);
                return take_absent();
            }
            if (header.ignored || header.id != id) {
                if (!cursor_.skip(header.size)) {
                    return false;
                }
                continue;
            }
            if (!frame(header.size)) {
                return false;
            }
            enter(aggregate, index);
            return at(aggregate.members[index].op);
        }
    }

    // Narrows the cursor for good: the field is inside.
    bool frame(std::size_t size) {
        const std::uint8_t *outer = nullptr;
        if (!cursor_.open_frame(size, &outer)) {
            return false;
        }
        if (program_.version == XcdrVersion::k1) {
            cursor_.set_origin(cursor_.at());
        }
        return true;
    }

    bool in_union(const Aggregate &aggregate, DDS_UnsignedLong index, bool parameters) {
        const Op &op = aggregate.discriminator;
        if (parameters) {
            MemberHeader header;
            if (!find_discriminator(aggregate, &header) || header.size < op.width) {
                return false;
            }
            const std::uint8_t *const next = cursor_.at() + header.size;
            std::uint64_t storage = 0;
            if (!cursor_.words(&storage, 1, op.width)) {
                return false;
            }
            cursor_.set_at(next);
            if (!selects(aggregate, &storage, index)) {
                return true;
            }
            return in_parameters(aggregate, index);
        }
        std::uint64_t storage = 0;
        if (!cursor_.align(op.alignment) || !cursor_.words(&storage, 1, op.width)) {
            return false;
        }
        if (!selects(aggregate, &storage, index)) {
            return true;
        }
        enter(aggregate, index);
        const ReadMember &member = aggregate.members[index];
        const bool open = aggregate.framing != Framing::kPlain;
        return open && cursor_.at_end(member.op.alignment) ? take_absent() : at(member.op);
    }

    // Finds the discriminator of a mutable union, passing over the members that stand before it.
    bool find_discriminator(const Aggregate &aggregate, MemberHeader *header) {
        const bool list1 = aggregate.framing == Framing::kParameterList1;
        for (;;) {
            *header = MemberHeader();
            if (!(list1 ? read_parameter_header(&cursor_, header)
                        : read_member_header(&cursor_, header)) ||
                header->sentinel) {
                return false;
            }
            if (!header->ignored && header->id == aggregate.discriminator_id) {
                return true;
            }
            if (!cursor_.skip(header->size)) {
                return false;
            }
        }
    }

    static bool selects(const Aggregate &aggregate, const void *discriminator,
                        DDS_UnsignedLong index) {
        const std::int64_t value =
            load_integer(aggregate.type->discriminator_type->kind, discriminator);
        return selected_member(*aggregate.type, value) == index;
    }

    bool at_optional(const Op &op) {
        if (program_.version == XcdrVersion::k1) {
            MemberHeader header;
            if (!read_parameter_header(&cursor_, &header) || header.sentinel || header.ignored ||
                header.id != op.constant) {
                return false;
            }
            if (header.size == 0) {
                return take_absent();
            }
            return frame(header.size) && at(program_.elements[op.index].op);
        }
        std::uint8_t present = 0;
        if (!cursor_.words(&present, 1, 1)) {
            return false;
        }
        return present == 0 ? take_absent() : at(program_.elements[op.index].op);
    }

    // An array of primitives.
    bool at_words(const Op &op) {
        const KOLT_CdrPathStep *const step = take_step(true);
        if (step == nullptr || !open_dheader(op)) {
            return false;
        }
        if (step->index >= op.count) {
            return true;
        }
        type_ = type_->content_type;
        return cursor_.align(op.alignment) && cursor_.skip_words(step->index, op.width) && leaf(op);
    }

    bool open_dheader(const Op &op) {
        const std::uint8_t *outer = nullptr;
        return (op.flags & kOpHasDheader) == 0 || cursor_.open_count(&outer);
    }

    bool at_elements(const Op &op) {
        const KOLT_CdrPathStep *const step = take_step(true);
        if (step == nullptr || !open_dheader(op)) {
            return false;
        }
        std::uint32_t count = op.count;
        if (op.code != OpCode::kElements && !cursor_.word32(&count)) {
            return false;
        }
        if (step->index >= count) {
            return true;
        }
        type_ = type_->content_type;
        const Op &element = program_.elements[op.index].op;
        if (op.code == OpCode::kPrimitiveSequence) {
            return cursor_.align(alignment_of(program_.version, op.width)) &&
                   cursor_.skip_words(step->index, op.width) && leaf(op);
        }
        return skipper_.skip_elements(op.index, step->index) && at(element);
    }

    bool leaf(const Op &op) {
        if (left_ > 0) {
            return false;
        }
        if (type_->kind == DDS_TK_STRING) {
            return string_leaf();
        }
        std::uint64_t storage = 0;
        if (!cursor_.align(alignment_of(program_.version, op.width)) ||
            !cursor_.words(&storage, 1, op.width)) {
            return false;
        }
        value_->kind = type_->kind;
        if (type_->kind == DDS_TK_FLOAT) {
            DDS_Float real = 0;
            std::memcpy(&real, &storage, sizeof(real));
            value_->value.real = static_cast<DDS_Double>(real);
        } else if (type_->kind == DDS_TK_DOUBLE) {
            std::memcpy(&value_->value.real, &storage, sizeof(value_->value.real));
        } else {
            value_->value.integer = load_integer(type_->kind, &storage);
        }
        return true;
    }

    bool string_leaf() {
        std::uint32_t size = 0;
        if (!cursor_.word32(&size) || size > cursor_.left()) {
            return false;
        }
        const auto *const text = reinterpret_cast<const char *>(cursor_.at());
        if (size > 0 && text[size - 1] != '\0') {
            return false;
        }
        if (type_->bound > 0 && size > std::size_t{type_->bound} + 1) {
            return false;
        }
        value_->kind = DDS_TK_STRING;
        value_->value.string.characters = text;
        // A string ends at its first NUL, wherever its length ends.
        value_->value.string.length =
            size == 0 ? 0 : strnlen(value_->value.string.characters, size - 1);
        return true;
    }

    const ReadProgram &program_;
    Cursor<kSwap> cursor_;
    Skipper<kSwap> skipper_;
    const DDS_TypeCode *type_ = nullptr;
    const DDS_TypeCodeMember *member_ = nullptr;
    const KOLT_CdrPathStep *path_ = nullptr;
    std::size_t left_ = 0;
    KOLT_CdrValue *value_ = nullptr;
};

}  // namespace

DDS_Boolean KOLT_Cdr_find_field(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                std::size_t length, const KOLT_CdrPathStep *path,
                                std::size_t path_length, KOLT_CdrValue *value) {
    if (self == nullptr || bytes == nullptr || value == nullptr ||
        (path == nullptr && path_length > 0)) {
        return DDS_BOOLEAN_FALSE;
    }
    DDS_UnsignedShort identifier = 0;
    std::size_t body = 0;
    Encapsulation encapsulation;
    if (!read_header(bytes, length, &identifier, &body) ||
        !resolve_encapsulation(*self, identifier, Part::kSample, &encapsulation)) {
        return DDS_BOOLEAN_FALSE;
    }
    value->kind = DDS_TK_NULL;
    const ReadProgram &program = self->read[encapsulation.version == XcdrVersion::k2 ? 1 : 0];
    const DDS_Octet *const start = bytes + KOLT_ENCAPSULATION_HEADER_SIZE;
    const bool native_big = std::endian::native == std::endian::big;
    return encapsulation.big_endian == native_big
               ? Finder<false>(program, start, body).find(*self->type, path, path_length, value)
               : Finder<true>(program, start, body).find(*self->type, path, path_length, value);
}
