// SPDX-License-Identifier: Apache-2.0
// Which types are described to other participants, and how.
#include "engine/data/type_announcement.hpp"

#include <dds/ddsi/ddsi_typelib.h>
#include <dds/ddsrt/heap.h>

#include <set>

#include "kolt/config_logger.h"

namespace kolt::engine {

namespace {

// True for a type that holds a mutable union. The standard's description of such a union would harm
// programs that use the engine directly:
//   - one that builds a reader from the description crashes in the engine's type builder, which
//     does not support the union and frees memory twice;
//   - one made by the engine's IDL compiler, which does not support it either, describes the bytes
//     as a structure. That never matches the union, whereas the names of the types do match.
bool holds_mutable_union(const DDS_TypeCode &type, std::set<const DDS_TypeCode *> &seen) {
    if (!seen.insert(&type).second) {
        return false;
    }
    if (type.kind == DDS_TK_UNION && type.extensibility == DDS_MUTABLE_EXTENSIBILITY) {
        return true;
    }
    if (type.kind == DDS_TK_SEQUENCE || type.kind == DDS_TK_ARRAY) {
        return holds_mutable_union(*type.content_type, seen);
    }
    if (type.kind != DDS_TK_STRUCT && type.kind != DDS_TK_UNION) {
        return false;
    }
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (holds_mutable_union(*type.members[i].type, seen)) {
            return true;
        }
    }
    return false;
}

// Wraps bytes for the engine. Its parameter is not const, but the engine changes at most a copy.
ddsi_sertype_cdr_data cdr_data(const kolt::type::Bytes &bytes) {
    return {static_cast<std::uint32_t>(bytes.size()), const_cast<unsigned char *>(bytes.data())};
}

}  // namespace

std::shared_ptr<const TypeAnnouncement> TypeAnnouncement::create(const DDS_TypeCode &type,
                                                                 const char *registered_name,
                                                                 const char *method) {
    std::string problem = "it holds a mutable union";
    std::set<const DDS_TypeCode *> seen;
    if (!holds_mutable_union(type, seen)) {
        auto description = kolt::type::describe_type(type, registered_name, &problem);
        if (description) {
            std::shared_ptr<const TypeAnnouncement> result(
                new TypeAnnouncement(std::move(*description)));
            if (result->is_accepted()) {
                return result;
            }
            problem = "the DDS engine could not read its description";
        }
    }
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_DISCOVERY, KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, method,
                     "the type %s is announced by its name alone: %s", registered_name,
                     problem.c_str());
    return nullptr;
}

ddsi_typeinfo_t *TypeAnnouncement::type_info() const {
    const ddsi_sertype_cdr_data data = cdr_data(description_.information);
    return ddsi_typeinfo_deser(&data);
}

ddsi_typemap_t *TypeAnnouncement::type_map() const {
    const ddsi_sertype_cdr_data data = cdr_data(description_.mapping);
    return ddsi_typemap_deser(&data);
}

// True when the engine can read the description. Otherwise it could not create topics of the type.
bool TypeAnnouncement::is_accepted() const {
    const std::unique_ptr<ddsi_typeinfo_t, void (*)(void *)> info(type_info(), ddsrt_free);
    const std::unique_ptr<ddsi_typemap_t, void (*)(void *)> map(type_map(), ddsrt_free);
    const bool accepted = info != nullptr && map != nullptr && ddsi_typeinfo_valid(info.get());
    if (info != nullptr) {
        ddsi_typeinfo_fini(info.get());
    }
    if (map != nullptr) {
        ddsi_typemap_fini(map.get());
    }
    return accepted;
}

}  // namespace kolt::engine
