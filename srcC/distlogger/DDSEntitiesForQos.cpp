// SPDX-License-Identifier: Apache-2.0
// A record of the logger's entities without entities: it tells the QoS before there is a logger.
#include "DDSEntitiesRecord.hpp"
#include "kolt/os.h"
#include "report.hpp"

using vur_dl::report;

VUR_DL_DDSEntities *VUR_DL_DDSEntities_createForQos(DDS_DomainParticipantFactory *factory,
                                                    const VUR_DL_Options *options) {
    if (factory == nullptr || options == nullptr) {
        report("factory and options are needed", __func__);
        return nullptr;
    }
    auto *self = static_cast<VUR_DL_DDSEntities *>(KOLT_Heap_allocate(sizeof(VUR_DL_DDSEntities)));
    if (self == nullptr) {
        report("Unable to allocate memory for VUR_DL_DDSEntities", __func__);
        return nullptr;
    }
    VUR_DL_DDSEntities_initialize(self);
    self->factory = factory;
    self->domainParticipant = options->domainParticipant;
    self->qosLibrary = options->qosLibrary;
    self->qosProfile = options->qosProfile;
    return self;
}
