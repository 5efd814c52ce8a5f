// SPDX-License-Identifier: Apache-2.0
// What a process hands on to its children: programs that it executes, and forks of itself.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>

#include "support/logger/log_capture.h"
#include "support/platform/pubsub.h"

namespace {

using namespace support;

constexpr int kDomain = 74;

struct Sockets {
    int all = 0;
    int handed_on = 0;
};

Sockets internet_sockets() {
    Sockets sockets;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int fd = std::stoi(entry.path().filename());
        int family = 0;
        socklen_t size = sizeof family;
        if (getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &family, &size) == 0 && family == AF_INET) {
            ++sockets.all;
            sockets.handed_on += (fcntl(fd, F_GETFD) & FD_CLOEXEC) == 0 ? 1 : 0;
        }
    }
    return sockets;
}

// Runs a function in a forked child. True when it returns true there, in time.
bool holds_in_child(const std::function<bool()> &function) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(static_cast<unsigned>(
            std::chrono::duration_cast<std::chrono::seconds>(kPatience).count()));
        _exit(function() ? 0 : 1);
    }
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// True when a participant of the domain can be made and deleted.
bool can_join(int domain) {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipant *const participant = DDS_DomainParticipantFactory_create_participant(
        factory, domain, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    return participant != nullptr &&
           DDS_DomainParticipantFactory_delete_participant(factory, participant) == DDS_RETCODE_OK;
}

TEST(KoltProcesses, ProgramsThatAreExecutedGetNoSockets) {
    ASSERT_EQ(internet_sockets().all, 0);
    const Node node(kDomain);
    EXPECT_GT(internet_sockets().all, 0);
    EXPECT_EQ(internet_sockets().handed_on, 0);
}

TEST(KoltProcesses, AForkJoinsNoDomainThatItsParentIsIn) {
    const Node node(kDomain);
    EXPECT_TRUE(holds_in_child([] {
        LogCapture capture;
        return !can_join(kDomain) &&
               capture.has("the parent process had participants in domain 74");
    }));
}

// The thread sanitizer ends a child of a process with threads that makes some of its own.
#if !defined(__SANITIZE_THREAD__)
TEST(KoltProcesses, AForkJoinsAnotherDomainThanItsParent) {
    const Node node(kDomain);
    EXPECT_TRUE(holds_in_child([] { return can_join(kDomain + 1); }));
}
#endif

TEST(KoltProcesses, AForkJoinsADomainThatItsParentHasLeft) {
    { const Node node(kDomain); }
    EXPECT_TRUE(holds_in_child([] { return can_join(kDomain); }));
    EXPECT_TRUE(can_join(kDomain));
}

}  // namespace
