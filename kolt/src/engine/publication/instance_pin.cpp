// SPDX-License-Identifier: Apache-2.0
// References on instances, in the engine's map.
#include "engine/publication/instance_pin.hpp"

#include "engine/cyclone/instance_map.h"

namespace kolt::engine {

InstancePin::InstancePin(const Sertype &type, const Serdata &key)
    : domain_(static_cast<ddsi_domaingv *>(ddsrt_atomic_ldvoidp(&type.gv))),
      instance_(kolt_instance_ref(domain_, const_cast<Serdata *>(&key))) {}

InstancePin::~InstancePin() {
    if (instance_ != nullptr) {
        kolt_instance_unref(domain_, instance_);
    }
}

DDS_InstanceHandle_t InstancePin::handle() const {
    return instance_ != nullptr ? instance_->m_iid : DDS_HANDLE_NIL;
}

}  // namespace kolt::engine
