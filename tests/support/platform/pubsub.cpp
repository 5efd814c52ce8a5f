// SPDX-License-Identifier: Apache-2.0
// Participants, writers and readers of support::Message.
#include "support/platform/pubsub.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>

namespace support {

namespace {

std::atomic<int> g_live_endpoints{0};

// The callbacks that make records take no argument: one set of them for each type.
template <auto kType, typename T>
struct Maker {
    static void *create() {
        void *const record = std::calloc(1, sizeof(T));
        const DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        if (record != nullptr && KOLT_Record_initialize_w_params(kType(), record, &params)) {
            return record;
        }
        destroy(record);
        return nullptr;
    }
    static void destroy(void *record) {
        if (record == nullptr) {
            return;
        }
        const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
        KOLT_Record_finalize_w_params(kType(), record, &params);
        std::free(record);
    }
};

KOLT_TypePluginParticipantData *attach_participant(void *,
                                                   const KOLT_TypePluginParticipantInfo *info,
                                                   DDS_Boolean, void *, const DDS_TypeCode *type) {
    KOLT_TypePluginParticipantData *const data = KOLT_TypePlugin_ParticipantData_new(info);
    if (data == nullptr) {
        return nullptr;
    }
    KOLT_TypePlugin_ParticipantData_set_programs(data, KOLT_TypePrograms_acquire(type));
    return data;
}

DDS_UnsignedLong max_size(KOLT_TypePluginEndpointData *data, DDS_Boolean header,
                          DDS_UnsignedShort encapsulation, DDS_UnsignedLong alignment) {
    DDS_Boolean overflow = DDS_BOOLEAN_FALSE;
    const DDS_UnsignedLong size = KOLT_TypePlugin_get_serialized_sample_max_size(
        data, &overflow, header, encapsulation, alignment);
    return overflow ? KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED : size;
}

DDS_UnsignedLong key_max_size(KOLT_TypePluginEndpointData *data, DDS_Boolean header,
                              DDS_UnsignedShort encapsulation, DDS_UnsignedLong alignment) {
    DDS_Boolean overflow = DDS_BOOLEAN_FALSE;
    const DDS_UnsignedLong size = KOLT_TypePlugin_get_serialized_key_max_size(
        data, &overflow, header, encapsulation, alignment);
    return overflow ? KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED : size;
}

template <typename Make>
KOLT_TypePluginEndpointData *attach_endpoint(KOLT_TypePluginParticipantData *participant,
                                             const KOLT_TypePluginEndpointInfo *info, DDS_Boolean,
                                             void *) {
    KOLT_TypePluginEndpointData *const data = KOLT_TypePlugin_EndpointData_new(
        participant, info, Make::create, Make::destroy, Make::create, Make::destroy);
    if (data == nullptr) {
        return nullptr;
    }
    if (info->kind == KOLT_TYPE_PLUGIN_WRITER &&
        !KOLT_TypePlugin_EndpointData_create_writer_pool(
            data, max_size, KOLT_TypePlugin_get_serialized_sample_size)) {
        KOLT_TypePlugin_EndpointData_delete(data);
        return nullptr;
    }
    ++g_live_endpoints;
    return data;
}

void detach_endpoint(KOLT_TypePluginEndpointData *data) {
    KOLT_TypePlugin_EndpointData_delete(data);
    --g_live_endpoints;
}

KOLT_TypePluginKeyKind user_key() {
    return KOLT_TYPE_PLUGIN_USER_KEY;
}
KOLT_TypePluginKeyKind no_key() {
    return KOLT_TYPE_PLUGIN_NO_KEY;
}

template <typename Make>
KOLT_TypePlugin make_plugin(const DDS_TypeCode *type, const char *name, bool keyed) {
    KOLT_TypePlugin plugin{};
    plugin.on_participant_attached = attach_participant;
    plugin.on_participant_detached = KOLT_TypePlugin_ParticipantData_delete;
    plugin.on_endpoint_attached = attach_endpoint<Make>;
    plugin.on_endpoint_detached = detach_endpoint;
    plugin.create_sample = KOLT_TypePlugin_create_sample;
    plugin.destroy_sample = KOLT_TypePlugin_destroy_sample;
    plugin.serialize = KOLT_TypePlugin_serialize;
    plugin.deserialize = KOLT_TypePlugin_deserialize;
    plugin.get_sample = KOLT_TypePlugin_get_sample;
    plugin.return_sample = KOLT_TypePlugin_return_sample;
    plugin.get_serialized_sample_max_size = max_size;
    plugin.get_serialized_sample_min_size = KOLT_TypePlugin_get_serialized_sample_min_size;
    plugin.get_serialized_sample_size = KOLT_TypePlugin_get_serialized_sample_size;
    plugin.get_key_kind = keyed ? user_key : no_key;
    if (keyed) {
        plugin.get_key = KOLT_TypePlugin_get_key;
        plugin.return_key = KOLT_TypePlugin_return_key;
        plugin.get_serialized_key_max_size = key_max_size;
        plugin.serialize_key = KOLT_TypePlugin_serialize_key;
        plugin.deserialize_key = KOLT_TypePlugin_deserialize_key;
        plugin.deserialize_key_sample = KOLT_TypePlugin_deserialize_key_sample;
    }
    plugin.type_code = type;
    plugin.get_buffer = KOLT_TypePlugin_get_buffer;
    plugin.return_buffer = KOLT_TypePlugin_return_buffer;
    plugin.endpoint_type_name = name;
    plugin.version = KOLT_TYPE_PLUGIN_VERSION_2_0;
    return plugin;
}

}  // namespace

const KOLT_TypePlugin &message_plugin() {
    static const KOLT_TypePlugin plugin = make_plugin<Maker<message_type, Message>>(
        message_type(), DDS_TypeCode_name(message_type()), true);
    return plugin;
}

const KOLT_TypePlugin &point_plugin() {
    static const KOLT_TypePlugin plugin =
        make_plugin<Maker<point_type, Point>>(point_type(), DDS_TypeCode_name(point_type()), false);
    return plugin;
}

const KOLT_TypePlugin &large_plugin() {
    static const KOLT_TypePlugin plugin =
        make_plugin<Maker<large_type, Large>>(large_type(), DDS_TypeCode_name(large_type()), false);
    return plugin;
}

int live_endpoints() {
    return g_live_endpoints.load();
}

// ---- Node ---------------------------------------------------------------------------------------

std::string own(const std::string &name) {
    return name + "_" + std::to_string(getpid());
}

Node::Node(DDS_DomainId_t domain, const std::string &topic_name, const DDS_TopicQos *topic_qos)
    : factory(DDS_DomainParticipantFactory_get_instance()),
      participant(DDS_DomainParticipantFactory_create_participant(factory, domain, nullptr, nullptr,
                                                                  DDS_STATUS_MASK_NONE)) {
    if (DDS_DomainParticipant_register_type(participant, kMessageTypeName, &message_plugin(),
                                            nullptr) != DDS_RETCODE_OK) {
        std::abort();
    }
    topic = DDS_DomainParticipant_create_topic(participant, topic_name.c_str(), kMessageTypeName,
                                               topic_qos, nullptr, DDS_STATUS_MASK_NONE);
    publisher =
        DDS_DomainParticipant_create_publisher(participant, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    subscriber = DDS_DomainParticipant_create_subscriber(participant, nullptr, nullptr,
                                                         DDS_STATUS_MASK_NONE);
}

Node::~Node() {
    if (DDS_DomainParticipant_delete_contained_entities(participant) != DDS_RETCODE_OK ||
        DDS_DomainParticipantFactory_delete_participant(factory, participant) != DDS_RETCODE_OK) {
        std::abort();
    }
}

DDS_Topic *Node::topic_of(const KOLT_TypePlugin &plugin, const std::string &name) {
    if (DDS_DomainParticipant_register_type(participant, plugin.endpoint_type_name, &plugin,
                                            nullptr) != DDS_RETCODE_OK) {
        std::abort();
    }
    return DDS_DomainParticipant_create_topic(participant, name.c_str(), plugin.endpoint_type_name,
                                              nullptr, nullptr, DDS_STATUS_MASK_NONE);
}

DDS_DataWriter *Node::writer(const std::function<void(DDS_DataWriterQos &)> &adjust, DDS_Topic *of,
                             const DDS_DataWriterListener *listener, DDS_StatusMask mask) {
    WriterQos qos;
    qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos->history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos->reliability.max_blocking_time = {10, 0};
    if (adjust) {
        adjust(*qos);
    }
    return DDS_Publisher_create_datawriter(publisher, of != nullptr ? of : topic, qos.get(),
                                           listener, mask);
}

DDS_DataReader *Node::reader(const std::function<void(DDS_DataReaderQos &)> &adjust,
                             DDS_TopicDescription *description,
                             const DDS_DataReaderListener *listener, DDS_StatusMask mask) {
    ReaderQos qos;
    qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos->history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    if (adjust) {
        adjust(*qos);
    }
    return DDS_Subscriber_create_datareader(
        subscriber, description != nullptr ? description : DDS_Topic_as_topicdescription(topic),
        qos.get(), listener, mask);
}

// ---- Samples ------------------------------------------------------------------------------------

DDS_ReturnCode_t write(DDS_DataWriter *writer, int host, int level, long long number,
                       const std::string &text, DDS_InstanceHandle_t handle) {
    Record<Message> message(message_type());
    message->id = {host, 1};
    message->level = level;
    message->number = number;
    set_text(message->category, "test");
    set_text(message->text, text.c_str());
    return DDS_DataWriter_write(writer, message.get(), handle);
}

KOLT_ReadSelection selection(bool take) {
    KOLT_ReadSelection result{};
    result.take = take ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    result.scope = KOLT_READ_ALL;
    result.sample_states = DDS_ANY_SAMPLE_STATE;
    result.view_states = DDS_ANY_VIEW_STATE;
    result.instance_states = DDS_ANY_INSTANCE_STATE;
    result.max_samples = DDS_LENGTH_UNLIMITED;
    return result;
}

std::vector<Text> access(DDS_DataReader *reader, const KOLT_ReadSelection &selection,
                         DDS_ReturnCode_t *code) {
    void **samples = nullptr;
    DDS_UnsignedLong count = 0;
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    const DDS_ReturnCode_t result =
        DDS_DataReader_read_or_take_untypedI(reader, &selection, 0, 0, DDS_BOOLEAN_TRUE, nullptr,
                                             sizeof(Message), &samples, &count, &infos);
    if (code != nullptr) {
        *code = result;
    }
    std::vector<Text> texts;
    if (result != DDS_RETCODE_OK) {
        return texts;
    }
    for (DDS_UnsignedLong i = 0; i < count; ++i) {
        const auto &message = *static_cast<const Message *>(samples[i]);
        Text text;
        text.host = message.id.host;
        text.level = message.level;
        text.number = message.number;
        text.text = message.text != nullptr ? message.text : "";
        text.info = *DDS_SampleInfoSeq_get_reference(&infos, static_cast<DDS_Long>(i));
        texts.push_back(text);
    }
    if (DDS_DataReader_return_loan_untypedI(reader, samples, count, &infos) != DDS_RETCODE_OK) {
        std::abort();
    }
    return texts;
}

std::vector<Text> take(DDS_DataReader *reader) {
    return access(reader, selection(true));
}

std::vector<Text> take_at_least(DDS_DataReader *reader, std::size_t count) {
    std::vector<Text> all;
    eventually([&] {
        for (Text &text : take(reader)) {
            all.push_back(std::move(text));
        }
        return all.size() >= count;
    });
    return all;
}

bool is_matched(DDS_DataWriter *writer, int count) {
    return eventually([&] {
        DDS_PublicationMatchedStatus status{};
        DDS_DataWriter_get_publication_matched_status(writer, &status);
        return status.current_count == count;
    });
}

bool is_matched(DDS_DataReader *reader, int count) {
    return eventually([&] {
        DDS_SubscriptionMatchedStatus status{};
        DDS_DataReader_get_subscription_matched_status(reader, &status);
        return status.current_count == count;
    });
}

Strings::Strings(std::initializer_list<const char *> texts) {
    DDS_StringSeq_initialize(&seq_);
    DDS_StringSeq_set_length(&seq_, static_cast<DDS_Long>(texts.size()));
    DDS_Long i = 0;
    for (const char *const text : texts) {
        DDS_String_replace(DDS_StringSeq_get_reference(&seq_, i++), text);
    }
}

std::string Strings::at(DDS_Long index) const {
    return *DDS_StringSeq_get_reference(&seq_, index);
}

}  // namespace support
