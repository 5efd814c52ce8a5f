// A record for questions about QoS, when memory runs out.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <kolt/os.h>
#include <vur_dl/DDSEntities.h>

#include "support/platform/process.h"

namespace {
bool no_memory = false;
}

extern "C" void *KOLT_Heap_allocate(std::size_t size) {
    using Function = void *(std::size_t);
    static auto *const function =
        reinterpret_cast<Function *>(dlsym(RTLD_NEXT, "KOLT_Heap_allocate"));
    return no_memory ? nullptr : function(size);
}

TEST(EntitiesForQos, OutOfMemory) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    ASSERT_NE(options, nullptr);
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    support::StdoutCapture capture;
    no_memory = true;
    EXPECT_EQ(VUR_DL_DDSEntities_createForQos(factory, options), nullptr);
    no_memory = false;
    EXPECT_EQ(capture.count("DL Error: VUR_DL_DDSEntities_createForQos: Unable to allocate memory "
                            "for VUR_DL_DDSEntities"),
              1);
    VUR_DL_DDSEntities *entities = VUR_DL_DDSEntities_createForQos(factory, options);
    EXPECT_NE(entities, nullptr);
    VUR_DL_DDSEntities_destroy(entities);
    VUR_DL_Options_delete(options);
}
