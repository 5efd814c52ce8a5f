// SPDX-License-Identifier: Apache-2.0
// The common part of the idlc programs: endpoints that speak XCDR2, and standard input.
#pragma once

#include <dds/dds.h>
#include <poll.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

// Ends the program with the reason when a call of the engine has failed.
static inline dds_entity_t checked(dds_return_t result, const char *what) {
    if (result < 0) {
        fprintf(stderr, "%s: %s\n", what, dds_strretcode(-result));
        exit(1);
    }
    return result;
}

// A participant in the domain that the first argument names. Without the `arguments`, which count
// that one too, the program ends and tells its use.
static inline dds_entity_t peer_participant(int argc, char **argv, const char *arguments) {
    int expected = 1;
    for (const char *c = arguments; *c != '\0'; ++c) {
        expected += c == arguments || c[-1] == ' ';
    }
    if (argc != expected) {
        fprintf(stderr, "usage: %s %s\n", argv[0], arguments);
        exit(2);
    }
    setvbuf(stdout, NULL, _IOLBF, 0);
    const dds_domainid_t domain = (dds_domainid_t)strtoul(argv[1], NULL, 10);
    return checked(dds_create_participant(domain, NULL, NULL), "domain");
}

// Reliable, keeps everything, XCDR2 only. The caller deletes it.
static inline dds_qos_t *peer_qos(dds_durability_kind_t durability) {
    const dds_data_representation_id_t xcdr2 = DDS_DATA_REPRESENTATION_XCDR2;
    dds_qos_t *const qos = dds_create_qos();
    dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, 0);
    dds_qset_durability(qos, durability);
    dds_qset_data_representation(qos, 1, &xcdr2);
    dds_qset_writer_data_lifecycle(qos, false);
    return qos;
}

static inline dds_entity_t peer_topic(dds_entity_t participant, const char *name,
                                      const dds_topic_descriptor_t *type) {
    return checked(dds_create_topic(participant, type, name, NULL, NULL), "topic");
}

static inline dds_entity_t peer_reader(dds_entity_t participant, dds_entity_t topic,
                                       dds_durability_kind_t durability) {
    dds_qos_t *const qos = peer_qos(durability);
    const dds_entity_t reader = checked(dds_create_reader(participant, topic, qos, NULL), "reader");
    dds_delete_qos(qos);
    return reader;
}

static inline dds_entity_t peer_writer(dds_entity_t participant, dds_entity_t topic) {
    dds_qos_t *const qos = peer_qos(DDS_DURABILITY_VOLATILE);
    const dds_entity_t writer = checked(dds_create_writer(participant, topic, qos, NULL), "writer");
    dds_delete_qos(qos);
    return writer;
}

// A waitset that wakes up when one of the readers has something to take.
static inline dds_entity_t peer_waitset(dds_entity_t participant) {
    return checked(dds_create_waitset(participant), "waitset");
}

static inline void peer_watch(dds_entity_t waitset, dds_entity_t reader) {
    const dds_entity_t condition =
        checked(dds_create_readcondition(reader, DDS_ANY_STATE), "read condition");
    checked(dds_waitset_attach(waitset, condition, condition), "attach");
}

// The test that started this program has closed its standard input, or has gone.
static inline bool peer_is_dismissed(void) {
    struct pollfd input = {.fd = STDIN_FILENO, .events = POLLIN};
    char ignored[64];
    return poll(&input, 1, 0) > 0 && read(STDIN_FILENO, ignored, sizeof ignored) <= 0;
}

static inline const char *peer_instance_state(dds_instance_state_t state) {
    return state == DDS_IST_ALIVE
               ? "alive"
               : (state == DDS_IST_NOT_ALIVE_DISPOSED ? "disposed" : "no_writers");
}
