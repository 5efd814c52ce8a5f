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
// Compared by address only.
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
    if (topic == nullptr) {
        bad_parameter(__func__, "topic");
        return nullptr;
    }
    return with<Publisher>(self, __func__, [&, method = __func__](Publisher &publisher) {
        return publisher.create(Topic::of(topic), qos, listener, mask, method);
    });
}

DDS_ReturnCode_t DDS_Publisher_delete_datawriter(DDS_Publisher *self, DDS_DataWriter *writer) {
    if (writer == nullptr) {
        return bad_parameter(__func__, "writer");
    }
    return with<Publisher>(self, __func__, [&, method = __func__](Publisher &publisher) {
        return publisher.remove(DataWriter::of(writer), method);
    });
}

DDS_ReturnCode_t DDS_Publisher_delete_contained_entities(DDS_Publisher *self) {
    return with<Publisher>(self, __func__, [method = __func__](Publisher &publisher) {
        return publisher.delete_contained_entities(method);
    });
}

DDS_DataWriter *DDS_Publisher_lookup_datawriter(DDS_Publisher *self, const char *topic_name) {
    if (topic_name == nullptr) {
        bad_parameter(__func__, "topic_name");
        return nullptr;
    }
    return with<Publisher>(self, __func__,
                           [&](Publisher &publisher) { return publisher.lookup(topic_name); });
}

DDS_ReturnCode_t DDS_Publisher_get_qos(DDS_Publisher *self, DDS_PublisherQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Publisher>(self, __func__,
                           [&](Publisher &publisher) { return publisher.get_qos(qos); });
}

DDS_ReturnCode_t DDS_Publisher_set_qos(DDS_Publisher *self, const DDS_PublisherQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Publisher>(self, __func__, [&, method = __func__](Publisher &publisher) {
        return publisher.set_qos(*qos, method);
    });
}

DDS_ReturnCode_t DDS_Publisher_set_listener(DDS_Publisher *self,
                                            const DDS_PublisherListener *listener,
                                            DDS_StatusMask mask) {
    return with<Publisher>(self, __func__, [&](Publisher &publisher) {
        publisher.listener().set(listener, mask);
        return DDS_RETCODE_OK;
    });
}

DDS_ReturnCode_t DDS_Publisher_get_default_datawriter_qos(DDS_Publisher *self,
                                                          DDS_DataWriterQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Publisher>(self, __func__, [&](Publisher &publisher) {
        return publisher.get_default_qos(qos, nullptr);
    });
}

DDS_ReturnCode_t DDS_Publisher_set_default_datawriter_qos(DDS_Publisher *self,
                                                          const DDS_DataWriterQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Publisher>(self, __func__, [&, method = __func__](Publisher &publisher) {
        return publisher.set_default_qos(*qos, method);
    });
}

DDS_ReturnCode_t DDS_Publisher_copy_from_topic_qos(DDS_Publisher *self,
                                                   DDS_DataWriterQos *writer_qos,
                                                   const DDS_TopicQos *topic_qos) {
    if (writer_qos == nullptr) {
        return bad_parameter(__func__, "writer_qos");
    }
    if (topic_qos == nullptr) {
        return bad_parameter(__func__, "topic_qos");
    }
    return with<Publisher>(self, __func__, [&](Publisher &) {
        return copy_from_topic_qos(writer_qos, *topic_qos) ? DDS_RETCODE_OK
                                                           : DDS_RETCODE_OUT_OF_RESOURCES;
    });
}

DDS_ReturnCode_t DDS_Publisher_wait_for_acknowledgments(DDS_Publisher *self,
                                                        const DDS_Duration_t *max_wait) {
    if (max_wait == nullptr || to_engine(*max_wait) < 0) {
        return bad_parameter(__func__, "max_wait");
    }
    return with<Publisher>(self, __func__, [&, method = __func__](Publisher &publisher) {
        return publisher.wait_for_acknowledgments(*max_wait, method);
    });
}

DDS_DomainParticipant *DDS_Publisher_get_participant(DDS_Publisher *self) {
    return with<Publisher>(self, __func__,
                           [](Publisher &publisher) { return publisher.participant().handle(); });
}

// ---- Data writer --------------------------------------------------------------------------------

DDS_ReturnCode_t DDS_DataWriter_get_qos(DDS_DataWriter *self, DDS_DataWriterQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<DataWriter>(self, __func__,
                            [&](DataWriter &writer) { return writer.get_qos(qos); });
}

DDS_ReturnCode_t DDS_DataWriter_set_qos(DDS_DataWriter *self, const DDS_DataWriterQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<DataWriter>(self, __func__, [&, method = __func__](DataWriter &writer) {
        return writer.set_qos(*qos, method);
    });
}

DDS_ReturnCode_t DDS_DataWriter_set_listener(DDS_DataWriter *self,
                                             const DDS_DataWriterListener *listener,
                                             DDS_StatusMask mask) {
    return with<DataWriter>(self, __func__, [&](DataWriter &writer) {
        writer.set_listener(listener, mask);
        return DDS_RETCODE_OK;
    });
}

DDS_DataWriterListener DDS_DataWriter_get_listener(DDS_DataWriter *self) {
    return with<DataWriter>(self, __func__, [](DataWriter &writer) { return writer.listener(); });
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
    return with<DataWriter>(self, __func__, [&](DataWriter &writer) {
        return writer.wait_for_acknowledgments(*max_wait);
    });
}

DDS_ReturnCode_t DDS_DataWriter_assert_liveliness(DDS_DataWriter *self) {
    return with<DataWriter>(self, __func__, [method = __func__](DataWriter &writer) {
        if (!writer.is_enabled()) {
            return not_enabled(method);
        }
        return to_return_code(dds_assert_liveliness(writer.engine()));
    });
}

#define KOLT_DEFINE_GET_STATUS(Name, name, NAME)                                                   \
    DDS_ReturnCode_t DDS_DataWriter_get_##name##_status(DDS_DataWriter *self,                      \
                                                        Name::Status *status) {                    \
        if (status == nullptr) return bad_parameter(__func__, "status");                           \
        return with<DataWriter>(                                                                   \
            self, __func__, [&](DataWriter &writer) { return get_status<Name>(writer, status); }); \
    }
KOLT_WRITER_STATUSES(KOLT_DEFINE_GET_STATUS)
#undef KOLT_DEFINE_GET_STATUS

DDS_ReturnCode_t DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter *self,
                                                          DDS_InstanceHandleSeq *handles) {
    if (handles == nullptr) {
        return bad_parameter(__func__, "handles");
    }
    return with<DataWriter>(self, __func__, [&, method = __func__](DataWriter &writer) {
        if (!writer.is_enabled()) {
            return not_enabled(method);
        }
        return get_matched(writer.engine(), dds_get_matched_subscriptions, handles, method);
    });
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

// The forms that take a time stamp want a valid one.
bool is_given(const DDS_Time_t *timestamp) {
    return timestamp != nullptr && is_valid_time(*timestamp);
}

DDS_ReturnCode_t write(DDS_DataWriter *self, const void *sample, const DDS_WriteParams_t &params,
                       const char *method) {
    return with<DataWriter>(
        self, method, [&](DataWriter &writer) { return writer.write(sample, params, method); });
}

DDS_ReturnCode_t change(DDS_DataWriter *self, InstanceChange what, const void *sample,
                        const DDS_WriteParams_t &params, const char *method) {
    return with<DataWriter>(self, method, [&](DataWriter &writer) {
        return writer.change_instance(what, sample, params, method);
    });
}

DDS_InstanceHandle_t register_instance(DDS_DataWriter *self, const void *sample,
                                       const DDS_WriteParams_t &params, const char *method) {
    if (sample == nullptr) {
        bad_parameter(method, "sample");
        return DDS_HANDLE_NIL;
    }
    return with<DataWriter>(self, method, [&](DataWriter &writer) {
        return writer.register_instance(sample, params, method);
    });
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
        return bad_parameter(__func__, "source_timestamp");
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
        bad_parameter(__func__, "source_timestamp");
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
        if (!is_given(source_timestamp)) return bad_parameter(__func__, "source_timestamp"); \
        return change(self, what, sample, make_params(handle, *source_timestamp), __func__); \
    }                                                                                        \
    DDS_ReturnCode_t DDS_DataWriter_##function##_w_params(                                   \
        DDS_DataWriter *self, const void *sample, const DDS_WriteParams_t *params) {         \
        if (params == nullptr) return bad_parameter(__func__, "params");                     \
        return change(self, what, sample, *params, __func__);                                \
    }
KOLT_DEFINE_CHANGE(unregister_instance, InstanceChange::kUnregister)
KOLT_DEFINE_CHANGE(dispose, InstanceChange::kDispose)
#undef KOLT_DEFINE_CHANGE

DDS_ReturnCode_t DDS_DataWriter_get_key_value(DDS_DataWriter *self, void *key_holder,
                                              DDS_InstanceHandle_t handle) {
    if (key_holder == nullptr) {
        return bad_parameter(__func__, "key_holder");
    }
    return with<DataWriter>(self, __func__, [&, method = __func__](DataWriter &writer) {
        return writer.get_key_value(key_holder, handle, method);
    });
}

DDS_InstanceHandle_t DDS_DataWriter_lookup_instance(DDS_DataWriter *self, const void *key_holder) {
    if (key_holder == nullptr) {
        bad_parameter(__func__, "key_holder");
        return DDS_HANDLE_NIL;
    }
    return with<DataWriter>(self, __func__,
                            [&](DataWriter &writer) { return writer.lookup_instance(key_holder); });
}

void *DDS_DataWriter_create_data(DDS_DataWriter *self) {
    return with<DataWriter>(self, __func__,
                            [](DataWriter &writer) { return writer.create_data(); });
}

DDS_ReturnCode_t DDS_DataWriter_delete_data(DDS_DataWriter *self, void *sample) {
    if (sample == nullptr) {
        return bad_parameter(__func__, "sample");
    }
    return with<DataWriter>(self, __func__, [&](DataWriter &writer) {
        writer.delete_data(sample);
        return DDS_RETCODE_OK;
    });
}
