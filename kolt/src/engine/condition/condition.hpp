// SPDX-License-Identifier: Apache-2.0
// Conditions and waitsets, on the engine's.
//
// The engine's waitsets watch each condition through an engine entity: a status or guard condition
// through a guard condition, a read or query condition through one of its kind. One process-wide mutex
// guards the attachments: attaching is rare, and a thread does not hold the mutex while it waits.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "engine/barrier/barrier.hpp"
#include "engine/cyclone/cyclone.hpp"
#include "kolt/condition.h"

namespace kolt::engine {

class WaitSet;

enum class ConditionKind { kStatus, kGuard, kRead, kQuery };

}  // namespace kolt::engine

struct KOLT_ConditionImpl {
  public:
    // `self` is the derived object's C record, which that object makes point back to itself.
    KOLT_ConditionImpl(kolt::engine::ConditionKind kind, DDS_Condition *self)
        : kind_(kind), self_(self) {}
    // The derived destructor has called leave_waitsets().
    virtual ~KOLT_ConditionImpl() = default;
    KOLT_ConditionImpl(const KOLT_ConditionImpl &) = delete;
    KOLT_ConditionImpl &operator=(const KOLT_ConditionImpl &) = delete;

    static KOLT_ConditionImpl *of(DDS_Condition *self) {
        return self != nullptr ? self->_impl : nullptr;
    }

    kolt::engine::ConditionKind kind() const { return kind_; }
    DDS_Condition *self() const { return self_; }
    // Returns the engine entity that waitsets watch; 0 while there is none.
    virtual dds_entity_t watched() const = 0;
    virtual bool is_triggered() const;
    bool is_attached() const;

    // Attach the watched entity, which has just been created, to the engine's waitsets, and detach
    // it before it goes.
    void start_watching();
    void stop_watching();

  protected:
    // Takes the condition out of all waitsets; before anything of it goes.
    void leave_waitsets();
    // Makes what waitsets watch, if it is not there yet. Called by one thread at a time.
    virtual DDS_ReturnCode_t prepare_watching() { return DDS_RETCODE_OK; }

  private:
    friend class kolt::engine::WaitSet;

    const kolt::engine::ConditionKind kind_;
    DDS_Condition *const self_;
    std::vector<kolt::engine::WaitSet *> waitsets_;  // guarded by the process-wide mutex
};

namespace kolt::engine {

using Condition = KOLT_ConditionImpl;

// Returns the implementation if the condition is of one of the kinds; nullptr otherwise, as for a guard
// condition that was cast to a read condition.
template <typename Impl, ConditionKind... kKinds>
Impl *condition_cast(DDS_Condition *self) {
    KOLT_ConditionImpl *const impl = KOLT_ConditionImpl::of(self);
    return impl != nullptr && ((impl->kind() == kKinds) || ...) ? static_cast<Impl *>(impl)
                                                                : nullptr;
}

class GuardCondition final : public Condition {
  public:
    // Throws std::bad_alloc when the engine has no room for it.
    GuardCondition();
    ~GuardCondition() override;
    static GuardCondition *of(DDS_GuardCondition *self);

    DDS_GuardCondition *handle() { return &handle_; }
    dds_entity_t watched() const override { return engine_; }
    DDS_ReturnCode_t set(bool value);

  private:
    DDS_GuardCondition handle_{{this}};
    dds_entity_t engine_ = 0;
};

}  // namespace kolt::engine

// Stands for a waitset in the application's hands.
struct DDS_WaitSet {};

namespace kolt::engine {

class WaitSet final : public DDS_WaitSet {
  public:
    WaitSet();
    ~WaitSet();
    WaitSet(const WaitSet &) = delete;
    WaitSet &operator=(const WaitSet &) = delete;
    static WaitSet *of(DDS_WaitSet *self) { return static_cast<WaitSet *>(self); }

    DDS_ReturnCode_t attach(Condition *condition);
    DDS_ReturnCode_t detach(Condition *condition, const char *method);
    DDS_ReturnCode_t get_conditions(DDS_ConditionSeq *conditions, const char *method) const;
    // Waits until a condition triggers. PRECONDITION_NOT_MET when another thread waits.
    DDS_ReturnCode_t wait(DDS_ConditionSeq *active, const DDS_Duration_t &timeout,
                          const char *method);
    bool is_waited_on() const { return waiting_.load(); }

  private:
    friend struct ::KOLT_ConditionImpl;

    // One condition in the set. The engine reports it by its number, which no other attachment of the
    // set ever had: a condition may be gone by then, and another one lie at its address.
    struct Attachment {
        dds_attach_t number;
        Condition *condition;
        dds_entity_t watched;  // as the engine's waitset knows it; 0 while it does not
    };

    std::vector<Attachment>::iterator find(const Condition *condition);
    // Let the engine's waitset watch what stands behind a condition, and forget it.
    DDS_ReturnCode_t watch(Attachment *attachment);
    void unwatch(Attachment *attachment);
    // Waits for conditions that trigger, and appends them to `active`.
    DDS_ReturnCode_t wait_for_trigger(const DDS_Duration_t &timeout,
                                      std::vector<DDS_Condition *> *active);
    // Appends those of the triggered conditions that are still attached.
    void collect(const std::vector<dds_attach_t> &triggered, std::vector<DDS_Condition *> *active);

    dds_entity_t engine_ = 0;
    dds_entity_t wake_up_ = 0;  // an engine guard condition that keeps the engine's set non-empty
    std::atomic<bool> waiting_{false};
    // Guarded by the process-wide mutex:
    std::vector<Attachment> attachments_;
    dds_attach_t last_number_ = 0;
};

// Copies `conditions` into the caller's sequence.
DDS_ReturnCode_t fill_sequence(const std::vector<DDS_Condition *> &conditions,
                               DDS_ConditionSeq *seq, const char *method);

}  // namespace kolt::engine
