// SPDX-License-Identifier: Apache-2.0
// The process-wide registry of compiled programs.
#include <list>
#include <memory>
#include <mutex>

#include "type/cdr/cdr_codec.hpp"
#include "type/typecode/layout.hpp"

namespace {

using kolt::type::compile_read;
using kolt::type::compile_write;
using kolt::type::CompileOptions;
using kolt::type::XcdrVersion;

struct ProgramRegistry {
    std::mutex mutex;
    std::list<std::unique_ptr<KOLT_TypePrograms>> programs;  // guarded by mutex
};

// Never destroyed: endpoints may still let go of their programs while the process ends.
ProgramRegistry &process_registry() {
    static ProgramRegistry *const kRegistry = new ProgramRegistry;
    return *kRegistry;
}

// True when a value of the type is more than plain bytes.
bool owns_memory(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_STRING:
        case DDS_TK_SEQUENCE:
            return true;
        case DDS_TK_ARRAY:
            return owns_memory(*type.content_type);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (type.members[i].is_optional || owns_memory(*type.members[i].type)) {
                    return true;
                }
            }
            return false;
        default:
            return false;
    }
}

// True when the key members own memory. Reading a key member reads all of its value, also the
// parts that are not keys themselves.
bool key_owns_memory(const DDS_TypeCode &type) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].is_key && owns_memory(*type.members[i].type)) {
            return true;
        }
    }
    return false;
}

std::unique_ptr<KOLT_TypePrograms> compile(const DDS_TypeCode &type) {
    auto programs = std::make_unique<KOLT_TypePrograms>();
    programs->type = &type;
    constexpr DDS_DataRepresentationId_t kRepresentations[] = {DDS_XCDR_DATA_REPRESENTATION,
                                                               DDS_XCDR2_DATA_REPRESENTATION};
    for (std::size_t i = 0; i < 2; ++i) {
        const DDS_UnsignedShort native =
            DDS_TypeCode_get_native_encapsulation(&type, kRepresentations[i]);
        if (native == KOLT_ENCAPSULATION_INVALID) {
            continue;
        }
        programs->encapsulation[i] = static_cast<DDS_UnsignedShort>(native & ~1U);
        CompileOptions options;
        options.version = i == 0 ? XcdrVersion::k1 : XcdrVersion::k2;
        programs->write[i] = compile_write(type, options);
        programs->read[i] = compile_read(type, options);
        options.key_only = true;
        programs->read_key[i] = compile_read(type, options);
        if (i == 0) {
            programs->write_key1 = compile_write(type, options);
        }
    }
    CompileOptions canonical;
    canonical.version = XcdrVersion::k2;
    canonical.key_only = true;
    canonical.force_final = true;
    programs->write_plain_key = compile_write(type, canonical);
    programs->read_plain_key = compile_read(type, canonical);
    programs->key_max_size =
        kolt::type::saturate_size(kolt::type::maximum_end(programs->write_plain_key, 0));
    programs->key_owns_memory = key_owns_memory(type);
    return programs;
}

}  // namespace

const KOLT_TypePrograms *KOLT_TypePrograms_acquire(const DDS_TypeCode *type) {
    if (type == nullptr) {
        return nullptr;
    }
    try {
        ProgramRegistry &registry = process_registry();
        const std::lock_guard lock(registry.mutex);
        for (const auto &programs : registry.programs) {
            if (programs->type == type) {
                ++programs->references;
                return programs.get();
            }
        }
        if (!kolt::type::validate_type_code(*type)) {
            return nullptr;
        }
        registry.programs.push_front(compile(*type));
        registry.programs.front()->references = 1;
        return registry.programs.front().get();
    } catch (...) {  // out of memory
        return nullptr;
    }
}

void KOLT_TypePrograms_release(const KOLT_TypePrograms *self) {
    if (self == nullptr) {
        return;
    }
    std::unique_ptr<KOLT_TypePrograms> last;
    ProgramRegistry &registry = process_registry();
    const std::lock_guard lock(registry.mutex);
    for (auto entry = registry.programs.begin(); entry != registry.programs.end(); ++entry) {
        if (entry->get() != self) {
            continue;
        }
        if (--(*entry)->references == 0) {
            last = std::move(*entry);
            registry.programs.erase(entry);
        }
        return;
    }
}

const DDS_TypeCode *KOLT_TypePrograms_type(const KOLT_TypePrograms *self) {
    return self == nullptr ? nullptr : self->type;
}
