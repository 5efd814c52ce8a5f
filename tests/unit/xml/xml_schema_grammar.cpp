// SPDX-License-Identifier: Apache-2.0
// Reads the grammar from the schema, and out of the library's messages.
#include "unit/xml/xml_schema_grammar.h"

#include <kolt/xml.h>

#include <cctype>
#include <memory>
#include <stdexcept>
#include <vector>

namespace schema {
namespace {

using Names = std::set<std::string>;

// Of a list "a, b, c": those parts that are names, not descriptions.
bool is_name(const std::string &text) {
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '_') {
            return false;
        }
    }
    return !text.empty();
}

Names split(const std::string &list, const std::string &separator) {
    Names names;
    std::size_t begin = 0;
    while (begin <= list.size()) {
        const std::size_t end = std::min(list.find(separator, begin), list.size());
        const std::string part = list.substr(begin, end - begin);
        if (is_name(part)) {
            names.insert(part);
        }
        begin = end + separator.size();
    }
    return names;
}

// ---- The schema -------------------------------------------------------------------------------

std::string attribute(const DDS_XMLObject *object, const char *name) {
    const char *value = DDS_XMLObject_get_attribute(object, name);
    return value == nullptr ? "" : value;
}

class SchemaReader {
  public:
    // The parser of configuration documents reads it, once its root has the name of theirs.
    explicit SchemaReader(const std::string &xsd) : parser_(DDS_XMLParser_new()) {
        const std::size_t begin = xsd.find("<xs:schema");
        const std::string text = "<dds>" + xsd.substr(begin) + "</dds>";
        if (begin == std::string::npos ||
            DDS_XMLParser_parse_string(parser_.get(), text.c_str(), -1, "schema") !=
                DDS_RETCODE_OK) {
            throw std::runtime_error("the schema cannot be read");
        }
        schema_ = DDS_XMLObject_get_first_child(DDS_XMLParser_get_root(parser_.get()));
    }

    Grammar read(const std::string &name) {
        const DDS_XMLObject *declaration = find_element(schema_, name);
        if (declaration == nullptr) {
            throw std::runtime_error("the schema has no element " + name);
        }
        walk(*declaration, name);
        return std::move(grammar_);
    }

  private:
    struct Delete {
        void operator()(DDS_XMLParser *parser) const { DDS_XMLParser_delete(parser); }
    };

    template <typename Visit>
    static void for_each_child(const DDS_XMLObject *object, Visit visit) {
        for (const DDS_XMLObject *child = DDS_XMLObject_get_first_child(object); child != nullptr;
             child = DDS_XMLObject_get_next_sibling(child)) {
            visit(*child, std::string(DDS_XMLObject_get_tag_name(child)));
        }
    }

    // The first declaration of that name, at any depth.
    static const DDS_XMLObject *find_element(const DDS_XMLObject *object, const std::string &name) {
        const DDS_XMLObject *found = nullptr;
        for_each_child(object, [&](const DDS_XMLObject &child, const std::string &tag) {
            if (found == nullptr) {
                found = tag == "xs:element" && attribute(&child, "name") == name
                            ? &child
                            : find_element(&child, name);
            }
        });
        return found;
    }

    // A type or group at the top.
    const DDS_XMLObject *find_named(const std::string &name, bool group) const {
        const DDS_XMLObject *found = nullptr;
        for_each_child(schema_, [&](const DDS_XMLObject &child, const std::string &tag) {
            if ((tag == "xs:group") == group && tag != "xs:element" &&
                attribute(&child, "name") == name) {
                found = &child;
            }
        });
        return found;
    }

    // Types of the schema language itself have no definition here.
    void read_type(const std::string &name, const std::string &path) {
        if (const DDS_XMLObject *type = find_named(name, false)) {
            read_content(*type, path);
        }
    }

    void walk(const DDS_XMLObject &declaration, const std::string &path) {
        grammar_[path];
        read_type(attribute(&declaration, "type"), path);
        read_content(declaration, path);
    }

    void read_content(const DDS_XMLObject &parent, const std::string &path) {
        for_each_child(&parent, [&](const DDS_XMLObject &child, const std::string &tag) {
            const std::string value = attribute(&child, "value");
            if (tag == "xs:element") {
                const std::string name = attribute(&child, "name");
                grammar_[path].elements.insert(name);
                walk(child, path + "/" + name);
            } else if (tag == "xs:attribute") {
                grammar_[path].attributes.insert(attribute(&child, "name"));
            } else if (tag == "xs:group") {
                read_content(*find_named(attribute(&child, "ref"), true), path);
            } else if (tag == "xs:enumeration") {
                grammar_[path].names.insert(value);
            } else if (tag == "xs:pattern") {
                // Symbolic numbers are alternatives of a pattern.
                for (const std::string &name : split(value, "|")) {
                    grammar_[path].names.insert(name);
                }
            } else {
                for (const std::string &type : split(attribute(&child, "memberTypes"), " ")) {
                    read_type(type, path);
                }
                read_type(attribute(&child, "base"), path);
                read_content(child, path);
            }
        });
    }

    std::unique_ptr<DDS_XMLParser, Delete> parser_;
    const DDS_XMLObject *schema_ = nullptr;
    Grammar grammar_;
};

// ---- The library ------------------------------------------------------------------------------

class LibraryReader {
  public:
    explicit LibraryReader(const Load &load) : load_(load) {}

    Grammar read() {
        walk({"qos_library"});
        return std::move(grammar_);
    }

  private:
    using Path = std::vector<std::string>;

    static std::string name(const Path &path) {
        std::string text;
        for (const std::string &element : path) {
            text += (text.empty() ? "" : "/") + element;
        }
        return text;
    }

    // A document with this in the innermost element of the path, which may have one attribute more.
    static std::string document(const Path &path, const std::string &content,
                                const std::string &more = "") {
        std::string begin = "<dds>";
        std::string end;
        for (std::size_t i = 0; i < path.size(); ++i) {
            const bool named = path[i] == "qos_library" || path[i] == "qos_profile";
            begin += "<" + path[i] + (named ? " name=\"X\"" : "") +
                     (i + 1 == path.size() ? more : "") + ">";
            end = "</" + path[i] + ">" + end;
        }
        return begin + content + end + "</dds>";
    }

    // Infinite nanoseconds need infinite seconds beside them, and a property needs a name.
    static std::string document_with_value(const Path &path, const std::string &value) {
        const std::string &name = path.back();
        const std::string companion = name == "nanosec"     ? "<sec>DURATION_INFINITE_SEC</sec>"
                                      : name == "propagate" ? "<name>n</name>"
                                                            : "";
        const Path parent(path.begin(), path.end() - 1);
        return document(parent, companion + "<" + name + ">" + value + "</" + name + ">");
    }

    // Returns the text after "expected: " in the message; "" when the library takes the document.
    std::string expected(const std::string &text) const {
        const std::string message = load_(text);
        const std::size_t place = message.find("expected: ");
        if (message.empty() || place == std::string::npos) {
            return "";
        }
        return message.substr(place + 10);
    }

    void walk(const Path &path) {
        Place &place = grammar_[name(path)];
        const std::string attributes = expected(document(path, "", " zzz=\"1\""));
        if (attributes != "none") {
            place.attributes = split(attributes, ", ");
        }
        const std::string children = expected(document(path, "<zzz/>"));
        if (children == "a value") {
            for (const std::string &value : split(expected(document(path, "~")), ", ")) {
                // A name may be known, and refused in this place.
                if (load_(document_with_value(path, value)).empty()) {
                    place.names.insert(value);
                }
            }
            return;
        }
        place.elements = split(children, ", ");
        for (const std::string &child : place.elements) {
            Path longer = path;
            longer.push_back(child);
            walk(longer);
        }
    }

    const Load &load_;
    Grammar grammar_;
};

}  // namespace

std::string to_string(const Grammar &grammar) {
    const auto list = [](const Names &names) {
        std::string text;
        for (const std::string &name : names) {
            text += " " + name;
        }
        return text;
    };
    std::string text;
    for (const auto &[path, place] : grammar) {
        text += path + ":" + list(place.elements) + " @" + list(place.attributes) + " =" +
                list(place.names) + "\n";
    }
    return text;
}

Grammar grammar_of_schema(const std::string &xsd, const std::string &name) {
    return SchemaReader(xsd).read(name);
}

Grammar grammar_of_library(const Load &load) {
    return LibraryReader(load).read();
}

}  // namespace schema
