// SPDX-License-Identifier: Apache-2.0
// Sends back what it gets, under the same time stamps: usage helper_kolt_echo <domain> xcdr1|xcdr2 <suffix of the topic
// names>. Runs until it is ended.
#include <cstdlib>
#include <cstring>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

void echo_messages(DDS_DataReader *reader, DDS_DataWriter *writer) {
    Record<Message> message(message_type());
    DDS_SampleInfo info{};
    while (DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE, message.get(),
                                                            &info) == DDS_RETCODE_OK) {
        is_matched(writer);  // what is written before is for nobody
        if (info.valid_data) {
            DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL,
                                             &info.source_timestamp);
        } else if (info.instance_state == DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE) {
            DDS_DataWriter_dispose(writer, message.get(), DDS_HANDLE_NIL);
        }
    }
}

void echo_large(DDS_DataReader *reader, DDS_DataWriter *writer) {
    Record<Large> large(large_type());
    DDS_SampleInfo info{};
    while (DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE, large.get(),
                                                            &info) == DDS_RETCODE_OK) {
        is_matched(writer);
        if (info.valid_data) {
            DDS_DataWriter_write(writer, large.get(), DDS_HANDLE_NIL);
        }
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        return EXIT_FAILURE;
    }
    const std::string suffix = argv[3];
    const DDS_DataRepresentationId_t representation = std::strcmp(argv[2], "xcdr1") == 0
                                                          ? DDS_XCDR_DATA_REPRESENTATION
                                                          : DDS_XCDR2_DATA_REPRESENTATION;
    const auto adjust = [&](DDS_DataWriterQos &qos) {
        DDS_ShortSeq_from_array(&qos.representation.value, &representation, 1);
    };
    Node node(std::atoi(argv[1]), "to_peer" + suffix);
    DDS_DataWriter *const writer =
        node.writer(adjust, node.topic_of(message_plugin(), "from_peer" + suffix));
    DDS_DataReader *const reader = node.reader();
    DDS_DataWriter *const large_writer =
        node.writer(adjust, node.topic_of(large_plugin(), "large_from_peer" + suffix));
    DDS_DataReader *const large_reader = node.reader(
        {}, DDS_Topic_as_topicdescription(node.topic_of(large_plugin(), "large_to_peer" + suffix)));
    DDS_WaitSet *const waitset = DDS_WaitSet_new();
    for (DDS_DataReader *const each : {reader, large_reader}) {
        DDS_StatusCondition *const condition =
            DDS_Entity_get_statuscondition(DDS_DataReader_as_entity(each));
        DDS_StatusCondition_set_enabled_statuses(condition, DDS_DATA_AVAILABLE_STATUS);
        DDS_WaitSet_attach_condition(waitset, DDS_StatusCondition_as_condition(condition));
    }
    DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
    while (DDS_WaitSet_wait(waitset, &active, &DDS_DURATION_INFINITE) == DDS_RETCODE_OK) {
        echo_messages(reader, writer);
        echo_large(large_reader, large_writer);
    }
    return EXIT_FAILURE;
}
