// The process-wide list of compiled programs.
#include <list>
#include <memory>
#include <mutex>

#include "type/cdr_codec.hpp"
#include "type/layout.hpp"

namespace {

using kolt::type::CompileOptions;
using kolt::type::CompileRead;
using kolt::type::CompileWrite;
using kolt::type::XcdrVersion;

struct ProgramList {
    std::mutex mutex;
    std::list<std::unique_ptr<KOLT_TypePrograms>> programs;  // guarded by mutex
};

// Never destroyed: endpoints may still let go of their programs while the process ends.
ProgramList &List() {
    static ProgramList *const list = new ProgramList;
    return *list;
}

// A value of the type is more than plain bytes.
bool OwnsMemory(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_STRING:
        case DDS_TK_SEQUENCE:
            return true;
        case DDS_TK_ARRAY:
            return OwnsMemory(*type.content_type);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (type.members[i].is_optional || OwnsMemory(*type.members[i].type)) return true;
            }
            return false;
        default:
            return false;
    }
}

// Who reads the key members gets all of their values, also what is no key in them.
bool KeyOwnsMemory(const DDS_TypeCode &type) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].is_key && OwnsMemory(*type.members[i].type)) return true;
    }
    return false;
}

std::unique_ptr<KOLT_TypePrograms> Compile(const DDS_TypeCode &type) {
    auto programs = std::make_unique<KOLT_TypePrograms>();
    programs->type = &type;
    constexpr DDS_DataRepresentationId_t kRepresentations[] = {DDS_XCDR_DATA_REPRESENTATION,
                                                               DDS_XCDR2_DATA_REPRESENTATION};
    for (size_t i = 0; i < 2; ++i) {
        const DDS_UnsignedShort native =
            DDS_TypeCode_get_native_encapsulation(&type, kRepresentations[i]);
        if (native == KOLT_ENCAPSULATION_INVALID) continue;
        programs->encapsulation[i] = static_cast<DDS_UnsignedShort>(native & ~1U);
        CompileOptions options;
        options.version = i == 0 ? XcdrVersion::k1 : XcdrVersion::k2;
        programs->write[i] = CompileWrite(type, options);
        programs->read[i] = CompileRead(type, options);
        options.key_only = true;
        programs->read_key[i] = CompileRead(type, options);
        if (i == 0) programs->write_key1 = CompileWrite(type, options);
    }
    CompileOptions canonical;
    canonical.version = XcdrVersion::k2;
    canonical.key_only = true;
    canonical.force_final = true;
    programs->write_plain_key = CompileWrite(type, canonical);
    programs->read_plain_key = CompileRead(type, canonical);
    programs->key_max_size =
        kolt::type::SaturateSize(kolt::type::MaximumEnd(programs->write_plain_key, 0));
    programs->key_owns_memory = KeyOwnsMemory(type);
    return programs;
}

}  // namespace

const KOLT_TypePrograms *KOLT_TypePrograms_acquire(const DDS_TypeCode *type) {
    if (type == nullptr) return nullptr;
    try {
        ProgramList &list = List();
        const std::lock_guard lock(list.mutex);
        for (const auto &programs : list.programs) {
            if (programs->type == type) {
                ++programs->references;
                return programs.get();
            }
        }
        if (!kolt::type::ValidateTypeCode(*type)) return nullptr;
        list.programs.push_front(Compile(*type));
        list.programs.front()->references = 1;
        return list.programs.front().get();
    } catch (...) {  // out of memory
        return nullptr;
    }
}

void KOLT_TypePrograms_release(const KOLT_TypePrograms *self) {
    if (self == nullptr) return;
    std::unique_ptr<KOLT_TypePrograms> last;
    ProgramList &list = List();
    const std::lock_guard lock(list.mutex);
    for (auto entry = list.programs.begin(); entry != list.programs.end(); ++entry) {
        if (entry->get() != self) continue;
        if (--(*entry)->references == 0) {
            last = std::move(*entry);
            list.programs.erase(entry);
        }
        return;
    }
}

const DDS_TypeCode *KOLT_TypePrograms_type(const KOLT_TypePrograms *self) {
    return self == nullptr ? nullptr : self->type;
}
