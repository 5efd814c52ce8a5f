// Standard output of the command: lines, flushed in batches, with colour on a terminal.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace distlog {

// Members appear in the order in which they were set.
using Json = nlohmann::ordered_json;
// One line; bytes that are not UTF-8 become U+FFFD.
std::string to_line(const Json &json);

class Output {
  public:
    Output();

    // False once standard output cannot be written any more (its reader has gone).
    bool alive() const { return alive_; }
    bool colour() const { return colour_; }
    void line(std::string_view text);
    void flush();

  private:
    bool colour_;
    bool alive_ = true;
};

// `text` in the colour that goes with a level, padded to `width`; plain when `colour` is off.
std::string level_in_colour(int level, std::string_view text, bool colour, int width);

}  // namespace distlog
