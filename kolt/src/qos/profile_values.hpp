// SPDX-License-Identifier: Apache-2.0
// Texts of QoS elements as values (OMG DDS-XML 1.0, 7.3.2): names of enumerators, numbers,
// booleans.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kolt/qos.h"
#include "xml/xml_parser.hpp"

namespace kolt::qos {

// The error in a document, and its place.
struct ReadError : xml::ParseError {
    // Always false, so that a reader can return what this returns.
    bool set(DDS_UnsignedLong at_line, std::string what) {
        code = DDS_RETCODE_ERROR;
        line = at_line;
        message = std::move(what);
        return false;
    }
    bool set_out_of_resources() {
        code = DDS_RETCODE_OUT_OF_RESOURCES;
        message = "out of memory";
        return false;
    }
};

struct NamedValue {
    std::string_view name;
    long long value;
};

// The names of the values of one enumeration.
template <typename Enumeration>
struct Enumerators;

#define KOLT_ENUMERATORS(Enumeration, ...)                    \
    template <>                                               \
    struct Enumerators<Enumeration> {                         \
        static constexpr NamedValue kNames[] = {__VA_ARGS__}; \
    }
#define KOLT_NAMED(name)  \
    NamedValue {          \
#name, DDS_##name \
    }

KOLT_ENUMERATORS(DDS_DurabilityQosPolicyKind, KOLT_NAMED(VOLATILE_DURABILITY_QOS),
                 KOLT_NAMED(TRANSIENT_LOCAL_DURABILITY_QOS), KOLT_NAMED(TRANSIENT_DURABILITY_QOS),
                 KOLT_NAMED(PERSISTENT_DURABILITY_QOS));
KOLT_ENUMERATORS(DDS_PresentationQosPolicyAccessScopeKind, KOLT_NAMED(INSTANCE_PRESENTATION_QOS),
                 KOLT_NAMED(TOPIC_PRESENTATION_QOS), KOLT_NAMED(GROUP_PRESENTATION_QOS));
KOLT_ENUMERATORS(DDS_OwnershipQosPolicyKind, KOLT_NAMED(SHARED_OWNERSHIP_QOS),
                 KOLT_NAMED(EXCLUSIVE_OWNERSHIP_QOS));
KOLT_ENUMERATORS(DDS_LivelinessQosPolicyKind, KOLT_NAMED(AUTOMATIC_LIVELINESS_QOS),
                 KOLT_NAMED(MANUAL_BY_PARTICIPANT_LIVELINESS_QOS),
                 KOLT_NAMED(MANUAL_BY_TOPIC_LIVELINESS_QOS));
KOLT_ENUMERATORS(DDS_ReliabilityQosPolicyKind, KOLT_NAMED(BEST_EFFORT_RELIABILITY_QOS),
                 KOLT_NAMED(RELIABLE_RELIABILITY_QOS));
KOLT_ENUMERATORS(DDS_DestinationOrderQosPolicyKind,
                 KOLT_NAMED(BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS),
                 KOLT_NAMED(BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS));
KOLT_ENUMERATORS(DDS_HistoryQosPolicyKind, KOLT_NAMED(KEEP_LAST_HISTORY_QOS),
                 KOLT_NAMED(KEEP_ALL_HISTORY_QOS));
KOLT_ENUMERATORS(DDS_TypeConsistencyKind, KOLT_NAMED(DISALLOW_TYPE_COERCION),
                 KOLT_NAMED(ALLOW_TYPE_COERCION));
// A data representation id stands for an enumeration, too.
KOLT_ENUMERATORS(DDS_DataRepresentationId_t, KOLT_NAMED(XCDR_DATA_REPRESENTATION),
                 KOLT_NAMED(XML_DATA_REPRESENTATION), KOLT_NAMED(XCDR2_DATA_REPRESENTATION),
                 KOLT_NAMED(AUTO_DATA_REPRESENTATION));

inline constexpr NamedValue kLengthNames[] = {KOLT_NAMED(LENGTH_UNLIMITED)};
inline constexpr NamedValue kSecondsNames[] = {{"DURATION_INFINITY", DDS_DURATION_INFINITE_SEC},
                                               {"DURATION_INFINITE_SEC", DDS_DURATION_INFINITE_SEC},
                                               {"DURATION_ZERO_SEC", DDS_DURATION_ZERO_SEC}};
inline constexpr NamedValue kNanosecondsNames[] = {
    {"DURATION_INFINITY", DDS_DURATION_INFINITE_NSEC},
    {"DURATION_INFINITE_NSEC", DDS_DURATION_INFINITE_NSEC},
    {"DURATION_ZERO_NSEC", DDS_DURATION_ZERO_NSEC}};
inline constexpr NamedValue kBooleanNames[] = {{"true", 1}, {"false", 0}, {"1", 1}, {"0", 0}};

#undef KOLT_NAMED
#undef KOLT_ENUMERATORS

// Without white space at both ends.
std::string_view trim(std::string_view text);

// The value of a name, exactly; nothing when it is none of these.
std::optional<long long> value_of_name(std::string_view text, const NamedValue *names,
                                       std::size_t count);
template <std::size_t kCount>
std::optional<long long> value_of_name(std::string_view text, const NamedValue (&names)[kCount]) {
    return value_of_name(text, names, kCount);
}
// "a, b, c"
std::string list_of_names(const NamedValue *names, std::size_t count);
template <std::size_t kCount>
std::string list_of_names(const NamedValue (&names)[kCount]) {
    return list_of_names(names, kCount);
}

// A decimal or 0x-hexadecimal integer from `minimum` to `maximum`, and nothing behind it.
std::optional<long long> integer_of(std::string_view text, long long minimum, long long maximum);

// The bytes that a Base64 text (RFC 4648, section 4; white space ignored) stands for; nothing when
// it is none.
std::optional<std::vector<DDS_Octet>> bytes_of_base64(std::string_view text);

}  // namespace kolt::qos
