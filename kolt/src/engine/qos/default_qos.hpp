// SPDX-License-Identifier: Apache-2.0
// The QoS that a create function uses when the caller gives none.
#pragma once

#include "engine/barrier/barrier.hpp"
#include "qos/profile_store.hpp"
#include "qos/qos_values.hpp"

namespace kolt::engine {

// A default that the application may set. Until then the loaded profiles decide.
template <typename Qos>
class DefaultQos {
  public:
    bool is_set() const { return set_; }
    // Copies the default into an initialised record. False when memory runs out.
    bool get(Qos *qos) const { return kolt::qos::copy(*qos, *value_); }
    bool set(const Qos &qos) {
        if (!kolt::qos::copy(*value_, qos)) {
            return false;
        }
        set_ = true;
        return true;
    }
    void reset() { set_ = false; }

  private:
    kolt::qos::OwnedQos<Qos> value_;
    bool set_ = false;
};

// Gets the default profile's QoS for this topic (which may be nullptr), else the standard's
// default. False when memory runs out.
template <typename Qos>
bool profile_default(Qos *qos, const char *topic_name) {
    kolt::qos::OwnedQos<Qos> standard;
    if (!kolt::qos::copy(*qos, *standard)) {
        return false;
    }
    kolt::qos::profile_store().default_qos(*qos, topic_name);
    return true;
}

// Chooses the QoS of a new entity: the caller's, or, for nullptr and the sentinel, the default that
// `get_default(&qos)` gives. False when that fails.
template <typename Qos, typename GetDefault>
bool choose_qos(const Qos *given, const Qos &sentinel, Qos *chosen, GetDefault &&get_default) {
    if (given != nullptr && given != &sentinel) {
        return kolt::qos::copy(*chosen, *given);
    }
    return get_default(chosen) == DDS_RETCODE_OK;
}

}  // namespace kolt::engine
