// SPDX-License-Identifier: Apache-2.0
// Conditions and waitsets.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

constexpr DDS_Duration_t kLong = {30, 0};
constexpr DDS_Duration_t kShort = {0, 50000000};

// A waitset with its result.
class Waiter {
  public:
    Waiter() : set_(DDS_WaitSet_new()) {}
    ~Waiter() {
        DDS_ConditionSeq_finalize(&active_);
        EXPECT_EQ(DDS_WaitSet_delete(set_), DDS_RETCODE_OK);
    }
    Waiter(const Waiter &) = delete;
    Waiter &operator=(const Waiter &) = delete;

    DDS_WaitSet *get() { return set_; }
    DDS_ReturnCode_t attach(DDS_Condition *condition) {
        return DDS_WaitSet_attach_condition(set_, condition);
    }
    DDS_ReturnCode_t detach(DDS_Condition *condition) {
        return DDS_WaitSet_detach_condition(set_, condition);
    }
    DDS_ReturnCode_t wait(const DDS_Duration_t &timeout) {
        return DDS_WaitSet_wait(set_, &active_, &timeout);
    }
    bool is_active(DDS_Condition *condition) const {
        for (DDS_UnsignedLong i = 0; i < DDS_ConditionSeq_get_length(&active_); ++i) {
            if (*DDS_ConditionSeq_get_reference(&active_, static_cast<DDS_Long>(i)) == condition) {
                return true;
            }
        }
        return false;
    }
    DDS_UnsignedLong active_count() const { return DDS_ConditionSeq_get_length(&active_); }

  private:
    DDS_WaitSet *set_;
    DDS_ConditionSeq active_ = DDS_SEQUENCE_INITIALIZER;
};

DDS_Condition *status_condition(DDS_Entity *entity, DDS_StatusMask mask) {
    DDS_StatusCondition *const condition = DDS_Entity_get_statuscondition(entity);
    EXPECT_EQ(DDS_StatusCondition_set_enabled_statuses(condition, mask), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_StatusCondition_get_enabled_statuses(condition), mask);
    return DDS_StatusCondition_as_condition(condition);
}

// ---- Waitsets -----------------------------------------------------------------------------------

TEST(KoltConditions, EmptyWaitsetTimesOut) {
    Waiter waiter;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
    EXPECT_EQ(waiter.active_count(), 0U);
    EXPECT_EQ(DDS_WaitSet_wait(waiter.get(), nullptr, &kShort), DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltConditions, GuardConditionWakesAnotherThread) {
    Waiter waiter;
    DDS_GuardCondition *const guard = DDS_GuardCondition_new();
    DDS_Condition *const condition = DDS_GuardCondition_as_condition(guard);
    ASSERT_EQ(waiter.attach(condition), DDS_RETCODE_OK);
    ASSERT_EQ(waiter.attach(condition), DDS_RETCODE_OK);  // no effect
    EXPECT_FALSE(DDS_Condition_get_trigger_value(condition));
    std::thread other([&] { DDS_GuardCondition_set_trigger_value(guard, DDS_BOOLEAN_TRUE); });
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    other.join();
    EXPECT_EQ(waiter.active_count(), 1U);
    EXPECT_TRUE(waiter.is_active(condition));
    EXPECT_TRUE(DDS_Condition_get_trigger_value(condition));
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);  // it stays triggered
    DDS_GuardCondition_set_trigger_value(guard, DDS_BOOLEAN_FALSE);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    EXPECT_EQ(DDS_GuardCondition_delete(guard), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(waiter.detach(condition), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.detach(condition), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_GuardCondition_delete(guard), DDS_RETCODE_OK);
}

TEST(KoltConditions, ConditionAttachedWhileAThreadWaits) {
    Waiter waiter;
    DDS_GuardCondition *const guard = DDS_GuardCondition_new();
    DDS_GuardCondition_set_trigger_value(guard, DDS_BOOLEAN_TRUE);
    DDS_ReturnCode_t result = DDS_RETCODE_ERROR;
    std::thread other([&] { result = waiter.wait(kLong); });
    EXPECT_EQ(waiter.attach(DDS_GuardCondition_as_condition(guard)), DDS_RETCODE_OK);
    other.join();
    EXPECT_EQ(result, DDS_RETCODE_OK);
    waiter.detach(DDS_GuardCondition_as_condition(guard));
    DDS_GuardCondition_delete(guard);
}

TEST(KoltConditions, OnlyOneThreadWaits) {
    Waiter waiter;
    DDS_GuardCondition *const guard = DDS_GuardCondition_new();
    waiter.attach(DDS_GuardCondition_as_condition(guard));
    std::atomic<bool> refused{false};
    std::thread other([&] {
        DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
        // This thread or the other one waits first; whoever comes second is refused.
        if (DDS_WaitSet_wait(waiter.get(), &active, &kLong) == DDS_RETCODE_PRECONDITION_NOT_MET) {
            refused = true;
            DDS_GuardCondition_set_trigger_value(guard, DDS_BOOLEAN_TRUE);
        }
        DDS_ConditionSeq_finalize(&active);
    });
    const DDS_ReturnCode_t result = waiter.wait(kLong);
    if (result == DDS_RETCODE_PRECONDITION_NOT_MET) {
        refused = true;
        DDS_GuardCondition_set_trigger_value(guard, DDS_BOOLEAN_TRUE);
    }
    other.join();
    EXPECT_TRUE(refused);
    waiter.detach(DDS_GuardCondition_as_condition(guard));
    DDS_GuardCondition_delete(guard);
}

TEST(KoltConditions, StatusConditionsOfSeveralDomains) {
    Node first(4);
    Node second(5);
    DDS_DataWriter *const writer = first.writer();
    DDS_DataReader *const reader = second.reader();
    Waiter waiter;
    DDS_Condition *const matched =
        status_condition(DDS_DataWriter_as_entity(writer), DDS_PUBLICATION_MATCHED_STATUS);
    DDS_Condition *const data =
        status_condition(DDS_DataReader_as_entity(reader), DDS_DATA_AVAILABLE_STATUS);
    ASSERT_EQ(waiter.attach(matched), DDS_RETCODE_OK);
    ASSERT_EQ(waiter.attach(data), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);

    DDS_DataReader *const peer = first.reader();
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    EXPECT_TRUE(waiter.is_active(matched));
    EXPECT_FALSE(waiter.is_active(data));
    DDS_PublicationMatchedStatus status{};
    EXPECT_EQ(DDS_DataWriter_get_publication_matched_status(writer, &status), DDS_RETCODE_OK);
    EXPECT_EQ(status.current_count, 1);
    EXPECT_EQ(status.current_count_change, 1);
    EXPECT_EQ(status.last_subscription_handle,
              DDS_Entity_get_instance_handle(DDS_DataReader_as_entity(peer)));
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);  // the getter reset it

    DDS_DataWriter *const other = second.writer();
    ASSERT_TRUE(is_matched(other));
    ASSERT_EQ(write(other, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    EXPECT_TRUE(waiter.is_active(data));
    EXPECT_TRUE(DDS_Entity_get_status_changes(DDS_DataReader_as_entity(reader)) &
                DDS_DATA_AVAILABLE_STATUS);
    EXPECT_EQ(take(reader).size(), 1U);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
}

TEST(KoltConditions, ReadConditionTriggersAndSelects) {
    Node node(4);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    DDS_ReadCondition *const fresh = DDS_DataReader_create_readcondition(
        reader, DDS_NOT_READ_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    DDS_ReadCondition *const gone = DDS_DataReader_create_readcondition(
        reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_NOT_ALIVE_INSTANCE_STATE);
    ASSERT_NE(fresh, nullptr);
    ASSERT_NE(gone, nullptr);
    EXPECT_EQ(DDS_ReadCondition_get_datareader(fresh), reader);
    EXPECT_EQ(DDS_ReadCondition_get_sample_state_mask(fresh), DDS_NOT_READ_SAMPLE_STATE);
    EXPECT_EQ(DDS_ReadCondition_get_instance_state_mask(gone), DDS_NOT_ALIVE_INSTANCE_STATE);
    Waiter waiter;
    waiter.attach(DDS_ReadCondition_as_condition(fresh));
    waiter.attach(DDS_ReadCondition_as_condition(gone));
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    EXPECT_TRUE(waiter.is_active(DDS_ReadCondition_as_condition(fresh)));
    EXPECT_FALSE(waiter.is_active(DDS_ReadCondition_as_condition(gone)));

    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    KOLT_ReadSelection through = selection(false);
    through.condition = gone;
    access(reader, through, &code);
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    through.condition = fresh;
    EXPECT_EQ(access(reader, through, &code).size(), 1U);
    access(reader, through, &code);
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);  // read already
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);

    EXPECT_EQ(DDS_DataReader_delete_readcondition(reader, fresh),
              DDS_RETCODE_PRECONDITION_NOT_MET);  // attached
    EXPECT_EQ(DDS_DataReader_delete_contained_entities(reader), DDS_RETCODE_PRECONDITION_NOT_MET);
    waiter.detach(DDS_ReadCondition_as_condition(fresh));
    EXPECT_EQ(DDS_DataReader_delete_readcondition(reader, fresh), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader),
              DDS_RETCODE_PRECONDITION_NOT_MET);  // there is `gone` yet
    waiter.detach(DDS_ReadCondition_as_condition(gone));
    EXPECT_EQ(DDS_DataReader_delete_contained_entities(reader), DDS_RETCODE_OK);
    DDS_DataReader *const another = node.reader();
    DDS_ReadCondition *const foreign = DDS_DataReader_create_readcondition(
        another, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    through.condition = foreign;
    access(reader, through, &code);
    EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(
        DDS_DataReader_create_readcondition(reader, 0, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE),
        nullptr);
}

TEST(KoltConditions, QueryConditionJudgesContent) {
    Node node(4);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(write(writer, 1, i % 2, i), DDS_RETCODE_OK);
    }
    Strings parameters({"5"});
    DDS_QueryCondition *const query = DDS_DataReader_create_querycondition(
        reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE, "number >= %0",
        parameters.get());
    ASSERT_NE(query, nullptr);
    DDS_ReadCondition *const as_read = DDS_QueryCondition_as_readcondition(query);
    DDS_Condition *const condition = DDS_ReadCondition_as_condition(as_read);
    EXPECT_STREQ(DDS_QueryCondition_get_query_expression(query), "number >= %0");
    EXPECT_TRUE(DDS_Condition_get_trigger_value(condition));
    KOLT_ReadSelection through = selection(true);
    through.condition = as_read;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    auto got = access(reader, through, &code);
    ASSERT_EQ(got.size(), 5U);
    for (const Text &text : got) {
        EXPECT_GE(text.number, 5);
    }
    EXPECT_FALSE(DDS_Condition_get_trigger_value(condition));

    // New parameters judge what is there already, and the waitset keeps watching.
    Waiter waiter;
    waiter.attach(condition);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    Strings lower({"3"});
    ASSERT_EQ(DDS_QueryCondition_set_query_parameters(query, lower.get()), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    EXPECT_TRUE(waiter.is_active(condition));
    got = access(reader, through, &code);
    ASSERT_EQ(got.size(), 2U);
    Strings wrong({"not a number"});
    EXPECT_EQ(DDS_QueryCondition_set_query_parameters(query, wrong.get()),
              DDS_RETCODE_BAD_PARAMETER);
    Strings copy({});
    EXPECT_EQ(DDS_QueryCondition_get_query_parameters(query, copy.get()), DDS_RETCODE_OK);
    ASSERT_EQ(copy.size(), 1U);
    EXPECT_EQ(copy.at(0), "3");
    EXPECT_EQ(take(reader).size(), 3U);
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    ASSERT_EQ(write(writer, 1, 1, 100), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    waiter.detach(condition);
    EXPECT_EQ(DDS_DataReader_delete_readcondition(reader, as_read), DDS_RETCODE_OK);

    EXPECT_EQ(DDS_DataReader_create_querycondition(reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                                   DDS_ANY_INSTANCE_STATE, "nosuch = 1", nullptr),
              nullptr);
    EXPECT_EQ(DDS_DataReader_create_querycondition(reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                                   DDS_ANY_INSTANCE_STATE, nullptr, nullptr),
              nullptr);
}

TEST(KoltConditions, QueryConditionsAreLimited) {
    Node node(4);
    DDS_DataReader *const reader = node.reader();
    int made = 0;
    while (DDS_DataReader_create_querycondition(reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                                DDS_ANY_INSTANCE_STATE, "number > 1",
                                                nullptr) != nullptr) {
        ASSERT_LT(++made, 1000);
    }
    EXPECT_EQ(made, 31);
    // Walking over instances goes on working.
    KOLT_ReadSelection next = selection(false);
    next.scope = KOLT_READ_NEXT_INSTANCE;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    access(reader, next, &code);
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    EXPECT_EQ(DDS_DataReader_delete_contained_entities(reader), DDS_RETCODE_OK);
}

// An entity that goes takes its condition out of the waitset.
TEST(KoltConditions, DeletedEntityLeavesTheWaitset) {
    Node node(4);
    DDS_DataReader *const reader = node.reader();
    Waiter waiter;
    waiter.attach(status_condition(DDS_DataReader_as_entity(reader), DDS_DATA_AVAILABLE_STATUS));
    ASSERT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader), DDS_RETCODE_OK);
    DDS_ConditionSeq attached = DDS_SEQUENCE_INITIALIZER;
    EXPECT_EQ(DDS_WaitSet_get_conditions(waiter.get(), &attached), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_ConditionSeq_get_length(&attached), 0U);
    DDS_ConditionSeq_finalize(&attached);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
}

TEST(KoltConditions, EnablingAStatusThatHasChangedEndsAWait) {
    Node node(10);
    DDS_DataWriter *const writer = node.writer();
    DDS_Condition *const condition =
        status_condition(DDS_DataWriter_as_entity(writer), DDS_LIVELINESS_LOST_STATUS);
    Waiter waiter;
    ASSERT_EQ(waiter.attach(condition), DDS_RETCODE_OK);
    node.reader();
    ASSERT_TRUE(eventually([&] {
        return (DDS_Entity_get_status_changes(DDS_DataWriter_as_entity(writer)) &
                DDS_PUBLICATION_MATCHED_STATUS) != 0;
    }));
    ASSERT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    std::thread enabler([&] {
        status_condition(DDS_DataWriter_as_entity(writer), DDS_PUBLICATION_MATCHED_STATUS);
    });
    EXPECT_EQ(waiter.wait(kLong), DDS_RETCODE_OK);
    EXPECT_TRUE(waiter.is_active(condition));
    enabler.join();
    // Reading the status makes it false again.
    DDS_PublicationMatchedStatus status{};
    EXPECT_EQ(DDS_DataWriter_get_publication_matched_status(writer, &status), DDS_RETCODE_OK);
    EXPECT_EQ(waiter.wait(kShort), DDS_RETCODE_TIMEOUT);
    EXPECT_EQ(waiter.detach(condition), DDS_RETCODE_OK);
}

// Conditions that are detached and deleted while a thread waits for them and lists them.
TEST(KoltConditions, ConditionsMayGoWhileAThreadWaits) {
    DDS_WaitSet *const set = DDS_WaitSet_new();
    DDS_GuardCondition *const keep = DDS_GuardCondition_new();
    ASSERT_EQ(DDS_WaitSet_attach_condition(set, DDS_GuardCondition_as_condition(keep)),
              DDS_RETCODE_OK);
    std::atomic<bool> stop{false};
    std::thread waiting([&] {
        DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
        while (!stop) {
            DDS_WaitSet_wait(set, &active, &kShort);
        }
        DDS_ConditionSeq_finalize(&active);
    });
    std::thread listing([&] {
        DDS_ConditionSeq attached = DDS_SEQUENCE_INITIALIZER;
        while (!stop) {
            EXPECT_EQ(DDS_WaitSet_get_conditions(set, &attached), DDS_RETCODE_OK);
        }
        DDS_ConditionSeq_finalize(&attached);
    });
    for (int round = 0; round < 2000; ++round) {
        DDS_GuardCondition *const guard = DDS_GuardCondition_new();
        DDS_Condition *const condition = DDS_GuardCondition_as_condition(guard);
        ASSERT_EQ(DDS_WaitSet_attach_condition(set, condition), DDS_RETCODE_OK);
        DDS_GuardCondition_set_trigger_value(guard, DDS_BOOLEAN_TRUE);
        ASSERT_EQ(DDS_WaitSet_detach_condition(set, condition), DDS_RETCODE_OK);
        ASSERT_EQ(DDS_GuardCondition_delete(guard), DDS_RETCODE_OK);
    }
    stop = true;
    DDS_GuardCondition_set_trigger_value(keep, DDS_BOOLEAN_TRUE);
    waiting.join();
    listing.join();
    ASSERT_EQ(DDS_WaitSet_delete(set), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_GuardCondition_delete(keep), DDS_RETCODE_OK);
}

// A waitset that is deleted while a reader that is attached to it goes, too.
TEST(KoltConditions, WaitsetsAndEntitiesMayGoAtOnce) {
    Node node(10);
    for (int round = 0; round < 200; ++round) {
        DDS_WaitSet *const set = DDS_WaitSet_new();
        std::vector<DDS_DataReader *> readers;
        for (int i = 0; i < 4; ++i) {
            readers.push_back(node.reader());
            ASSERT_EQ(DDS_WaitSet_attach_condition(
                          set, status_condition(DDS_DataReader_as_entity(readers.back()),
                                                DDS_DATA_AVAILABLE_STATUS)),
                      DDS_RETCODE_OK);
        }
        std::thread deleting([&] {
            for (DDS_DataReader *const reader : readers) {
                EXPECT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader),
                          DDS_RETCODE_OK);
            }
        });
        EXPECT_EQ(DDS_WaitSet_delete(set), DDS_RETCODE_OK);
        deleting.join();
    }
}

}  // namespace
