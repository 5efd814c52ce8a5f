// SPDX-License-Identifier: Apache-2.0
// Reads a document as a plain tree, and looks what in it the library does not know.
#include "check/check_document.hpp"

#include <fmt/format.h>
#include <vur_dl/XMLConfig.h>

#include <algorithm>
#include <array>
#include <utility>

#include "check/check_text.hpp"
#include "command/failure.hpp"
#include "kolt_internal/xml_attributes.hpp"

namespace distlog::check {
namespace {

constexpr std::string_view kLogger = "distributed_logger";

// The elements that may stand below the root: the building blocks of OMG DDS-XML 1.0 and the
// logger's.
constexpr std::array<std::string_view, 7> kBuildingBlocks{kLogger,
                                                          "qos_library",
                                                          "types",
                                                          "domain_library",
                                                          "domain_participant_library",
                                                          "application_library",
                                                          "data_library"};

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
    const DDS_XMLObject *logger =
        VUR_DL_XMLConfig_getDLXMLObjectFromRoot(DDS_XMLParser_get_root(tree_.get()));
    check_root(logger, problems);
    if (logger != nullptr) {
        logger_line_ = DDS_XMLObject_get_line_number(logger);
        check_loggers(root(), logger, problems);
    }
    return true;
}

std::uint32_t Document::line_of(std::string_view element) const {
    const auto found = lines_.find(find_element(element));
    return found == lines_.end() ? 0 : found->second;
}

void Document::warn(const DDS_XMLObject *object, std::string text, Problems &problems) const {
    problems.add(Severity::kWarning, name_, DDS_XMLObject_get_line_number(object), std::move(text));
}

void Document::check_root(const DDS_XMLObject *logger, Problems &problems) const {
    const char *unknown = kolt::unknown_attribute(
        DDS_XMLObject_get_attributes(root()),
        [](std::string_view name) { return name == "version" || name == "xmlns"; });
    if (unknown != nullptr) {
        warn(root(),
             fmt::format("unknown attribute \"{}\" of <dds> has no effect; expected: version",
                         unknown),
             problems);
    }
    std::string useless = useless_text(root());
    if (!useless.empty()) {
        warn(root(), std::move(useless), problems);
    }
    for_each_child(root(), [&](const DDS_XMLObject *child) {
        if (std::find(kBuildingBlocks.begin(), kBuildingBlocks.end(), tag_of(child)) ==
            kBuildingBlocks.end()) {
            warn_of_unknown(child, logger, problems);
        }
    });
}

// The logger's element counts wherever it stands, in an unknown element, too.
void Document::warn_of_unknown(const DDS_XMLObject *object, const DDS_XMLObject *logger,
                               Problems &problems) const {
    const bool holds_logger =
        logger != nullptr &&
        VUR_DL_XMLConfig_getDLXMLObjectFromRoot(DDS_XMLObject_get_first_child(object)) == logger;
    warn(object,
         fmt::format("unknown element <{}> in <dds> has no effect{}; expected: distributed_logger, "
                     "qos_library",
                     tag_of(object),
                     holds_logger ? fmt::format(" of its own, unlike <{}> in line {}", kLogger,
                                                DDS_XMLObject_get_line_number(logger))
                                  : ""),
         problems);
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
        LoggerElement element = read_logger(child, name_, problems);
        if (child == first) {
            options_ = std::move(element.options);
            lines_ = std::move(element.lines);
        }
    });
}

}  // namespace distlog::check
