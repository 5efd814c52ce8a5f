// SPDX-License-Identifier: Apache-2.0
// A profile whose State waits for its readers without limit, and a reader of it that has no room left:
// beginning and end of the logger are bounded all the same.
#include <gtest/gtest.h>
#include <kolt/dds_c.h>
#include <vur_dl/DDSEntities.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/distlogSupport.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "support/logger/logger.h"
#include "support/platform/pubsub.h"
#include "support/platform/work_folder.h"

namespace {

using namespace support;

constexpr const char *kProfile = R"(<dds><qos_library name="L">
  <qos_profile name="P" is_default_qos="true">
    <datawriter_qos topic_filter="vur/distlog/administration/state">
      <reliability>
        <kind>RELIABLE_RELIABILITY_QOS</kind>
        <max_blocking_time><sec>DURATION_INFINITE_SEC</sec></max_blocking_time>
      </reliability>
      <history><kind>KEEP_ALL_HISTORY_QOS</kind></history>
    </datawriter_qos>
  </qos_profile></qos_library></dds>)";

// Reads no State, and has room for a few.
class StuckReader {
  public:
    StuckReader(int domain, int room)
        : factory_(DDS_DomainParticipantFactory_get_instance()),
          participant_(DDS_DomainParticipantFactory_create_participant(
              factory_, domain, nullptr, nullptr, DDS_STATUS_MASK_NONE)) {
        VUR_DL_ADMIN_StateTypeSupport_register_type(participant_, VUR_DL_STATE_TYPE_NAME);
        DDS_Topic *const topic = DDS_DomainParticipant_create_topic(
            participant_, VUR_DL_STATE_TOPIC_NAME, VUR_DL_STATE_TYPE_NAME, nullptr, nullptr,
            DDS_STATUS_MASK_NONE);
        ReaderQos qos;
        qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        qos->history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos->resource_limits = {room, DDS_LENGTH_UNLIMITED, room};
        reader_ = DDS_Subscriber_create_datareader(
            DDS_DomainParticipant_create_subscriber(participant_, nullptr, nullptr,
                                                    DDS_STATUS_MASK_NONE),
            DDS_Topic_as_topicdescription(topic), qos.get(), nullptr, DDS_STATUS_MASK_NONE);
    }
    ~StuckReader() {
        DDS_DomainParticipant_delete_contained_entities(participant_);
        DDS_DomainParticipantFactory_delete_participant(factory_, participant_);
    }
    StuckReader(const StuckReader &) = delete;
    StuckReader &operator=(const StuckReader &) = delete;

    bool has_refused() const {
        DDS_SampleRejectedStatus status{};
        return DDS_DataReader_get_sample_rejected_status(reader_, &status) == DDS_RETCODE_OK &&
               status.total_count > 0;
    }

  private:
    DDS_DomainParticipantFactory *factory_;
    DDS_DomainParticipant *participant_;
    DDS_DataReader *reader_ = nullptr;
};

class LoggerStuckReaders : public testing::Test {
  protected:
    void SetUp() override {
        folder_.write("profile.xml", kProfile);
        setenv("KOLT_QOS_PROFILES", folder_.path("profile.xml").c_str(), 1);
    }
    // Runs something on a thread of its own. True when it ends in time.
    static bool ends(const std::function<void()> &work) {
        std::packaged_task<void()> task(work);
        std::future<void> ended = task.get_future();
        std::thread thread(std::move(task));
        const bool in_time = ended.wait_for(kPatience) == std::future_status::ready;
        if (!in_time) {
            std::fputs("it does not end\n", stderr);
            _exit(1);
        }
        thread.join();
        return in_time;
    }

    WorkFolder folder_;
};

TEST_F(LoggerStuckReaders, FinalisationDoesNotWaitForACommandThatPublishesTheState) {
    StdoutCapture capture;
    const StuckReader reader(75, 4);
    const Logger logger({.domain = 75});
    ASSERT_NE(logger.get(), nullptr);
    std::atomic<bool> enough{false};
    std::thread commands([&] {
        VUR_DL_ADMIN_CommandRequest request;
        ASSERT_TRUE(VUR_DL_ADMIN_CommandRequest_initialize(&request));
        request.command._d = VUR_DL_SET_LOG_LEVEL;
        for (int level = 610; !enough; ++level) {
            request.command._u.filterLevel = level;
            VUR_DL_DistLogger_processCommand(logger.get(), &request);
        }
        VUR_DL_ADMIN_CommandRequest_finalize(&request);
    });
    EXPECT_TRUE(eventually([&] { return reader.has_refused(); }));
    enough = true;
    EXPECT_TRUE(ends([] { EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0); }));
    commands.join();
}

TEST_F(LoggerStuckReaders, CreationDoesNotWaitForAStateThatNobodyTakes) {
    StdoutCapture capture;
    const StuckReader reader(76, 1);
    EXPECT_TRUE(ends([] {
        const Logger logger({.domain = 76});
        EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    }));
}

}  // namespace
