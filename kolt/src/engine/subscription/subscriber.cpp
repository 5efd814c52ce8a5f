// SPDX-License-Identifier: Apache-2.0
// Subscribers: the group of endpoints for readers, and data on readers.
#include "engine/subscription/subscriber.hpp"

#include "engine/endpoint/endpoint_group_definitions.hpp"
#include "engine/subscription/data_reader.hpp"

namespace kolt::engine {

const char *SubscriberTraits::obstacle(const DataReader &reader) {
    if (reader.has_loans()) {
        return "the reader has loans out: return them first";
    }
    return reader.has_conditions() ? "the reader has conditions: delete them first" : nullptr;
}

void SubscriberTraits::empty(DataReader &reader, const char *method) {
    reader.delete_conditions(true, method);
}

template class EndpointGroup<SubscriberTraits>;

void Subscriber::note_data() {
    status_condition().set_changed(DDS_DATA_ON_READERS_STATUS);
    status_condition().update();
}

void Subscriber::reset_data_on_readers() {
    status_condition().clear_changed(DDS_DATA_ON_READERS_STATUS);
    status_condition().update();
}

bool Subscriber::deliver_data_on_readers() {
    const auto has = [](const DDS_SubscriberListener &l) {
        return l.on_data_on_readers != nullptr;
    };
    const auto call = [this](const DDS_SubscriberListener &l) {
        reset_data_on_readers();
        l.on_data_on_readers(l.reader_listener.listener_data, &handle_);
    };
    if (listener_.handle(DDS_DATA_ON_READERS_STATUS, has, call)) {
        return true;
    }
    return participant_.listener().handle(
        DDS_DATA_ON_READERS_STATUS,
        [&](const DDS_DomainParticipantListener &l) { return has(l.subscriber_listener); },
        [&](const DDS_DomainParticipantListener &l) { call(l.subscriber_listener); });
}

void Subscriber::notify_readers() {
    for (DataReader *const reader : endpoints()) {
        reader->notify();
    }
}

}  // namespace kolt::engine
