/* SPDX-License-Identifier: Apache-2.0 */
#include "engine/cyclone/domain_parts.h"

#include <dds/ddsi/ddsi_domaingv.h>
#include <dds/ddsi/ddsi_tran.h>
#include <fcntl.h>
#include <stddef.h>

static void close_on_exec(struct ddsi_tran_conn *connection) {
    const int descriptor = connection != NULL ? ddsi_conn_handle(connection) : -1;
    const int flags = descriptor >= 0 ? fcntl(descriptor, F_GETFD) : -1;
    if (flags >= 0) {
        fcntl(descriptor, F_SETFD, flags | FD_CLOEXEC);
    }
}

void kolt_domain_close_on_exec(struct ddsi_domaingv *domain) {
    close_on_exec(domain->disc_conn_mc);
    close_on_exec(domain->data_conn_mc);
    close_on_exec(domain->disc_conn_uc);
    close_on_exec(domain->data_conn_uc);
    for (size_t i = 0; i < MAX_XMIT_CONNS; ++i) {
        close_on_exec(domain->xmit_conns[i]);
    }
}

struct ddsi_tkmap *kolt_domain_instances(struct ddsi_domaingv *domain) {
    return domain->m_tkmap;
}

struct xeventq *kolt_domain_events(struct ddsi_domaingv *domain) {
    return domain->xevents;
}
