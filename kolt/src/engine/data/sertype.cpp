// SPDX-License-Identifier: Apache-2.0
// The engine's operations on types.
#include "engine/data/sertype.hpp"

#include <dds/ddsi/ddsi_typelib.h>
#include <dds/ddsrt/heap.h>

#include <cstring>

#include "engine/data/serdata.hpp"

namespace kolt::engine {

namespace {

// The engine's sample buffers are arrays of views.

void zero_samples_op(const ddsi_sertype *, void *samples, std::size_t count) {
    std::memset(samples, 0, count * sizeof(SerdataView));
}

void realloc_samples_op(void **pointers, const ddsi_sertype *, void *old, std::size_t old_count,
                        std::size_t count) {
    // ddsrt_realloc ends the process when memory runs out.
    auto *const views = static_cast<SerdataView *>(ddsrt_realloc(old, count * sizeof(SerdataView)));
    if (count > old_count) {
        std::memset(static_cast<void *>(views + old_count), 0,
                    (count - old_count) * sizeof(SerdataView));
    }
    for (std::size_t i = 0; i < count; ++i) {
        pointers[i] = views + i;
    }
}

void free_samples_op(const ddsi_sertype *, void **pointers, std::size_t count, dds_free_op_t op) {
    if (count == 0) {
        return;
    }
    if ((op & DDS_FREE_CONTENTS_BIT) != 0) {
        auto *const views = static_cast<SerdataView *>(pointers[0]);
        for (std::size_t i = 0; i < count; ++i) {
            views[i].reset(nullptr);
        }
    }
    if ((op & DDS_FREE_ALL_BIT) != 0) {
        ddsrt_free(pointers[0]);
    }
}

}  // namespace

// Without derive_sertype writers and readers use the topic's sertype, whatever their
// representation.
const ddsi_sertype_ops Sertype::kOps = {
    .version = ddsi_sertype_v0,
    .arg = nullptr,
    .free = free_op,
    .zero_samples = zero_samples_op,
    .realloc_samples = realloc_samples_op,
    .free_samples = free_samples_op,
    .equal = equal_op,
    .hash = hash_op,
    .type_id = type_id_op,
    .type_map = type_map_op,
    .type_info = type_info_op,
    .derive_sertype = nullptr,
    .get_serialized_size = nullptr,
    .serialize_into = nullptr,
};

Sertype *Sertype::create(const RegisteredType &registered) {
    auto *const type = new Sertype(registered.announcement());
    const DDS_TypeCode *const type_code = registered.type_code();
    ddsi_sertype_init(type, registered.name().c_str(), &kOps, &Serdata::kOps,
                      !registered.is_keyed());
    // The numbers of KOLT's mask bits are the engine's.
    static_assert(DDS_DATA_REPRESENTATION_MASK_XCDR == DDS_DATA_REPRESENTATION_FLAG_XCDR1);
    static_assert(DDS_DATA_REPRESENTATION_MASK_XCDR2 == DDS_DATA_REPRESENTATION_FLAG_XCDR2);
    type->allowed_data_representation = type_code->representations;
    type->programs_ = KOLT_TypePrograms_acquire(type_code);
    if (type->programs_ == nullptr) {
        ddsi_sertype_unref(type);
        throw std::bad_alloc();
    }
    return type;
}

void Sertype::free_op(ddsi_sertype *base) {
    auto *const type = static_cast<Sertype *>(base);
    ddsi_sertype_fini(type);
    KOLT_TypePrograms_release(type->programs_);
    delete type;
}

// Compares what the engine does not compare itself. An announcement follows from the name, which
// the engine compares, and the type code.
bool Sertype::equal_op(const ddsi_sertype *a, const ddsi_sertype *b) {
    return of(a).programs_ == of(b).programs_ &&
           (of(a).announcement_ == nullptr) == (of(b).announcement_ == nullptr);
}

std::uint32_t Sertype::hash_op(const ddsi_sertype *base) {
    const auto address = reinterpret_cast<std::uintptr_t>(of(base).programs_);
    return static_cast<std::uint32_t>(address >> 4);
}

ddsi_typeid_t *Sertype::type_id_op(const ddsi_sertype *base, ddsi_typeid_kind_t kind) {
    ddsi_typeinfo_t *const info = type_info_op(base);
    if (info == nullptr) {
        return nullptr;
    }
    ddsi_typeid_t *const id = ddsi_typeinfo_typeid(info, kind);
    ddsi_typeinfo_fini(info);
    ddsrt_free(info);
    return id;
}

ddsi_typemap_t *Sertype::type_map_op(const ddsi_sertype *base) {
    const auto &announcement = of(base).announcement_;
    return announcement == nullptr ? nullptr : announcement->type_map();
}

ddsi_typeinfo_t *Sertype::type_info_op(const ddsi_sertype *base) {
    const auto &announcement = of(base).announcement_;
    return announcement == nullptr ? nullptr : announcement->type_info();
}

}  // namespace kolt::engine
