// SPDX-License-Identifier: Apache-2.0
// The status condition that every entity has, and with it the statuses that have changed.
#pragma once

#include <atomic>

#include "engine/condition/condition.hpp"
#include "engine/entity/entity.hpp"

namespace kolt::engine {

class StatusCondition final : public Condition {
  public:
    explicit StatusCondition(Entity &entity);
    ~StatusCondition() override;
    static StatusCondition *of(DDS_StatusCondition *self);

    DDS_StatusCondition *handle() { return &handle_; }
    Entity &entity() const { return entity_; }
    DDS_StatusMask enabled_statuses() const { return enabled_.load(); }
    DDS_ReturnCode_t set_enabled_statuses(DDS_StatusMask mask);

    DDS_StatusMask changed() const { return changed_.load(); }
    // Change the set of changed statuses; update() follows, with no lock held.
    void set_changed(DDS_StatusMask statuses) { changed_.fetch_or(statuses); }
    void clear_changed(DDS_StatusMask statuses) { changed_.fetch_and(~statuses); }
    // Lets waitsets know whether the condition is triggered.
    void update();

    bool is_triggered() const override { return (changed_.load() & enabled_.load()) != 0; }
    dds_entity_t watched() const override { return watched_.load(); }
    DDS_ReturnCode_t prepare_watching() override;

  private:
    DDS_StatusCondition handle_{{this}};
    Entity &entity_;
    std::atomic<DDS_StatusMask> changed_{0};
    std::atomic<DDS_StatusMask> enabled_{DDS_STATUS_MASK_ALL};
    std::atomic<unsigned> updates_{0};      // those asked for while one thread is at it
    std::atomic<dds_entity_t> watched_{0};  // the engine's guard condition, once a waitset needs it
};

}  // namespace kolt::engine
