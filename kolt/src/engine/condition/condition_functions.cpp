// SPDX-License-Identifier: Apache-2.0
// The C functions of any condition, of guard conditions and of waitsets.
#include "engine/condition/condition.hpp"
#include "engine/cyclone/convert.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

DDS_Boolean DDS_Condition_get_trigger_value(DDS_Condition *self) {
    return self != nullptr && self->_impl->is_triggered() ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}

// ---- Guard condition ----------------------------------------------------------------------------

DDS_GuardCondition *DDS_GuardCondition_new(void) {
    return guarded(__func__, [] { return (new GuardCondition)->handle(); });
}

DDS_ReturnCode_t DDS_GuardCondition_delete(DDS_GuardCondition *self) {
    return with<GuardCondition>(self, __func__, [](GuardCondition &condition, const char *method) {
        if (condition.is_attached()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the condition is attached to a waitset: detach it first");
        }
        delete &condition;
        return DDS_RETCODE_OK;
    });
}

DDS_Condition *DDS_GuardCondition_as_condition(DDS_GuardCondition *self) {
    return self != nullptr ? &self->_condition : nullptr;
}

DDS_ReturnCode_t DDS_GuardCondition_set_trigger_value(DDS_GuardCondition *self, DDS_Boolean value) {
    return forward(self, __func__, &GuardCondition::set, value != DDS_BOOLEAN_FALSE);
}

// ---- Waitset ------------------------------------------------------------------------------------

DDS_WaitSet *DDS_WaitSet_new(void) {
    return guarded(__func__, []() -> DDS_WaitSet * { return new WaitSet; });
}

DDS_ReturnCode_t DDS_WaitSet_delete(DDS_WaitSet *self) {
    return with<WaitSet>(self, __func__, [](WaitSet &waitset, const char *method) {
        if (waitset.is_waited_on()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "a thread waits on the waitset: the wait must end first");
        }
        delete &waitset;
        return DDS_RETCODE_OK;
    });
}

DDS_ReturnCode_t DDS_WaitSet_attach_condition(DDS_WaitSet *self, DDS_Condition *condition) {
    return forward(self, __func__, &WaitSet::attach,
                   required_as<Condition>(condition, "condition"));
}

DDS_ReturnCode_t DDS_WaitSet_detach_condition(DDS_WaitSet *self, DDS_Condition *condition) {
    return forward(self, __func__, &WaitSet::detach,
                   required_as<Condition>(condition, "condition"));
}

DDS_ReturnCode_t DDS_WaitSet_get_conditions(DDS_WaitSet *self, DDS_ConditionSeq *conditions) {
    return forward(self, __func__, &WaitSet::get_conditions, required(conditions, "conditions"));
}

DDS_ReturnCode_t DDS_WaitSet_wait(DDS_WaitSet *self, DDS_ConditionSeq *active,
                                  const DDS_Duration_t *timeout) {
    if (active == nullptr) {
        return bad_parameter(__func__, "active");
    }
    if (timeout == nullptr || to_engine(*timeout) < 0) {
        return bad_parameter(__func__, "timeout");
    }
    return forward(self, __func__, &WaitSet::wait, active, *timeout);
}
