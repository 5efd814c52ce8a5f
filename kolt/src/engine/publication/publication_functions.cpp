// SPDX-License-Identifier: Apache-2.0
// The C functions of publishers and data writers.
#include "engine/cyclone/convert.hpp"
#include "engine/endpoint/matched.hpp"
#include "engine/entity/statuses.hpp"
#include "engine/publication/data_writer.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/qos/from_topic_qos.hpp"
#include "engine/topic/topic.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

extern "C" {
// Marks that are recognised by their address.
const DDS_DataWriterQos DDS_DATAWRITER_QOS_DEFAULT = {};
const DDS_DataWriterQos DDS_DATAWRITER_QOS_USE_TOPIC_QOS = {};
const DDS_WriteParams_t DDS_WRITEPARAMS_DEFAULT = {
    {DDS_TIME_INVALID_SEC, DDS_TIME_INVALID_NSEC}, {{0}, 0U}, DDS_HANDLE_NIL};
}

// ---- Publisher ----------------------------------------------------------------------------------

DDS_DataWriter *DDS_Publisher_create_datawriter(DDS_Publisher *self, DDS_Topic *topic,
                                                const DDS_DataWriterQos *qos,
                                                const DDS_DataWriterListener *listener,
                                                DDS_StatusMask mask) {
    return forward(self, __func__, &Publisher::create, required_as<Topic>(topic, "topic"), qos,
                   listener, mask);
}

DDS_ReturnCode_t DDS_Publisher_delete_datawriter(DDS_Publisher *self, DDS_DataWriter *writer) {
    return forward(self, __func__, &Publisher::remove, required_as<DataWriter>(writer, "writer"));
}

DDS_ReturnCode_t DDS_Publisher_delete_contained_entities(DDS_Publisher *self) {
    return forward(self, __func__, &Publisher::delete_contained_entities);
}

DDS_DataWriter *DDS_Publisher_lookup_datawriter(DDS_Publisher *self, const char *topic_name) {
    return forward(self, __func__, &Publisher::lookup, required(topic_name, "topic_name"));
}

DDS_ReturnCode_t DDS_Publisher_get_qos(DDS_Publisher *self, DDS_PublisherQos *qos) {
    return forward(self, __func__, &Publisher::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_Publisher_set_qos(DDS_Publisher *self, const DDS_PublisherQos *qos) {
    return forward(self, __func__, &Publisher::set_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_Publisher_set_listener(DDS_Publisher *self,
                                            const DDS_PublisherListener *listener,
                                            DDS_StatusMask mask) {
    return forward(self, __func__, &Publisher::set_listener, listener, mask);
}

DDS_ReturnCode_t DDS_Publisher_get_default_datawriter_qos(DDS_Publisher *self,
                                                          DDS_DataWriterQos *qos) {
    return forward(self, __func__, &Publisher::get_default_qos, required(qos, "qos"), nullptr);
}

DDS_ReturnCode_t DDS_Publisher_set_default_datawriter_qos(DDS_Publisher *self,
                                                          const DDS_DataWriterQos *qos) {
    return forward(self, __func__, &Publisher::set_default_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_Publisher_copy_from_topic_qos(DDS_Publisher *self,
                                                   DDS_DataWriterQos *writer_qos,
                                                   const DDS_TopicQos *topic_qos) {
    return forward<Publisher>(
        self, __func__,
        [](Publisher &, DDS_DataWriterQos *to, const DDS_TopicQos &from) {
            return copy_from_topic_qos(to, from) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
        },
        required(writer_qos, "writer_qos"), required_value(topic_qos, "topic_qos"));
}

DDS_ReturnCode_t DDS_Publisher_wait_for_acknowledgments(DDS_Publisher *self,
                                                        const DDS_Duration_t *max_wait) {
    if (max_wait == nullptr || to_engine(*max_wait) < 0) {
        return bad_parameter(__func__, "max_wait");
    }
    return forward(self, __func__, &Publisher::wait_for_acknowledgments, *max_wait);
}

DDS_DomainParticipant *DDS_Publisher_get_participant(DDS_Publisher *self) {
    return with<Publisher>(self, __func__,
                           [](Publisher &publisher) { return publisher.participant().handle(); });
}

// ---- Data writer --------------------------------------------------------------------------------

DDS_ReturnCode_t DDS_DataWriter_get_qos(DDS_DataWriter *self, DDS_DataWriterQos *qos) {
    return forward(self, __func__, &DataWriter::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_DataWriter_set_qos(DDS_DataWriter *self, const DDS_DataWriterQos *qos) {
    return forward(self, __func__, &DataWriter::set_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_DataWriter_set_listener(DDS_DataWriter *self,
                                             const DDS_DataWriterListener *listener,
                                             DDS_StatusMask mask) {
    return forward(self, __func__, &DataWriter::set_listener, listener, mask);
}

DDS_ReturnCode_t KOLT_DataWriter_end_writes(DDS_DataWriter *self) {
    return forward(self, __func__, &DataWriter::end_writes);
}

DDS_DataWriterListener DDS_DataWriter_get_listener(DDS_DataWriter *self) {
    return forward(self, __func__, &DataWriter::listener);
}

DDS_Topic *DDS_DataWriter_get_topic(DDS_DataWriter *self) {
    return with<DataWriter>(self, __func__,
                            [](DataWriter &writer) { return writer.topic().handle(); });
}

DDS_Publisher *DDS_DataWriter_get_publisher(DDS_DataWriter *self) {
    return with<DataWriter>(self, __func__,
                            [](DataWriter &writer) { return writer.publisher().handle(); });
}

const char *DDS_DataWriter_get_endpoint_type_name(DDS_DataWriter *self) {
    return with<DataWriter>(self, __func__, [](DataWriter &writer) {
        return writer.type().plugin().endpoint_type_name;
    });
}

DDS_ReturnCode_t DDS_DataWriter_wait_for_acknowledgments(DDS_DataWriter *self,
                                                         const DDS_Duration_t *max_wait) {
    if (max_wait == nullptr || to_engine(*max_wait) < 0) {
        return bad_parameter(__func__, "max_wait");
    }
    return forward(self, __func__, &DataWriter::wait_for_acknowledgments, *max_wait);
}

DDS_ReturnCode_t DDS_DataWriter_assert_liveliness(DDS_DataWriter *self) {
    return forward<DataWriter>(self, __func__, assert_liveliness);
}

#define KOLT_DEFINE_GET_STATUS(Name, name, NAME)                                 \
    DDS_ReturnCode_t DDS_DataWriter_get_##name##_status(DDS_DataWriter *self,    \
                                                        Name::Status *status) {  \
        return forward<DataWriter>(self, __func__, get_status<Name, DataWriter>, \
                                   required(status, "status"));                  \
    }
KOLT_WRITER_STATUSES(KOLT_DEFINE_GET_STATUS)
#undef KOLT_DEFINE_GET_STATUS

DDS_ReturnCode_t DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter *self,
                                                          DDS_InstanceHandleSeq *handles) {
    return forward<DataWriter>(self, __func__, get_matched, dds_get_matched_subscriptions,
                               required(handles, "handles"));
}

// ---- Writing ------------------------------------------------------------------------------------

namespace {

DDS_WriteParams_t make_params(DDS_InstanceHandle_t handle,
                              const DDS_Time_t &timestamp = DDS_TIME_INVALID) {
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    params.handle = handle;
    params.source_timestamp = timestamp;
    return params;
}

// True for a valid time stamp, which the functions ..._w_timestamp require.
bool is_given(const DDS_Time_t *timestamp) {
    return timestamp != nullptr && is_valid_time(*timestamp);
}

DDS_ReturnCode_t write(DDS_DataWriter *self, const void *sample, const DDS_WriteParams_t &params,
                       const char *method) {
    return forward(self, method, &DataWriter::write, sample, params);
}

DDS_ReturnCode_t change(DDS_DataWriter *self, InstanceChange what, const void *sample,
                        const DDS_WriteParams_t &params, const char *method) {
    return forward(self, method, &DataWriter::change_instance, what, sample, params);
}

DDS_InstanceHandle_t register_instance(DDS_DataWriter *self, const void *sample,
                                       const DDS_WriteParams_t &params, const char *method) {
    return forward(self, method, &DataWriter::register_instance, required(sample, "sample"),
                   params);
}

}  // namespace

DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter *self, const void *sample,
                                      DDS_InstanceHandle_t handle) {
    return write(self, sample, make_params(handle), __func__);
}

DDS_ReturnCode_t DDS_DataWriter_write_w_timestamp(DDS_DataWriter *self, const void *sample,
                                                  DDS_InstanceHandle_t handle,
                                                  const DDS_Time_t *source_timestamp) {
    if (!is_given(source_timestamp)) {
        return bad_timestamp(__func__);
    }
    return write(self, sample, make_params(handle, *source_timestamp), __func__);
}

DDS_ReturnCode_t DDS_DataWriter_write_w_params(DDS_DataWriter *self, const void *sample,
                                               const DDS_WriteParams_t *params) {
    if (params == nullptr) {
        return bad_parameter(__func__, "params");
    }
    return write(self, sample, *params, __func__);
}

DDS_InstanceHandle_t DDS_DataWriter_register_instance(DDS_DataWriter *self, const void *sample) {
    return register_instance(self, sample, DDS_WRITEPARAMS_DEFAULT, __func__);
}

DDS_InstanceHandle_t DDS_DataWriter_register_instance_w_timestamp(
    DDS_DataWriter *self, const void *sample, const DDS_Time_t *source_timestamp) {
    if (!is_given(source_timestamp)) {
        bad_timestamp(__func__);
        return DDS_HANDLE_NIL;
    }
    return register_instance(self, sample, make_params(DDS_HANDLE_NIL, *source_timestamp),
                             __func__);
}

DDS_InstanceHandle_t DDS_DataWriter_register_instance_w_params(DDS_DataWriter *self,
                                                               const void *sample,
                                                               const DDS_WriteParams_t *params) {
    if (params == nullptr) {
        bad_parameter(__func__, "params");
        return DDS_HANDLE_NIL;
    }
    return register_instance(self, sample, *params, __func__);
}

#define KOLT_DEFINE_CHANGE(function, what)                                                   \
    DDS_ReturnCode_t DDS_DataWriter_##function(DDS_DataWriter *self, const void *sample,     \
                                               DDS_InstanceHandle_t handle) {                \
        return change(self, what, sample, make_params(handle), __func__);                    \
    }                                                                                        \
    DDS_ReturnCode_t DDS_DataWriter_##function##_w_timestamp(                                \
        DDS_DataWriter *self, const void *sample, DDS_InstanceHandle_t handle,               \
        const DDS_Time_t *source_timestamp) {                                                \
        if (!is_given(source_timestamp)) {                                                   \
            return bad_timestamp(__func__);                                                  \
        }                                                                                    \
        return change(self, what, sample, make_params(handle, *source_timestamp), __func__); \
    }                                                                                        \
    DDS_ReturnCode_t DDS_DataWriter_##function##_w_params(                                   \
        DDS_DataWriter *self, const void *sample, const DDS_WriteParams_t *params) {         \
        if (params == nullptr) {                                                             \
            return bad_parameter(__func__, "params");                                        \
        }                                                                                    \
        return change(self, what, sample, *params, __func__);                                \
    }
KOLT_DEFINE_CHANGE(unregister_instance, InstanceChange::kUnregister)
KOLT_DEFINE_CHANGE(dispose, InstanceChange::kDispose)
#undef KOLT_DEFINE_CHANGE

DDS_ReturnCode_t DDS_DataWriter_get_key_value(DDS_DataWriter *self, void *key_holder,
                                              DDS_InstanceHandle_t handle) {
    return forward(self, __func__, &DataWriter::get_key_value, required(key_holder, "key_holder"),
                   handle);
}

DDS_InstanceHandle_t DDS_DataWriter_lookup_instance(DDS_DataWriter *self, const void *key_holder) {
    return forward(self, __func__, &DataWriter::lookup_instance,
                   required(key_holder, "key_holder"));
}

void *DDS_DataWriter_create_data(DDS_DataWriter *self) {
    return forward(self, __func__, &DataWriter::create_data);
}

DDS_ReturnCode_t DDS_DataWriter_delete_data(DDS_DataWriter *self, void *sample) {
    return forward(self, __func__, &DataWriter::delete_data, required(sample, "sample"));
}
