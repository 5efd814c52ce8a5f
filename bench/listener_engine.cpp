// SPDX-License-Identifier: Apache-2.0
// The engine's entities, by its own interface.
#include "listener_engine.h"

#include <dds/dds.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "distlog_idlc.h"

namespace bench {

namespace {

constexpr const char *kTopic = "bench_of_the_engine";

dds_return_t checked(dds_return_t result) {
    if (result < 0) {
        std::fprintf(stderr, "the engine: %s\n", dds_strretcode(result));
        std::exit(1);
    }
    return result;
}

}  // namespace

EnginePair::EnginePair(int domain, std::function<void()> on_data)
    : on_data_(std::move(on_data)),
      participant_(
          checked(dds_create_participant(static_cast<dds_domainid_t>(domain), nullptr, nullptr))) {
    const dds_entity_t topic =
        dds_create_topic(participant_, &com_vur_dl_LogMessage_desc, kTopic, nullptr, nullptr);
    const std::unique_ptr<dds_qos_t, void (*)(dds_qos_t *)> qos(dds_create_qos(), dds_delete_qos);
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, DDS_SECS(1));
    const std::unique_ptr<dds_listener_t, void (*)(dds_listener_t *)> listener(
        dds_create_listener(this), dds_delete_listener);
    dds_lset_data_available(listener.get(), take);
    checked(dds_create_reader(participant_, topic, qos.get(), listener.get()));
    writer_ = checked(dds_create_writer(participant_, topic, qos.get(), nullptr));
}

EnginePair::~EnginePair() {
    dds_delete(participant_);
}

void EnginePair::write() {
    com_vur_dl_LogMessage message{};
    checked(dds_write(writer_, &message));
}

void EnginePair::take(int reader, void *self) {
    std::array<void *, 1> samples{};
    std::array<dds_sample_info_t, 1> infos{};
    const dds_return_t count = dds_take(reader, samples.data(), infos.data(), 1, 1);
    if (count > 0) {
        dds_return_loan(reader, samples.data(), count);
    }
    static_cast<EnginePair *>(self)->on_data_();
}

}  // namespace bench
