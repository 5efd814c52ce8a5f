// SPDX-License-Identifier: Apache-2.0
// The latency of a reader with a listener: from before the write of a log message until its sample has
// been taken in on_data_available, within one process. Ours is called on the participant's listener
// thread, whose callbacks may call everything; the peer is the engine's own, called on the writing
// thread, in the middle of the write, where little may be called.
//
//   taken/gap_us   one message, then a pause, in which the listener thread goes back to waiting.
#include <benchmark/benchmark.h>
#include <kolt/dds_c.h>
#include <vur_dl/distlogSupport.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>

#include "listener_engine.h"
#include "paired.h"

namespace {

constexpr int kDomain = 90;
constexpr const char *kTopic = "bench";
constexpr const char *kType = "LogMessage";

// A sample that another thread tells the arrival of.
class Arrival {
  public:
    void tell() { count_.fetch_add(1, std::memory_order_release); }
    // Runs `write` and waits for the arrival of what it writes.
    template <typename Write>
    void await(Write &&write) {
        const int before = count_.load(std::memory_order_relaxed);
        write();
        while (count_.load(std::memory_order_acquire) == before) {
        }
    }

  private:
    std::atomic<int> count_{0};
};

template <typename T>
T *checked(T *made) {
    if (made == nullptr) {
        std::cerr << "the entities could not be created\n";
        std::exit(1);
    }
    return made;
}

// A writer and a reader with a listener.
class OurPair {
  public:
    explicit OurPair(Arrival &arrival) : arrival_(arrival) {
        VUR_DL_LogMessageTypeSupport_register_type(participant_, kType);
        DDS_Topic *const topic = checked(DDS_DomainParticipant_create_topic(
            participant_, kTopic, kType, nullptr, nullptr, DDS_STATUS_MASK_NONE));
        DDS_DataReaderListener listener{};
        listener.listener_data = this;
        listener.on_data_available = take;
        DDS_DataReaderQos qos;
        DDS_DataReaderQos_initialize(&qos);
        qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        DDS_Subscriber *const subscriber = checked(DDS_DomainParticipant_create_subscriber(
            participant_, nullptr, nullptr, DDS_STATUS_MASK_NONE));
        checked(DDS_Subscriber_create_datareader(subscriber, DDS_Topic_as_topicdescription(topic),
                                                 &qos, &listener, DDS_DATA_AVAILABLE_STATUS));
        DDS_DataReaderQos_finalize(&qos);
        DDS_Publisher *const publisher = checked(DDS_DomainParticipant_create_publisher(
            participant_, nullptr, nullptr, DDS_STATUS_MASK_NONE));
        writer_ = VUR_DL_LogMessageDataWriter_narrow(checked(DDS_Publisher_create_datawriter(
            publisher, topic, nullptr, nullptr, DDS_STATUS_MASK_NONE)));
    }
    ~OurPair() {
        DDS_DomainParticipant_delete_contained_entities(participant_);
        DDS_DomainParticipantFactory_delete_participant(factory_, participant_);
    }
    OurPair(const OurPair &) = delete;
    OurPair &operator=(const OurPair &) = delete;

    void write() {
        char empty[] = "";
        VUR_DL_LogMessage message{};
        message.category = empty;
        message.message = empty;
        VUR_DL_LogMessageDataWriter_write(writer_, &message, DDS_HANDLE_NIL);
    }

  private:
    static void take(void *self, DDS_DataReader *reader) {
        VUR_DL_LogMessageSeq samples = DDS_SEQUENCE_INITIALIZER;
        DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
        VUR_DL_LogMessageDataReader *const typed = VUR_DL_LogMessageDataReader_narrow(reader);
        VUR_DL_LogMessageDataReader_take(typed, &samples, &infos, 1, DDS_ANY_SAMPLE_STATE,
                                         DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
        VUR_DL_LogMessageDataReader_return_loan(typed, &samples, &infos);
        static_cast<OurPair *>(self)->arrival_.tell();
    }

    Arrival &arrival_;
    DDS_DomainParticipantFactory *factory_ = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipant *participant_ = checked(DDS_DomainParticipantFactory_create_participant(
        factory_, kDomain, nullptr, nullptr, DDS_STATUS_MASK_NONE));
    VUR_DL_LogMessageDataWriter *writer_ = nullptr;
};

void taken(benchmark::State &state) {
    const std::chrono::microseconds gap(state.range(0));
    const auto calls = static_cast<int>(state.range(1));
    Arrival arrival;
    OurPair ours(arrival);
    bench::EnginePair peer(kDomain, [&] { arrival.tell(); });
    bench::take_paced_turns(
        state, calls, gap, [&] { arrival.await([&] { ours.write(); }); },
        [&] { arrival.await([&] { peer.write(); }); });
}

BENCHMARK(taken)
    ->ArgNames({"gap_us", "calls"})
    ->Args({0, 200})
    ->Args({100, 50})
    ->Iterations(60)
    ->UseManualTime();
BENCHMARK(taken)
    ->ArgNames({"gap_us", "calls"})
    ->Args({10'000, 10})
    ->Iterations(20)
    ->UseManualTime();

}  // namespace

BENCHMARK_MAIN();
