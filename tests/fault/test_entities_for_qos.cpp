// SPDX-License-Identifier: Apache-2.0
// A record for questions about QoS, when memory runs out.
#include <gtest/gtest.h>
#include <kolt/os.h>
#include <vur_dl/DDSEntities.h>

#include "support/platform/faults.h"
#include "support/platform/process.h"

FAULT_POINT(void *, KOLT_Heap_allocate, (std::size_t size), (size), nullptr)

TEST(EntitiesForQos, OutOfMemory) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    ASSERT_NE(options, nullptr);
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    support::StdoutCapture capture;
    support::Faults::fail_every_call("KOLT_Heap_allocate");
    EXPECT_EQ(VUR_DL_DDSEntities_createForQos(factory, options), nullptr);
    support::Faults::clear();
    EXPECT_EQ(capture.count("DL Error: VUR_DL_DDSEntities_createForQos: Unable to allocate memory "
                            "for VUR_DL_DDSEntities"),
              1);
    VUR_DL_DDSEntities *entities = VUR_DL_DDSEntities_createForQos(factory, options);
    EXPECT_NE(entities, nullptr);
    VUR_DL_DDSEntities_destroy(entities);
    VUR_DL_Options_delete(options);
}
