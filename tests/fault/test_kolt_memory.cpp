// SPDX-License-Identifier: Apache-2.0
// Reading and writing while memory runs out: each failure is a result, and the next call works.
#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "support/platform/pubsub.h"

namespace {

// The allocation of the calling thread that fails, counted from 1; 0: none.
thread_local int t_failing = 0;
// The allocations that the calling thread has made since it was set.
thread_local int t_made = 0;

// The blocks of all threads that are not freed yet.
std::atomic<long> g_live{0};

bool fails() {
    return t_failing != 0 && ++t_made == t_failing;
}

}  // namespace

// Stand in for the functions that the libraries allocate with. Whoever reads past what it has written
// finds no address there.
void *operator new(std::size_t size) {
    void *const block = fails() ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++g_live;
    return std::memset(block, 0xa5, size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}
void operator delete(void *block) noexcept {
    if (block != nullptr) {
        --g_live;
        std::memset(block, 0xa5, malloc_usable_size(block));
    }
    std::free(block);
}
void operator delete(void *block, std::size_t) noexcept {
    operator delete(block);
}

namespace {

using namespace support;

// Calls `attempt` with its first allocation failing, then with its second, and so on, until it
// needs no more of them.
template <typename Attempt>
void starve(Attempt &&attempt) {
    for (int n = 1;; ++n) {
        t_made = 0;
        t_failing = n;
        attempt(n);
        t_failing = 0;
        if (t_made < n) {
            return;
        }
    }
}

TEST(KoltMemory, AReadThatRunsOutOfMemoryIsAResult) {
    Node node(21);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    const KOLT_ReadSelection all = selection(false);
    starve([&](int n) {
        void **samples = nullptr;
        DDS_UnsignedLong count = 0;
        DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
        const DDS_ReturnCode_t code =
            DDS_DataReader_read_or_take_untypedI(reader, &all, 0, 0, DDS_BOOLEAN_TRUE, nullptr,
                                                 sizeof(Message), &samples, &count, &infos);
        t_failing = 0;
        if (code == DDS_RETCODE_OK) {
            EXPECT_GE(count, 1U) << n;
            EXPECT_EQ(DDS_DataReader_return_loan_untypedI(reader, samples, count, &infos),
                      DDS_RETCODE_OK);
        } else {
            EXPECT_EQ(code, DDS_RETCODE_OUT_OF_RESOURCES) << n;
        }
    });
    EXPECT_EQ(access(reader, all).size(), 500U);
}

TEST(KoltMemory, AWriteThatRunsOutOfMemoryIsAResult) {
    Node node(21);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    Record<Message> message(message_type());
    std::size_t written = 0;
    starve([&](int n) {
        message->level = n;  // each attempt is the first write of an instance
        const DDS_ReturnCode_t code = DDS_DataWriter_write(writer, message.get(), DDS_HANDLE_NIL);
        if (code == DDS_RETCODE_OK) {
            ++written;
        } else {
            EXPECT_EQ(code, DDS_RETCODE_OUT_OF_RESOURCES) << n;
        }
    });
    EXPECT_GE(written, 1U);
    EXPECT_EQ(take(reader).size(), written);
}

TEST(KoltMemory, ARegistrationThatRunsOutOfMemoryIsAResult) {
    Node node(21);
    DDS_DataWriter *const writer = node.writer();
    Record<Message> message(message_type());
    starve([&](int n) {
        message->level = n;
        const DDS_InstanceHandle_t handle = DDS_DataWriter_register_instance(writer, message.get());
        t_failing = 0;
        const DDS_InstanceHandle_t again = DDS_DataWriter_register_instance(writer, message.get());
        EXPECT_NE(again, DDS_HANDLE_NIL) << n;
        EXPECT_TRUE(handle == DDS_HANDLE_NIL || handle == again) << n;
        EXPECT_EQ(DDS_DataWriter_lookup_instance(writer, message.get()), again) << n;
        EXPECT_EQ(DDS_DataWriter_unregister_instance(writer, message.get(), again), DDS_RETCODE_OK);
    });
}

// The engine frees what nobody refers to on a thread of its own.
TEST(KoltMemory, UnregisteringGivesBackWhatRegisteringTook) {
    Node node(21);
    DDS_DataWriter *const writer = node.writer();
    Record<Message> message(message_type());
    const long before = g_live.load();
    for (int i = 0; i < 2000; ++i) {
        message->level = i;
        ASSERT_NE(DDS_DataWriter_register_instance(writer, message.get()), DDS_HANDLE_NIL);
        ASSERT_EQ(DDS_DataWriter_unregister_instance(writer, message.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_OK);
    }
    EXPECT_TRUE(eventually([&] { return g_live.load() < before + 100; }))
        << g_live.load() - before << " blocks are left";
}

}  // namespace
