// SPDX-License-Identifier: Apache-2.0
// Typed data writers: instances registered, written, disposed and unregistered, for each of the
// topic types.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/logger/log_capture.h"
#include "support/types/typed_endpoints.h"

namespace {

using namespace support;

constexpr DDS_DomainId_t kDomain = 177;

template <typename T>
class TypedWriterInstances : public testing::Test {};
TYPED_TEST_SUITE(TypedWriterInstances, KeyedTopicTypes, TopicTypeName);

TYPED_TEST(TypedWriterInstances, AreRegisteredInThreeForms) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> one(100);
    Sample<TypeParam> two(200);
    EXPECT_EQ(Write::lookup_instance(ends.writer, one.get()), DDS_HANDLE_NIL);
    const DDS_InstanceHandle_t handle = Write::register_instance(ends.writer, one.get());
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    EXPECT_EQ(Write::register_w_timestamp(ends.writer, one.get(), &kStamp), handle);
    const DDS_WriteParams_t params = params_of(DDS_HANDLE_NIL, kStamp);
    EXPECT_EQ(Write::register_w_params(ends.writer, one.get(), &params), handle);
    EXPECT_EQ(Write::lookup_instance(ends.writer, one.get()), handle);
    EXPECT_EQ(Write::lookup_instance(ends.writer, two.get()), DDS_HANDLE_NIL);
    const DDS_InstanceHandle_t other = Write::register_w_timestamp(ends.writer, two.get(), &kStamp);
    EXPECT_NE(other, DDS_HANDLE_NIL);
    EXPECT_NE(other, handle);
    Received<TypeParam> received(ends.reader);
    EXPECT_EQ(received.take(), DDS_RETCODE_NO_DATA) << "nothing is sent";

    LogCapture log;
    EXPECT_EQ(Write::register_instance(nullptr, one.get()), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter"));
    EXPECT_EQ(Write::register_instance(ends.writer, nullptr), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::register_w_timestamp(ends.writer, one.get(), nullptr), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: source_timestamp"));
    EXPECT_EQ(Write::register_w_timestamp(ends.writer, nullptr, &kStamp), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::register_w_params(ends.writer, one.get(), nullptr), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: params"));
    EXPECT_EQ(Write::register_w_params(ends.writer, nullptr, &params), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
}

TYPED_TEST(TypedWriterInstances, AreWrittenByTheirHandle) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> one(100, 1);
    Sample<TypeParam> two(200, 2);
    const DDS_InstanceHandle_t handle = Write::register_instance(ends.writer, one.get());
    const DDS_WriteParams_t params = params_of(handle, kStamp);
    EXPECT_EQ(Write::write(ends.writer, one.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(Write::write_w_timestamp(ends.writer, one.get(), handle, &kStamp), DDS_RETCODE_OK);
    EXPECT_EQ(Write::write_w_params(ends.writer, one.get(), &params), DDS_RETCODE_OK);
    LogCapture log;
    const char *const kForeign = "the handle is not that of the sample's instance";
    EXPECT_EQ(Write::write(ends.writer, two.get(), handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw(kForeign));
    EXPECT_EQ(Write::write_w_timestamp(ends.writer, two.get(), handle, &kStamp),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw(kForeign));
    EXPECT_EQ(Write::write_w_params(ends.writer, two.get(), &params), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw(kForeign));
    EXPECT_EQ(Write::write(ends.writer, one.get(), handle + 1000), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw(kForeign));
    Received<TypeParam> received(ends.reader);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    EXPECT_EQ(received.numbers(), (std::vector<DDS_Long>{1, 1, 1}));
}

TYPED_TEST(TypedWriterInstances, TellTheirKey) {
    using Type = TopicType<TypeParam>;
    using Write = typename Type::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> one(100, 1);
    Sample<TypeParam> holder(0, 77);
    const DDS_InstanceHandle_t handle = Write::register_instance(ends.writer, one.get());
    ASSERT_EQ(Write::get_key_value(ends.writer, holder.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(holder.key(), 100);
    EXPECT_EQ(holder.number(), 77) << "no more than the key";
    // An instance that was written only.
    Sample<TypeParam> two(200, 2);
    ASSERT_EQ(Write::write(ends.writer, two.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const DDS_InstanceHandle_t other = Write::lookup_instance(ends.writer, two.get());
    ASSERT_NE(other, DDS_HANDLE_NIL);
    ASSERT_EQ(Write::get_key_value(ends.writer, holder.get(), other), DDS_RETCODE_OK);
    EXPECT_EQ(holder.key(), 200);

    LogCapture log;
    for (const DDS_InstanceHandle_t wrong : {DDS_HANDLE_NIL, handle + 1000}) {
        EXPECT_EQ(Write::get_key_value(ends.writer, holder.get(), wrong),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("the handle is not that of an instance of this writer"));
    }
    EXPECT_EQ(Write::get_key_value(ends.writer, nullptr, handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: key_holder"));
    EXPECT_EQ(Write::get_key_value(nullptr, holder.get(), handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter"));
    EXPECT_EQ(Write::lookup_instance(ends.writer, nullptr), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: key_holder"));
    EXPECT_EQ(Write::lookup_instance(nullptr, one.get()), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter"));
}

// A dispose or unregister in one of its forms, with the time stamp kStamp where it takes one.
template <typename T>
struct ChangeForm {
    const char *name;
    bool stamped;
    std::function<DDS_ReturnCode_t(typename TopicType<T>::Writer *, const T *,
                                   DDS_InstanceHandle_t)>
        call;
};

template <typename T, typename Plain, typename Timed, typename WithParams>
std::vector<ChangeForm<T>> forms_of(Plain plain, Timed timed, WithParams with_params) {
    using Writer = typename TopicType<T>::Writer;
    return {{"plain", false, plain},
            {"w_timestamp", true,
             [=](Writer *writer, const T *sample, DDS_InstanceHandle_t handle) {
                 return timed(writer, sample, handle, &kStamp);
             }},
            {"w_params", true, [=](Writer *writer, const T *sample, DDS_InstanceHandle_t handle) {
                 const DDS_WriteParams_t params = params_of(handle, kStamp);
                 return with_params(writer, sample, &params);
             }}};
}

// Each form, with the sample, the sample and the handle, and the handle alone.
template <typename T>
void expect_changes(const std::vector<ChangeForm<T>> &forms) {
    using Type = TopicType<T>;
    TypedEndpoints<T> ends(kDomain);
    DDS_Long key = 100;
    for (const ChangeForm<T> &form : forms) {
        for (const bool with_sample : {true, false}) {
            for (const bool with_handle : {true, false}) {
                if (!with_sample && !with_handle) {
                    continue;
                }
                SCOPED_TRACE(std::string(form.name) + (with_sample ? " sample" : "") +
                             (with_handle ? " handle" : ""));
                Sample<T> sample(++key, 5);
                const DDS_InstanceHandle_t handle =
                    Type::Write::register_instance(ends.writer, sample.get());
                ASSERT_EQ(Type::Write::write(ends.writer, sample.get(), handle), DDS_RETCODE_OK);
                Received<T> received(ends.reader);
                ASSERT_EQ(received.take(), DDS_RETCODE_OK);
                ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
                ASSERT_EQ(form.call(ends.writer, with_sample ? sample.get() : nullptr,
                                    with_handle ? handle : DDS_HANDLE_NIL),
                          DDS_RETCODE_OK);
                ASSERT_EQ(received.take(), DDS_RETCODE_OK);
                ASSERT_EQ(received.size(), 1U);
                EXPECT_FALSE(received.info(0).valid_data);
                EXPECT_EQ(received.info(0).instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE)
                    << "unregistering disposes by default";
                EXPECT_EQ(Type::key(received.at(0)), key) << "of the sample the key is there";
                EXPECT_EQ(Type::number(received.at(0)), 0) << "and nothing more";
                if (form.stamped) {
                    expect_stamp(received.info(0), kStamp);
                }
            }
        }
    }
}

// The refusals that all forms have in common.
template <typename T>
void expect_refusals(const std::vector<ChangeForm<T>> &forms) {
    using Write = typename TopicType<T>::Write;
    TypedEndpoints<T> ends(kDomain);
    Sample<T> one(100);
    Sample<T> two(200);
    const DDS_InstanceHandle_t handle = Write::register_instance(ends.writer, one.get());
    LogCapture log;
    for (const ChangeForm<T> &form : forms) {
        SCOPED_TRACE(form.name);
        EXPECT_EQ(form.call(nullptr, one.get(), handle), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter"));
        EXPECT_EQ(form.call(ends.writer, nullptr, DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: sample and handle"));
        EXPECT_EQ(form.call(ends.writer, nullptr, handle + 1000), DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_TRUE(log.saw("the handle is not that of a registered instance"));
        EXPECT_EQ(form.call(ends.writer, two.get(), handle), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("the handle is not that of the sample's instance"));
    }
}

template <typename T>
std::vector<ChangeForm<T>> disposals() {
    using Write = typename TopicType<T>::Write;
    return forms_of<T>(Write::dispose, Write::dispose_w_timestamp, Write::dispose_w_params);
}
template <typename T>
std::vector<ChangeForm<T>> unregistrations() {
    using Write = typename TopicType<T>::Write;
    return forms_of<T>(Write::unregister_instance, Write::unregister_w_timestamp,
                       Write::unregister_w_params);
}

TYPED_TEST(TypedWriterInstances, AreDisposedInThreeForms) {
    expect_changes<TypeParam>(disposals<TypeParam>());
    expect_refusals<TypeParam>(disposals<TypeParam>());
}

TYPED_TEST(TypedWriterInstances, AreUnregisteredInThreeForms) {
    expect_changes<TypeParam>(unregistrations<TypeParam>());
    expect_refusals<TypeParam>(unregistrations<TypeParam>());
}

TYPED_TEST(TypedWriterInstances, AreUnregisteredOnce) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> sample(100);
    LogCapture log;
    for (const ChangeForm<TypeParam> &form : unregistrations<TypeParam>()) {
        SCOPED_TRACE(form.name);
        EXPECT_EQ(form.call(ends.writer, sample.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_TRUE(log.saw("the instance is not registered"));
        const DDS_InstanceHandle_t handle = Write::register_instance(ends.writer, sample.get());
        ASSERT_NE(handle, DDS_HANDLE_NIL);
        EXPECT_EQ(form.call(ends.writer, sample.get(), handle), DDS_RETCODE_OK);
        EXPECT_EQ(Write::lookup_instance(ends.writer, sample.get()), DDS_HANDLE_NIL);
        EXPECT_EQ(form.call(ends.writer, nullptr, handle), DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_TRUE(log.saw("the handle is not that of a registered instance"));
    }
}

TYPED_TEST(TypedWriterInstances, ChangesWantTheirArguments) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> sample(100);
    const DDS_InstanceHandle_t handle = Write::register_instance(ends.writer, sample.get());
    LogCapture log;
    for (const DDS_Time_t *const time :
         {static_cast<const DDS_Time_t *>(nullptr), &DDS_TIME_INVALID}) {
        EXPECT_EQ(Write::dispose_w_timestamp(ends.writer, sample.get(), handle, time),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: source_timestamp"));
        EXPECT_EQ(Write::unregister_w_timestamp(ends.writer, sample.get(), handle, time),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: source_timestamp"));
    }
    EXPECT_EQ(Write::dispose_w_params(ends.writer, sample.get(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: params"));
    EXPECT_EQ(Write::unregister_w_params(ends.writer, sample.get(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: params"));
}

// A type without a key has no instances: nothing to register, unregister, dispose or look up.
TEST(TypedWriterUnkeyed, HasNoInstances) {
    using Request = VUR_DL_ADMIN_CommandRequest;
    using Write = TopicType<Request>::Write;
    TypedEndpoints<Request> ends(kDomain);
    Sample<Request> sample(1, 2);
    LogCapture log;
    EXPECT_EQ(Write::register_instance(ends.writer, sample.get()), DDS_HANDLE_NIL);
    EXPECT_EQ(Write::register_w_timestamp(ends.writer, sample.get(), &kStamp), DDS_HANDLE_NIL);
    EXPECT_EQ(Write::register_w_params(ends.writer, sample.get(), &DDS_WRITEPARAMS_DEFAULT),
              DDS_HANDLE_NIL);
    EXPECT_EQ(Write::lookup_instance(ends.writer, sample.get()), DDS_HANDLE_NIL);
    EXPECT_EQ(log.take(), "") << "NIL is the handle of such a sample";
    EXPECT_EQ(Write::get_key_value(ends.writer, sample.get(), 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("the handle is not that of an instance of this writer"));
    for (const auto &forms : {disposals<Request>(), unregistrations<Request>()}) {
        for (const ChangeForm<Request> &form : forms) {
            EXPECT_EQ(form.call(ends.writer, sample.get(), DDS_HANDLE_NIL),
                      DDS_RETCODE_PRECONDITION_NOT_MET)
                << form.name;
            EXPECT_TRUE(log.saw("the type has no key"));
        }
    }
    EXPECT_EQ(Write::write(ends.writer, sample.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
}

}  // namespace
