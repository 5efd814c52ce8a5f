// SPDX-License-Identifier: Apache-2.0
// Creation and deletion of the logger's DDS entities, in a fixed order.
#include <cstdio>
#include <cstring>

#include "DDSEntitiesRecord.hpp"
#include "DistLoggerRecord.hpp"
#include "kolt/os.h"
#include "kolt_internal/owned_qos.hpp"
#include "lock_rules.hpp"
#include "relaxed.hpp"
#include "report.hpp"

namespace {

using vur_dl::report;

constexpr char kCreate[] = "VUR_DL_DDSEntities_create";
constexpr char kContentFilteredTopicName[] = "CommandRequestContentFilteredTopic";
constexpr char kCommandFilter[] =
    "targetHostAndAppId.rtps_host_id = %0 and targetHostAndAppId.rtps_app_id = %1";
constexpr char kDeferredWriteProperty[] = KOLT_DEFERRED_WRITE_PROPERTY;

bool fail(const char *message) {
    report(message, kCreate);
    return false;
}

using kolt::qos::ParticipantQos;
using kolt::qos::PublisherQos;
using kolt::qos::ReaderQos;
using kolt::qos::SubscriberQos;
using kolt::qos::TopicQos;
using kolt::qos::WriterQos;

bool create_participant(VUR_DL_DDSEntities &self, const VUR_DL_Options &options) {
    if (options.domainParticipant != nullptr) {
        self.domainParticipant = options.domainParticipant;
        return true;
    }
    ParticipantQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getDomainParticipantQos(&self, qos.get(), &options) != DDS_RETCODE_OK) {
        return fail("Unable to get Domain Participant QoS");
    }
    self.domainParticipant = DDS_DomainParticipantFactory_create_participant(
        self.factory, static_cast<DDS_DomainId_t>(options.domainId), qos.get(), nullptr,
        DDS_STATUS_MASK_NONE);
    if (self.domainParticipant == nullptr) {
        return fail("Unable to create Domain Participant");
    }
    self.participantCreatedLocally = 1;
    return true;
}

// Takes the ids from the participant in use, created or handed in: readers know the logger by them.
// One that is not enabled has none yet, and loggers without ids would take each other's commands.
bool read_ids(VUR_DL_DDSEntities &self) {
    ParticipantQos qos;
    const bool has_ids =
        DDS_Entity_is_enabled(DDS_DomainParticipant_as_entity(self.domainParticipant));
    if (!has_ids) {
        KOLT_Log_message(
            KOLT_CONFIG_LOG_CATEGORY_ENTITIES, KOLT_CONFIG_LOG_LEVEL_ERROR, kCreate,
            "the participant is not enabled and has no ids yet: enable one that you hand in "
            "before the logger is created; for the logger's own, let the factory "
            "enable what it creates (entity_factory)");
    }
    if (!has_ids ||
        DDS_DomainParticipant_get_qos(self.domainParticipant, qos.get()) != DDS_RETCODE_OK) {
        return fail(
            "Unable to get Domain Participant QoS to create update HostId and AppId:");  // sic
    }
    self.rtpsHostId = static_cast<int>(qos->wire_protocol.rtps_host_id);
    self.rtpsAppId = static_cast<int>(qos->wire_protocol.rtps_app_id);
    return true;
}

struct TopicRecipe {
    vur_dl::TopicSlot slot;
    DDS_Topic *VUR_DL_DDSEntities::*field;
    const char *name;
    const char *type_name;
    DDS_ReturnCode_t (*register_type)(DDS_DomainParticipant *, const char *);
    const char *register_failure;
    const char *qos_failure;
    const char *create_failure;
};

constexpr TopicRecipe kLogTopic{vur_dl::kLogSlot,
                                &VUR_DL_DDSEntities::logTopic,
                                VUR_DL_LOG_TOPIC_NAME,
                                VUR_DL_LOG_TYPE_NAME,
                                VUR_DL_LogMessageTypeSupport_register_type,
                                "Unable to register type for LogMessage",
                                "Unable to create QoS for LogMessage Topic",
                                "Unable to create logTopic"};
constexpr TopicRecipe kStateTopic{vur_dl::kStateSlot,
                                  &VUR_DL_DDSEntities::stateTopic,
                                  VUR_DL_STATE_TOPIC_NAME,
                                  VUR_DL_STATE_TYPE_NAME,
                                  VUR_DL_ADMIN_StateTypeSupport_register_type,
                                  "Unable to register State type",
                                  "Unable to get QoS of State's Topic",
                                  "Unable to create stateTopic"};
constexpr TopicRecipe kCommandRequestTopic{vur_dl::kCommandRequestSlot,
                                           &VUR_DL_DDSEntities::commandRequestTopic,
                                           VUR_DL_COMMAND_REQUEST_TOPIC_NAME,
                                           VUR_DL_COMMAND_REQUEST_TYPE_NAME,
                                           VUR_DL_ADMIN_CommandRequestTypeSupport_register_type,
                                           "Unable to register CommandRequest type",
                                           "Unable to get QoS for CommandRequest's Topic",
                                           "Unable to create CommandRequest Topic"};
constexpr TopicRecipe kCommandResponseTopic{vur_dl::kCommandResponseSlot,
                                            &VUR_DL_DDSEntities::commandResponseTopic,
                                            VUR_DL_COMMAND_RESPONSE_TOPIC_NAME,
                                            VUR_DL_COMMAND_RESPONSE_TYPE_NAME,
                                            VUR_DL_ADMIN_CommandResponseTypeSupport_register_type,
                                            "Unable to register CommandResponse Type",
                                            "Unable to get QoS for CommandResponse Topic",
                                            "Unable to create commandResponse Topic"};

// Shares a topic that the participant has already; otherwise creates the topic, which the record
// then owns.
bool obtain_topic(VUR_DL_DDSEntities &self, const TopicRecipe &recipe) {
    DDS_TopicDescription *existing =
        DDS_DomainParticipant_lookup_topicdescription(self.domainParticipant, recipe.name);
    if (existing != nullptr) {
        self.*recipe.field = DDS_Topic_narrow(existing);
    }
    if (self.*recipe.field != nullptr) {
        self.locallyCreatedTopics[recipe.slot] = nullptr;
        return true;
    }
    if (recipe.register_type(self.domainParticipant, recipe.type_name) != DDS_RETCODE_OK) {
        return fail(recipe.register_failure);
    }
    TopicQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getTopicQos(&self, qos.get(), recipe.name) != DDS_RETCODE_OK) {
        return fail(recipe.qos_failure);
    }
    DDS_Topic *topic =
        DDS_DomainParticipant_create_topic(self.domainParticipant, recipe.name, recipe.type_name,
                                           qos.get(), nullptr, DDS_STATUS_MASK_NONE);
    if (topic == nullptr) {
        return fail(recipe.create_failure);
    }
    self.*recipe.field = topic;
    self.locallyCreatedTopics[recipe.slot] = topic;
    return true;
}

bool create_publisher(VUR_DL_DDSEntities &self) {
    PublisherQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getPublisherQos(&self, qos.get()) != DDS_RETCODE_OK) {
        return fail("Unable to get publisher QoS");
    }
    self.publisher = DDS_DomainParticipant_create_publisher(self.domainParticipant, qos.get(),
                                                            nullptr, DDS_STATUS_MASK_NONE);
    return self.publisher != nullptr || fail("Unable to create publisher");
}

bool create_subscriber(VUR_DL_DDSEntities &self) {
    SubscriberQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getSubscriberQos(&self, qos.get()) != DDS_RETCODE_OK) {
        return fail("Unable to get Subscriber QoS");
    }
    self.subscriber = DDS_DomainParticipant_create_subscriber(self.domainParticipant, qos.get(),
                                                              nullptr, DDS_STATUS_MASK_NONE);
    return self.subscriber != nullptr || fail("Unable to create Subscriber");
}

DDS_DataWriter *create_writer(VUR_DL_DDSEntities &self, DDS_Topic *topic,
                              const DDS_DataWriterQos &qos) {
    return DDS_Publisher_create_datawriter(self.publisher, topic, &qos, nullptr,
                                           DDS_STATUS_MASK_NONE);
}

bool create_log_writer(VUR_DL_DDSEntities &self) {
    WriterQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getDataWriterQos(&self, qos.get(), VUR_DL_LOG_TOPIC_NAME) !=
        DDS_RETCODE_OK) {
        return fail("Unable to get QoS for LogMessage DataWriter");
    }
    DDS_DataWriter *writer = create_writer(self, self.logTopic, *qos);
    if (writer != nullptr) {
        self.logMessageWriter = VUR_DL_LogMessageDataWriter_narrow(writer);
    }
    return self.logMessageWriter != nullptr || fail("Unable to create logMessage DataWriter");
}

enum class StateWriterResult { kCreated, kFailed, kFailedLeavingAll };

StateWriterResult create_state_writer(VUR_DL_DDSEntities &self) {
    WriterQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getDataWriterQos(&self, qos.get(), VUR_DL_STATE_TOPIC_NAME) !=
        DDS_RETCODE_OK) {
        fail("Unable to get QoS of State's DataWriter");
        return StateWriterResult::kFailed;
    }
    if (DDS_PropertyQosPolicyHelper_assert_property(&qos->property, kDeferredWriteProperty, "true",
                                                    DDS_BOOLEAN_FALSE) != DDS_RETCODE_OK) {
        fail(
            "Unable to set PROPERTY_NAME_DDS_DATA_WRITER_ENABLE_DEFERRED_WRITE property in State "
            "DataWriter QoS");
        return StateWriterResult::kFailedLeavingAll;
    }
    DDS_DataWriter *writer = create_writer(self, self.stateTopic, *qos);
    if (writer != nullptr) {
        self.stateWriter = VUR_DL_ADMIN_StateDataWriter_narrow(writer);
    }
    if (self.stateWriter == nullptr) {
        fail("Unable to create State DataWriter");
        return StateWriterResult::kFailed;
    }
    return StateWriterResult::kCreated;
}

// Puts the ids, which are the State's key, and the domain into the State. This must happen before
// the listener is installed: a State reader that is there already matches at that moment, and the
// first sample goes out.
void identify(const VUR_DL_DDSEntities &self, VUR_DL_DistLogger &logger) {
    if (logger.state == nullptr) {
        return;
    }
    logger.state->hostAndAppId.rtps_host_id = self.rtpsHostId;
    logger.state->hostAndAppId.rtps_app_id = self.rtpsAppId;
    logger.state->administrationDomainId =
        DDS_DomainParticipant_get_domain_id(self.domainParticipant);
}

bool listen_to_state_writer(VUR_DL_DDSEntities &self, VUR_DL_DistLogger *logger) {
    identify(self, *logger);
    self.stateWriterListener.on_publication_matched =
        VUR_DL_DDSEntities_stateWriterOnPublicationMatched;
    self.stateWriterListener.on_data_return = VUR_DL_DDSEntities_stateWriterOnDataReturn;
    self.stateWriterListener.on_data_request = VUR_DL_DDSEntities_stateWriterOnDataRequest;
    self.stateWriterListener.listener_data = logger;
    return DDS_DataWriter_set_listener(VUR_DL_ADMIN_StateDataWriter_as_datawriter(self.stateWriter),
                                       &self.stateWriterListener,
                                       DDS_PUBLICATION_MATCHED_STATUS) == DDS_RETCODE_OK ||
           fail("Unable to set listener in State DataWrite");  // sic
}

// Creates the filter that lets only requests that name this participant pass.
bool create_command_filter(VUR_DL_DDSEntities &self) {
    char host_id[16];
    char app_id[16];
    std::snprintf(host_id, sizeof host_id, "%d", self.rtpsHostId);
    std::snprintf(app_id, sizeof app_id, "%d", self.rtpsAppId);
    DDS_StringPtr texts[] = {host_id, app_id};
    DDS_StringSeq parameters = DDS_SEQUENCE_INITIALIZER;
    if (!DDS_StringSeq_loan_contiguous(&parameters, texts, 2, 2)) {
        return fail(
            "Unable to initialize the parameters of commandRequest's Content Filtered Topic");
    }
    self.commandRequestContentFilteredTopic = DDS_DomainParticipant_create_contentfilteredtopic(
        self.domainParticipant, kContentFilteredTopicName, self.commandRequestTopic, kCommandFilter,
        &parameters);
    DDS_StringSeq_unloan(&parameters);
    return self.commandRequestContentFilteredTopic != nullptr ||
           fail("Unable to create commandRequest Content Filtered Topic");
}

bool create_command_reader(VUR_DL_DDSEntities &self) {
    ReaderQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getDataReaderQos(&self, qos.get(), VUR_DL_COMMAND_REQUEST_TOPIC_NAME) !=
        DDS_RETCODE_OK) {
        return fail("Unable to get QoS for CommandRequest Reader");
    }
    DDS_DataReader *reader = DDS_Subscriber_create_datareader(
        self.subscriber,
        DDS_ContentFilteredTopic_as_topicdescription(self.commandRequestContentFilteredTopic),
        qos.get(), nullptr, DDS_STATUS_MASK_NONE);
    if (reader != nullptr) {
        self.commandRequestReader = VUR_DL_ADMIN_CommandRequestDataReader_narrow(reader);
    }
    return self.commandRequestReader != nullptr ||
           fail("Unable to create CommandRequest DataReader");
}

bool create_response_writer(VUR_DL_DDSEntities &self) {
    WriterQos qos(kolt::qos::kUnfilled);
    if (VUR_DL_DDSEntities_getDataWriterQos(&self, qos.get(), VUR_DL_COMMAND_RESPONSE_TOPIC_NAME) !=
        DDS_RETCODE_OK) {
        return fail("Unable to get QoS for CommandResponse DataWriter");
    }
    DDS_DataWriter *writer = create_writer(self, self.commandResponseTopic, *qos);
    if (writer != nullptr) {
        self.commandResponseWriter = VUR_DL_ADMIN_CommandResponseDataWriter_narrow(writer);
    }
    return self.commandResponseWriter != nullptr ||
           fail("Unable to create CommandResponse DataWriter");
}

bool create_remote_administration(VUR_DL_DDSEntities &self) {
    return create_subscriber(self) && obtain_topic(self, kCommandRequestTopic) &&
           create_command_filter(self) && obtain_topic(self, kCommandResponseTopic) &&
           create_command_reader(self) && create_response_writer(self);
}

// Returns the factory that profiles are looked up in: the one that the participant in use came
// from.
DDS_DomainParticipantFactory *factory_of(const VUR_DL_Options &options,
                                         DDS_DomainParticipantFactory *factory) {
    return options.domainParticipant == nullptr
               ? factory
               : DDS_DomainParticipant_get_participant_factoryI(options.domainParticipant);
}

void warn_of_missing_profile(VUR_DL_DDSEntities &self) {
    if (self.qosLibrary != nullptr && self.qosProfile != nullptr &&
        !VUR_DL_DDSEntities_doesQosLibraryAndProfileExist(&self, self.qosLibrary,
                                                          self.qosProfile)) {
        report("QoS Library and Profile cannot be found, using default QoS", kCreate,
               vur_dl::kLevelWarning);
    }
}

// Prints a failure and hands the result on: deletions go on after a failure.
DDS_ReturnCode_t check(DDS_ReturnCode_t result, const char *failure) {
    if (result != DDS_RETCODE_OK) {
        report(failure, "VUR_DL_DDSEntities_deleteContainedEntities", vur_dl::kLevelWarning);
    }
    return result;
}

DDS_ReturnCode_t delete_subscriber(VUR_DL_DDSEntities &self) {
    check(DDS_Subscriber_delete_contained_entities(self.subscriber),
          "Unable to delete subscriber's contained entities");
    const DDS_ReturnCode_t result =
        check(DDS_DomainParticipant_delete_subscriber(self.domainParticipant, self.subscriber),
              "Unable to delete subscriber");
    self.subscriber = nullptr;
    self.commandRequestReader = nullptr;
    return result;
}

DDS_ReturnCode_t delete_publisher(VUR_DL_DDSEntities &self) {
    check(DDS_Publisher_delete_contained_entities(self.publisher),
          "Unable to delete publisher's contained entities");
    const DDS_ReturnCode_t result =
        check(DDS_DomainParticipant_delete_publisher(self.domainParticipant, self.publisher),
              "Unable to delete publisher");
    self.publisher = nullptr;
    self.logMessageWriter = nullptr;
    self.stateWriter = nullptr;
    self.commandResponseWriter = nullptr;
    return result;
}

DDS_ReturnCode_t delete_participant(VUR_DL_DDSEntities &self) {
    check(DDS_DomainParticipant_delete_contained_entities(self.domainParticipant),
          "Unable to delete contained entities from Domain Participant");
    const DDS_ReturnCode_t result =
        check(DDS_DomainParticipantFactory_delete_participant(self.factory, self.domainParticipant),
              "Unable to delete participant");
    self.domainParticipant = nullptr;
    return result;
}

}  // namespace

int VUR_DL_DDSEntities_gInitialStateSent = 0;

VUR_DL_DDSEntities *VUR_DL_DDSEntities_create(VUR_DL_DistLogger *dist_logger,
                                              DDS_DomainParticipantFactory *factory) {
    if (dist_logger == nullptr) {
        fail("VUR_DL_Distlogger is NULL");
        return nullptr;
    }
    if (dist_logger->options == nullptr) {
        fail("VUR_DL_Options is NULL, expected initialized variable");
        return nullptr;
    }
    auto *self = static_cast<VUR_DL_DDSEntities *>(KOLT_Heap_allocate(sizeof(VUR_DL_DDSEntities)));
    if (self == nullptr) {
        fail("Unable to allocate memory for VUR_DL_DDSEntities");
        return nullptr;
    }
    const VUR_DL_Options &options = *dist_logger->options;
    vur_dl::about_to_call_middleware();
    VUR_DL_DDSEntities_initialize(self);
    self->qosLibrary = options.qosLibrary;
    self->qosProfile = options.qosProfile;
    self->factory = factory_of(options, factory);
    warn_of_missing_profile(*self);
    vur_dl::store_relaxed(VUR_DL_DDSEntities_gInitialStateSent, 0);

    bool created = create_participant(*self, options) && read_ids(*self) &&
                   obtain_topic(*self, kLogTopic) && obtain_topic(*self, kStateTopic) &&
                   create_publisher(*self) && create_log_writer(*self);
    if (created) {
        const StateWriterResult result = create_state_writer(*self);
        if (result == StateWriterResult::kFailedLeavingAll) {
            return nullptr;  // sic: this one failure leaves the entities in place
        }
        created = result == StateWriterResult::kCreated;
    }
    created = created && listen_to_state_writer(*self, dist_logger) &&
              (options.remoteAdministrationEnabled == 0 || create_remote_administration(*self));
    if (!created) {
        VUR_DL_DDSEntities_destroy(self);
        return nullptr;
    }
    return self;
}

void VUR_DL_DDSEntities_destroy(VUR_DL_DDSEntities *self) {
    if (self != nullptr) {
        VUR_DL_DDSEntities_deleteContainedEntities(self);
        KOLT_Heap_free(self);
    }
}

void VUR_DL_DDSEntities_initialize(VUR_DL_DDSEntities *self) {
    if (self == nullptr) {
        report("VUR_DL_DDSEntities is NULL", __func__);
        return;
    }
    std::memset(self, 0, sizeof *self);
}

DDS_ReturnCode_t VUR_DL_DDSEntities_deleteContainedEntities(VUR_DL_DDSEntities *self) {
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    if (self == nullptr) {
        check(DDS_RETCODE_BAD_PARAMETER, "VUR_DL_DDSEntities is NULL. Cannot delete it again");
        return result;
    }
    if (self->domainParticipant == nullptr) {
        return result;
    }
    vur_dl::about_to_call_middleware();
    if (self->subscriber != nullptr) {
        result = delete_subscriber(*self);
    }
    if (self->publisher != nullptr) {
        result = delete_publisher(*self);
    }
    if (self->commandRequestContentFilteredTopic != nullptr) {
        result = check(DDS_DomainParticipant_delete_contentfilteredtopic(
                           self->domainParticipant, self->commandRequestContentFilteredTopic),
                       "Unable to delete commandRequest Content Filtered Topic");
        self->commandRequestContentFilteredTopic = nullptr;
    }
    for (DDS_Topic *&topic : self->locallyCreatedTopics) {
        if (topic != nullptr) {
            check(DDS_DomainParticipant_delete_topic(self->domainParticipant, topic),
                  "Unable to delete topic");
            topic = nullptr;
        }
    }
    if (self->participantCreatedLocally != 0) {
        result = delete_participant(*self);
    }
    return result;
}

int VUR_DL_DDSEntities_hasInitialStateBeenSent(const VUR_DL_DDSEntities *) {
    return vur_dl::load_relaxed(VUR_DL_DDSEntities_gInitialStateSent);
}

int VUR_DL_DDSEntities_getRtpsHostId(const VUR_DL_DDSEntities *self) {
    return self->rtpsHostId;
}

int VUR_DL_DDSEntities_getRtpsAppId(const VUR_DL_DDSEntities *self) {
    return self->rtpsAppId;
}

DDS_DomainParticipant *VUR_DL_DDSEntities_getDomainParticipant(const VUR_DL_DDSEntities *self) {
    return self->domainParticipant;
}

VUR_DL_LogMessageDataWriter *VUR_DL_DDSEntities_getLogMessageWriter(
    const VUR_DL_DDSEntities *self) {
    return self->logMessageWriter;
}

VUR_DL_ADMIN_StateDataWriter *VUR_DL_DDSEntities_getStateWriter(const VUR_DL_DDSEntities *self) {
    return self->stateWriter;
}

VUR_DL_ADMIN_CommandRequestDataReader *VUR_DL_DDSEntities_getCommandRequestReader(
    const VUR_DL_DDSEntities *self) {
    return self->commandRequestReader;
}

VUR_DL_ADMIN_CommandResponseDataWriter *VUR_DL_DDSEntities_getCommandResponseWriter(
    const VUR_DL_DDSEntities *self) {
    return self->commandResponseWriter;
}
