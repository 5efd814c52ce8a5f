// SPDX-License-Identifier: Apache-2.0
// A type registered with a participant, and its plugin's data for one endpoint. Both are shared by
// all that need them: samples in the engine's caches hold buffers of a writer's pool long after the
// writer is deleted.
#pragma once

#include <memory>
#include <string>

#include "kolt/type_plugin.h"

namespace kolt::engine {

class TypeAnnouncement;

class RegisteredType {
  public:
    // Attaches the plugin to the participant. nullptr when the plugin fails, or its type code
    // cannot be compiled. With `described` the type's description is announced beside its name, if
    // it has one.
    static std::shared_ptr<RegisteredType> create(const char *name, const KOLT_TypePlugin &plugin,
                                                  void *registration_data, DDS_DomainId_t domain_id,
                                                  bool described, const char *method);
    ~RegisteredType();
    RegisteredType(const RegisteredType &) = delete;
    RegisteredType &operator=(const RegisteredType &) = delete;

    const std::string &name() const { return name_; }
    const KOLT_TypePlugin &plugin() const { return plugin_; }
    const DDS_TypeCode *type_code() const { return plugin_.type_code; }
    const KOLT_TypePrograms *programs() const { return programs_; }
    KOLT_TypePluginParticipantData *participant_data() const { return participant_data_; }
    bool is_keyed() const { return keyed_; }
    // Returns the description for the engine; nullptr for a type that goes by its name alone.
    const std::shared_ptr<const TypeAnnouncement> &announcement() const { return announcement_; }
    // True when `plugin` stands for the same type.
    bool is_same(const KOLT_TypePlugin &plugin) const;
    // Resolves the representation that a writer asked for: AUTO becomes XCDR1 if the type allows
    // that, XCDR2 otherwise. False when the type does not allow it.
    bool resolve_representation(DDS_DataRepresentationId_t *representation) const;

  private:
    RegisteredType(const char *name, const KOLT_TypePlugin &plugin)
        : name_(name), plugin_(plugin) {}

    std::string name_;
    KOLT_TypePlugin plugin_;
    KOLT_TypePluginParticipantData *participant_data_ = nullptr;
    const KOLT_TypePrograms *programs_ = nullptr;
    std::shared_ptr<const TypeAnnouncement> announcement_;
    bool keyed_ = false;
};

class TypeEndpoint {
  public:
    // Attaches the plugin to an endpoint. nullptr when the plugin fails.
    static std::shared_ptr<TypeEndpoint> create(std::shared_ptr<RegisteredType> type,
                                                const KOLT_TypePluginEndpointInfo &info);
    ~TypeEndpoint();
    TypeEndpoint(const TypeEndpoint &) = delete;
    TypeEndpoint &operator=(const TypeEndpoint &) = delete;

    const RegisteredType &type() const { return *type_; }
    const KOLT_TypePlugin &plugin() const { return type_->plugin(); }
    const KOLT_TypePrograms *programs() const { return type_->programs(); }
    KOLT_TypePluginEndpointData *data() const { return data_; }

  private:
    explicit TypeEndpoint(std::shared_ptr<RegisteredType> type) : type_(std::move(type)) {}

    std::shared_ptr<RegisteredType> type_;
    KOLT_TypePluginEndpointData *data_ = nullptr;
};

}  // namespace kolt::engine
