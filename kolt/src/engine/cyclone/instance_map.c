/* SPDX-License-Identifier: Apache-2.0 */
/* References in the engine's map of instances. In C, since the header that describes a domain is not
 * valid C++. The calling thread is marked as one that uses the engine's memory, which is freed when
 * no thread can. */
#include "engine/cyclone/instance_map.h"

#include <dds/ddsi/ddsi_domaingv.h>
#include <dds/ddsi/q_thread.h>

struct ddsi_tkmap_instance *kolt_instance_ref(struct ddsi_domaingv *domain,
                                              struct ddsi_serdata *key) {
    struct thread_state *const thread = lookup_thread_state();
    thread_state_awake(thread, domain);
    struct ddsi_tkmap_instance *const instance = ddsi_tkmap_find(domain->m_tkmap, key, true);
    thread_state_asleep(thread);
    return instance;
}

void kolt_instance_unref(struct ddsi_domaingv *domain, struct ddsi_tkmap_instance *instance) {
    struct thread_state *const thread = lookup_thread_state();
    thread_state_awake(thread, domain);
    ddsi_tkmap_instance_unref(domain->m_tkmap, instance);
    thread_state_asleep(thread);
}
