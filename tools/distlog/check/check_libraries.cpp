// SPDX-License-Identifier: Apache-2.0
// Looks through the libraries for what the library passes over without a word.
#include "check/check_libraries.hpp"

#include <fmt/format.h>

#include <set>
#include <string_view>

#include "check/check_text.hpp"

namespace distlog::check {
namespace {

class Libraries {
  public:
    Libraries(const std::string &name, Problems &problems) : name_(name), problems_(problems) {}

    void check(const DDS_XMLObject *library) {
        check_text(library);
        for_each_child(library, [&](const DDS_XMLObject *profile) {
            check_text(profile);
            for_each_child(profile, [&](const DDS_XMLObject *qos) {
                // A policy that stands twice is read twice, the second time over the first.
                for_each_child(qos, [&](const DDS_XMLObject *policy) { check_members(policy); });
            });
        });
    }

  private:
    void warn(const DDS_XMLObject *object, std::string text) {
        problems_.add(Severity::kWarning, name_, DDS_XMLObject_get_line_number(object),
                      std::move(text));
    }

    void check_text(const DDS_XMLObject *object) {
        std::string useless = useless_text(object);
        if (!useless.empty()) {
            warn(object, std::move(useless));
        }
    }

    // Only the elements of a list may stand more than once.
    void check_members(const DDS_XMLObject *parent) {
        std::set<std::string_view> seen;
        for_each_child(parent, [&](const DDS_XMLObject *child) {
            if (tag_of(child) != "element" && !seen.insert(tag_of(child)).second) {
                warn(child, fmt::format("<{}> is given again in <{}>; expected: once",
                                        tag_of(child), tag_of(parent)));
            }
            check_members(child);
        });
    }

    const std::string &name_;
    Problems &problems_;
};

}  // namespace

void check_libraries(const Document &document, Problems &problems) {
    for_each_child(document.root(), [&](const DDS_XMLObject *child) {
        if (tag_of(child) == "qos_library") {
            Libraries(document.name(), problems).check(child);
        }
    });
}

}  // namespace distlog::check
