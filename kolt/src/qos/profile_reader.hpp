// SPDX-License-Identifier: Apache-2.0
// Applies a QoS element of a document to a QoS record. The rows of qos_description.hpp are the
// grammar: an element of a record's member name holds the member's value. What an element does not
// mention stays as it was.
#pragma once

#include <string>

#include "kolt/xml.h"
#include "qos/profile_values.hpp"
#include "qos/qos_values.hpp"

namespace kolt::qos {

class ProfileReader {
  public:
    explicit ProfileReader(ReadError &error) : error_(error) {}

    // Reads a value. False when something is wrong, which the caller's `error` then says; the value
    // is then partly set.
    template <typename T>
    bool read(const DDS_XMLObject *element, T &value) {
        if constexpr (std::is_same_v<T, DDS_Duration_t>) {
            return read_duration(element, value);
        } else if constexpr (Described<T>) {
            return read_members(element, value) && check(element, value);
        } else if constexpr (SequenceType<T>) {
            return read_sequence(element, value);
        } else if constexpr (std::is_same_v<T, DDS_Boolean>) {
            return is_leaf(element) && read_boolean(element, value);
        } else {
            return is_leaf(element) && read_leaf(element, value);
        }
    }

    // True when a member may stand in a document. Members that only the engine sets may not.
    template <typename T>
    static constexpr bool kReadable = !std::is_same_v<T, DDS_WireProtocolQosPolicy>;

  private:
    template <typename T>
    bool read_members(const DDS_XMLObject *element, T &value) {
        if (!has_no_text(element)) {
            return false;
        }
        const DDS_XMLObject *child = DDS_XMLObject_get_first_child(element);
        for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
            if (!has_no_attributes(child) || !read_member(element, child, value)) {
                return false;
            }
        }
        return true;
    }

    template <typename T>
    bool read_member(const DDS_XMLObject *element, const DDS_XMLObject *child, T &value) {
        const std::string_view name = DDS_XMLObject_get_tag_name(child);
        bool known = false;
        std::string expected;
        const bool well = all_members<T>([&](const auto &row) {
            using Type = std::remove_reference_t<decltype(value.*(row.place))>;
            if constexpr (kReadable<Type>) {
                if (!known && name == row.name) {
                    known = true;
                    return read(child, value.*(row.place));
                }
            }
            return true;
        });
        return known ? well : unknown_element(element, child, member_names<T>());
    }

    template <typename T>
    static std::string member_names() {
        std::string names;
        for_each_member<T>([&](const auto &row) {
            using Type = std::remove_reference_t<decltype(std::declval<T>().*(row.place))>;
            if constexpr (kReadable<Type>) {
                names += names.empty() ? "" : ", ";
                names += row.name;
            }
        });
        return names;
    }

    // A list holds what its children named `element` say, in place of what it held.
    template <typename Seq>
    bool read_sequence(const DDS_XMLObject *list, Seq &value) {
        using Functions = SequenceFunctions<Seq>;
        if constexpr (std::is_same_v<Seq, DDS_PropertySeq>) {
            return has_no_text(list) && for_each_element(list, [&](const DDS_XMLObject *element) {
                       return read_property(element, value);
                   });
        } else {
            if constexpr (std::is_same_v<Seq, DDS_OctetSeq>) {
                if (DDS_XMLObject_get_first_child(list) == nullptr) {
                    return read_base64(list, value);
                }
            }
            DDS_Long length = 0;
            return has_no_text(list) && resize(value, 0) &&
                   for_each_element(list, [&](const DDS_XMLObject *element) {
                       ++length;
                       return is_leaf(element) && resize(value, length) &&
                              read_leaf(element, *Functions::at(&value, length - 1));
                   });
        }
    }

    template <typename Seq>
    bool resize(Seq &value, DDS_Long length) {
        return SequenceFunctions<Seq>::ensure_length(&value, length) ||
               error_.set_out_of_resources();
    }

    template <typename Visit>
    bool for_each_element(const DDS_XMLObject *list, Visit visit) {
        const DDS_XMLObject *child = DDS_XMLObject_get_first_child(list);
        for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
            if (std::string_view(DDS_XMLObject_get_tag_name(child)) != "element") {
                return unknown_element(list, child, "element");
            }
            if (!has_no_attributes(child) || !visit(child)) {
                return false;
            }
        }
        return true;
    }

    template <typename Enumeration>
    requires requires { Enumerators<Enumeration>::kNames; }
    bool read_leaf(const DDS_XMLObject *element, Enumeration &value) {
        const auto found = value_of_name(text_of(element), Enumerators<Enumeration>::kNames);
        if (!found) {
            return wrong_value(element, list_of_names(Enumerators<Enumeration>::kNames));
        }
        value = static_cast<Enumeration>(*found);
        return true;
    }
    bool read_leaf(const DDS_XMLObject *element, DDS_Long &value);
    bool read_leaf(const DDS_XMLObject *element, DDS_Octet &value);
    bool read_leaf(const DDS_XMLObject *element, DDS_Char *&value);
    bool read_boolean(const DDS_XMLObject *element, DDS_Boolean &value);
    bool read_duration(const DDS_XMLObject *element, DDS_Duration_t &value);
    bool read_property(const DDS_XMLObject *element, DDS_PropertySeq &properties);
    bool read_base64(const DDS_XMLObject *element, DDS_OctetSeq &value);

    // Limits that a policy's values must keep on their own.
    template <typename T>
    bool check(const DDS_XMLObject *, const T &) {
        return true;
    }
    bool check(const DDS_XMLObject *element, const DDS_HistoryQosPolicy &value);
    bool check(const DDS_XMLObject *element, const DDS_ResourceLimitsQosPolicy &value);
    bool check(const DDS_XMLObject *element, const DDS_DurabilityServiceQosPolicy &value);
    bool check_at_least_one(const DDS_XMLObject *element, const char *name, DDS_Long value,
                            bool may_be_unlimited);

    static std::string_view text_of(const DDS_XMLObject *element) {
        return trim(DDS_XMLObject_get_text(element));
    }
    bool is_leaf(const DDS_XMLObject *element);
    bool has_no_text(const DDS_XMLObject *element);
    bool has_no_attributes(const DDS_XMLObject *element);
    bool unknown_element(const DDS_XMLObject *parent, const DDS_XMLObject *element,
                         const std::string &expected);
    bool wrong_value(const DDS_XMLObject *element, const std::string &expected);

    ReadError &error_;
};

}  // namespace kolt::qos
