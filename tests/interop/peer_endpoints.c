/* SPDX-License-Identifier: Apache-2.0 */
/* An observer that knows nothing but discovery: prints what it hears of every participant, writer
 * and reader in the domain, with tabs between the fields,
 *
 *     participant <name> <user data>
 *     writer      <topic> <reliability> <durability> <history> <depth> <max samples>
 *                 <max instances> <max samples per instance> <partitions> <representations>
 *                 <user data>
 *     reader      the same
 *
 * until its standard input ends. Kinds are the engine's numbers; lists have commas between their
 * elements, and what was not said is "-".
 */
#include <inttypes.h>
#include <string.h>

#include "peer_common.h"

enum { kBatch = 16 };

static void print_octets(void *octets, size_t size) {
    printf("%.*s", (int)size, octets == NULL ? "" : (const char *)octets);
    dds_free(octets);
}

static void print_user_data(const dds_qos_t *qos) {
    void *data = NULL;
    size_t size = 0;
    if (dds_qget_userdata(qos, &data, &size)) {
        print_octets(data, size);
    } else {
        printf("-");
    }
}

static void print_partitions(const dds_qos_t *qos) {
    uint32_t count = 0;
    char **names = NULL;
    if (!dds_qget_partition(qos, &count, &names) || count == 0) {
        printf("-");
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        printf("%s%s", i == 0 ? "" : ",", names[i]);
        dds_free(names[i]);
    }
    dds_free(names);
}

static void print_representations(const dds_qos_t *qos) {
    uint32_t count = 0;
    dds_data_representation_id_t *ids = NULL;
    if (!dds_qget_data_representation(qos, &count, &ids) || count == 0) {
        printf("-");
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        printf("%s%d", i == 0 ? "" : ",", (int)ids[i]);
    }
    dds_free(ids);
}

static void print_endpoint(const char *what, const dds_builtintopic_endpoint_t *endpoint) {
    const dds_qos_t *const qos = endpoint->qos;
    dds_reliability_kind_t reliability = DDS_RELIABILITY_BEST_EFFORT;
    dds_duration_t blocking = 0;
    dds_durability_kind_t durability = DDS_DURABILITY_VOLATILE;
    dds_history_kind_t history = DDS_HISTORY_KEEP_LAST;
    int32_t depth = 0;
    int32_t limits[3] = {0, 0, 0};
    dds_qget_reliability(qos, &reliability, &blocking);
    dds_qget_durability(qos, &durability);
    dds_qget_history(qos, &history, &depth);
    dds_qget_resource_limits(qos, &limits[0], &limits[1], &limits[2]);
    printf("%s\t%s\t%d\t%d\t%d\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\t", what,
           endpoint->topic_name, (int)reliability, (int)durability, (int)history, depth, limits[0],
           limits[1], limits[2]);
    print_partitions(qos);
    printf("\t");
    print_representations(qos);
    printf("\t");
    print_user_data(qos);
    printf("\n");
}

static void print_participant(const dds_builtintopic_participant_t *participant) {
    char *name = NULL;
    dds_qget_entity_name(participant->qos, &name);
    printf("participant\t%s\t", name == NULL ? "-" : name);
    dds_free(name);
    print_user_data(participant->qos);
    printf("\n");
}

static void take_all(dds_entity_t reader, const char *what) {
    void *samples[kBatch] = {NULL};
    dds_sample_info_t infos[kBatch];
    dds_return_t count = 0;
    while ((count = checked(dds_take(reader, samples, infos, kBatch, kBatch), "take")) > 0) {
        for (dds_return_t i = 0; i < count; ++i) {
            if (!infos[i].valid_data || infos[i].instance_state != DDS_IST_ALIVE) {
                continue;
            }
            if (strcmp(what, "participant") == 0) {
                print_participant(samples[i]);
            } else {
                print_endpoint(what, samples[i]);
            }
        }
        checked(dds_return_loan(reader, samples, count), "return loan");
    }
}

int main(int argc, char **argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: %s domain\n", argv[0]);
        return 2;
    }
    setvbuf(stdout, NULL, _IOLBF, 0);
    const dds_entity_t participant = checked(
        dds_create_participant((dds_domainid_t)strtoul(argv[1], NULL, 10), NULL, NULL), "domain");
    const dds_entity_t waitset = peer_waitset(participant);
    const struct {
        dds_entity_t topic;
        const char *what;
    } sources[] = {{DDS_BUILTIN_TOPIC_DCPSPARTICIPANT, "participant"},
                   {DDS_BUILTIN_TOPIC_DCPSPUBLICATION, "writer"},
                   {DDS_BUILTIN_TOPIC_DCPSSUBSCRIPTION, "reader"}};
    dds_entity_t readers[3];
    for (size_t i = 0; i < 3; ++i) {
        readers[i] =
            checked(dds_create_reader(participant, sources[i].topic, NULL, NULL), "reader");
        peer_watch(waitset, readers[i]);
    }
    printf("watching\n");
    while (!peer_is_dismissed()) {
        checked(dds_waitset_wait(waitset, NULL, 0, DDS_MSECS(20)), "wait");
        for (size_t i = 0; i < 3; ++i) {
            take_all(readers[i], sources[i].what);
        }
    }
    return checked(dds_delete(participant), "delete");
}
