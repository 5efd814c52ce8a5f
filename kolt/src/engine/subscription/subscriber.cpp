#include "engine/subscription/subscriber.hpp"

#include "engine/domain/participant.hpp"
#include "engine/subscription/data_reader.hpp"

namespace kolt::engine {

bool Subscriber::dispatch_data_on_readers() {
    const auto has = [](const DDS_SubscriberListener &l) {
        return l.on_data_on_readers != nullptr;
    };
    const auto call = [this](const DDS_SubscriberListener &l) {
        std::uint32_t taken = 0;
        dds_take_status(engine(), &taken, cyclone::kDataOnReadersStatus);
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
        if (reader->has_data_available()) {
            reader->dispatch_data_available();
        }
    }
}

}  // namespace kolt::engine
