// SPDX-License-Identifier: Apache-2.0
// Topics and content-filtered topics. To the engine, a content-filtered topic is a second topic
// entity of the same name and type that carries a filter.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/data/registered_type.hpp"
#include "engine/data/sertype.hpp"
#include "engine/entity/entity_cast.hpp"
#include "engine/entity/participant_scope.hpp"
#include "engine/entity/status_records.hpp"
#include "engine/topic/content_filter.hpp"
#include "kolt/topic.h"

namespace kolt::engine {

class ContentFilteredTopic;
class Topic;

// A topic or content-filtered topic, as a reader is created for one.
class TopicDescription : public Entity {
  public:
    TopicDescription(EntityKind kind, DDS_TopicDescription *handle, ParticipantScope &participant,
                     const char *name, DDS_StatusMask valid_statuses)
        : Entity(kind, &handle->_entity, valid_statuses), participant_(participant), name_(name) {}
    static TopicDescription *of(DDS_TopicDescription *self) {
        return self != nullptr ? entity_cast<TopicDescription, EntityKind::kTopic,
                                             EntityKind::kContentFilteredTopic>(self->_entity._impl)
                               : nullptr;
    }

    ParticipantScope &participant() const { return participant_; }
    const std::string &name() const { return name_; }
    DDS_TopicDescription *description() const {
        return reinterpret_cast<DDS_TopicDescription *>(self());
    }
    // Returns the topic itself, or the one behind the filter.
    virtual Topic &topic() = 0;
    // Returns the filter; nullptr for a topic itself.
    virtual const ContentFilter *content_filter() const { return nullptr; }

    // Counts readers and writers for it, and for a topic also filters on it. Guarded by the tree's
    // mutex.
    int users = 0;

  private:
    ParticipantScope &participant_;
    const std::string name_;
};

class Topic final : public TopicDescription {
  public:
    Topic(ParticipantScope &participant, const char *name, std::shared_ptr<RegisteredType> type,
          const DDS_TopicQos &qos);
    ~Topic() override;
    static Topic *of(DDS_Topic *self) {
        return self != nullptr
                   ? entity_cast<Topic, EntityKind::kTopic>(self->_description._entity._impl)
                   : nullptr;
    }

    DDS_Topic *handle() { return &handle_; }
    Topic &topic() override { return *this; }
    const std::shared_ptr<RegisteredType> &registered_type() const { return type_; }
    // The topics that filter this one. Guarded by the tree's mutex.
    std::vector<ContentFilteredTopic *> filters;

    // Returns the sertype that the engine uses. Valid while the topic is enabled.
    const Sertype &sertype() const { return *sertype_; }
    DDS_ReturnCode_t set_listener(const DDS_TopicListener *listener, DDS_StatusMask mask,
                                  const char *method);
    StatusRecords<Topic, TopicStatuses> &statuses() { return statuses_; }

    // Enables the topics that filter it, too.
    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(DDS_TopicQos *qos) { return qos_.get(qos); }
    DDS_ReturnCode_t set_qos(const DDS_TopicQos &qos, const char *method);
    void announce() override { statuses_.announce(); }
    // Tells the listeners of a change.
    template <typename Kind>
    void deliver();

  private:
    DDS_ReturnCode_t enable_filters(const char *method);

    DDS_Topic handle_{{{this}}};
    std::shared_ptr<RegisteredType> type_;
    const Sertype *sertype_ = nullptr;
    ListenerSlot<DDS_TopicListener> listener_;
    StatusRecords<Topic, TopicStatuses> statuses_;
    EntityQos<DDS_TopicQos> qos_;
};

class ContentFilteredTopic final : public TopicDescription {
  public:
    ContentFilteredTopic(ParticipantScope &participant, const char *name, Topic &related,
                         std::unique_ptr<ContentFilter> filter);
    ~ContentFilteredTopic() override;
    static ContentFilteredTopic *of(DDS_ContentFilteredTopic *self) {
        return self != nullptr
                   ? entity_cast<ContentFilteredTopic, EntityKind::kContentFilteredTopic>(
                         self->_description._entity._impl)
                   : nullptr;
    }

    DDS_ContentFilteredTopic *handle() { return &handle_; }
    Topic &topic() override { return related_; }
    ContentFilter &filter() { return *filter_; }
    const ContentFilter *content_filter() const override { return filter_.get(); }

    DDS_ReturnCode_t enable(const char *method) override;

  private:
    DDS_ContentFilteredTopic handle_{{{this}}};
    Topic &related_;
    std::unique_ptr<ContentFilter> filter_;
};

}  // namespace kolt::engine
