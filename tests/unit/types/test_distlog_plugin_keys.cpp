// SPDX-License-Identifier: Apache-2.0
// The key slots of the plugin records: key holders, keys on the wire, key hashes.

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <type_traits>
#include <vector>

#include "support/types/attached_plugin.h"

namespace {

using namespace support;

template <typename T>
class DistlogPluginKeys : public testing::Test {};
TYPED_TEST_SUITE(DistlogPluginKeys, KeyedTopicTypes, TopicTypeName);

// The key of what fill() makes, big-endian: host 11, application -12 and, of a message, level 300.
template <typename T>
std::array<DDS_Octet, 16> expected_hash() {
    std::array<DDS_Octet, 16> hash = {0, 0, 0, 11, 0xff, 0xff, 0xff, 0xf4};
    if (std::is_same_v<T, VUR_DL_LogMessage>) {
        hash[10] = 1;
        hash[11] = 44;
    }
    return hash;
}
template <typename T>
constexpr DDS_UnsignedLong kKeySize = std::is_same_v<T, VUR_DL_LogMessage> ? 12 : 8;

template <typename T>
void expect_key_only(Sample<T> &key, Sample<T> &filled) {
    EXPECT_EQ(key.key(), filled.key());
    EXPECT_EQ(key.number(), 0) << "no more than the key";
    TopicType<T>::set_number(key.get(), filled.number());
    EXPECT_FALSE(equal(*key, *filled)) << "the texts are not there either";
    TopicType<T>::set_number(key.get(), 0);
}

TYPED_TEST(DistlogPluginKeys, HoldersTakeTheKeyMembers) {
    Attached<TypeParam> attached;
    const KOLT_TypePlugin &plugin = *attached.plugin;
    EXPECT_EQ(plugin.get_key_kind(), KOLT_TYPE_PLUGIN_USER_KEY);
    Filled<TypeParam> filled;
    void *handle = nullptr;
    void *const pooled = plugin.get_key(attached.reader, &handle);
    ASSERT_NE(pooled, nullptr);
    plugin.return_key(attached.reader, pooled, handle);
    EXPECT_EQ(plugin.get_key(attached.reader, &handle), pooled) << "the same again";
    plugin.return_key(attached.reader, pooled, handle);

    Sample<TypeParam> holder;
    ASSERT_TRUE(plugin.instance_to_key(attached.reader, holder.get(), filled.get()));
    expect_key_only(holder, filled);
    Sample<TypeParam> instance(0, 77);
    ASSERT_TRUE(plugin.key_to_instance(attached.reader, instance.get(), holder.get()));
    EXPECT_EQ(instance.key(), filled.key());
    EXPECT_EQ(instance.number(), 77) << "what is no key stays";
    EXPECT_FALSE(plugin.instance_to_key(attached.reader, nullptr, filled.get()));
    EXPECT_FALSE(plugin.instance_to_key(attached.reader, holder.get(), nullptr));
    EXPECT_FALSE(plugin.key_to_instance(attached.reader, nullptr, holder.get()));
    EXPECT_FALSE(plugin.key_to_instance(attached.reader, instance.get(), nullptr));
}

TYPED_TEST(DistlogPluginKeys, TravelAloneAndInSamples) {
    Attached<TypeParam> attached;
    const KOLT_TypePlugin &plugin = *attached.plugin;
    Filled<TypeParam> filled;
    for (const DDS_UnsignedShort encapsulation : kMutableEncapsulations) {
        SCOPED_TRACE(encapsulation);
        std::vector<DDS_Octet> key =
            attached.bytes_of(plugin.serialize_key, *filled, encapsulation);
        EXPECT_LE(key.size(),
                  plugin.get_serialized_key_max_size(attached.writer, 1, encapsulation, 0));
        Sample<TypeParam> holder;
        ASSERT_TRUE(attached.read_back(plugin.deserialize_key, key, holder.get()));
        expect_key_only(holder, filled);
        std::vector<DDS_Octet> sample = attached.bytes_of(plugin.serialize, *filled, encapsulation);
        Sample<TypeParam> of_sample;
        ASSERT_TRUE(attached.read_back(plugin.deserialize_key_sample, sample, of_sample.get()));
        expect_key_only(of_sample, filled);
        key.resize(6);
        EXPECT_FALSE(attached.read_back(plugin.deserialize_key, key, holder.get())) << "cut off";
        EXPECT_FALSE(attached.read_back(plugin.deserialize_key, key, nullptr));
    }
    EXPECT_EQ(plugin.get_serialized_key_max_size(attached.writer, 0, KOLT_ENCAPSULATION_CDR2_BE, 0),
              kKeySize<TypeParam>);
}

TYPED_TEST(DistlogPluginKeys, HashesComeFromRecordsAndFromBytes) {
    Attached<TypeParam> attached;
    const KOLT_TypePlugin &plugin = *attached.plugin;
    Filled<TypeParam> sample;
    const auto hash_of_bytes = [&](DDS_UnsignedShort encapsulation) {
        std::vector<DDS_Octet> bytes = attached.bytes_of(plugin.serialize, *sample, encapsulation);
        KOLT_CdrStream stream = {};
        KOLT_CdrStream_set(&stream, bytes.data(), bytes.size());
        KOLT_KeyHash hash = {};
        EXPECT_TRUE(
            plugin.serialized_sample_to_keyhash(attached.writer, &stream, &hash, 1, nullptr));
        return std::vector<DDS_Octet>(hash.value, hash.value + 16);
    };
    KOLT_KeyHash direct = {};
    ASSERT_TRUE(plugin.instance_to_keyhash(attached.writer, &direct, sample.get(),
                                           KOLT_ENCAPSULATION_PL_CDR2_LE));
    const auto expected = expected_hash<TypeParam>();
    EXPECT_EQ(std::memcmp(direct.value, expected.data(), expected.size()), 0)
        << "a key that fits is its own hash";
    for (const DDS_UnsignedShort encapsulation : kMutableEncapsulations) {
        EXPECT_EQ(hash_of_bytes(encapsulation),
                  std::vector<DDS_Octet>(expected.begin(), expected.end()));
    }
    const std::vector<DDS_Octet> before = hash_of_bytes(KOLT_ENCAPSULATION_PL_CDR_LE);
    TopicType<TypeParam>::set_number(sample.get(), 4711);
    EXPECT_EQ(hash_of_bytes(KOLT_ENCAPSULATION_PL_CDR_LE), before) << "the same instance";
    TopicType<TypeParam>::set_key(sample.get(), 4711);
    EXPECT_NE(hash_of_bytes(KOLT_ENCAPSULATION_PL_CDR_LE), before) << "another one";
}

TYPED_TEST(DistlogPluginKeys, BrokenBytesHaveNoHash) {
    Attached<TypeParam> attached;
    const KOLT_TypePlugin &plugin = *attached.plugin;
    std::array<DDS_Octet, 8> broken = {0, 0x0b, 0, 0, 0xff, 0xff, 0xff, 0x7f};
    KOLT_CdrStream stream = {};
    KOLT_CdrStream_set(&stream, broken.data(), broken.size());
    KOLT_KeyHash hash = {};
    EXPECT_FALSE(plugin.serialized_sample_to_keyhash(attached.writer, &stream, &hash, 1, nullptr));
    EXPECT_FALSE(plugin.serialized_sample_to_keyhash(nullptr, &stream, &hash, 1, nullptr));
    EXPECT_FALSE(plugin.serialized_sample_to_keyhash(attached.writer, nullptr, &hash, 1, nullptr));
    EXPECT_FALSE(
        plugin.serialized_sample_to_keyhash(attached.writer, &stream, nullptr, 1, nullptr));
}

// The level is a key member: messages of one application that differ in it are two instances.
TEST(DistlogPluginKeysOfMessages, LevelsAreInstances) {
    Attached<VUR_DL_LogMessage> attached;
    Filled<VUR_DL_LogMessage> sample;
    const auto hash = [&] {
        KOLT_KeyHash result = {};
        EXPECT_TRUE(attached.plugin->instance_to_keyhash(attached.writer, &result, sample.get(),
                                                         KOLT_ENCAPSULATION_PL_CDR_LE));
        return std::vector<DDS_Octet>(result.value, result.value + 16);
    };
    const std::vector<DDS_Octet> before = hash();
    sample->level = 301;
    EXPECT_NE(hash(), before);
}

}  // namespace
