// SPDX-License-Identifier: Apache-2.0
// Conditions and waitsets: who is attached to whom, and waiting.
#include "engine/condition/condition.hpp"

#include <algorithm>
#include <chrono>

#include "engine/cyclone/convert.hpp"
#include "engine/cyclone/log_sink.hpp"

namespace {

// Guards the attachments of all conditions and waitsets of the process.
std::mutex &attachments() {
    static auto *mutex = new std::mutex;  // outlives every static object
    return *mutex;
}

}  // namespace

// ---- Any condition ------------------------------------------------------------------------------

bool KOLT_ConditionImpl::is_triggered() const {
    const dds_entity_t entity = watched();
    return entity > 0 && dds_triggered(entity) > 0;
}

bool KOLT_ConditionImpl::is_attached() const {
    const std::lock_guard lock(attachments());
    return !waitsets_.empty();
}

void KOLT_ConditionImpl::start_watching() {
    const std::lock_guard lock(attachments());
    for (kolt::engine::WaitSet *const waitset : waitsets_) {
        waitset->watch(&*waitset->find(this));
    }
}

void KOLT_ConditionImpl::stop_watching() {
    const std::lock_guard lock(attachments());
    for (kolt::engine::WaitSet *const waitset : waitsets_) {
        waitset->unwatch(&*waitset->find(this));
    }
}

void KOLT_ConditionImpl::leave_waitsets() {
    const std::lock_guard lock(attachments());
    for (kolt::engine::WaitSet *const waitset : waitsets_) {
        const auto attachment = waitset->find(this);
        waitset->unwatch(&*attachment);
        waitset->attachments_.erase(attachment);
    }
    waitsets_.clear();
}

namespace kolt::engine {

// ---- Guard condition ----------------------------------------------------------------------------

GuardCondition::GuardCondition() : Condition(ConditionKind::kGuard, &handle_._condition) {
    install_log_sink();
    engine_ = dds_create_guardcondition(cyclone::kLibrary);
    if (engine_ < 0) {
        throw std::bad_alloc();
    }
}

GuardCondition::~GuardCondition() {
    leave_waitsets();
    dds_delete(engine_);
}

GuardCondition *GuardCondition::of(DDS_GuardCondition *self) {
    return self != nullptr
               ? condition_cast<GuardCondition, ConditionKind::kGuard>(&self->_condition)
               : nullptr;
}

DDS_ReturnCode_t GuardCondition::set(bool value) {
    return to_return_code(dds_set_guardcondition(engine_, value));
}

// ---- Waitsets -----------------------------------------------------------------------------------

WaitSet::WaitSet() {
    install_log_sink();
    engine_ = dds_create_waitset(cyclone::kLibrary);
    if (engine_ < 0) {
        throw std::bad_alloc();
    }
    wake_up_ = dds_create_guardcondition(cyclone::kLibrary);
    // The engine's waitsets do not wait unless they watch something.
    if (wake_up_ < 0 || dds_waitset_attach(engine_, wake_up_, 0) < 0) {
        if (wake_up_ > 0) {
            dds_delete(wake_up_);
        }
        dds_delete(engine_);
        throw std::bad_alloc();
    }
}

WaitSet::~WaitSet() {
    {
        const std::lock_guard lock(attachments());
        for (Attachment &attachment : attachments_) {
            unwatch(&attachment);
            std::erase(attachment.condition->waitsets_, this);
        }
        attachments_.clear();
    }
    dds_delete(engine_);
    dds_delete(wake_up_);
}

std::vector<WaitSet::Attachment>::iterator WaitSet::find(const Condition *condition) {
    return std::find_if(attachments_.begin(), attachments_.end(),
                        [&](const Attachment &a) { return a.condition == condition; });
}

DDS_ReturnCode_t WaitSet::watch(Attachment *attachment) {
    const dds_entity_t watched = attachment->condition->watched();
    if (watched <= 0) {
        return DDS_RETCODE_OK;
    }
    const dds_return_t result = dds_waitset_attach(engine_, watched, attachment->number);
    if (result < 0) {
        return to_return_code(result);
    }
    attachment->watched = watched;
    return DDS_RETCODE_OK;
}

void WaitSet::unwatch(Attachment *attachment) {
    if (attachment->watched > 0) {
        dds_waitset_detach(engine_, attachment->watched);
        attachment->watched = 0;
    }
}

DDS_ReturnCode_t WaitSet::attach(Condition *condition) {
    const std::lock_guard lock(attachments());
    if (find(condition) != attachments_.end()) {
        return DDS_RETCODE_OK;
    }
    attachments_.reserve(attachments_.size() + 1);
    condition->waitsets_.reserve(condition->waitsets_.size() + 1);
    const DDS_ReturnCode_t prepared = condition->prepare_watching();
    if (prepared != DDS_RETCODE_OK) {
        return prepared;
    }
    Attachment attachment{++last_number_, condition, 0};
    const DDS_ReturnCode_t watched = watch(&attachment);
    if (watched != DDS_RETCODE_OK) {
        return watched;
    }
    attachments_.push_back(attachment);
    condition->waitsets_.push_back(this);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t WaitSet::detach(Condition *condition, const char *method) {
    {
        const std::lock_guard lock(attachments());
        const auto attachment = find(condition);
        if (attachment != attachments_.end()) {
            unwatch(&*attachment);
            attachments_.erase(attachment);
            std::erase(condition->waitsets_, this);
            return DDS_RETCODE_OK;
        }
    }
    return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                "the condition is not attached to the waitset");
}

DDS_ReturnCode_t WaitSet::get_conditions(DDS_ConditionSeq *conditions, const char *method) const {
    std::vector<DDS_Condition *> attached;
    {
        const std::lock_guard lock(attachments());
        attached.reserve(attachments_.size());
        for (const Attachment &attachment : attachments_) {
            attached.push_back(attachment.condition->self());
        }
    }
    return fill_sequence(attached, conditions, method);
}

DDS_ReturnCode_t WaitSet::wait(DDS_ConditionSeq *active, const DDS_Duration_t &timeout,
                               const char *method) {
    if (waiting_.exchange(true)) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "another thread waits on the waitset: only one may wait at a time");
    }
    std::vector<DDS_Condition *> triggered;
    DDS_ReturnCode_t result = DDS_RETCODE_ERROR;
    try {
        result = wait_for_trigger(timeout, &triggered);
    } catch (...) {
        waiting_.store(false);
        throw;
    }
    waiting_.store(false);
    const DDS_ReturnCode_t filled = fill_sequence(triggered, active, method);
    return filled == DDS_RETCODE_OK ? result : filled;
}

DDS_ReturnCode_t WaitSet::wait_for_trigger(const DDS_Duration_t &timeout,
                                           std::vector<DDS_Condition *> *active) {
    using Clock = std::chrono::steady_clock;
    const dds_duration_t span = to_engine(timeout);
    const Clock::time_point start = Clock::now();
    std::vector<dds_attach_t> triggered;
    while (true) {
        {
            const std::lock_guard lock(attachments());
            triggered.resize(attachments_.size() + 1);
        }
        dds_duration_t left = span;
        if (span != cyclone::kInfinity) {
            const auto spent =
                std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start);
            left = std::max<dds_duration_t>(span - spent.count(), 0);
        }
        const dds_return_t result =
            dds_waitset_wait(engine_, triggered.data(), triggered.size(), left);
        if (result < 0) {
            return to_return_code(result);
        }
        triggered.resize(std::min(static_cast<std::size_t>(result), triggered.size()));
        collect(triggered, active);
        // A condition that triggered may have been detached in the meantime.
        if (!active->empty()) {
            return DDS_RETCODE_OK;
        }
        if (left == 0) {
            return DDS_RETCODE_TIMEOUT;
        }
    }
}

void WaitSet::collect(const std::vector<dds_attach_t> &triggered,
                      std::vector<DDS_Condition *> *active) {
    const std::lock_guard lock(attachments());
    for (const Attachment &attachment : attachments_) {
        if (std::find(triggered.begin(), triggered.end(), attachment.number) != triggered.end()) {
            active->push_back(attachment.condition->self());
        }
    }
}

DDS_ReturnCode_t fill_sequence(const std::vector<DDS_Condition *> &conditions,
                               DDS_ConditionSeq *seq, const char *method) {
    const auto count = static_cast<DDS_Long>(conditions.size());
    if (DDS_ConditionSeq_ensure_length(seq, count, count) == DDS_BOOLEAN_FALSE) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the sequence has no room for %d conditions and cannot grow",
                    static_cast<int>(count));
    }
    for (DDS_Long i = 0; i < count; ++i) {
        *DDS_ConditionSeq_get_reference(seq, i) = conditions[static_cast<std::size_t>(i)];
    }
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
