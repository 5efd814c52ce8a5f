/* SPDX-License-Identifier: Apache-2.0 */
/* Parts of a domain of the engine. In C, since the header that describes a domain is not valid C++. */
#pragma once

#if defined(__cplusplus)
extern "C" {
#endif

struct ddsi_domaingv;
struct ddsi_tkmap;
struct xeventq;

/* Returns the map of keys to instances. */
struct ddsi_tkmap *kolt_domain_instances(struct ddsi_domaingv *domain);
/* Marks the sockets of the domain as those that another program, executed in a child, does not get. */
void kolt_domain_close_on_exec(struct ddsi_domaingv *domain);
/* Returns the queue of what the engine does at a time. */
struct xeventq *kolt_domain_events(struct ddsi_domaingv *domain);

#if defined(__cplusplus)
}
#endif
