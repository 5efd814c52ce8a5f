// SPDX-License-Identifier: Apache-2.0
// Reads a document twice: as a plain tree, to see everything in it, and with the logger's own
// element class, to get the options that the library gets.
#include "check/check_document.hpp"

#include <fmt/format.h>
#include <vur_dl/XMLConfig.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "check/check_text.hpp"
#include "command/failure.hpp"

namespace distlog::check {
namespace {

constexpr std::string_view kLogger = "distributed_logger";
constexpr std::size_t kShownText = 64;

// The elements that may stand below the root: the building blocks of OMG DDS-XML 1.0 and the
// logger's.
constexpr std::array<std::string_view, 7> kBuildingBlocks{kLogger,
                                                          "qos_library",
                                                          "types",
                                                          "domain_library",
                                                          "domain_participant_library",
                                                          "application_library",
                                                          "data_library"};

std::string_view tag_of(const DDS_XMLObject *object) {
    return DDS_XMLObject_get_tag_name(object);
}

// Returns the first few characters in quotes, for a message.
std::string quoted(std::string_view text) {
    return fmt::format("\"{}{}\"", text.substr(0, kShownText),
                       text.size() > kShownText ? "..." : "");
}

template <typename Visit>
void for_each_child(const DDS_XMLObject *object, Visit visit) {
    for (const DDS_XMLObject *child = DDS_XMLObject_get_first_child(object); child != nullptr;
         child = DDS_XMLObject_get_next_sibling(child)) {
        visit(child);
    }
}

// Returns the parent that an element of this name belongs in; "" when there is none.
std::string_view home_of(std::string_view name) {
    for (const Element &element : elements()) {
        if (element.name == name) {
            return element.parent;
        }
    }
    return "";
}

// True when the text consists of the number that the library reads: nothing follows the number, and
// it was not cut to 32 bits. Some elements take numbers in any base, some only decimal ones.
bool says_only(const char *text, int value) {
    for (const int base : {0, 10}) {
        char *end = nullptr;
        if (std::strtoll(text, &end, base) == value && trimmed(end).empty()) {
            return true;
        }
    }
    return false;
}

void ignore_error(const char *, const char *, DDS_UnsignedLong) {}

// Adds a hint to a message of the XML library that does not say what to look for.
std::string with_hint(const std::string &message) {
    constexpr std::pair<std::string_view, std::string_view> kHints[] = {
        {"not well-formed",
         "a bare & or <, a value without quotes, -- in a comment, or bytes of another encoding"},
        {"mismatched tag", "the tag that ends in this line has another name"},
        {"junk after document element", "a document has one <dds>"},
        {"undefined entity", "expected: &amp; &lt; &gt; &quot; &apos; or a number, like &#160;"},
        {"unknown encoding", "expected: UTF-8, UTF-16, ISO-8859-1, US-ASCII"},
        {"encoding specified", "the bytes are not in the encoding that the first line names"},
        {"XML or text declaration", "<?xml ...?> must be the very first bytes"}};
    for (const auto &[begin, hint] : kHints) {
        if (message.starts_with(begin)) {
            return fmt::format("{}; {}", message, hint);
        }
    }
    return message;
}

}  // namespace

Document::Document(std::string path, std::string name)
    : path_(std::move(path)),
      name_(std::move(name)),
      tree_(DDS_XMLParser_new(), DDS_XMLParser_delete),
      options_(VUR_DL_Options_createDefault(), VUR_DL_Options_delete) {
    if (tree_ == nullptr || options_ == nullptr) {
        throw Failure("out of memory");
    }
}

bool Document::read(Problems &problems) {
    if (DDS_XMLParser_parse_file(tree_.get(), path_.c_str()) != DDS_RETCODE_OK) {
        problems.add(Severity::kError, name_, DDS_XMLParser_get_error_line(tree_.get()),
                     with_hint(DDS_XMLParser_get_error_message(tree_.get())));
        return false;
    }
    DDS_XMLObject *root = DDS_XMLParser_get_root(tree_.get());
    check_root(problems);
    const DDS_XMLObject *logger = VUR_DL_XMLConfig_getDLXMLObjectFromRoot(root);
    if (logger != nullptr) {
        logger_line_ = DDS_XMLObject_get_line_number(logger);
        const std::size_t errors = problems.count(Severity::kError);
        check_loggers(root, logger, problems);
        if (problems.count(Severity::kError) == errors) {
            read_options(problems);
        }
    }
    return true;
}

std::uint32_t Document::line_of(const Element &element) const {
    const auto found = lines_.find(&element);
    return found == lines_.end() ? 0 : found->second;
}

void Document::warn(const DDS_XMLObject *object, std::string text, Problems &problems) const {
    problems.add(Severity::kWarning, name_, DDS_XMLObject_get_line_number(object), std::move(text));
}

void Document::check_root(Problems &problems) const {
    const std::string_view text = trimmed(DDS_XMLObject_get_text(root()));
    if (!text.empty()) {
        warn(root(), fmt::format("text in <dds> has no effect: {}", quoted(text)), problems);
    }
    for_each_child(root(), [&](const DDS_XMLObject *child) {
        if (std::find(kBuildingBlocks.begin(), kBuildingBlocks.end(), tag_of(child)) ==
            kBuildingBlocks.end()) {
            warn(child,
                 fmt::format("unknown element <{}> in <dds> has no effect; expected: "
                             "distributed_logger, qos_library",
                             tag_of(child)),
                 problems);
        }
    });
}

// Checks every logger's element, also those that do not count: a mistake in them fails the parse,
// too.
void Document::check_loggers(const DDS_XMLObject *object, const DDS_XMLObject *first,
                             Problems &problems) {
    for_each_child(object, [&](const DDS_XMLObject *child) {
        if (tag_of(child) != kLogger) {
            check_loggers(child, first, problems);
            return;
        }
        if (child != first) {
            warn(child,
                 fmt::format("this <distributed_logger> has no effect: the first one, in line {}, "
                             "holds",
                             logger_line_),
                 problems);
        }
        check_element(child, nullptr, problems);
        check_children(child, child == first, problems);
    });
}

void Document::check_children(const DDS_XMLObject *parent, bool in_force, Problems &problems) {
    for_each_child(parent, [&](const DDS_XMLObject *child) {
        const Element *element = find_element(tag_of(parent), tag_of(child));
        if (element == nullptr) {
            const std::string_view home = home_of(tag_of(child));
            warn(child,
                 home.empty()
                     ? fmt::format("unknown element <{}> in <{}> has no effect; "
                                   "expected: {}",
                                   tag_of(child), tag_of(parent), child_names(tag_of(parent)))
                     : fmt::format("element <{}> in <{}> does not belong there, but in "
                                   "<{}>",
                                   tag_of(child), tag_of(parent), home),
                 problems);
            return;
        }
        if (in_force) {
            const bool repeats = lines_.contains(element);
            lines_[element] = DDS_XMLObject_get_line_number(child);
            // A second list continues the first one, and so does a second <thread>.
            if (repeats && element->accepts != nullptr && element->value != nullptr) {
                warn(child, fmt::format("<{}> is given again; the last one holds", element->name),
                     problems);
            }
        }
        check_element(child, element, problems);
        if (element->accepts == nullptr) {
            check_children(child, in_force, problems);
        } else {
            check_value(child, *element, problems);
        }
    });
}

// Warns of attributes, of text where elements belong, and of elements where text belongs. `element`
// is nullptr for the logger's own element.
void Document::check_element(const DDS_XMLObject *object, const Element *element,
                             Problems &problems) {
    const char *const *attributes = DDS_XMLObject_get_attributes(object);
    if (attributes != nullptr) {
        warn(object,
             fmt::format("unknown attribute \"{}\" of <{}> has no effect; expected: none",
                         attributes[0], tag_of(object)),
             problems);
    }
    const DDS_XMLObject *child = DDS_XMLObject_get_first_child(object);
    const bool holds_value = element != nullptr && element->accepts != nullptr;
    if (holds_value && child != nullptr) {
        warn(child,
             fmt::format("element <{}> in <{}> has no effect; expected: a value", tag_of(child),
                         tag_of(object)),
             problems);
    }
    const std::string_view text = trimmed(DDS_XMLObject_get_text(object));
    if (!holds_value && !text.empty()) {
        warn(object,
             fmt::format("text in <{}> has no effect: {}; expected: elements", tag_of(object),
                         quoted(text)),
             problems);
    }
}

void Document::check_value(const DDS_XMLObject *object, const Element &element,
                           Problems &problems) const {
    const char *text = DDS_XMLObject_get_text(object);
    if (!element.accepts(text)) {
        problems.add(Severity::kError, name_, DDS_XMLObject_get_line_number(object),
                     fmt::format("wrong value of <{}>: {}; expected: {}", element.name,
                                 quoted(text), element.expected));
        return;
    }
    const std::optional<int> value =
        element.number == nullptr ? std::nullopt : element.number(text);
    if (value && !says_only(text, *value)) {
        warn(object,
             fmt::format("<{}>: {} is read as {}; expected: {}", element.name, quoted(text), *value,
                         element.expected),
             problems);
    }
}

void Document::read_options(Problems &problems) {
    using ClassPtr = std::unique_ptr<DDS_XMLExtensionClass, void (*)(DDS_XMLExtensionClass *)>;
    const ClassPtr extension(VUR_DL_XMLConfig_createXMLExtensionClass(ignore_error),
                             VUR_DL_XMLConfig_destroyXMLExtensionClass);
    const ParserPtr parser(DDS_XMLParser_new(), DDS_XMLParser_delete);
    if (extension == nullptr || parser == nullptr ||
        DDS_XMLParser_register_extension_class(parser.get(), extension.get()) != DDS_RETCODE_OK) {
        throw Failure("out of memory");
    }
    if (DDS_XMLParser_parse_file(parser.get(), path_.c_str()) != DDS_RETCODE_OK) {
        problems.add(Severity::kError, name_, DDS_XMLParser_get_error_line(parser.get()),
                     DDS_XMLParser_get_error_message(parser.get()));
        return;
    }
    const VUR_DL_XMLConfig *config =
        VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(DDS_XMLParser_get_root(parser.get()));
    options_.reset(VUR_DL_Options_dup(VUR_DL_XMLConfig_getDLOptions(config)));
    if (options_ == nullptr) {
        throw Failure("out of memory");
    }
}

}  // namespace distlog::check
