// SPDX-License-Identifier: Apache-2.0
// The description of a type for the engine, which sends it with the discovery data of writers and
// readers and answers type lookups from it.
#pragma once

#include <memory>

#include "engine/cyclone/cyclone.hpp"
#include "kolt/typecode.h"
#include "type/typeobject/type_object.hpp"

namespace kolt::engine {

class TypeAnnouncement {
  public:
    // Describes a registered type. nullptr, with a log message of level STATUS_LOCAL, for a type
    // that goes by its name alone: one that cannot be described, one whose description the engine
    // cannot read, and one that holds a mutable union.
    static std::shared_ptr<const TypeAnnouncement> create(const DDS_TypeCode &type,
                                                          const char *registered_name,
                                                          const char *method);

    // Return new objects, which the caller frees with the engine's functions.
    ddsi_typeinfo_t *type_info() const;
    ddsi_typemap_t *type_map() const;

  private:
    explicit TypeAnnouncement(kolt::type::TypeDescription description)
        : description_(std::move(description)) {}
    bool is_accepted() const;

    const kolt::type::TypeDescription description_;
};

}  // namespace kolt::engine
