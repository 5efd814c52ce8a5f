/* SPDX-License-Identifier: Apache-2.0 */
#include "engine/cyclone/domain_parts.h"

#include <dds/ddsi/ddsi_domaingv.h>

struct ddsi_tkmap *kolt_domain_instances(struct ddsi_domaingv *domain) {
    return domain->m_tkmap;
}

struct xeventq *kolt_domain_events(struct ddsi_domaingv *domain) {
    return domain->xevents;
}
