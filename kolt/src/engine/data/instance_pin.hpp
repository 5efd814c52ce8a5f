// SPDX-License-Identifier: Apache-2.0
// A reference on an instance of the domain. The engine forgets an instance, and its handle, when
// nothing refers to it, such as one that was only written and whose samples nobody holds.
#pragma once

#include <utility>

#include "engine/data/serdata.hpp"

struct ddsi_tkmap_instance;

namespace kolt::engine {

// Returns the handle of an instance. A function of its own, since the thread sanitizer does not see what
// orders this read of the engine's memory.
DDS_InstanceHandle_t handle_of(const ddsi_tkmap_instance *instance);

class InstancePin {
  public:
    // Refers to nothing.
    InstancePin() = default;
    // Refers to the instance of the key, which it makes if there is none. `type` is registered with
    // the domain, which outlives the object.
    InstancePin(const Sertype &type, const Serdata &key);
    // Refers to an instance that the engine hands over.
    InstancePin(ddsi_domaingv *domain, ddsi_tkmap_instance *instance);
    ~InstancePin();
    InstancePin(InstancePin &&other) noexcept
        : domain_(other.domain_), instance_(std::exchange(other.instance_, nullptr)) {}
    InstancePin &operator=(InstancePin &&other) noexcept {
        std::swap(domain_, other.domain_);
        std::swap(instance_, other.instance_);
        return *this;
    }

    // Returns the handle of the instance; DDS_HANDLE_NIL without one.
    DDS_InstanceHandle_t handle() const {
        return instance_ != nullptr ? handle_of(instance_) : DDS_HANDLE_NIL;
    }
    // Returns the engine's instance; nullptr without one.
    ddsi_tkmap_instance *get() const { return instance_; }

  private:
    ddsi_domaingv *domain_ = nullptr;
    ddsi_tkmap_instance *instance_ = nullptr;
};

}  // namespace kolt::engine
