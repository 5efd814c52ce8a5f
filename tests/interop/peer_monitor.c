/* SPDX-License-Identifier: Apache-2.0 */
// A monitor of log messages made by idlc. Prints, with tabs between the fields,
//
//     matched  <writers>                                                    when it changes
//     sample   <instance state> <host> <app> <level> <id> <category> <message>
//     instance <instance state> <host> <app> <level>                        a sample without data
//
// until its standard input ends.
#include <inttypes.h>

#include "distlog_idlc.h"
#include "peer_common.h"

enum { kBatch = 64 };

static void print_sample(const com_vur_dl_LogMessage *message, const dds_sample_info_t *info) {
    const char *const state = peer_instance_state(info->instance_state);
    const com_vur_dl_HostAndAppId *const ids = &message->hostAndAppId;
    if (info->valid_data) {
        printf("sample\t%s\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\t%" PRId64 "\t%s\t%s\n", state,
               ids->rtps_host_id, ids->rtps_app_id, message->level, message->messageId,
               message->category, message->message);
    } else {
        printf("instance\t%s\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\n", state, ids->rtps_host_id,
               ids->rtps_app_id, message->level);
    }
}

static void take_all(dds_entity_t reader) {
    void *samples[kBatch] = {NULL};
    dds_sample_info_t infos[kBatch];
    dds_return_t count = 0;
    while ((count = checked(dds_take(reader, samples, infos, kBatch, kBatch), "take")) > 0) {
        for (dds_return_t i = 0; i < count; ++i) {
            print_sample(samples[i], &infos[i]);
        }
        checked(dds_return_loan(reader, samples, count), "return loan");
    }
}

int main(int argc, char **argv) {
    const dds_entity_t participant = peer_participant(argc, argv, "domain topic");
    const dds_entity_t topic = peer_topic(participant, argv[2], &com_vur_dl_LogMessage_desc);
    const dds_entity_t reader = peer_reader(participant, topic, DDS_DURABILITY_TRANSIENT_LOCAL);
    const dds_entity_t waitset = peer_waitset(participant);
    peer_watch(waitset, reader);
    uint32_t writers = 0;
    while (!peer_is_dismissed()) {
        checked(dds_waitset_wait(waitset, NULL, 0, DDS_MSECS(20)), "wait");
        dds_subscription_matched_status_t matched;
        checked(dds_get_subscription_matched_status(reader, &matched), "matched");
        if (matched.current_count != writers) {
            writers = matched.current_count;
            printf("matched\t%" PRIu32 "\n", writers);
        }
        take_all(reader);
    }
    return checked(dds_delete(participant), "delete");
}
