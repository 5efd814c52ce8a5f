// SPDX-License-Identifier: Apache-2.0
// The C functions of subscribers and data readers.
#include "engine/cyclone/convert.hpp"
#include "engine/endpoint/matched.hpp"
#include "engine/entity/statuses.hpp"
#include "engine/qos/from_topic_qos.hpp"
#include "engine/subscription/data_reader.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

extern "C" {
// Marks that are recognised by their address.
const DDS_DataReaderQos DDS_DATAREADER_QOS_DEFAULT = {};
const DDS_DataReaderQos DDS_DATAREADER_QOS_USE_TOPIC_QOS = {};
}

// ---- Subscriber ---------------------------------------------------------------------------------

DDS_DataReader *DDS_Subscriber_create_datareader(DDS_Subscriber *self, DDS_TopicDescription *topic,
                                                 const DDS_DataReaderQos *qos,
                                                 const DDS_DataReaderListener *listener,
                                                 DDS_StatusMask mask) {
    return forward(self, __func__, &Subscriber::create,
                   required_as<TopicDescription>(topic, "topic"), qos, listener, mask);
}

DDS_ReturnCode_t DDS_Subscriber_delete_datareader(DDS_Subscriber *self, DDS_DataReader *reader) {
    return forward(self, __func__, &Subscriber::remove, required_as<DataReader>(reader, "reader"));
}

DDS_ReturnCode_t DDS_Subscriber_delete_contained_entities(DDS_Subscriber *self) {
    return forward(self, __func__, &Subscriber::delete_contained_entities);
}

DDS_DataReader *DDS_Subscriber_lookup_datareader(DDS_Subscriber *self, const char *topic_name) {
    return forward(self, __func__, &Subscriber::lookup, required(topic_name, "topic_name"));
}

DDS_ReturnCode_t DDS_Subscriber_get_qos(DDS_Subscriber *self, DDS_SubscriberQos *qos) {
    return forward(self, __func__, &Subscriber::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_Subscriber_set_qos(DDS_Subscriber *self, const DDS_SubscriberQos *qos) {
    return forward(self, __func__, &Subscriber::set_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_Subscriber_set_listener(DDS_Subscriber *self,
                                             const DDS_SubscriberListener *listener,
                                             DDS_StatusMask mask) {
    return forward(self, __func__, &Subscriber::set_listener, listener, mask);
}

DDS_ReturnCode_t DDS_Subscriber_get_default_datareader_qos(DDS_Subscriber *self,
                                                           DDS_DataReaderQos *qos) {
    return forward(self, __func__, &Subscriber::get_default_qos, required(qos, "qos"), nullptr);
}

DDS_ReturnCode_t DDS_Subscriber_set_default_datareader_qos(DDS_Subscriber *self,
                                                           const DDS_DataReaderQos *qos) {
    return forward(self, __func__, &Subscriber::set_default_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_Subscriber_copy_from_topic_qos(DDS_Subscriber *self,
                                                    DDS_DataReaderQos *reader_qos,
                                                    const DDS_TopicQos *topic_qos) {
    return forward<Subscriber>(
        self, __func__,
        [](Subscriber &, DDS_DataReaderQos *to, const DDS_TopicQos &from) {
            return copy_from_topic_qos(to, from) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
        },
        required(reader_qos, "reader_qos"), required_value(topic_qos, "topic_qos"));
}

DDS_ReturnCode_t DDS_Subscriber_notify_datareaders(DDS_Subscriber *self) {
    return with<Subscriber>(self, __func__, [](Subscriber &subscriber, const char *method) {
        if (!subscriber.is_enabled()) {
            return not_enabled(method);
        }
        subscriber.notify_readers();
        return DDS_RETCODE_OK;
    });
}

DDS_DomainParticipant *DDS_Subscriber_get_participant(DDS_Subscriber *self) {
    return with<Subscriber>(
        self, __func__, [](Subscriber &subscriber) { return subscriber.participant().handle(); });
}

// ---- Data reader --------------------------------------------------------------------------------

DDS_ReturnCode_t DDS_DataReader_get_qos(DDS_DataReader *self, DDS_DataReaderQos *qos) {
    return forward(self, __func__, &DataReader::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_DataReader_set_qos(DDS_DataReader *self, const DDS_DataReaderQos *qos) {
    return forward(self, __func__, &DataReader::set_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_DataReader_set_listener(DDS_DataReader *self,
                                             const DDS_DataReaderListener *listener,
                                             DDS_StatusMask mask) {
    if (self == nullptr) {
        return DDS_RETCODE_OK;
    }
    return forward(self, __func__, &DataReader::set_listener, listener, mask);
}

DDS_DataReaderListener DDS_DataReader_get_listener(DDS_DataReader *self) {
    return forward(self, __func__, &DataReader::listener);
}

DDS_TopicDescription *DDS_DataReader_get_topicdescription(DDS_DataReader *self) {
    return with<DataReader>(self, __func__,
                            [](DataReader &reader) { return reader.topic().description(); });
}

DDS_Subscriber *DDS_DataReader_get_subscriber(DDS_DataReader *self) {
    return with<DataReader>(self, __func__,
                            [](DataReader &reader) { return reader.subscriber().handle(); });
}

const char *DDS_DataReader_get_endpoint_type_name(DDS_DataReader *self) {
    return with<DataReader>(self, __func__, [](DataReader &reader) {
        return reader.type()->plugin().endpoint_type_name;
    });
}

DDS_ReturnCode_t DDS_DataReader_delete_contained_entities(DDS_DataReader *self) {
    return forward(self, __func__, &DataReader::delete_conditions, false);
}

DDS_ReturnCode_t DDS_DataReader_wait_for_historical_data(DDS_DataReader *self,
                                                         const DDS_Duration_t *max_wait) {
    if (max_wait == nullptr || to_engine(*max_wait) < 0) {
        return bad_parameter(__func__, "max_wait");
    }
    return with<DataReader>(self, __func__, [](DataReader &reader, const char *method) {
        if (!reader.is_enabled()) {
            return not_enabled(method);
        }
        kolt::qos::OwnedQos<DDS_DataReaderQos> qos;
        const DDS_ReturnCode_t result = reader.get_qos(qos.get());
        if (result != DDS_RETCODE_OK) {
            return result;
        }
        if ((*qos).durability.kind == DDS_VOLATILE_DURABILITY_QOS) {
            return DDS_RETCODE_OK;
        }
        return fail(DDS_RETCODE_UNSUPPORTED, method,
                    "the DDS engine does not tell when the history has arrived: only volatile "
                    "readers, which get no history, can wait for it");
    });
}

#define KOLT_DEFINE_GET_STATUS(Name, name, NAME)                                 \
    DDS_ReturnCode_t DDS_DataReader_get_##name##_status(DDS_DataReader *self,    \
                                                        Name::Status *status) {  \
        return forward<DataReader>(self, __func__, get_status<Name, DataReader>, \
                                   required(status, "status"));                  \
    }
KOLT_READER_STATUSES(KOLT_DEFINE_GET_STATUS)
#undef KOLT_DEFINE_GET_STATUS

DDS_ReturnCode_t DDS_DataReader_get_matched_publications(DDS_DataReader *self,
                                                         DDS_InstanceHandleSeq *handles) {
    return forward<DataReader>(self, __func__, get_matched, dds_get_matched_publications,
                               required(handles, "handles"));
}

// ---- Conditions ---------------------------------------------------------------------------------

DDS_ReadCondition *DDS_DataReader_create_readcondition(DDS_DataReader *self,
                                                       DDS_SampleStateMask sample_states,
                                                       DDS_ViewStateMask view_states,
                                                       DDS_InstanceStateMask instance_states) {
    std::uint32_t mask = 0;
    if (!states_to_engine(sample_states, view_states, instance_states, &mask)) {
        bad_parameter(__func__, "states");
        return nullptr;
    }
    return forward(self, __func__, &DataReader::create_read_condition, mask,
                   ReadStates{sample_states, view_states, instance_states});
}

DDS_QueryCondition *DDS_DataReader_create_querycondition(DDS_DataReader *self,
                                                         DDS_SampleStateMask sample_states,
                                                         DDS_ViewStateMask view_states,
                                                         DDS_InstanceStateMask instance_states,
                                                         const char *query_expression,
                                                         const DDS_StringSeq *query_parameters) {
    std::uint32_t mask = 0;
    if (!states_to_engine(sample_states, view_states, instance_states, &mask)) {
        bad_parameter(__func__, "states");
        return nullptr;
    }
    return forward(self, __func__, &DataReader::create_query_condition, mask,
                   ReadStates{sample_states, view_states, instance_states},
                   required(query_expression, "query_expression"), query_parameters);
}

DDS_ReturnCode_t DDS_DataReader_delete_readcondition(DDS_DataReader *self,
                                                     DDS_ReadCondition *condition) {
    return forward(self, __func__, &DataReader::delete_read_condition,
                   required_as<ReadCondition>(condition, "condition"));
}

// ---- Reading ------------------------------------------------------------------------------------

namespace {

DDS_ReturnCode_t check_selection(const DataReader &reader, const KOLT_ReadSelection &selection,
                                 const char *method) {
    if (selection.max_samples < 1 && selection.max_samples != DDS_LENGTH_UNLIMITED) {
        return bad_parameter(method, "max_samples");
    }
    if (selection.scope != KOLT_READ_ALL && selection.scope != KOLT_READ_INSTANCE &&
        selection.scope != KOLT_READ_NEXT_INSTANCE) {
        return bad_parameter(method, "scope");
    }
    if (selection.scope == KOLT_READ_INSTANCE && selection.handle == DDS_HANDLE_NIL) {
        return bad_parameter(method, "handle");
    }
    const ReadCondition *const condition = ReadCondition::of(selection.condition);
    if (selection.condition != nullptr &&
        (condition == nullptr || &condition->reader() != &reader)) {
        return bad_parameter(method, "condition");
    }
    return DDS_RETCODE_OK;
}

// Checks that both sequences are alike, and either own room or can take a loan (DDS 1.4,
// 2.2.2.5.3.8).
DDS_ReturnCode_t check_sequences(const DDS_SampleInfoSeq *info_seq, DDS_UnsignedLong length,
                                 DDS_UnsignedLong maximum, DDS_Boolean owned, DDS_Long max_samples,
                                 const char *method) {
    const bool info_owned = DDS_SampleInfoSeq_has_ownership(info_seq) != DDS_BOOLEAN_FALSE;
    if (DDS_SampleInfoSeq_get_length(info_seq) != length ||
        DDS_SampleInfoSeq_get_maximum(info_seq) != maximum ||
        info_owned != (owned != DDS_BOOLEAN_FALSE)) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the data and the info sequence differ in length, maximum or ownership");
    }
    if (!info_owned) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the sequences hold a loan: return it first");
    }
    if (maximum != 0 && max_samples != DDS_LENGTH_UNLIMITED &&
        static_cast<DDS_UnsignedLong>(max_samples) > maximum) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "max_samples exceeds the maximum of the sequences");
    }
    return DDS_RETCODE_OK;
}

}  // namespace

DDS_ReturnCode_t DDS_DataReader_read_or_take_untypedI(
    DDS_DataReader *self, const KOLT_ReadSelection *selection, DDS_UnsignedLong data_length,
    DDS_UnsignedLong data_maximum, DDS_Boolean data_owned, void *data_contiguous_buffer,
    std::size_t element_size, void ***loan, DDS_UnsignedLong *count, DDS_SampleInfoSeq *info_seq) {
    if (selection == nullptr) {
        return bad_parameter(__func__, "selection");
    }
    if (loan == nullptr || count == nullptr) {
        return bad_parameter(__func__, "received_data");
    }
    if (info_seq == nullptr) {
        return bad_parameter(__func__, "info_seq");
    }
    *loan = nullptr;
    *count = 0;
    return with<DataReader>(self, __func__, [&](DataReader &reader, const char *method) {
        if (!reader.is_enabled()) {
            return not_enabled(method);
        }
        DDS_ReturnCode_t result = check_selection(reader, *selection, method);
        if (result == DDS_RETCODE_OK) {
            result = check_sequences(info_seq, data_length, data_maximum, data_owned,
                                     selection->max_samples, method);
        }
        if (result != DDS_RETCODE_OK) {
            return result;
        }
        if (data_maximum == 0) {
            return reader.read_loaned(*selection, loan, count, info_seq, method);
        }
        if (data_contiguous_buffer == nullptr || element_size == 0) {
            return bad_parameter(method, "received_data");
        }
        result = reader.read_copied(*selection, data_maximum, data_contiguous_buffer, element_size,
                                    count, info_seq, method);
        if (result != DDS_RETCODE_OK) {
            DDS_SampleInfoSeq_set_length(info_seq, 0);
        }
        return result;
    });
}

DDS_ReturnCode_t DDS_DataReader_return_loan_untypedI(DDS_DataReader *self, void **loan,
                                                     DDS_UnsignedLong count,
                                                     DDS_SampleInfoSeq *info_seq) {
    return forward(self, __func__, &DataReader::return_loan, loan, count,
                   required(info_seq, "info_seq"));
}

DDS_ReturnCode_t DDS_DataReader_read_or_take_next_sample_untypedI(DDS_DataReader *self,
                                                                  DDS_Boolean take, void *sample,
                                                                  DDS_SampleInfo *info) {
    return forward(self, __func__, &DataReader::read_next_sample, take != DDS_BOOLEAN_FALSE,
                   required(sample, "received_data"), required(info, "info"));
}

DDS_ReturnCode_t DDS_DataReader_get_key_value(DDS_DataReader *self, void *key_holder,
                                              DDS_InstanceHandle_t handle) {
    return forward(self, __func__, &DataReader::get_key_value, required(key_holder, "key_holder"),
                   handle);
}

DDS_InstanceHandle_t DDS_DataReader_lookup_instance(DDS_DataReader *self, const void *key_holder) {
    return forward(self, __func__, &DataReader::lookup_instance,
                   required(key_holder, "key_holder"));
}

DDS_ReturnCode_t DDS_DataReader_is_data_consistent(DDS_DataReader *self,
                                                   DDS_Boolean *is_data_consistent,
                                                   const void *sample, const DDS_SampleInfo *info) {
    return forward<DataReader>(
        self, __func__,
        [](DataReader &, DDS_Boolean *result, const void *, const DDS_SampleInfo *) {
            *result = DDS_BOOLEAN_TRUE;
            return DDS_RETCODE_OK;
        },
        required(is_data_consistent, "is_data_consistent"), required(sample, "sample"),
        required(info, "info"));
}

namespace {

DDS_ReturnCode_t refuse_injection(DataReader &, const void *, const DDS_WriteParams_t *,
                                  const char *method) {
    return fail(DDS_RETCODE_UNSUPPORTED, method,
                "samples cannot be injected on behalf of remote writers");
}

}  // namespace

#define KOLT_DEFINE_ADD_TO_QUEUE(function)                                                       \
    DDS_ReturnCode_t DDS_DataReader_##function(DDS_DataReader *self, const void *sample,         \
                                               const DDS_WriteParams_t *params) {                \
        return forward<DataReader>(self, __func__, refuse_injection, required(sample, "sample"), \
                                   required(params, "params"));                                  \
    }
KOLT_DEFINE_ADD_TO_QUEUE(add_sample_to_remote_writer_queue)
KOLT_DEFINE_ADD_TO_QUEUE(add_dispose_to_remote_writer_queue)
KOLT_DEFINE_ADD_TO_QUEUE(add_unregister_to_remote_writer_queue)
#undef KOLT_DEFINE_ADD_TO_QUEUE
