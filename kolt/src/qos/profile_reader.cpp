// SPDX-License-Identifier: Apache-2.0
// The parts of the reader of QoS elements that need no type parameter.

#include "qos/profile_reader.hpp"

#include <limits>

#include "kolt_internal/xml_attributes.hpp"

namespace kolt::qos {

// A property is owned like a record.
template <>
struct RecordFunctions<DDS_Property_t> {
    static void initialize(DDS_Property_t *self) { kolt::qos::initialize(*self); }
    static void finalize(DDS_Property_t *self) { kolt::qos::finalize(*self); }
};

namespace {

std::string quoted(const DDS_XMLObject *element) {
    return std::string("<") + DDS_XMLObject_get_tag_name(element) + ">";
}

}  // namespace

bool ProfileReader::read_leaf(const DDS_XMLObject *element, DDS_Long &value) {
    using Limits = std::numeric_limits<DDS_Long>;
    auto number = value_of_name(text_of(element), kLengthNames);
    if (!number) {
        number = integer_of(text_of(element), Limits::min(), Limits::max());
    }
    if (!number) {
        return wrong_value(element, "a 32-bit integer, " + list_of_names(kLengthNames));
    }
    value = static_cast<DDS_Long>(*number);
    return true;
}

bool ProfileReader::read_leaf(const DDS_XMLObject *element, DDS_Octet &value) {
    const auto number = integer_of(text_of(element), 0, 255);
    if (!number) {
        return wrong_value(element, "an integer from 0 to 255");
    }
    value = static_cast<DDS_Octet>(*number);
    return true;
}

// Strings alone are not trimmed: white space in them is the user's.
bool ProfileReader::read_leaf(const DDS_XMLObject *element, DDS_Char *&value) {
    return DDS_String_replace(&value, DDS_XMLObject_get_text(element)) != nullptr ||
           error_.set_out_of_resources();
}

bool ProfileReader::read_boolean(const DDS_XMLObject *element, DDS_Boolean &value) {
    const auto found = value_of_name(text_of(element), kBooleanNames);
    if (!found) {
        return wrong_value(element, list_of_names(kBooleanNames));
    }
    value = *found != 0 ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    return true;
}

// Reads a duration. Absent parts are zero; infinite seconds make the whole duration infinite.
bool ProfileReader::read_duration(const DDS_XMLObject *element, DDS_Duration_t &value) {
    long long seconds = 0;
    long long nanoseconds = 0;
    const DDS_XMLObject *child = DDS_XMLObject_get_first_child(element);
    if (!has_no_text(element)) {
        return false;
    }
    for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
        const std::string_view name = DDS_XMLObject_get_tag_name(child);
        const bool is_seconds = name == "sec";
        if (!is_seconds && name != "nanosec") {
            return unknown_element(element, child, "sec, nanosec");
        }
        if (!is_leaf(child) || !has_no_attributes(child)) {
            return false;
        }
        auto number = is_seconds ? value_of_name(text_of(child), kSecondsNames)
                                 : value_of_name(text_of(child), kNanosecondsNames);
        if (!number) {
            number =
                integer_of(text_of(child), 0, is_seconds ? DDS_DURATION_INFINITE_SEC : 999999999);
        }
        if (!number) {
            return is_seconds ? wrong_value(child, "an integer from 0 to 2147483647, " +
                                                       list_of_names(kSecondsNames))
                              : wrong_value(child, "an integer from 0 to 999999999, " +
                                                       list_of_names(kNanosecondsNames));
        }
        (is_seconds ? seconds : nanoseconds) = *number;
    }
    if (seconds == DDS_DURATION_INFINITE_SEC) {
        value = kInfinite;
        return true;
    }
    if (nanoseconds == DDS_DURATION_INFINITE_NSEC) {
        return error_.set(DDS_XMLObject_get_line_number(element),
                          quoted(element) + ": infinite nanosec needs infinite sec");
    }
    value = {static_cast<DDS_Long>(seconds), static_cast<DDS_UnsignedLong>(nanoseconds)};
    return true;
}

// A property of a name that the record has already replaces its value.
bool ProfileReader::read_property(const DDS_XMLObject *element, DDS_PropertySeq &properties) {
    OwnedQos<DDS_Property_t> property;
    if (!read_members(element, *property)) {
        return false;
    }
    const DDS_Property_t &said = *property;
    if (said.name == nullptr || said.name[0] == '\0') {
        return error_.set(DDS_XMLObject_get_line_number(element), "a property without a <name>");
    }
    DDS_PropertyQosPolicy policy = {properties};
    const DDS_ReturnCode_t result = DDS_PropertyQosPolicyHelper_assert_property(
        &policy, said.name, said.value == nullptr ? "" : said.value, said.propagate);
    properties = policy.value;
    return result == DDS_RETCODE_OK || error_.set_out_of_resources();
}

bool ProfileReader::read_base64(const DDS_XMLObject *element, DDS_OctetSeq &value) {
    const auto bytes = bytes_of_base64(DDS_XMLObject_get_text(element));
    if (!bytes) {
        return wrong_value(element, "Base64 text, or <element> children");
    }
    return DDS_OctetSeq_from_array(&value, bytes->data(), static_cast<DDS_Long>(bytes->size())) ||
           error_.set_out_of_resources();
}

bool ProfileReader::check(const DDS_XMLObject *element, const DDS_HistoryQosPolicy &value) {
    return check_at_least_one(element, "depth", value.depth, false);
}

bool ProfileReader::check(const DDS_XMLObject *element, const DDS_ResourceLimitsQosPolicy &value) {
    return check_at_least_one(element, "max_samples", value.max_samples, true) &&
           check_at_least_one(element, "max_instances", value.max_instances, true) &&
           check_at_least_one(element, "max_samples_per_instance", value.max_samples_per_instance,
                              true);
}

bool ProfileReader::check(const DDS_XMLObject *element,
                          const DDS_DurabilityServiceQosPolicy &value) {
    return check_at_least_one(element, "history_depth", value.history_depth, false) &&
           check_at_least_one(element, "max_samples", value.max_samples, true) &&
           check_at_least_one(element, "max_instances", value.max_instances, true) &&
           check_at_least_one(element, "max_samples_per_instance", value.max_samples_per_instance,
                              true);
}

bool ProfileReader::check_at_least_one(const DDS_XMLObject *element, const char *name,
                                       DDS_Long value, bool may_be_unlimited) {
    if (value >= 1 || (may_be_unlimited && value == DDS_LENGTH_UNLIMITED)) {
        return true;
    }
    const DDS_XMLObject *child = DDS_XMLObject_find_child(element, name);
    return error_.set(DDS_XMLObject_get_line_number(child == nullptr ? element : child),
                      std::string("<") + name + "> must be 1 or more" +
                          (may_be_unlimited ? ", or LENGTH_UNLIMITED" : ""));
}

bool ProfileReader::is_leaf(const DDS_XMLObject *element) {
    const DDS_XMLObject *child = DDS_XMLObject_get_first_child(element);
    if (child == nullptr) {
        return true;
    }
    return error_.set(
        DDS_XMLObject_get_line_number(child),
        "element " + quoted(child) + " in " + quoted(element) + "; expected: a value");
}

bool ProfileReader::has_no_text(const DDS_XMLObject *element) {
    if (text_of(element).empty()) {
        return true;
    }
    return error_.set(DDS_XMLObject_get_line_number(element),
                      "text in " + quoted(element) + ": \"" +
                          std::string(text_of(element).substr(0, 64)) + "\"; expected: elements");
}

bool ProfileReader::has_no_attributes(const DDS_XMLObject *element) {
    const char *unknown = unknown_attribute(DDS_XMLObject_get_attributes(element));
    if (unknown == nullptr) {
        return true;
    }
    return error_.set(DDS_XMLObject_get_line_number(element),
                      std::string("unknown attribute \"") + unknown + "\" of " + quoted(element) +
                          "; expected: none");
}

bool ProfileReader::unknown_element(const DDS_XMLObject *parent, const DDS_XMLObject *element,
                                    const std::string &expected) {
    return error_.set(
        DDS_XMLObject_get_line_number(element),
        "unknown element " + quoted(element) + " in " + quoted(parent) + "; expected: " + expected);
}

bool ProfileReader::wrong_value(const DDS_XMLObject *element, const std::string &expected) {
    return error_.set(DDS_XMLObject_get_line_number(element),
                      "wrong value of " + quoted(element) + ": \"" +
                          std::string(text_of(element).substr(0, 64)) +
                          "\"; expected: " + expected);
}

}  // namespace kolt::qos
