// SPDX-License-Identifier: Apache-2.0
// References on instances, in the engine's map.
#include "engine/data/instance_pin.hpp"

#include <dds/ddsi/ddsi_tkmap.h>

#include "engine/cyclone/awake.hpp"
#include "engine/cyclone/domain_parts.h"

namespace kolt::engine {

namespace {

ddsi_tkmap_instance *reference(ddsi_domaingv *domain, const Serdata &key) {
    const Awake awake(domain);
    return ddsi_tkmap_find(kolt_domain_instances(domain), const_cast<Serdata *>(&key), true);
}

}  // namespace

[[gnu::noinline]] DDS_InstanceHandle_t handle_of(const ddsi_tkmap_instance *instance) {
    return instance->m_iid;
}

InstancePin::InstancePin(const Sertype &type, const Serdata &key)
    : domain_(type.domain()), instance_(reference(domain_, key)) {}

InstancePin::InstancePin(ddsi_domaingv *domain, ddsi_tkmap_instance *instance)
    : domain_(domain), instance_(instance) {
    ddsi_tkmap_instance_ref(instance);
}

InstancePin::~InstancePin() {
    if (instance_ != nullptr) {
        const Awake awake(domain_);
        ddsi_tkmap_instance_unref(kolt_domain_instances(domain_), instance_);
    }
}

}  // namespace kolt::engine
