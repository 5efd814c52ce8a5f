// SPDX-License-Identifier: Apache-2.0
// The implementation that stands behind every entity of the C interface.
//
// An entity of the engine exists from the moment when the KOLT entity is enabled: the engine does
// not have disabled ones. Until then the engine handle is 0. One mutex per participant tree guards
// the structure (who contains whom, QoS records); it is never held across a call that may wait for
// the engine's threads. The engine's threads note events without it.
#pragma once

#include <atomic>
#include <memory>

#include "engine/barrier/barrier.hpp"
#include "engine/cyclone/cyclone.hpp"
#include "kolt/entity.h"

namespace kolt::engine {

enum class EntityKind {
    kParticipant,
    kTopic,
    kContentFilteredTopic,
    kPublisher,
    kSubscriber,
    kDataWriter,
    kDataReader,
};

class StatusCondition;

}  // namespace kolt::engine

struct KOLT_EntityImpl {
  public:
    // `self` is the derived object's C record, which that object makes point back to itself.
    // `valid_statuses` are those that the kind of entity has.
    KOLT_EntityImpl(kolt::engine::EntityKind kind, DDS_Entity *self, DDS_StatusMask valid_statuses);
    virtual ~KOLT_EntityImpl();
    KOLT_EntityImpl(const KOLT_EntityImpl &) = delete;
    KOLT_EntityImpl &operator=(const KOLT_EntityImpl &) = delete;

    kolt::engine::EntityKind kind() const { return kind_; }
    DDS_Entity *self() const { return self_; }
    // The engine's entity; 0 while this one is disabled.
    dds_entity_t engine() const { return engine_.load(std::memory_order_acquire); }
    bool is_enabled() const { return engine() != 0; }
    DDS_StatusMask valid_statuses() const { return valid_statuses_; }
    kolt::engine::StatusCondition &status_condition() { return *status_condition_; }
    DDS_InstanceHandle_t instance_handle() const;

    // Creates the engine's entity. Called for a disabled entity only.
    virtual DDS_ReturnCode_t enable(const char *method) = 0;
    // Begins to tell listeners what happens to the entity, which is enabled and which the application
    // can know of; what has happened before is told now.
    virtual void announce() {}
    DDS_ReturnCode_t enable_and_announce(const char *method);

  protected:
    // Keeps the engine's entity, which was just created.
    void set_engine(dds_entity_t engine);
    // Deletes the engine's entity. Once it has returned, the engine tells no event of the entity.
    void delete_engine(const char *method);
    // Forgets the engine's entity, which belongs to the application.
    void release_engine();

  private:
    const kolt::engine::EntityKind kind_;
    DDS_Entity *const self_;
    const DDS_StatusMask valid_statuses_;
    std::atomic<dds_entity_t> engine_{0};
    std::unique_ptr<kolt::engine::StatusCondition> status_condition_;
};

namespace kolt::engine {

using Entity = KOLT_EntityImpl;

// Tells the matched readers of a writer, or of a participant's writers, that they are alive.
DDS_ReturnCode_t assert_liveliness(const Entity &entity, const char *method);

}  // namespace kolt::engine
