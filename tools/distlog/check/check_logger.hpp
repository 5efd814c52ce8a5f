// SPDX-License-Identifier: Apache-2.0
// One element `distributed_logger`: the options that the library reads out of it, and the problems.
#pragma once

#include <kolt/xml.h>
#include <vur_dl/Options.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "check/check_elements.hpp"
#include "check/check_problem.hpp"

namespace distlog::check {

using OptionsPtr = std::unique_ptr<VUR_DL_Options, VUR_DL_Options *(*)(VUR_DL_Options *)>;

struct LoggerElement {
    OptionsPtr options;
    std::map<const Element *, std::uint32_t> lines;  // of the tags that set an option
};

// Hands the tags of the element to the library, one by one, and looks what it does with each.
// Problems are those of the document `name`. After an error, the options are not to be used.
LoggerElement read_logger(const DDS_XMLObject *element, const std::string &name,
                          Problems &problems);

}  // namespace distlog::check
