// SPDX-License-Identifier: Apache-2.0
// Eight threads that do at random what applications do with the logger and the platform, for some
// seconds, or for as many as VUR_DL_SOAK_SECONDS says. What it finds are reports of the sanitizers,
// crashes, and threads that stand still. VUR_DL_SOAK_SEED repeats a choice of random numbers.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <random>
#include <shared_mutex>
#include <thread>

#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/pubsub.h"

namespace {

using namespace support;
using Clock = std::chrono::steady_clock;

constexpr int kDomain = 71;
constexpr int kThreads = 8;
// No operation may take longer: a finalisation takes two seconds, behind others on a slow machine.
constexpr std::chrono::seconds kStall{90};

unsigned number_of(const char *variable, unsigned otherwise) {
    const char *const text = std::getenv(variable);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

void few_samples(DDS_DataReaderQos &qos) {
    qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
    qos.history.depth = 4;
}

void few_samples_briefly(DDS_DataWriterQos &qos) {
    qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
    qos.history.depth = 4;
    qos.reliability.max_blocking_time = {0, 10'000'000};
}

// What the threads share. It lives longer than they do.
struct Shared {
    Shared() : node(kDomain), echo(node.writer(few_samples_briefly)), waitset(DDS_WaitSet_new()) {
        store_options({.domain = kDomain});
    }
    ~Shared() {
        VUR_DL_DistLogger_finalizeInstance();
        EXPECT_EQ(DDS_WaitSet_delete(waitset), DDS_RETCODE_OK);
    }
    Shared(const Shared &) = delete;
    Shared &operator=(const Shared &) = delete;

    Node node;
    DDS_DataWriter *echo;
    DDS_WaitSet *waitset;
    // The options that the logger hands out live until they are replaced or it is finalised.
    std::shared_mutex options;
};

// ---- Callbacks ----------------------------------------------------------------------------------

void log_at(int level, const char *text) {
    if (VUR_DL_DistLogger_isDistLoggerRunning() != 0) {
        VUR_DL_DistLogger_log(VUR_DL_DistLogger_getInstance(), level, text);
    }
}

void on_data(void *shared, DDS_DataReader *reader) {
    for (const Text &text : take(reader)) {
        if (text.info.valid_data && text.number % 8 == 1) {
            write(static_cast<Shared *>(shared)->echo, 1, text.level, text.number + 1);
        }
    }
    log_at(600, "data came");
}

void on_reader_matched(void *, DDS_DataReader *, const DDS_SubscriptionMatchedStatus *) {
    log_at(700, "a writer came or went");
}

void on_writer_matched(void *shared, DDS_DataWriter *, const DDS_PublicationMatchedStatus *) {
    Node &node = static_cast<Shared *>(shared)->node;
    DDS_DataReader *const reader = node.reader(few_samples);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader), DDS_RETCODE_OK);
}

DDS_DataReaderListener reader_listener(Shared &shared) {
    DDS_DataReaderListener listener{};
    listener.listener_data = &shared;
    listener.on_data_available = on_data;
    listener.on_subscription_matched = on_reader_matched;
    return listener;
}

DDS_DataWriterListener writer_listener(Shared &shared) {
    DDS_DataWriterListener listener{};
    listener.listener_data = &shared;
    listener.on_publication_matched = on_writer_matched;
    return listener;
}

// ---- One thread ---------------------------------------------------------------------------------

class Actor {
  public:
    Actor(Shared &shared, unsigned seed) : shared_(shared), random_(seed) {}
    ~Actor() {
        forget_reader();
        forget_writer();
    }
    Actor(const Actor &) = delete;
    Actor &operator=(const Actor &) = delete;

    void run(const std::atomic<bool> &enough) {
        while (!enough) {
            step();
            steps_.fetch_add(1);
        }
        doing_ = "nothing more";
        steps_.fetch_add(1);
    }
    unsigned long steps() const { return steps_; }
    const char *doing() const { return doing_; }

  private:
    using Operation = void (Actor::*)();
    struct Choice {
        const char *name;
        Operation operation;
        int weight;
    };
    static const std::array<Choice, 14> kChoices;

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    bool perhaps() { return below(2) == 0; }

    void step() {
        int total = 0;
        for (const Choice &choice : kChoices) {
            total += choice.weight;
        }
        int left = below(total);
        for (const Choice &choice : kChoices) {
            left -= choice.weight;
            if (left < 0) {
                doing_ = choice.name;
                (this->*choice.operation)();
                return;
            }
        }
    }

    // The logger.
    void create_logger() { logger_ = VUR_DL_DistLogger_getInstance(); }
    void finalize_logger() {
        const std::lock_guard lock(shared_.options);
        EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
        choose_options();
    }
    // For the next creation, unless another thread was faster.
    void choose_options() {
        store_options({.domain = kDomain,
                       .filter_level = below(9) * 100,
                       .queue_size = 1 + below(64),
                       .forward = perhaps(),
                       .remote = below(4) != 0,
                       .participant = perhaps() ? shared_.node.participant : nullptr});
    }
    void change_options() {
        const std::shared_lock lock(shared_.options);
        if (VUR_DL_Options *const options = VUR_DL_DistLogger_getOptions(); options != nullptr) {
            VUR_DL_Options_setEchoToStdout(options, 1);
            VUR_DL_Options_setEchoToStdout(options, 0);
        }
    }
    void log() {
        const std::string text(static_cast<std::size_t>(below(3) == 0 ? below(5000) : 20), 'x');
        for (int i = below(50); logger_ != nullptr && i >= 0; --i) {
            VUR_DL_DistLogger_log(logger_, 100 * below(10), text.c_str());
        }
    }
    void administrate() {
        if (logger_ == nullptr || VUR_DL_DistLogger_isDistLoggerRunning() == 0) {
            return;
        }
        const std::shared_lock lock(shared_.options);
        if (VUR_DL_DistLogger_isDistLoggerRunning() == 0) {
            return;
        }
        VUR_DL_DistLogger *const logger = VUR_DL_DistLogger_getInstance();
        switch (below(4)) {
            case 0:
                VUR_DL_DistLogger_setFilterLevel(logger, 100 * below(9));
                break;
            case 1:
                VUR_DL_DistLogger_setVURLoggerVerbosityByCategory(
                    logger, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION,
                    perhaps() ? KOLT_CONFIG_LOG_VERBOSITY_WARNING
                              : KOLT_CONFIG_LOG_VERBOSITY_ERROR);
                break;
            case 2:
                VUR_DL_DistLogger_setVURLoggerPrintFormat(logger,
                                                          KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
                break;
            default:
                VUR_DL_DistLogger_writeState(logger);
        }
    }

    // A tool of its own participant.
    void watch() {
        monitor_.reset();
        monitor_.emplace(Monitor::Settings{.domain = kDomain});
    }
    void command() {
        if (!monitor_.has_value()) {
            return;
        }
        monitor_->log();
        monitor_->responses();
        const Ids target = monitor_->states().empty() ? Ids{1, 1} : monitor_->last_state().sender;
        monitor_->request(target, ++invocation_, [this](VUR_DL_ADMIN_Command &command) {
            command._d = VUR_DL_SET_LOG_LEVEL;
            command._u.filterLevel = 100 * below(10) - 100;
        });
    }

    // Endpoints and conditions in the participant that all share.
    void make_reader() {
        forget_reader();
        const DDS_DataReaderListener listener = reader_listener(shared_);
        reader_ = shared_.node.reader(few_samples, nullptr, perhaps() ? &listener : nullptr,
                                      DDS_STATUS_MASK_ALL);
        condition_ = DDS_DataReader_create_readcondition(
            reader_, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
        if (perhaps()) {
            DDS_StatusCondition_set_enabled_statuses(status_condition(), DDS_DATA_AVAILABLE_STATUS);
        }
    }
    void make_writer() {
        forget_writer();
        const DDS_DataWriterListener listener = writer_listener(shared_);
        writer_ = shared_.node.writer(few_samples_briefly, nullptr,
                                      below(4) == 0 ? &listener : nullptr, DDS_STATUS_MASK_ALL);
    }
    void change_listener() {
        if (reader_ == nullptr) {
            return;
        }
        const DDS_DataReaderListener listener = reader_listener(shared_);
        EXPECT_EQ(DDS_DataReader_set_listener(reader_, perhaps() ? &listener : nullptr,
                                              DDS_STATUS_MASK_ALL),
                  DDS_RETCODE_OK);
    }
    void write_some() {
        for (int i = below(20); writer_ != nullptr && i >= 0; --i) {
            write(writer_, 1, below(5), below(64));
        }
    }
    void read_some() {
        if (reader_ == nullptr) {
            return;
        }
        access(reader_, selection(perhaps()));
        DDS_SampleLostStatus lost{};
        EXPECT_EQ(DDS_DataReader_get_sample_lost_status(reader_, &lost), DDS_RETCODE_OK);
    }
    void attach() {
        if (reader_ != nullptr) {
            DDS_WaitSet_attach_condition(shared_.waitset,
                                         DDS_ReadCondition_as_condition(condition_));
            DDS_WaitSet_attach_condition(shared_.waitset,
                                         DDS_StatusCondition_as_condition(status_condition()));
        }
    }
    void wait() {
        DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
        constexpr DDS_Duration_t kBriefly{0, 1'000'000};
        DDS_WaitSet_wait(shared_.waitset, &active, &kBriefly);
        DDS_ConditionSeq_finalize(&active);
    }

    DDS_StatusCondition *status_condition() {
        return DDS_Entity_get_statuscondition(DDS_DataReader_as_entity(reader_));
    }
    void forget_reader() {
        if (reader_ == nullptr) {
            return;
        }
        DDS_WaitSet_detach_condition(shared_.waitset, DDS_ReadCondition_as_condition(condition_));
        EXPECT_EQ(DDS_DataReader_delete_readcondition(reader_, condition_), DDS_RETCODE_OK);
        // Its status condition may still be attached.
        EXPECT_EQ(DDS_Subscriber_delete_datareader(shared_.node.subscriber, reader_),
                  DDS_RETCODE_OK);
        reader_ = nullptr;
    }
    void forget_writer() {
        if (writer_ != nullptr) {
            EXPECT_EQ(DDS_Publisher_delete_datawriter(shared_.node.publisher, writer_),
                      DDS_RETCODE_OK);
            writer_ = nullptr;
        }
    }

    Shared &shared_;
    std::mt19937 random_;
    std::atomic<unsigned long> steps_{0};
    std::atomic<const char *> doing_{"nothing yet"};
    VUR_DL_DistLogger *logger_ = nullptr;
    std::optional<Monitor> monitor_;
    int invocation_ = 0;
    DDS_DataReader *reader_ = nullptr;
    DDS_ReadCondition *condition_ = nullptr;
    DDS_DataWriter *writer_ = nullptr;
};

const std::array<Actor::Choice, 14> Actor::kChoices{{
    {"create the logger", &Actor::create_logger, 20},
    {"finalise the logger", &Actor::finalize_logger, 1},
    {"change options", &Actor::change_options, 20},
    {"log", &Actor::log, 200},
    {"administrate", &Actor::administrate, 20},
    {"watch", &Actor::watch, 1},
    {"command", &Actor::command, 40},
    {"make a reader", &Actor::make_reader, 20},
    {"make a writer", &Actor::make_writer, 20},
    {"change a listener", &Actor::change_listener, 40},
    {"write", &Actor::write_some, 100},
    {"read", &Actor::read_some, 60},
    {"attach", &Actor::attach, 20},
    {"wait", &Actor::wait, 60},
}};

// ---- All of them --------------------------------------------------------------------------------

// Ends the process when an actor has stood still for too long.
class Watch {
  public:
    explicit Watch(const Actor &actor) : actor_(actor) {}
    void look() {
        const unsigned long steps = actor_.steps();
        const Clock::time_point now = Clock::now();
        if (steps != steps_) {
            steps_ = steps;
            since_ = now;
        } else if (now - since_ > kStall) {
            std::cerr << "a thread stands still: " << actor_.doing() << std::endl;
            std::abort();
        }
    }

  private:
    const Actor &actor_;
    unsigned long steps_ = 0;
    Clock::time_point since_ = Clock::now();
};

TEST(Soak, NothingHangsAndNothingRaces) {
    const std::chrono::seconds duration(number_of("VUR_DL_SOAK_SECONDS", 4));
    const unsigned seed = number_of("VUR_DL_SOAK_SEED", std::random_device{}());
    std::cout << "VUR_DL_SOAK_SEED=" << seed << std::endl;
    Shared shared;
    std::atomic<bool> enough{false};
    std::vector<std::unique_ptr<Actor>> actors;
    std::vector<Watch> watches;
    std::vector<std::thread> threads;
    std::atomic<int> running{kThreads};
    for (unsigned i = 0; i < kThreads; ++i) {
        actors.push_back(std::make_unique<Actor>(shared, seed + i));
        watches.emplace_back(*actors.back());
        threads.emplace_back([&, actor = actors.back().get()] {
            actor->run(enough);
            --running;
        });
    }
    for (const Clock::time_point end = Clock::now() + duration; running != 0;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        enough = Clock::now() >= end;
        for (Watch &watch : watches) {
            watch.look();
        }
    }
    unsigned long steps = 0;
    for (int i = 0; i < kThreads; ++i) {
        threads[static_cast<std::size_t>(i)].join();
        EXPECT_GT(actors[static_cast<std::size_t>(i)]->steps(), 1U);
        steps += actors[static_cast<std::size_t>(i)]->steps();
    }
    std::cout << steps << " operations" << std::endl;
}

}  // namespace
