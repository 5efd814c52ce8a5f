// SPDX-License-Identifier: Apache-2.0
// A type as the engine knows it. One sertype stands for a type name and its programs in a domain;
// the engine interns equal ones, so that it holds nothing of a participant's own.
#pragma once

#include <cstdint>

#include "engine/data/registered_type.hpp"
#include "engine/data/type_announcement.hpp"

namespace kolt::engine {

class Sertype : public ddsi_sertype {
  public:
    // A new sertype with one reference, which dds_create_topic_sertype takes over. Readers and
    // writers are matched by the type's announcement, or by the registered name when one of them
    // has none. Throws std::bad_alloc.
    static Sertype *create(const RegisteredType &registered);
    static const Sertype &of(const ddsi_sertype *base) {
        return *static_cast<const Sertype *>(base);
    }

    const KOLT_TypePrograms *programs() const { return programs_; }
    bool is_keyed() const { return typekind_no_key == 0; }
    // Returns the domain of the topics of this type. nullptr before the first one is enabled.
    ddsi_domaingv *domain() const {
        return static_cast<ddsi_domaingv *>(ddsrt_atomic_ldvoidp(&gv));
    }

  private:
    explicit Sertype(std::shared_ptr<const TypeAnnouncement> announcement)
        : announcement_(std::move(announcement)) {}
    ~Sertype() = default;
    static void free_op(ddsi_sertype *base);
    static bool equal_op(const ddsi_sertype *a, const ddsi_sertype *b);
    static std::uint32_t hash_op(const ddsi_sertype *base);
    static ddsi_typeid_t *type_id_op(const ddsi_sertype *base, ddsi_typeid_kind_t kind);
    static ddsi_typemap_t *type_map_op(const ddsi_sertype *base);
    static ddsi_typeinfo_t *type_info_op(const ddsi_sertype *base);
    static const ddsi_sertype_ops kOps;

    const KOLT_TypePrograms *programs_ = nullptr;
    const std::shared_ptr<const TypeAnnouncement> announcement_;  // may be nullptr
};

}  // namespace kolt::engine
