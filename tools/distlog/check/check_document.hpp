// SPDX-License-Identifier: Apache-2.0
// One configuration document, its element `distributed_logger`, and the problems around it.
#pragma once

#include <kolt/xml.h>
#include <vur_dl/Options.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "check/check_logger.hpp"
#include "check/check_problem.hpp"

namespace distlog::check {

using ParserPtr = std::unique_ptr<DDS_XMLParser, void (*)(DDS_XMLParser *)>;

// Reads one document and keeps its tree, its options and the lines that set them.
class Document {
  public:
    // Reads the file `path`; problems call it `name`, as the user does.
    Document(std::string path, std::string name);

    // Parses the document and reads the element. False when the document is not well formed.
    bool read(Problems &problems);

    const std::string &name() const { return name_; }
    const std::string &path() const { return path_; }
    // Returns the element `dds`; valid after a successful read.
    const DDS_XMLObject *root() const { return DDS_XMLParser_get_root(tree_.get()); }
    // Returns the line of the element; 0 when the document has none.
    std::uint32_t logger_line() const { return logger_line_; }
    // Returns the options of the element, with defaults for the rest. Without the element they are
    // the defaults of options made in code.
    VUR_DL_Options *options() const { return options_.get(); }
    // Returns the line that sets an option; 0 when none does.
    std::uint32_t line_of(std::string_view element) const;

  private:
    void check_root(const DDS_XMLObject *logger, Problems &problems) const;
    void warn_of_unknown(const DDS_XMLObject *object, const DDS_XMLObject *logger,
                         Problems &problems) const;
    void check_loggers(const DDS_XMLObject *object, const DDS_XMLObject *first, Problems &problems);
    void warn(const DDS_XMLObject *object, std::string text, Problems &problems) const;

    std::string path_;
    std::string name_;
    ParserPtr tree_;
    OptionsPtr options_;
    std::uint32_t logger_line_ = 0;
    std::map<const Element *, std::uint32_t> lines_;
};

}  // namespace distlog::check
