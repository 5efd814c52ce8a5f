// SPDX-License-Identifier: Apache-2.0
// The C functions of topics and content-filtered topics.
#include "engine/cyclone/convert.hpp"
#include "engine/entity/statuses.hpp"
#include "engine/topic/topic.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

const char *DDS_TopicDescription_get_name(DDS_TopicDescription *self) {
    return with<TopicDescription>(self, __func__,
                                  [](TopicDescription &topic) { return topic.name().c_str(); });
}

const char *DDS_TopicDescription_get_type_name(DDS_TopicDescription *self) {
    return with<TopicDescription>(self, __func__, [](TopicDescription &topic) {
        return topic.topic().registered_type()->name().c_str();
    });
}

DDS_DomainParticipant *DDS_TopicDescription_get_participant(DDS_TopicDescription *self) {
    return with<TopicDescription>(
        self, __func__, [](TopicDescription &topic) { return topic.participant().handle(); });
}

DDS_TopicDescription *DDS_Topic_as_topicdescription(DDS_Topic *self) {
    return self != nullptr ? &self->_description : nullptr;
}

DDS_Topic *DDS_Topic_narrow(DDS_TopicDescription *self) {
    TopicDescription *const topic = TopicDescription::of(self);
    if (topic == nullptr || topic->kind() != EntityKind::kTopic) {
        return nullptr;
    }
    return static_cast<Topic *>(topic)->handle();
}

DDS_ReturnCode_t DDS_Topic_get_qos(DDS_Topic *self, DDS_TopicQos *qos) {
    return forward(self, __func__, &Topic::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_Topic_set_qos(DDS_Topic *self, const DDS_TopicQos *qos) {
    return forward(self, __func__, &Topic::set_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_Topic_set_listener(DDS_Topic *self, const DDS_TopicListener *listener,
                                        DDS_StatusMask mask) {
    return forward(self, __func__, &Topic::set_listener, listener, mask);
}

DDS_ReturnCode_t DDS_Topic_get_inconsistent_topic_status(DDS_Topic *self,
                                                         DDS_InconsistentTopicStatus *status) {
    return forward<Topic>(self, __func__, get_status<InconsistentTopic, Topic>,
                          required(status, "status"));
}

DDS_TopicDescription *DDS_ContentFilteredTopic_as_topicdescription(DDS_ContentFilteredTopic *self) {
    return self != nullptr ? &self->_description : nullptr;
}

DDS_ContentFilteredTopic *DDS_ContentFilteredTopic_narrow(DDS_TopicDescription *self) {
    TopicDescription *const topic = TopicDescription::of(self);
    if (topic == nullptr || topic->kind() != EntityKind::kContentFilteredTopic) {
        return nullptr;
    }
    return static_cast<ContentFilteredTopic *>(topic)->handle();
}

DDS_Topic *DDS_ContentFilteredTopic_get_related_topic(DDS_ContentFilteredTopic *self) {
    return with<ContentFilteredTopic>(
        self, __func__, [](ContentFilteredTopic &topic) { return topic.topic().handle(); });
}

const char *DDS_ContentFilteredTopic_get_filter_expression(DDS_ContentFilteredTopic *self) {
    return with<ContentFilteredTopic>(
        self, __func__, [](ContentFilteredTopic &topic) { return topic.filter().expression(); });
}

DDS_ReturnCode_t DDS_ContentFilteredTopic_get_expression_parameters(DDS_ContentFilteredTopic *self,
                                                                    DDS_StringSeq *parameters) {
    return forward<ContentFilteredTopic>(
        self, __func__,
        [](ContentFilteredTopic &topic, DDS_StringSeq *to) {
            return topic.filter().get_parameters(to);
        },
        required(parameters, "parameters"));
}

DDS_ReturnCode_t DDS_ContentFilteredTopic_set_expression_parameters(
    DDS_ContentFilteredTopic *self, const DDS_StringSeq *parameters) {
    return forward<ContentFilteredTopic>(
        self, __func__,
        [](ContentFilteredTopic &topic, const DDS_StringSeq &from, const char *method) {
            return topic.filter().set_parameters(from, method);
        },
        required_value(parameters, "parameters"));
}
