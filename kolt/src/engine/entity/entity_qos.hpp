// SPDX-License-Identifier: Apache-2.0
// The QoS record of an entity, and the steps of a change.
#pragma once

#include <mutex>
#include <new>

#include "engine/cyclone/convert.hpp"
#include "engine/entity/entity.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"
#include "qos/qos_values.hpp"

namespace kolt::engine {

template <typename Qos>
class EntityQos {
  public:
    // `tree` guards the record. Throws std::bad_alloc.
    EntityQos(std::mutex &tree, const Qos &initial) : tree_(tree) {
        if (!kolt::qos::copy(*value_, initial)) {
            throw std::bad_alloc();
        }
    }

    // Copies the record into an initialised one.
    DDS_ReturnCode_t get(Qos *qos) const {
        return read([&](const Qos &value) { return copied(kolt::qos::copy(*qos, value)); });
    }

    // Returns `look(record)`, which runs with the tree locked.
    template <typename Look>
    auto read(Look &&look) const {
        const std::lock_guard lock(tree_);
        return look(*value_);
    }

    // Checks the new values, hands `make_engine_qos(qos)` to the engine's entity if there is one,
    // and keeps them. Immutable policies of an enabled entity must not differ.
    template <typename MakeEngineQos>
    DDS_ReturnCode_t set(const Qos &qos, const Entity &entity, const char *method,
                         MakeEngineQos &&make_engine_qos) {
        const DDS_ReturnCode_t checked = check_qos(qos, method);
        if (checked != DDS_RETCODE_OK) {
            return checked;
        }
        if (entity.is_enabled()) {
            const DDS_ReturnCode_t changeable =
                read([&](const Qos &value) { return check_change(value, qos, method); });
            if (changeable != DDS_RETCODE_OK) {
                return changeable;
            }
            const EngineQos engine_qos = make_engine_qos(qos);
            const dds_return_t result = dds_set_qos(entity.engine(), engine_qos.get());
            if (result < 0) {
                return fail(to_return_code(result), method,
                            "the DDS engine could not apply the changed QoS to the enabled entity");
            }
        }
        const std::lock_guard lock(tree_);
        return copied(kolt::qos::copy(*value_, qos));
    }

  private:
    static DDS_ReturnCode_t copied(bool complete) {
        return complete ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
    }

    std::mutex &tree_;
    kolt::qos::OwnedQos<Qos> value_;
};

}  // namespace kolt::engine
