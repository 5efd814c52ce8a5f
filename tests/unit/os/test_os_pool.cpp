// SPDX-License-Identifier: Apache-2.0
// The buffer pool and the intrusive list.

#include <gtest/gtest.h>
#include <kolt/os.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <vector>

namespace {

struct Delete {
    void operator()(KOLT_BufferPool *pool) const { KOLT_BufferPool_delete(pool); }
};
using Pool = std::unique_ptr<KOLT_BufferPool, Delete>;

Pool make(std::size_t size, std::size_t alignment, DDS_Long initial, DDS_Long maximum, bool zero) {
    return Pool(KOLT_BufferPool_new(size, alignment, initial, maximum, zero));
}

bool all_bytes_are(const void *buffer, std::size_t size, unsigned char value) {
    const auto *bytes = static_cast<const unsigned char *>(buffer);
    return std::all_of(bytes, bytes + size, [&](unsigned char byte) { return byte == value; });
}

TEST(OsBufferPool, HandsOutEachBufferOnceAndStopsAtTheMaximum) {
    constexpr std::size_t kSize = 100;
    auto pool = make(kSize, 8, 5, 5, false);
    ASSERT_TRUE(pool);
    std::set<void *> buffers;
    for (int i = 0; i < 5; ++i) {
        void *buffer = KOLT_BufferPool_get(pool.get());
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer) % 8, 0U);
        std::memset(buffer, i, kSize);
        EXPECT_TRUE(buffers.insert(buffer).second);
    }
    EXPECT_EQ(KOLT_BufferPool_get(pool.get()), nullptr);
    EXPECT_EQ(KOLT_BufferPool_get_outstanding(pool.get()), 5);
    // Nobody wrote into another's buffer, and they lie in one block.
    EXPECT_LE(static_cast<char *>(*buffers.rbegin()) - static_cast<char *>(*buffers.begin()),
              4 * 104);
    KOLT_BufferPool_return_buffer(pool.get(), *buffers.begin());
    EXPECT_EQ(KOLT_BufferPool_get(pool.get()), *buffers.begin());
}

TEST(OsBufferPool, ZeroFillsOnEachHandOut) {
    auto pool = make(40, 8, 1, 1, true);
    void *buffer = KOLT_BufferPool_get(pool.get());
    EXPECT_TRUE(all_bytes_are(buffer, 40, 0));
    std::memset(buffer, 0xff, 40);
    KOLT_BufferPool_return_buffer(pool.get(), buffer);
    ASSERT_EQ(KOLT_BufferPool_get(pool.get()), buffer);
    EXPECT_TRUE(all_bytes_are(buffer, 40, 0));
}

TEST(OsBufferPool, GrowsToItsMaximumAndNoFurther) {
    auto pool = make(1, 1, 2, 21, false);
    std::set<void *> buffers;
    while (void *buffer = KOLT_BufferPool_get(pool.get())) {
        EXPECT_TRUE(buffers.insert(buffer).second);
        std::memset(buffer, 0x5a, 1);
    }
    EXPECT_EQ(buffers.size(), 21U);
}

TEST(OsBufferPool, GrowsWithoutLimit) {
    auto pool = make(16, 16, 0, DDS_LENGTH_UNLIMITED, true);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_NE(KOLT_BufferPool_get(pool.get()), nullptr);
    }
    EXPECT_EQ(KOLT_BufferPool_get_outstanding(pool.get()), 1000);
}

TEST(OsBufferPool, AlignsAsAsked) {
    for (const std::size_t alignment : {1U, 2U, 8U, 64U, 4096U}) {
        auto pool = make(24, alignment, 3, 6, true);
        ASSERT_TRUE(pool);
        for (int i = 0; i < 6; ++i) {
            void *buffer = KOLT_BufferPool_get(pool.get());
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer) % alignment, 0U);
        }
    }
}

TEST(OsBufferPool, RefusesBadArguments) {
    EXPECT_FALSE(make(0, 8, 1, 1, false));
    EXPECT_FALSE(make(8, 0, 1, 1, false));
    EXPECT_FALSE(make(8, 24, 1, 1, false));
    EXPECT_FALSE(make(8, 8, -1, 1, false));
    EXPECT_FALSE(make(8, 8, 2, 1, false));
    EXPECT_FALSE(make(8, 8, 0, 0, false));
    EXPECT_FALSE(make(8, 8, 0, -2, false));
    EXPECT_FALSE(make(SIZE_MAX - 4, 8, 1, 1, false));
    // More than any machine has.
    EXPECT_FALSE(make(SIZE_MAX / 4, 8, 1000, 1000, false));
    EXPECT_EQ(KOLT_BufferPool_get(nullptr), nullptr);
    EXPECT_EQ(KOLT_BufferPool_get_outstanding(nullptr), 0);
    KOLT_BufferPool_return_buffer(nullptr, nullptr);
    KOLT_BufferPool_delete(nullptr);
}

struct Element {
    KOLT_ListNode node;
    int value;
};

std::vector<int> values_of(const KOLT_List &list) {
    std::vector<int> values;
    const KOLT_ListNode *before = nullptr;
    for (const KOLT_ListNode *node = KOLT_List_first(&list); node != nullptr; node = node->next) {
        EXPECT_EQ(node->previous, before);
        values.push_back(reinterpret_cast<const Element *>(node)->value);
        before = node;
    }
    EXPECT_EQ(list.last, before);
    EXPECT_EQ(static_cast<std::size_t>(KOLT_List_get_count(&list)), values.size());
    return values;
}

TEST(OsList, KeepsOrder) {
    KOLT_List list;
    KOLT_List_initialize(&list);
    Element elements[4] = {{{}, 1}, {{}, 2}, {{}, 3}, {{}, 4}};
    EXPECT_EQ(KOLT_List_first(&list), nullptr);
    EXPECT_EQ(KOLT_List_remove_first(&list), nullptr);
    for (auto &element : elements) {
        KOLT_ListNode_initialize(&element.node);
        KOLT_List_add_to_back(&list, &element.node);
    }
    EXPECT_EQ(values_of(list), (std::vector{1, 2, 3, 4}));
    KOLT_List_remove(&list, &elements[1].node);
    EXPECT_EQ(values_of(list), (std::vector{1, 3, 4}));
    KOLT_List_remove(&list, &elements[3].node);
    EXPECT_EQ(values_of(list), (std::vector{1, 3}));
    EXPECT_EQ(KOLT_List_remove_first(&list), &elements[0].node);
    KOLT_List_add_to_back(&list, &elements[0].node);
    EXPECT_EQ(values_of(list), (std::vector{3, 1}));
    EXPECT_EQ(KOLT_List_remove_first(&list), &elements[2].node);
    EXPECT_EQ(KOLT_List_remove_first(&list), &elements[0].node);
    EXPECT_EQ(values_of(list), std::vector<int>{});
}

TEST(OsList, AllZeroListIsEmpty) {
    KOLT_List list{};
    Element element{{}, 7};
    EXPECT_EQ(KOLT_List_first(&list), nullptr);
    KOLT_List_add_to_back(&list, &element.node);
    EXPECT_EQ(values_of(list), std::vector{7});
}

}  // namespace
