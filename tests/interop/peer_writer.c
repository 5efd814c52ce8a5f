/* SPDX-License-Identifier: Apache-2.0 */
// A source of log messages made by idlc. Carries out the lines of its standard input
//
//     matched    <readers>                                        waits until there are so many
//     write      <host> <app> <level> <id> <category> <message>   texts without a space
//     dispose    <host> <app> <level>
//     unregister <host> <app> <level>
//
// and answers each with "ok", or with the error.
#include <inttypes.h>
#include <string.h>

#include "distlog_idlc.h"
#include "peer_common.h"

static dds_return_t wait_until_matched(dds_entity_t writer, uint32_t readers) {
    const dds_time_t deadline = dds_time() + DDS_SECS(30);
    dds_publication_matched_status_t matched = {0};
    for (;;) {
        const dds_return_t result = dds_get_publication_matched_status(writer, &matched);
        if (result < 0 || matched.current_count == readers) {
            return result;
        }
        if (dds_time() > deadline) {
            return DDS_RETCODE_TIMEOUT;
        }
        dds_sleepfor(DDS_MSECS(5));
    }
}

static dds_return_t carry_out(dds_entity_t writer, const char *line) {
    com_vur_dl_LogMessage message;
    memset(&message, 0, sizeof message);
    char verb[16] = "";
    int32_t first = 0;
    const int fields =
        sscanf(line, "%15s %" SCNd32 " %" SCNd32 " %" SCNd32 " %" SCNd64 " %512s %4096s", verb,
               &first, &message.hostAndAppId.rtps_app_id, &message.level, &message.messageId,
               message.category, message.message);
    message.hostAndAppId.rtps_host_id = first;
    if (fields == 2 && strcmp(verb, "matched") == 0) {
        return wait_until_matched(writer, (uint32_t)first);
    }
    if (fields == 7 && strcmp(verb, "write") == 0) {
        return dds_write(writer, &message);
    }
    if (fields == 4 && strcmp(verb, "dispose") == 0) {
        return dds_dispose(writer, &message);
    }
    if (fields == 4 && strcmp(verb, "unregister") == 0) {
        return dds_unregister_instance(writer, &message);
    }
    return DDS_RETCODE_BAD_PARAMETER;
}

int main(int argc, char **argv) {
    const dds_entity_t participant = peer_participant(argc, argv, "domain topic");
    const dds_entity_t topic = peer_topic(participant, argv[2], &com_vur_dl_LogMessage_desc);
    const dds_entity_t writer = peer_writer(participant, topic);
    static char line[8192];
    while (fgets(line, sizeof line, stdin) != NULL) {
        const dds_return_t result = carry_out(writer, line);
        printf("%s\n", result < 0 ? dds_strretcode(-result) : "ok");
    }
    return checked(dds_delete(participant), "delete");
}
