/* SPDX-License-Identifier: Apache-2.0 */
/* References on instances in the engine's map of keys to instances, of which each domain has one. The
 * engine forgets an instance, and its handle, with the last reference. dds_register_instance takes
 * one, too, but the engine gives it back only together with a dispose. */
#pragma once

#include <dds/ddsi/ddsi_serdata.h>
#include <dds/ddsi/ddsi_tkmap.h>

#if defined(__cplusplus)
extern "C" {
#endif

/* Returns the instance of the key with a new reference; makes it if there is none. */
struct ddsi_tkmap_instance *kolt_instance_ref(struct ddsi_domaingv *domain,
                                              struct ddsi_serdata *key);
void kolt_instance_unref(struct ddsi_domaingv *domain, struct ddsi_tkmap_instance *instance);

#if defined(__cplusplus)
}
#endif
