// SPDX-License-Identifier: Apache-2.0
// The C functions of read and query conditions.
#include "engine/subscription/data_reader.hpp"
#include "engine/subscription/read_condition.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

DDS_Condition *DDS_ReadCondition_as_condition(DDS_ReadCondition *self) {
    return self != nullptr ? &self->_condition : nullptr;
}

DDS_DataReader *DDS_ReadCondition_get_datareader(DDS_ReadCondition *self) {
    return with<ReadCondition>(
        self, __func__, [](ReadCondition &condition) { return condition.reader().handle(); });
}

DDS_SampleStateMask DDS_ReadCondition_get_sample_state_mask(DDS_ReadCondition *self) {
    return with<ReadCondition>(self, __func__,
                               [](ReadCondition &condition) { return condition.states().sample; });
}

DDS_ViewStateMask DDS_ReadCondition_get_view_state_mask(DDS_ReadCondition *self) {
    return with<ReadCondition>(self, __func__,
                               [](ReadCondition &condition) { return condition.states().view; });
}

DDS_InstanceStateMask DDS_ReadCondition_get_instance_state_mask(DDS_ReadCondition *self) {
    return with<ReadCondition>(
        self, __func__, [](ReadCondition &condition) { return condition.states().instance; });
}

DDS_ReadCondition *DDS_QueryCondition_as_readcondition(DDS_QueryCondition *self) {
    return self != nullptr ? &self->_read_condition : nullptr;
}

const char *DDS_QueryCondition_get_query_expression(DDS_QueryCondition *self) {
    return with<QueryCondition>(
        self, __func__, [](QueryCondition &condition) { return condition.filter().expression(); });
}

DDS_ReturnCode_t DDS_QueryCondition_get_query_parameters(DDS_QueryCondition *self,
                                                         DDS_StringSeq *parameters) {
    return forward<QueryCondition>(
        self, __func__,
        [](QueryCondition &condition, DDS_StringSeq *to) {
            return condition.filter().get_parameters(to);
        },
        required(parameters, "parameters"));
}

DDS_ReturnCode_t DDS_QueryCondition_set_query_parameters(DDS_QueryCondition *self,
                                                         const DDS_StringSeq *parameters) {
    return forward(self, __func__, &QueryCondition::set_parameters,
                   required_value(parameters, "parameters"));
}
