// SPDX-License-Identifier: Apache-2.0
// The library knows a tag by its name and by the state that the tags before have left, not by the
// element that it stands in: a child counts below unknown elements, too, and may end an element that
// it stands in. So the library itself is asked about each tag.
#include "check/check_logger.hpp"

#include <fmt/format.h>
#include <vur_dl/XMLConfig.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

#include "check/check_text.hpp"
#include "command/failure.hpp"
#include "kolt_internal/xml_attributes.hpp"

namespace distlog::check {
namespace {

void ignore_error(const char *, const char *, DDS_UnsignedLong) {}

// True when the text consists of the number that the library reads: nothing follows the number, and
// it was not cut to 32 bits.
bool says_only(const char *text, int value, int base) {
    char *end = nullptr;
    return std::strtoll(text, &end, base) == value && trimmed(end).empty();
}

class Reader {
  public:
    explicit Reader(std::string name)
        : name_(std::move(name)),
          class_(VUR_DL_XMLConfig_createXMLExtensionClass(ignore_error),
                 VUR_DL_XMLConfig_destroyXMLExtensionClass),
          object_(VUR_DL_XMLConfig_new(class_.get(), nullptr, nullptr, &context_),
                  VUR_DL_XMLConfig_delete) {
        if (class_ == nullptr || object_ == nullptr) {
            throw Failure("out of memory");
        }
    }

    LoggerElement read(const DDS_XMLObject *element, Problems &problems) {
        check_outside(element, true);
        for_each_child(element, [&](const DDS_XMLObject *child) { visit(child, element, true); });
        std::stable_sort(
            problems_.begin(), problems_.end(),
            [](const Problem &left, const Problem &right) { return left.line < right.line; });
        for (Problem &problem : problems_) {
            problems.add(std::move(problem));
        }
        OptionsPtr options(VUR_DL_Options_dup(VUR_DL_XMLConfig_getDLOptions(&config())),
                           VUR_DL_Options_delete);
        if (options == nullptr) {
            throw Failure("out of memory");
        }
        return {std::move(options), std::move(lines_)};
    }

  private:
    VUR_DL_XMLConfig &config() { return *reinterpret_cast<VUR_DL_XMLConfig *>(object_.get()); }
    bool is_open(const Element &element) { return config().currentStatus == element.state; }

    void add(Severity severity, const DDS_XMLObject *object, std::string text) {
        problems_.push_back(
            {severity, name_, DDS_XMLObject_get_line_number(object), std::move(text)});
    }
    void warn(const DDS_XMLObject *object, std::string text) {
        add(Severity::kWarning, object, std::move(text));
    }

    // True when the tag, or one in it, is in force. In an element that has no effect, what has none
    // either is not `worth_telling`.
    bool visit(const DDS_XMLObject *object, const DDS_XMLObject *parent, bool worth_telling) {
        const Element *element = find_element(tag_of(object));
        VUR_DL_XMLConfig_onStartElement(object_.get(), DDS_XMLObject_get_tag_name(object), nullptr,
                                        &context_);
        const bool opened = element != nullptr && is_open(*element);
        bool holds_some = false;
        for_each_child(object, [&](const DDS_XMLObject *child) {
            holds_some = visit(child, object, opened) || holds_some;
        });
        if (element == nullptr) {
            judge_unknown(object, parent, holds_some, worth_telling);
            return holds_some;
        }
        const bool holds_value = element->accepts != nullptr;
        const bool in_force = holds_value ? is_open(*element) : opened;
        judge_place(object, *element, parent, in_force, worth_telling);
        if (in_force) {
            note_line(object, *element);
            check_outside(object, !holds_value);
        }
        if (!holds_value || !in_force || check_value(object, *element)) {
            end(object);
        }
        return in_force || holds_some;
    }

    void end(const DDS_XMLObject *object) {
        const DL_XMLConfig_TagType before = config().currentStatus;
        errno = 0;  // the library takes a range error that it finds there for its own
        VUR_DL_XMLConfig_onEndElement(object_.get(), DDS_XMLObject_get_tag_name(object),
                                      DDS_XMLObject_get_text(object), &context_);
        if (config().currentStatus != before) {
            ended_last_ = object;
        }
    }

    void judge_unknown(const DDS_XMLObject *object, const DDS_XMLObject *parent, bool holds_some,
                       bool worth_telling) {
        if (!worth_telling) {
            return;
        }
        const std::string names = child_names(tag_of(parent));
        warn(object, fmt::format("{}element <{}> in <{}> has no effect{}; expected: {}",
                                 names.empty() ? "" : "unknown ", tag_of(object), tag_of(parent),
                                 holds_some ? " of its own, unlike elements in it" : "",
                                 names.empty() ? "a value" : names));
    }

    void judge_place(const DDS_XMLObject *object, const Element &element,
                     const DDS_XMLObject *parent, bool in_force, bool worth_telling) {
        const std::string what = fmt::format("element <{}> in <{}>", element.name, tag_of(parent));
        const bool at_home = element.parent == tag_of(parent);
        if (!at_home && (in_force || worth_telling)) {
            warn(object,
                 fmt::format("{} does not belong there, but in <{}>{}", what, element.parent,
                             in_force ? "; it is in force all the same" : ", and has no effect"));
        } else if (!in_force && worth_telling && ended_last_ != nullptr) {
            warn(object, fmt::format("{} has no effect because of <{}> in line {}, which does not "
                                     "belong there",
                                     what, tag_of(ended_last_),
                                     DDS_XMLObject_get_line_number(ended_last_)));
        }
    }

    // Keeps the line of a tag that is in force. A second list continues the first one, and so does a
    // second <thread>.
    void note_line(const DDS_XMLObject *object, const Element &element) {
        const bool repeats = lines_.contains(&element);
        lines_[&element] = DDS_XMLObject_get_line_number(object);
        if (repeats && element.accepts != nullptr && element.value != nullptr) {
            warn(object, fmt::format("<{}> is given again; the last one holds", element.name));
        }
    }

    // Warns of attributes, and of text where elements belong.
    void check_outside(const DDS_XMLObject *object, bool holds_elements) {
        const char *unknown = kolt::unknown_attribute(DDS_XMLObject_get_attributes(object));
        if (unknown != nullptr) {
            warn(object, fmt::format("unknown attribute \"{}\" of <{}> has no effect; expected: "
                                     "none",
                                     unknown, tag_of(object)));
        }
        std::string useless = holds_elements ? useless_text(object) : "";
        if (!useless.empty()) {
            warn(object, std::move(useless));
        }
    }

    // False, with an error, when the library refuses the text. It would stop there; what follows is
    // read as if the text had been right.
    bool check_value(const DDS_XMLObject *object, const Element &element) {
        const char *text = DDS_XMLObject_get_text(object);
        if (!element.accepts(text)) {
            add(Severity::kError, object,
                fmt::format("wrong value of <{}>: {}; expected: {}", element.name, quoted(text),
                            element.expected));
            const Element *parent = find_element(element.parent);
            config().currentStatus = parent == nullptr ? DL_XMLCONFIG_OTHER : parent->state;
            return false;
        }
        const std::optional<int> value =
            element.number == nullptr ? std::nullopt : element.number(text);
        if (value && !says_only(text, *value, element.base)) {
            warn(object, fmt::format("<{}>: {} is read as {}; expected: {}", element.name,
                                     quoted(text), *value, element.expected));
        }
        return true;
    }

    std::string name_;
    DDS_XMLContext context_ = DDS_XML_CONTEXT_INITIALIZER;
    std::unique_ptr<DDS_XMLExtensionClass, void (*)(DDS_XMLExtensionClass *)> class_;
    std::unique_ptr<DDS_XMLObject, void (*)(DDS_XMLObject *)> object_;
    // The element whose end has closed one that the library had open.
    const DDS_XMLObject *ended_last_ = nullptr;
    std::map<const Element *, std::uint32_t> lines_;
    std::vector<Problem> problems_;
};

}  // namespace

LoggerElement read_logger(const DDS_XMLObject *element, const std::string &name,
                          Problems &problems) {
    return Reader(name).read(element, problems);
}

}  // namespace distlog::check
