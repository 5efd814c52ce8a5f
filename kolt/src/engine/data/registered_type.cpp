// SPDX-License-Identifier: Apache-2.0
// Attaching type plugins to participants and endpoints.
#include "engine/data/registered_type.hpp"

#include <cstring>

#include "engine/data/type_announcement.hpp"

namespace kolt::engine {

std::shared_ptr<RegisteredType> RegisteredType::create(const char *name,
                                                       const KOLT_TypePlugin &plugin,
                                                       void *registration_data,
                                                       DDS_DomainId_t domain_id, bool described,
                                                       const char *method) {
    std::shared_ptr<RegisteredType> type(new RegisteredType(name, plugin));
    type->programs_ = KOLT_TypePrograms_acquire(plugin.type_code);
    if (type->programs_ == nullptr) {
        return nullptr;
    }
    if (described) {
        type->announcement_ = TypeAnnouncement::create(*plugin.type_code, name, method);
    }
    const KOLT_TypePluginParticipantInfo info{domain_id};
    type->participant_data_ = plugin.on_participant_attached(
        registration_data, &info, DDS_BOOLEAN_TRUE, nullptr, plugin.type_code);
    if (type->participant_data_ == nullptr) {
        return nullptr;
    }
    type->keyed_ =
        plugin.get_key_kind != nullptr && plugin.get_key_kind() == KOLT_TYPE_PLUGIN_USER_KEY;
    return type;
}

RegisteredType::~RegisteredType() {
    if (participant_data_ != nullptr) {
        plugin_.on_participant_detached(participant_data_);
    }
    KOLT_TypePrograms_release(programs_);
}

bool RegisteredType::is_same(const KOLT_TypePlugin &plugin) const {
    return plugin_.type_code == plugin.type_code && plugin_.serialize == plugin.serialize &&
           plugin_.deserialize == plugin.deserialize &&
           std::strcmp(plugin_.endpoint_type_name, plugin.endpoint_type_name) == 0;
}

bool RegisteredType::resolve_representation(DDS_DataRepresentationId_t *representation) const {
    const DDS_DataRepresentationMask allowed = type_code()->representations;
    if (*representation == DDS_AUTO_DATA_REPRESENTATION) {
        *representation = (allowed & DDS_DATA_REPRESENTATION_MASK_XCDR) != 0
                              ? DDS_XCDR_DATA_REPRESENTATION
                              : DDS_XCDR2_DATA_REPRESENTATION;
    }
    return DDS_TypeCode_get_native_encapsulation(type_code(), *representation) !=
           KOLT_ENCAPSULATION_INVALID;
}

std::shared_ptr<TypeEndpoint> TypeEndpoint::create(std::shared_ptr<RegisteredType> type,
                                                   const KOLT_TypePluginEndpointInfo &info) {
    std::shared_ptr<TypeEndpoint> endpoint(new TypeEndpoint(std::move(type)));
    endpoint->data_ = endpoint->plugin().on_endpoint_attached(endpoint->type_->participant_data(),
                                                              &info, DDS_BOOLEAN_TRUE, nullptr);
    return endpoint->data_ != nullptr ? endpoint : nullptr;
}

TypeEndpoint::~TypeEndpoint() {
    if (data_ != nullptr) {
        plugin().on_endpoint_detached(data_);
    }
}

}  // namespace kolt::engine
