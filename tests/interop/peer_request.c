/* SPDX-License-Identifier: Apache-2.0 */
// An administration tool made by idlc: sends one request to a logger, and prints, with tabs between
// the fields,
//
//     response <host> <app> <originator's host> <originator's app> <invocation> <result> <message>
//     state    <host> <app> <domain> <state> <filter level> <category:verbosity>... <format> <kind>
//     instance <instance state> <host> <app>                of a State without data
//
// for what it hears of that logger, the state before the request and those after it, until its
// standard input ends. The value of the command is
//
//     level a number; format a number; verbosity category:verbosity,... ; colour a word,
//
// the last being a command that loggers do not know.
#include <inttypes.h>
#include <string.h>

#include "distlog_idlc.h"
#include "newer_request_idlc.h"
#include "peer_common.h"

#define ADMINISTRATION "vur/distlog/administration/"

enum { kBatch = 16, kCategories = 5 };

typedef com_vur_dl_HostAndAppId Ids;

typedef struct Tool {
    Ids target;
    Ids self;
    dds_entity_t participant;
    dds_entity_t responses;
    dds_entity_t states;
    dds_entity_t waitset;
    bool state_seen;
} Tool;

static bool are_equal(Ids left, Ids right) {
    return left.rtps_host_id == right.rtps_host_id && left.rtps_app_id == right.rtps_app_id;
}

// The first two words of the participant's GUID, which is in network order.
static Ids ids_of(dds_entity_t participant) {
    dds_guid_t guid;
    checked(dds_get_guid(participant, &guid), "guid");
    uint32_t words[2] = {0, 0};
    for (int i = 0; i < 8; ++i) {
        words[i / 4] = words[i / 4] << 8 | guid.v[i];
    }
    return (Ids){(int32_t)words[0], (int32_t)words[1]};
}

static void print_response(Tool *tool, const void *sample, const dds_sample_info_t *info) {
    const com_vur_dl_admin_CommandResponse *const response = sample;
    if (info->valid_data && are_equal(response->hostAndAppId, tool->target)) {
        printf("response\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\t%" PRId32
               "\t%d\t%s\n",
               response->hostAndAppId.rtps_host_id, response->hostAndAppId.rtps_app_id,
               response->originatorHostAndAppId.rtps_host_id,
               response->originatorHostAndAppId.rtps_app_id, response->invocation,
               (int)response->commandResult, response->message);
    }
}

static void print_state(Tool *tool, const void *sample, const dds_sample_info_t *info) {
    const com_vur_dl_admin_State *const state = sample;
    if (!are_equal(state->hostAndAppId, tool->target)) {
        return;
    }
    const Ids ids = state->hostAndAppId;
    if (!info->valid_data) {
        printf("instance\t%s\t%" PRId32 "\t%" PRId32 "\n",
               peer_instance_state(info->instance_state), ids.rtps_host_id, ids.rtps_app_id);
        return;
    }
    tool->state_seen = true;
    printf("state\t%" PRId32 "\t%" PRId32 "\t%" PRId32 "\t%d\t%" PRId32, ids.rtps_host_id,
           ids.rtps_app_id, state->administrationDomainId, (int)state->state, state->filterLevel);
    for (int i = 0; i < kCategories; ++i) {
        printf("\t%d:%d", (int)state->vurLoggerVerbosities[i].category,
               (int)state->vurLoggerVerbosities[i].verbosity);
    }
    printf("\t%d\t%s\n", (int)state->vurLoggerPrintFormat, state->applicationKind);
}

static void take_all(Tool *tool, dds_entity_t reader,
                     void (*print)(Tool *, const void *, const dds_sample_info_t *)) {
    void *samples[kBatch] = {NULL};
    dds_sample_info_t infos[kBatch];
    dds_return_t count = 0;
    while ((count = checked(dds_take(reader, samples, infos, kBatch, kBatch), "take")) > 0) {
        for (dds_return_t i = 0; i < count; ++i) {
            print(tool, samples[i], &infos[i]);
        }
        checked(dds_return_loan(reader, samples, count), "return loan");
    }
}

static void hear(Tool *tool) {
    checked(dds_waitset_wait(tool->waitset, NULL, 0, DDS_MSECS(20)), "wait");
    take_all(tool, tool->states, print_state);
    take_all(tool, tool->responses, print_response);
}

// Readers are announced in the order in which they are made. The logger that has published its
// State to the second one therefore knows the first one, too, and no response is lost.
static void start_listening(Tool *tool) {
    tool->responses = peer_reader(tool->participant,
                                  peer_topic(tool->participant, ADMINISTRATION "command_response",
                                             &com_vur_dl_admin_CommandResponse_desc),
                                  DDS_DURABILITY_VOLATILE);
    tool->states = peer_reader(
        tool->participant,
        peer_topic(tool->participant, ADMINISTRATION "state", &com_vur_dl_admin_State_desc),
        DDS_DURABILITY_TRANSIENT_LOCAL);
    tool->waitset = peer_waitset(tool->participant);
    peer_watch(tool->waitset, tool->responses);
    peer_watch(tool->waitset, tool->states);
}

static dds_entity_t request_writer(Tool *tool, const dds_topic_descriptor_t *type) {
    const dds_entity_t topic =
        peer_topic(tool->participant, ADMINISTRATION "command_request", type);
    const dds_entity_t writer = peer_writer(tool->participant, topic);
    dds_publication_matched_status_t matched = {0};
    while (matched.current_count == 0 && !peer_is_dismissed()) {
        hear(tool);
        checked(dds_get_publication_matched_status(writer, &matched), "matched");
    }
    return writer;
}

// category:verbosity,category:verbosity,...
static uint32_t parse_verbosities(const char *text,
                                  com_vur_dl_admin_VURLoggerCategoryAndVerbosity *entries) {
    uint32_t count = 0;
    while (count < kCategories && *text != '\0') {
        char *end = NULL;
        entries[count].category = (com_vur_dl_admin_VURLoggerCategory)strtol(text, &end, 10);
        if (*end != ':') {
            break;
        }
        entries[count].verbosity = (com_vur_dl_admin_VURLoggerVerbosity)strtol(end + 1, &end, 10);
        ++count;
        text = *end == ',' ? end + 1 : end;
    }
    return count;
}

static dds_return_t send_command(Tool *tool, int32_t invocation, const char *kind,
                                 const char *value) {
    com_vur_dl_admin_CommandRequest request;
    memset(&request, 0, sizeof request);
    request.targetHostAndAppId = tool->target;
    request.originatorHostAndAppId = tool->self;
    request.invocation = invocation;

    int32_t level = (int32_t)strtol(value, NULL, 10);
    com_vur_dl_admin_VURLoggerPrintFormat format = (com_vur_dl_admin_VURLoggerPrintFormat)level;
    com_vur_dl_admin_VURLoggerCategoryAndVerbosity entries[kCategories];
    dds_sequence_com_vur_dl_admin_VURLoggerCategoryAndVerbosity verbosities = {
        ._maximum = kCategories, ._buffer = entries};
    if (strcmp(kind, "level") == 0) {
        request.command.d = com_vur_dl_admin_VUR_DL_SET_LOG_LEVEL;
        request.command.filterLevel = &level;
    } else if (strcmp(kind, "verbosity") == 0) {
        request.command.d = com_vur_dl_admin_VUR_DL_SET_VUR_LOGGER_LEVEL;
        verbosities._length = parse_verbosities(value, entries);
        request.command.categoryAndVerbosity = &verbosities;
    } else {
        request.command.d = com_vur_dl_admin_VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT;
        request.command.printFormat = &format;
    }
    return dds_write(request_writer(tool, &com_vur_dl_admin_CommandRequest_desc), &request);
}

// The same topic with a type that has more members.
static dds_return_t send_newer_command(Tool *tool, int32_t invocation, char *colour) {
    newer_CommandRequest request;
    memset(&request, 0, sizeof request);
    request.targetHostAndAppId = tool->target;
    request.originatorHostAndAppId = tool->self;
    request.invocation = invocation;
    request.command.d = newer_SET_COLOUR;
    request.command.colour = colour;

    dds_topic_descriptor_t type = newer_CommandRequest_desc;
    type.m_typename = com_vur_dl_admin_CommandRequest_desc.m_typename;
    return dds_write(request_writer(tool, &type), &request);
}

int main(int argc, char **argv) {
    const dds_entity_t participant =
        peer_participant(argc, argv, "domain host app kind value invocation");
    Tool tool = {
        .participant = participant,
        .target = {(int32_t)strtol(argv[2], NULL, 10), (int32_t)strtol(argv[3], NULL, 10)}};
    tool.self = ids_of(tool.participant);
    printf("self\t%" PRId32 "\t%" PRId32 "\n", tool.self.rtps_host_id, tool.self.rtps_app_id);
    start_listening(&tool);
    while (!tool.state_seen && !peer_is_dismissed()) {
        hear(&tool);
    }
    const int32_t invocation = (int32_t)strtol(argv[6], NULL, 10);
    checked(strcmp(argv[4], "colour") == 0 ? send_newer_command(&tool, invocation, argv[5])
                                           : send_command(&tool, invocation, argv[4], argv[5]),
            "write");
    while (!peer_is_dismissed()) {
        hear(&tool);
    }
    return checked(dds_delete(tool.participant), "delete");
}
