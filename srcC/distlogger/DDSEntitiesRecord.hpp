// SPDX-License-Identifier: Apache-2.0
// The record of the logger's DDS entities.
#pragma once

#include "vur_dl/DDSEntities.h"

namespace vur_dl {

// The places of the topics in `locallyCreatedTopics`.
enum TopicSlot { kLogSlot = 0, kStateSlot, kCommandRequestSlot, kCommandResponseSlot, kTopicSlots };

}  // namespace vur_dl

// NOLINTBEGIN(readability-identifier-naming): the members of this C family are camelCase.
struct VUR_DL_DDSEntities {
    int participantCreatedLocally;
    DDS_DomainParticipantFactory *factory;
    DDS_DomainParticipant *domainParticipant;  // owned if created locally, else borrowed
    DDS_Topic *logTopic;
    DDS_Publisher *publisher;
    DDS_Subscriber *subscriber;  // NULL without remote administration
    VUR_DL_LogMessageDataWriter *logMessageWriter;
    DDS_Topic *stateTopic;
    VUR_DL_ADMIN_StateDataWriter *stateWriter;
    struct DDS_DataWriterListener stateWriterListener;
    DDS_Topic *commandRequestTopic;
    DDS_ContentFilteredTopic *commandRequestContentFilteredTopic;
    VUR_DL_ADMIN_CommandRequestDataReader *commandRequestReader;
    DDS_Topic *commandResponseTopic;
    VUR_DL_ADMIN_CommandResponseDataWriter *commandResponseWriter;
    DDS_Topic *
        locallyCreatedTopics[vur_dl::kTopicSlots];  // NULL: not created here, so never deleted here
    int rtpsHostId;
    int rtpsAppId;
    const char *qosLibrary;  // borrowed from the options, as the next one
    const char *qosProfile;
};
// NOLINTEND(readability-identifier-naming)

// 0 until the first State sample has been written, then 1. One per process; each creation resets
// it.
extern int VUR_DL_DDSEntities_gInitialStateSent;
