// Reading one field out of serialised bytes.
#include "type/cdr_codec.hpp"
#include "type/cdr_skipper.hpp"

namespace {

using namespace kolt::type;

// What is left of a default value in a field of single precision.
DDS_Double RoundToFloat(DDS_Double real) {
    return static_cast<DDS_Double>(static_cast<DDS_Float>(real));
}

// The value that a field has when it is not in the bytes.
bool DefaultValue(const DDS_TypeCode *type, const DDS_TypeCodeMember *member,
                  const KOLT_CdrPathStep *path, size_t path_length, KOLT_CdrValue *value) {
    for (size_t i = 0; i < path_length; ++i) {
        const bool is_collection = type->kind == DDS_TK_ARRAY || type->kind == DDS_TK_SEQUENCE;
        if (path[i].is_element != 0) {
            if (!is_collection) return false;
            // A sequence that is absent is empty.
            if (type->kind == DDS_TK_SEQUENCE || path[i].index >= ElementCount(*type)) return true;
            type = type->content_type;
        } else {
            if (type->kind != DDS_TK_STRUCT && type->kind != DDS_TK_UNION) return false;
            if (path[i].index >= type->member_count) return false;
            member = &type->members[path[i].index];
            if (type->kind == DDS_TK_UNION &&
                SelectedMember(*type, type->default_discriminator) != path[i].index) {
                return true;
            }
            if (member->is_optional) return true;
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
            value->value.real = annotation == nullptr ? 0.0 : RoundToFloat(annotation->value.real);
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
            return IsPrimitive(type->kind);
    }
}

template <bool kSwap>
class Finder {
  public:
    Finder(const ReadProgram &program, const uint8_t *bytes, size_t size)
        : program_(program), cursor_(bytes, size), skipper_(program, &cursor_) {}

    bool Find(const DDS_TypeCode &type, const KOLT_CdrPathStep *path, size_t length,
              KOLT_CdrValue *value) {
        type_ = &type;
        path_ = path;
        left_ = length;
        value_ = value;
        return At(program_.root);
    }

  private:
    // The cursor is where `op` begins, which reads a value of `*type_`.
    bool At(const Op &op) {
        switch (op.code) {
            case OpCode::kAggregate:
                return AtAggregate(program_.aggregates[op.index]);
            case OpCode::kRun:
                return type_->kind == DDS_TK_ARRAY ? AtWords(op) : Leaf(op);
            case OpCode::kString:
                return Leaf(op);
            case OpCode::kElements:
            case OpCode::kSequence:
            case OpCode::kPrimitiveSequence:
                return AtElements(op);
            case OpCode::kOptional:
                return AtOptional(op);
            case OpCode::kOptionalPresent:
                return At(program_.elements[op.index].op);
            default:
                return false;
        }
    }

    const KOLT_CdrPathStep *Step(bool element) {
        if (left_ == 0 || (path_->is_element != 0) != element) return nullptr;
        --left_;
        return path_++;
    }

    // An optional member that is not set has no value, not even its default one.
    bool Absent() {
        if (member_ != nullptr && member_->is_optional) {
            value_->kind = DDS_TK_NULL;
            return true;
        }
        return DefaultValue(type_, member_, path_, left_, value_);
    }

    bool AtAggregate(const Aggregate &aggregate) {
        const KOLT_CdrPathStep *const step = Step(false);
        if (step == nullptr || step->index >= type_->member_count) return false;
        const uint8_t *outer = nullptr;
        const bool counted = aggregate.framing == Framing::kDelimited ||
                             aggregate.framing == Framing::kParameterList2;
        if (counted && !cursor_.OpenCount(&outer)) return false;
        const bool parameters = aggregate.framing == Framing::kParameterList1 ||
                                aggregate.framing == Framing::kParameterList2;
        if (aggregate.is_union) return InUnion(aggregate, step->index, parameters);
        return parameters ? InParameters(aggregate, step->index)
                          : InMembers(aggregate, step->index);
    }

    void Enter(const Aggregate &aggregate, DDS_UnsignedLong index) {
        member_ = &aggregate.type->members[index];
        type_ = member_->type;
    }

    bool InMembers(const Aggregate &aggregate, DDS_UnsignedLong index) {
        const bool open = aggregate.framing != Framing::kPlain;
        for (const ReadMember &member : aggregate.members) {
            const bool absent = open && cursor_.AtEnd(member.op.alignment);
            if (absent || member.index == index) {
                Enter(aggregate, index);
                return absent ? Absent() : At(member.op);
            }
            if (!skipper_.Skip(member.op)) return false;
        }
        return false;
    }

    bool InParameters(const Aggregate &aggregate, DDS_UnsignedLong index) {
        const uint32_t id = aggregate.type->members[index].id;
        for (;;) {
            MemberHeader header;
            const bool list1 = aggregate.framing == Framing::kParameterList1;
            bool done = !list1 && cursor_.AtEnd(4);
            if (!done) {
                if (!(list1 ? ReadParameterHeader(&cursor_, &header)
                            : ReadMemberHeader(&cursor_, &header))) {
                    return false;
                }
                done = header.sentinel;
            }
            if (done) {
                Enter(aggregate, index);
                return Absent();
            }
            if (header.ignored || header.id != id) {
                if (!cursor_.Skip(header.size)) return false;
                continue;
            }
            if (!Frame(header.size)) return false;
            Enter(aggregate, index);
            return At(aggregate.members[index].op);
        }
    }

    // Narrows the cursor for good: the field is inside.
    bool Frame(size_t size) {
        const uint8_t *outer = nullptr;
        if (!cursor_.OpenFrame(size, &outer)) return false;
        if (program_.version == XcdrVersion::k1) cursor_.set_origin(cursor_.at());
        return true;
    }

    bool InUnion(const Aggregate &aggregate, DDS_UnsignedLong index, bool parameters) {
        const Op &op = aggregate.discriminator;
        if (parameters) {
            MemberHeader header;
            if (!FindDiscriminator(aggregate, &header) || header.size < op.width) return false;
            const uint8_t *const next = cursor_.at() + header.size;
            uint64_t storage = 0;
            if (!cursor_.Words(&storage, 1, op.width)) return false;
            cursor_.set_at(next);
            if (!Selects(aggregate, &storage, index)) return true;
            return InParameters(aggregate, index);
        }
        uint64_t storage = 0;
        if (!cursor_.Align(op.alignment) || !cursor_.Words(&storage, 1, op.width)) return false;
        if (!Selects(aggregate, &storage, index)) return true;
        Enter(aggregate, index);
        const ReadMember &member = aggregate.members[index];
        const bool open = aggregate.framing != Framing::kPlain;
        return open && cursor_.AtEnd(member.op.alignment) ? Absent() : At(member.op);
    }

    // What stands before the discriminator of a mutable union is passed over.
    bool FindDiscriminator(const Aggregate &aggregate, MemberHeader *header) {
        const bool list1 = aggregate.framing == Framing::kParameterList1;
        for (;;) {
            *header = MemberHeader();
            if (!(list1 ? ReadParameterHeader(&cursor_, header)
                        : ReadMemberHeader(&cursor_, header)) ||
                header->sentinel) {
                return false;
            }
            if (!header->ignored && header->id == aggregate.discriminator_id) return true;
            if (!cursor_.Skip(header->size)) return false;
        }
    }

    static bool Selects(const Aggregate &aggregate, const void *discriminator,
                        DDS_UnsignedLong index) {
        const int64_t value = LoadInteger(aggregate.type->discriminator_type->kind, discriminator);
        return SelectedMember(*aggregate.type, value) == index;
    }

    bool AtOptional(const Op &op) {
        if (program_.version == XcdrVersion::k1) {
            MemberHeader header;
            if (!ReadParameterHeader(&cursor_, &header) || header.sentinel || header.ignored ||
                header.id != op.constant) {
                return false;
            }
            if (header.size == 0) return Absent();
            return Frame(header.size) && At(program_.elements[op.index].op);
        }
        uint8_t present = 0;
        if (!cursor_.Words(&present, 1, 1)) return false;
        return present == 0 ? Absent() : At(program_.elements[op.index].op);
    }

    // An array of primitives.
    bool AtWords(const Op &op) {
        const KOLT_CdrPathStep *const step = Step(true);
        if (step == nullptr || !OpenDheader(op)) return false;
        if (step->index >= op.count) return true;
        type_ = type_->content_type;
        return cursor_.Align(op.alignment) && cursor_.SkipWords(step->index, op.width) && Leaf(op);
    }

    bool OpenDheader(const Op &op) {
        const uint8_t *outer = nullptr;
        return (op.flags & kOpHasDheader) == 0 || cursor_.OpenCount(&outer);
    }

    bool AtElements(const Op &op) {
        const KOLT_CdrPathStep *const step = Step(true);
        if (step == nullptr || !OpenDheader(op)) return false;
        uint32_t count = op.count;
        if (op.code != OpCode::kElements && !cursor_.Word32(&count)) return false;
        if (step->index >= count) return true;
        type_ = type_->content_type;
        const Op &element = program_.elements[op.index].op;
        if (op.code == OpCode::kPrimitiveSequence) {
            return cursor_.Align(AlignmentOf(program_.version, op.width)) &&
                   cursor_.SkipWords(step->index, op.width) && Leaf(op);
        }
        return skipper_.SkipElements(op.index, step->index) && At(element);
    }

    bool Leaf(const Op &op) {
        if (left_ > 0) return false;
        if (type_->kind == DDS_TK_STRING) return StringLeaf();
        uint64_t storage = 0;
        if (!cursor_.Align(AlignmentOf(program_.version, op.width)) ||
            !cursor_.Words(&storage, 1, op.width)) {
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
            value_->value.integer = LoadInteger(type_->kind, &storage);
        }
        return true;
    }

    bool StringLeaf() {
        uint32_t size = 0;
        if (!cursor_.Word32(&size) || size > cursor_.left()) return false;
        const auto *const text = reinterpret_cast<const char *>(cursor_.at());
        if (size > 0 && text[size - 1] != '\0') return false;
        if (type_->bound > 0 && size > size_t{type_->bound} + 1) return false;
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
    size_t left_ = 0;
    KOLT_CdrValue *value_ = nullptr;
};

}  // namespace

DDS_Boolean KOLT_Cdr_find_field(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                size_t length, const KOLT_CdrPathStep *path, size_t path_length,
                                KOLT_CdrValue *value) {
    if (self == nullptr || bytes == nullptr || value == nullptr ||
        (path == nullptr && path_length > 0)) {
        return DDS_BOOLEAN_FALSE;
    }
    DDS_UnsignedShort identifier = 0;
    size_t body = 0;
    Encapsulation encapsulation;
    if (!ReadHeader(bytes, length, &identifier, &body) ||
        !ResolveEncapsulation(*self, identifier, Part::kSample, &encapsulation)) {
        return DDS_BOOLEAN_FALSE;
    }
    value->kind = DDS_TK_NULL;
    const ReadProgram &program = self->read[encapsulation.version == XcdrVersion::k2 ? 1 : 0];
    const DDS_Octet *const start = bytes + KOLT_ENCAPSULATION_HEADER_SIZE;
    const bool native_big = std::endian::native == std::endian::big;
    return encapsulation.big_endian == native_big
               ? Finder<false>(program, start, body).Find(*self->type, path, path_length, value)
               : Finder<true>(program, start, body).Find(*self->type, path, path_length, value);
}
