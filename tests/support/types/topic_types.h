// SPDX-License-Identifier: Apache-2.0
// The four topic types of the logger, each with its functions and a few values of its own, for
// tests that do the same with all of them.
#pragma once

#include <gtest/gtest.h>
#include <vur_dl/distlogSupport.h>

#include <cstring>
#include <string>

namespace support {

// ---- Functions ----------------------------------------------------------------------------------

// The functions of a type under their names without the type's, by family.
template <typename T>
struct TopicType;

#define SUPPORT_PLUGIN_FUNCTIONS(T)                                            \
    static constexpr auto new_plugin = T##Plugin_new;                          \
    static constexpr auto delete_plugin = T##Plugin_delete;                    \
    static constexpr auto serialize = T##Plugin_serialize_to_cdr_buffer_ex;    \
    static constexpr auto deserialize = T##Plugin_deserialize_from_cdr_buffer; \
    static constexpr auto get_programs = T##Plugin_get_programs;               \
    static constexpr auto get_typecode = T##_get_typecode

#define SUPPORT_TYPE_FUNCTIONS(T)                                                                 \
    struct Support {                                                                              \
        static constexpr auto register_type = T##TypeSupport_register_type;                       \
        static constexpr auto unregister_type = T##TypeSupport_unregister_type;                   \
        static constexpr auto get_type_name = T##TypeSupport_get_type_name;                       \
        static constexpr auto get_typecode = T##TypeSupport_get_typecode;                         \
        static constexpr auto create_data = T##TypeSupport_create_data;                           \
        static constexpr auto create_data_ex = T##TypeSupport_create_data_ex;                     \
        static constexpr auto create_data_w_params = T##TypeSupport_create_data_w_params;         \
        static constexpr auto delete_data = T##TypeSupport_delete_data;                           \
        static constexpr auto delete_data_ex = T##TypeSupport_delete_data_ex;                     \
        static constexpr auto delete_data_w_params = T##TypeSupport_delete_data_w_params;         \
        static constexpr auto initialize_data = T##TypeSupport_initialize_data;                   \
        static constexpr auto initialize_data_ex = T##TypeSupport_initialize_data_ex;             \
        static constexpr auto initialize_data_w_params = T##TypeSupport_initialize_data_w_params; \
        static constexpr auto finalize_data = T##TypeSupport_finalize_data;                       \
        static constexpr auto finalize_data_ex = T##TypeSupport_finalize_data_ex;                 \
        static constexpr auto finalize_data_w_params = T##TypeSupport_finalize_data_w_params;     \
        static constexpr auto finalize = T##TypeSupport_finalize;                                 \
        static constexpr auto copy_data = T##TypeSupport_copy_data;                               \
        static constexpr auto print_data = T##TypeSupport_print_data;                             \
        static constexpr auto print_with_plugin = T##PluginSupport_print_data;                    \
        static constexpr auto serialize = T##TypeSupport_serialize_data_to_cdr_buffer;            \
        static constexpr auto serialize_ex = T##TypeSupport_serialize_data_to_cdr_buffer_ex;      \
        static constexpr auto deserialize = T##TypeSupport_deserialize_data_from_cdr_buffer;      \
        static constexpr auto data_to_string = T##TypeSupport_data_to_string;                     \
    }

#define SUPPORT_WRITER_FUNCTIONS(T)                                                               \
    using Writer = T##DataWriter;                                                                 \
    struct Write {                                                                                \
        static constexpr auto narrow = T##DataWriter_narrow;                                      \
        static constexpr const char *kEntity = "writer";                                          \
        static constexpr auto get_endpoint_type_name = DDS_DataWriter_get_endpoint_type_name;     \
        static constexpr auto widen = T##DataWriter_as_datawriter;                                \
        static constexpr auto create_data = T##DataWriter_create_data;                            \
        static constexpr auto create_data_w_params = T##DataWriter_create_data_w_params;          \
        static constexpr auto delete_data = T##DataWriter_delete_data;                            \
        static constexpr auto delete_data_w_params = T##DataWriter_delete_data_w_params;          \
        static constexpr auto get_loan = T##DataWriter_get_loan;                                  \
        static constexpr auto discard_loan = T##DataWriter_discard_loan;                          \
        static constexpr auto register_instance = T##DataWriter_register_instance;                \
        static constexpr auto register_w_timestamp = T##DataWriter_register_instance_w_timestamp; \
        static constexpr auto register_w_params = T##DataWriter_register_instance_w_params;       \
        static constexpr auto unregister_instance = T##DataWriter_unregister_instance;            \
        static constexpr auto unregister_w_timestamp =                                            \
            T##DataWriter_unregister_instance_w_timestamp;                                        \
        static constexpr auto unregister_w_params = T##DataWriter_unregister_instance_w_params;   \
        static constexpr auto write = T##DataWriter_write;                                        \
        static constexpr auto write_w_timestamp = T##DataWriter_write_w_timestamp;                \
        static constexpr auto write_w_params = T##DataWriter_write_w_params;                      \
        static constexpr auto dispose = T##DataWriter_dispose;                                    \
        static constexpr auto dispose_w_timestamp = T##DataWriter_dispose_w_timestamp;            \
        static constexpr auto dispose_w_params = T##DataWriter_dispose_w_params;                  \
        static constexpr auto get_key_value = T##DataWriter_get_key_value;                        \
        static constexpr auto lookup_instance = T##DataWriter_lookup_instance;                    \
    }

#define SUPPORT_ACCESS_FUNCTIONS(T, access)                                                \
    static constexpr auto access = T##DataReader_##access;                                 \
    static constexpr auto access##_w_condition = T##DataReader_##access##_w_condition;     \
    static constexpr auto access##_next_sample = T##DataReader_##access##_next_sample;     \
    static constexpr auto access##_instance = T##DataReader_##access##_instance;           \
    static constexpr auto access##_instance_w_condition =                                  \
        T##DataReader_##access##_instance_w_condition;                                     \
    static constexpr auto access##_next_instance = T##DataReader_##access##_next_instance; \
    static constexpr auto access##_next_instance_w_condition =                             \
        T##DataReader_##access##_next_instance_w_condition

#define SUPPORT_READER_FUNCTIONS(T)                                                           \
    using Reader = T##DataReader;                                                             \
    struct Read {                                                                             \
        static constexpr auto narrow = T##DataReader_narrow;                                  \
        static constexpr const char *kEntity = "reader";                                      \
        static constexpr auto get_endpoint_type_name = DDS_DataReader_get_endpoint_type_name; \
        static constexpr auto widen = T##DataReader_as_datareader;                            \
        SUPPORT_ACCESS_FUNCTIONS(T, read);                                                    \
        SUPPORT_ACCESS_FUNCTIONS(T, take);                                                    \
        static constexpr auto return_loan = T##DataReader_return_loan;                        \
        static constexpr auto get_key_value = T##DataReader_get_key_value;                    \
        static constexpr auto lookup_instance = T##DataReader_lookup_instance;                \
        static constexpr auto is_data_consistent = T##DataReader_is_data_consistent;          \
        static constexpr auto add_sample = T##DataReader_add_sample_to_remote_writer_queue;   \
        static constexpr auto add_dispose = T##DataReader_add_dispose_to_remote_writer_queue; \
        static constexpr auto add_unregister =                                                \
            T##DataReader_add_unregister_to_remote_writer_queue;                              \
    }

#define SUPPORT_SEQUENCE_FUNCTIONS(T)                                             \
    using Sequence = T##Seq;                                                      \
    struct Seq {                                                                  \
        static constexpr auto get_length = T##Seq_get_length;                     \
        static constexpr auto set_length = T##Seq_set_length;                     \
        static constexpr auto set_absolute_maximum = T##Seq_set_absolute_maximum; \
        static constexpr auto get_maximum = T##Seq_get_maximum;                   \
        static constexpr auto set_maximum = T##Seq_set_maximum;                   \
        static constexpr auto get_reference = T##Seq_get_reference;               \
        static constexpr auto has_ownership = T##Seq_has_ownership;               \
        static constexpr auto loan_contiguous = T##Seq_loan_contiguous;           \
        static constexpr auto loan_pointers = T##Seq_loan_discontiguous;          \
        static constexpr auto get_pointers = T##Seq_get_discontiguous_buffer;     \
        static constexpr auto unloan = T##Seq_unloan;                             \
        static constexpr auto finalize = T##Seq_finalize;                         \
    }

// Tests tell samples apart by a number, which is not a key member, and instances by a key: one of
// the key members, or any other member of the type that has none.
#define SUPPORT_TOPIC_TYPE(T, full_name, keyed, number_member, key_member)                     \
    template <>                                                                                \
    struct TopicType<T> {                                                                      \
        using Record = T;                                                                      \
        static constexpr const char *kRecordName = #T;                                         \
        static constexpr const char *kTypeName = full_name;                                    \
        static constexpr bool kKeyed = keyed;                                                  \
        static constexpr const char *kNumberMember = #number_member;                           \
        static constexpr const char *kKeyMember = #key_member;                                 \
        static void set_number(T *record, DDS_Long number) { record->number_member = number; } \
        static DDS_Long number(const T &record) {                                              \
            return static_cast<DDS_Long>(record.number_member);                                \
        }                                                                                      \
        static void set_key(T *record, DDS_Long key) { record->key_member = key; }             \
        static DDS_Long key(const T &record) { return record.key_member; }                     \
        SUPPORT_PLUGIN_FUNCTIONS(T);                                                           \
        SUPPORT_TYPE_FUNCTIONS(T);                                                             \
        SUPPORT_WRITER_FUNCTIONS(T);                                                           \
        SUPPORT_READER_FUNCTIONS(T);                                                           \
        SUPPORT_SEQUENCE_FUNCTIONS(T);                                                         \
    }

SUPPORT_TOPIC_TYPE(VUR_DL_LogMessage, "VUR::DL::LogMessage", true, messageId, level);
SUPPORT_TOPIC_TYPE(VUR_DL_ADMIN_State, "VUR::DL::ADMIN::State", true, filterLevel,
                   hostAndAppId.rtps_app_id);
SUPPORT_TOPIC_TYPE(VUR_DL_ADMIN_CommandRequest, "VUR::DL::ADMIN::CommandRequest", false, invocation,
                   targetHostAndAppId.rtps_app_id);
SUPPORT_TOPIC_TYPE(VUR_DL_ADMIN_CommandResponse, "VUR::DL::ADMIN::CommandResponse", true,
                   invocation, hostAndAppId.rtps_app_id);

using TopicTypes = testing::Types<VUR_DL_LogMessage, VUR_DL_ADMIN_State,
                                  VUR_DL_ADMIN_CommandRequest, VUR_DL_ADMIN_CommandResponse>;
// The topic types that have instances.
using KeyedTopicTypes =
    testing::Types<VUR_DL_LogMessage, VUR_DL_ADMIN_State, VUR_DL_ADMIN_CommandResponse>;

// The tests of a type are named after it.
struct TopicTypeName {
    template <typename T>
    // NOLINTNEXTLINE(readability-identifier-naming): GoogleTest calls it so.
    static std::string GetName(int) {
        return std::strrchr(TopicType<T>::kTypeName, ':') + 1;
    }
};

// ---- Samples ------------------------------------------------------------------------------------

// A sample of the type, which goes with the scope.
template <typename T>
class Sample {
  public:
    explicit Sample(DDS_Long key = 0, DDS_Long number = 0)
        : record_(TopicType<T>::Support::create_data()) {
        EXPECT_NE(record_, nullptr);
        TopicType<T>::set_key(record_, key);
        TopicType<T>::set_number(record_, number);
    }
    ~Sample() { TopicType<T>::Support::delete_data(record_); }
    Sample(const Sample &) = delete;
    Sample &operator=(const Sample &) = delete;

    T *get() { return record_; }
    T *operator->() { return record_; }
    T &operator*() { return *record_; }
    DDS_Long key() const { return TopicType<T>::key(*record_); }
    DDS_Long number() const { return TopicType<T>::number(*record_); }

  private:
    T *record_;
};

// A value in every member.
inline void fill(VUR_DL_LogMessage *record) {
    record->hostAndAppId = {11, -12};
    record->level = 300;
    std::strcpy(record->category, "engine");
    std::strcpy(record->message, "oil pressure low");
    record->messageId = 1LL << 40;
}
inline void fill(VUR_DL_ADMIN_State *record) {
    record->hostAndAppId = {11, -12};
    record->administrationDomainId = 7;
    record->state = VUR_DL_STATE_OPERATIONAL;
    std::strcpy(record->applicationKind, "pump");
    record->filterLevel = 400;
    for (DDS_UnsignedLong i = 0; i < VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT; ++i) {
        record->vurLoggerVerbosities[i].category = static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i);
        record->vurLoggerVerbosities[i].verbosity = VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING;
    }
    record->vurLoggerPrintFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL;
}
inline void fill(VUR_DL_ADMIN_CommandRequest *record) {
    record->targetHostAndAppId = {11, -12};
    record->originatorHostAndAppId = {13, -14};
    record->invocation = 15;
    record->command._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    auto *const sequence = &record->command._u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 2));
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(sequence, 1)->category =
        VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API;
}
inline void fill(VUR_DL_ADMIN_CommandResponse *record) {
    record->hostAndAppId = {11, -12};
    record->originatorHostAndAppId = {13, -14};
    record->invocation = 15;
    record->commandResult = VUR_DL_COMMAND_RESULT_ERROR;
    std::strcpy(record->message, "no such category");
}

// A sample with a value in every member.
template <typename T>
class Filled : public Sample<T> {
  public:
    Filled() { fill(this->get()); }
};

template <typename T>
bool equal(const T &left, const T &right) {
    return KOLT_Record_equals(TopicType<T>::get_typecode(), &left, &right) != DDS_BOOLEAN_FALSE;
}

}  // namespace support
