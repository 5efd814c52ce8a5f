// SPDX-License-Identifier: Apache-2.0
// The status condition that every entity has.
#pragma once

#include <atomic>

#include "engine/condition/condition.hpp"
#include "engine/entity/entity.hpp"

namespace kolt::engine {

class StatusCondition final : public Condition {
  public:
    explicit StatusCondition(Entity &entity);
    static StatusCondition *of(DDS_StatusCondition *self);

    DDS_StatusCondition *handle() { return &handle_; }
    Entity &entity() const { return entity_; }
    dds_entity_t watched() const override { return entity_.engine(); }
    DDS_StatusMask enabled_statuses() const { return enabled_.load(); }
    DDS_ReturnCode_t set_enabled_statuses(DDS_StatusMask mask);
    // Tells the engine which statuses trigger the condition of the entity, which must be enabled.
    DDS_ReturnCode_t apply_mask();

  private:
    DDS_StatusCondition handle_{{this}};
    Entity &entity_;
    std::atomic<DDS_StatusMask> enabled_{DDS_STATUS_MASK_ALL};
};

}  // namespace kolt::engine
