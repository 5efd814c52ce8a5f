// SPDX-License-Identifier: Apache-2.0
// Standard output of the command: lines, flushed in batches, with colour on a terminal.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace distlog {

// An object whose members appear in the order in which they were set.
using Json = nlohmann::ordered_json;
// Renders the object on one line. Bytes that are not UTF-8 become U+FFFD.
std::string to_line(const Json &json);

// Writes lines to standard output and notices when nobody reads them any more.
class Output {
  public:
    Output();

    // False once standard output cannot be written any more, because its reader has gone.
    bool alive() const { return alive_; }
    bool colour() const { return colour_; }
    void line(std::string_view text);
    void flush();

  private:
    bool colour_;
    bool alive_ = true;
};

// Pads `text` to `width` and, when `colour` is on, gives it the colour of the level.
std::string level_in_colour(int level, std::string_view text, bool colour, int width);

}  // namespace distlog
