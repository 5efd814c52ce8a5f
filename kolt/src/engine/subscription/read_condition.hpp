// SPDX-License-Identifier: Apache-2.0
// Read and query conditions.
//
// The engine calls the filter function of a query condition without an argument that would tell the
// condition. Each condition therefore has a function of its own, of which there is a fixed number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "engine/condition/condition.hpp"
#include "engine/topic/content_filter.hpp"

namespace kolt::engine {

class DataReader;

// The three masks as the application gave them.
struct ReadStates {
    DDS_SampleStateMask sample;
    DDS_ViewStateMask view;
    DDS_InstanceStateMask instance;
};

class ReadCondition : public Condition {
  public:
    // Throws std::bad_alloc when the engine has no room for it.
    ReadCondition(DataReader &reader, std::uint32_t engine_mask, const ReadStates &states);
    ~ReadCondition() override;
    static ReadCondition *of(DDS_ReadCondition *self) {
        return self != nullptr
                   ? condition_cast<ReadCondition, ConditionKind::kRead, ConditionKind::kQuery>(
                         &self->_condition)
                   : nullptr;
    }

    DDS_ReadCondition *handle() { return &handle_._read_condition; }
    DataReader &reader() const { return reader_; }
    const ReadStates &states() const { return states_; }
    bool is_query() const { return kind() == ConditionKind::kQuery; }
    dds_entity_t watched() const override { return engine_.load(std::memory_order_acquire); }
    // Returns a lock to hold while the condition is used for reading: the engine entity of a query
    // condition is replaced when its parameters change.
    virtual std::unique_lock<std::mutex> hold() { return {}; }

  protected:
    // Marks the constructor that leaves it to the caller to create the engine's condition.
    struct Deferred {
        ConditionKind kind;
    };
    ReadCondition(DataReader &reader, std::uint32_t engine_mask, const ReadStates &states,
                  Deferred);
    void set_engine(dds_entity_t engine) { engine_.store(engine, std::memory_order_release); }
    void delete_engine();
    std::uint32_t engine_mask() const { return engine_mask_; }
    DDS_QueryCondition *query_handle() { return &handle_; }

  private:
    DDS_QueryCondition handle_{{{this}}};  // its first member is the read condition
    DataReader &reader_;
    const std::uint32_t engine_mask_;
    const ReadStates states_;
    std::atomic<dds_entity_t> engine_{0};
};

class QueryCondition final : public ReadCondition {
  public:
    // nullptr, and a log message, when the filter is wrong or there are too many conditions.
    static std::unique_ptr<QueryCondition> create(DataReader &reader, std::uint32_t engine_mask,
                                                  const ReadStates &states,
                                                  std::unique_ptr<ContentFilter> filter,
                                                  const char *method);
    ~QueryCondition() override;
    static QueryCondition *of(DDS_QueryCondition *self) {
        return self != nullptr ? condition_cast<QueryCondition, ConditionKind::kQuery>(
                                     &self->_read_condition._condition)
                               : nullptr;
    }

    DDS_QueryCondition *handle() { return query_handle(); }
    const ContentFilter &filter() const { return *filter_; }
    std::unique_lock<std::mutex> hold() override { return std::unique_lock(use_); }
    // Replaces the parameters and judges the samples in the cache anew.
    DDS_ReturnCode_t set_parameters(const DDS_StringSeq &parameters, const char *method);

  private:
    QueryCondition(DataReader &reader, std::uint32_t engine_mask, const ReadStates &states,
                   std::unique_ptr<ContentFilter> filter, std::size_t slot)
        : ReadCondition(reader, engine_mask, states, Deferred{ConditionKind::kQuery}),
          filter_(std::move(filter)),
          slot_(slot) {}
    DDS_ReturnCode_t make_engine(const char *method);

    std::unique_ptr<ContentFilter> filter_;
    const std::size_t slot_;
    std::mutex use_;
};

// The number of query conditions that a reader may have. The engine crashes beyond 32; one of these
// is kept for KOLT's own use.
inline constexpr std::size_t kMaxQueryConditions = 31;

}  // namespace kolt::engine
