// A type as the engine knows it. One sertype stands for a type name and its programs in a domain;
// the engine interns equal ones, so that it holds nothing of a participant's own.
#pragma once

#include "engine/engine_api.hpp"
#include "kolt/cdr.h"

namespace kolt::engine {

class Sertype : public ddsi_sertype {
  public:
    // A new sertype with one reference, which dds_create_topic_sertype takes over. `type_name` is
    // the registered name, which readers and writers are matched by. Throws std::bad_alloc.
    static Sertype *create(const char *type_name, const KOLT_TypePrograms *programs, bool keyed);
    static const Sertype &of(const ddsi_sertype *base) {
        return *static_cast<const Sertype *>(base);
    }

    const KOLT_TypePrograms *programs() const { return programs_; }
    bool is_keyed() const { return typekind_no_key == 0; }

  private:
    Sertype() = default;
    ~Sertype() = default;
    static void free_op(ddsi_sertype *base);
    static bool equal_op(const ddsi_sertype *a, const ddsi_sertype *b);
    static uint32_t hash_op(const ddsi_sertype *base);
    static const ddsi_sertype_ops kOps;

    const KOLT_TypePrograms *programs_ = nullptr;
};

}  // namespace kolt::engine
