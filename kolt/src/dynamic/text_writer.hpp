// SPDX-License-Identifier: Apache-2.0
// Text formats: the calls by which the formatter tells a writer about a value.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "kolt/print_format.h"

namespace kolt::dynamic {

// The label of a value: a member's name, with the index for an element of that member.
struct Label {
    std::string_view name;
    bool is_element = false;
    std::size_t index = 0;
};

enum class Group { kMembers, kElements };

enum class Scalar {
    kLiteral,     // a number or truth value, the same in all formats
    kEnumerator,  // a name
    kString,      // any bytes
    kNan,         // these three come without text
    kInfinity,
    kNegativeInfinity
};

// Receives a value as a series of calls and makes text of it. The calls may throw std::bad_alloc.
class TextWriter {
  public:
    // `format` must outlive the writer.
    explicit TextWriter(const DDS_PrintFormat &format) : format_(format) {}
    virtual ~TextWriter() = default;
    TextWriter(const TextWriter &) = delete;
    TextWriter &operator=(const TextWriter &) = delete;

    // Around everything. `type_name` is the type's name without its modules.
    virtual void begin(std::string_view type_name) = 0;
    virtual void end(std::string_view type_name) = 0;
    // Around the members of a structure or union, or the elements of a sequence or array.
    virtual void open(const Label &label, Group group) = 0;
    virtual void close(const Label &label, Group group) = 0;
    virtual void value(const Label &label, Scalar scalar, std::string_view text) = 0;

    const std::string &text() const { return text_; }

  protected:
    const DDS_PrintFormat &format() const { return format_; }
    void indent() { text_.append(depth_ * format_.indent_width, ' '); }
    void new_line() { text_ += format_.new_line; }

    std::string text_;
    std::size_t depth_ = 0;

  private:
    const DDS_PrintFormat &format_;
};

// A writer of the format; NULL for a kind that does not exist. `format` must outlive it.
std::unique_ptr<TextWriter> make_text_writer(const DDS_PrintFormat &format);

}  // namespace kolt::dynamic
