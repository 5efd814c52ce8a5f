// SPDX-License-Identifier: Apache-2.0
// The text formats: JSON, XML, and the default ones, in lines or on one line.

#include "dynamic/text_escape.hpp"
#include "dynamic/text_writer.hpp"

namespace kolt::dynamic {
namespace {

// Groups in brackets, with commas between what is in them.
class BracketWriter : public TextWriter {
  public:
    using TextWriter::TextWriter;

    void open(const Label &label, Group group) override {
        separate();
        key(label);
        open_bracket(group);
    }
    void close(const Label &, Group group) override { close_bracket(group); }
    void value(const Label &label, Scalar scalar, std::string_view text) override {
        separate();
        key(label);
        append_scalar(scalar, text);
    }

  protected:
    virtual void append_key(std::string_view name) = 0;
    virtual void append_scalar(Scalar scalar, std::string_view text) = 0;
    // Between two values on one line.
    virtual const char *gap() const = 0;

    void open_bracket(Group group) {
        text_ += group == Group::kMembers ? '{' : '[';
        ++depth_;
        first_ = true;
    }
    void close_bracket(Group group) {
        --depth_;
        if (!first_) {
            new_line();
            indent();
        }
        text_ += group == Group::kMembers ? '}' : ']';
        first_ = false;
    }
    void separate() {
        if (!first_) {
            text_ += ',';
            text_ += gap();
        }
        new_line();
        indent();
        first_ = false;
    }
    void key(const Label &label) {
        if (!label.is_element) {
            append_key(label.name);
        }
    }

  private:
    bool first_ = true;
};

class JsonWriter final : public BracketWriter {
  public:
    using BracketWriter::BracketWriter;

    void begin(std::string_view type_name) override {
        if (format().include_root_elements) {
            open_bracket(Group::kMembers);
            separate();
            append_key(type_name);
        }
        open_bracket(Group::kMembers);
    }
    void end(std::string_view) override {
        close_bracket(Group::kMembers);
        if (format().include_root_elements) {
            close_bracket(Group::kMembers);
        }
    }

  private:
    void append_key(std::string_view name) override {
        append_json_string(text_, name);
        text_ += *format().new_line != '\0' ? ": " : ":";
    }
    void append_scalar(Scalar scalar, std::string_view text) override {
        switch (scalar) {
            case Scalar::kLiteral:
                text_ += text;
                break;
            case Scalar::kEnumerator:
            case Scalar::kString:
                append_json_string(text_, text);
                break;
            default:
                text_ += "null";
                break;
        }
    }
    const char *gap() const override { return ""; }
};

// Appends a value as both default formats write it.
void append_plain(std::string &text, Scalar scalar, std::string_view value) {
    switch (scalar) {
        case Scalar::kLiteral:
        case Scalar::kEnumerator:
            text += value;
            break;
        case Scalar::kString:
            append_json_string(text, value);
            break;
        case Scalar::kNan:
            text += "nan";
            break;
        case Scalar::kInfinity:
            text += "inf";
            break;
        case Scalar::kNegativeInfinity:
            text += "-inf";
            break;
    }
}

// The default format on one line: {a: 1, b: [2, 3]}
class FlowWriter final : public BracketWriter {
  public:
    using BracketWriter::BracketWriter;

    void begin(std::string_view) override { open_bracket(Group::kMembers); }
    void end(std::string_view) override { close_bracket(Group::kMembers); }

  private:
    void append_key(std::string_view name) override {
        text_ += name;
        text_ += ": ";
    }
    void append_scalar(Scalar scalar, std::string_view text) override {
        append_plain(text_, scalar, text);
    }
    const char *gap() const override { return " "; }
};

// The default format in lines: "a: 1", "b[0]: 2", and the members of "c:" one step further in.
class LineWriter final : public TextWriter {
  public:
    using TextWriter::TextWriter;

    void begin(std::string_view) override {}
    void end(std::string_view) override {}

    void open(const Label &label, Group group) override {
        group_is_empty_ = true;
        if (group == Group::kMembers) {
            start_line(label);
            text_ += ':';
            ++depth_;
        }
    }
    void close(const Label &label, Group group) override {
        if (group == Group::kMembers) {
            --depth_;
        } else if (group_is_empty_) {
            start_line(label);
            text_ += ": []";
        }
        group_is_empty_ = false;
    }
    void value(const Label &label, Scalar scalar, std::string_view text) override {
        start_line(label);
        text_ += ": ";
        append_plain(text_, scalar, text);
        group_is_empty_ = false;
    }

  private:
    void start_line(const Label &label) {
        if (!text_.empty()) {
            new_line();
        }
        indent();
        text_ += label.name;
        if (label.is_element) {
            text_ += '[' + std::to_string(label.index) + ']';
        }
    }

    bool group_is_empty_ = true;
};

class XmlWriter final : public TextWriter {
  public:
    using TextWriter::TextWriter;

    void begin(std::string_view type_name) override {
        if (format().include_root_elements) {
            start_tag(type_name);
            ++depth_;
        }
    }
    void end(std::string_view type_name) override {
        if (format().include_root_elements) {
            --depth_;
            start_line();
            end_tag(type_name);
        }
    }
    void open(const Label &label, Group) override {
        start_tag(tag(label));
        ++depth_;
    }
    void close(const Label &label, Group) override {
        --depth_;
        start_line();
        end_tag(tag(label));
    }
    void value(const Label &label, Scalar scalar, std::string_view text) override {
        start_tag(tag(label));
        switch (scalar) {
            case Scalar::kLiteral:
            case Scalar::kEnumerator:
            case Scalar::kString:
                append_xml_text(text_, text);
                break;
            // As XML Schema writes them.
            case Scalar::kNan:
                text_ += "NaN";
                break;
            case Scalar::kInfinity:
                text_ += "INF";
                break;
            case Scalar::kNegativeInfinity:
                text_ += "-INF";
                break;
        }
        end_tag(tag(label));
    }

  private:
    static std::string_view tag(const Label &label) {
        return label.is_element ? "item" : label.name;
    }
    void start_line() {
        if (!text_.empty()) {
            new_line();
        }
        indent();
    }
    void start_tag(std::string_view name) {
        start_line();
        text_ += '<';
        text_ += name;
        text_ += '>';
    }
    void end_tag(std::string_view name) {
        text_ += "</";
        text_ += name;
        text_ += '>';
    }
};

}  // namespace

std::unique_ptr<TextWriter> make_text_writer(const DDS_PrintFormat &format) {
    switch (format.kind) {
        case DDS_JSON_PRINT_FORMAT:
            return std::make_unique<JsonWriter>(format);
        case DDS_XML_PRINT_FORMAT:
            return std::make_unique<XmlWriter>(format);
        case DDS_DEFAULT_PRINT_FORMAT:
            if (*format.new_line == '\0') {
                return std::make_unique<FlowWriter>(format);
            }
            return std::make_unique<LineWriter>(format);
        default:
            return nullptr;
    }
}

}  // namespace kolt::dynamic
