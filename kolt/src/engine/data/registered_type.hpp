// A type registered with a participant, and its plugin's data for one endpoint. Both live until the
// last thing that needs them is gone: samples in the engine's caches hold buffers of a writer's
// pool long after the writer.
#pragma once

#include <memory>
#include <string>

#include "kolt/type_plugin.h"

namespace kolt::engine {

class TypeAnnouncement;

class RegisteredType {
  public:
    // Attaches the plugin to the participant. nullptr when the plugin, or the compilation of its
    // type code, refuses. `described`: not only the type's name is announced, if that can be.
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
    // What the engine is told of the type; nullptr when it goes by its name alone.
    const std::shared_ptr<const TypeAnnouncement> &announcement() const { return announcement_; }
    // True when `plugin` stands for the same type.
    bool is_same(const KOLT_TypePlugin &plugin) const;
    // The representation that a writer which asked for `representation` uses: AUTO becomes XCDR1 if
    // the type allows it, XCDR2 otherwise. False when the type does not allow it.
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
    // nullptr when the plugin refuses.
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
