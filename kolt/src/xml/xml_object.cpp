// SPDX-License-Identifier: Apache-2.0
// The tree of elements.

#include "xml/xml_object.hpp"

#include <cstring>

#include "kolt/os.h"

namespace kolt::xml {
namespace {

// One block: the pointers, then the strings that they point to. nullptr when memory runs out.
char **copy_attributes(const char *const *attributes) {
    std::size_t count = 0;
    std::size_t bytes = 0;
    for (; attributes[count] != nullptr; ++count) {
        bytes += std::strlen(attributes[count]) + 1;
    }
    void *block = KOLT_Heap_allocate((count + 1) * sizeof(char *) + bytes);
    if (block == nullptr) {
        return nullptr;
    }
    auto **copies = static_cast<char **>(block);
    char *place = static_cast<char *>(block) + (count + 1) * sizeof(char *);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t size = std::strlen(attributes[i]) + 1;
        std::memcpy(place, attributes[i], size);
        copies[i] = place;
        place += size;
    }
    copies[count] = nullptr;
    return copies;
}

void unlink_from_parent(DDS_XMLObject *self) {
    DDS_XMLObject *parent = self->_parent;
    if (parent == nullptr) {
        return;
    }
    DDS_XMLObject *previous = self->_previous_sibling;
    DDS_XMLObject *next = self->_next_sibling;
    (previous != nullptr ? previous->_next_sibling : parent->_first_child) = next;
    (next != nullptr ? next->_previous_sibling : parent->_last_child) = previous;
    self->_parent = nullptr;
    self->_previous_sibling = nullptr;
    self->_next_sibling = nullptr;
}

}  // namespace

DDS_XMLObject *new_object(DDS_XMLObject *parent, const char *tag_name,
                          const char *const *attributes) {
    auto *object = static_cast<DDS_XMLObject *>(KOLT_Heap_allocate(sizeof(DDS_XMLObject)));
    if (object != nullptr &&
        !DDS_XMLObject_initialize(object, nullptr, parent, tag_name, attributes)) {
        KOLT_Heap_free(object);
        return nullptr;
    }
    return object;
}

void delete_object(DDS_XMLObject *object) {
    if (object == nullptr) {
        return;
    }
    if (object->_extension_class != nullptr) {
        object->_extension_class->delete_object(object);
        return;
    }
    DDS_XMLObject_finalize(object);
    KOLT_Heap_free(object);
}

void append_child(DDS_XMLObject *parent, DDS_XMLObject *child) {
    child->_parent = parent;
    child->_previous_sibling = parent->_last_child;
    (parent->_last_child != nullptr ? parent->_last_child->_next_sibling : parent->_first_child) =
        child;
    parent->_last_child = child;
}

}  // namespace kolt::xml

DDS_Boolean DDS_XMLObject_initialize(DDS_XMLObject *self, DDS_XMLExtensionClass *extension_class,
                                     DDS_XMLObject *parent, const char *tag_name,
                                     const char *const *attributes) {
    if (self == nullptr || tag_name == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    *self = DDS_XMLObject{};
    self->_tag_name = DDS_String_dup(tag_name);
    const bool has_attributes = attributes != nullptr && attributes[0] != nullptr;
    if (has_attributes) {
        self->_attributes = kolt::xml::copy_attributes(attributes);
    }
    if (self->_tag_name == nullptr || (has_attributes && self->_attributes == nullptr)) {
        DDS_XMLObject_finalize(self);
        return DDS_BOOLEAN_FALSE;
    }
    self->_extension_class = extension_class;
    if (parent != nullptr) {
        kolt::xml::append_child(parent, self);
    }
    return DDS_BOOLEAN_TRUE;
}

void DDS_XMLObject_finalize(DDS_XMLObject *self) {
    if (self == nullptr) {
        return;
    }
    // A child is out of the list before it is deleted, whatever its class does with it.
    while (DDS_XMLObject *child = self->_first_child) {
        kolt::xml::unlink_from_parent(child);
        kolt::xml::delete_object(child);
    }
    kolt::xml::unlink_from_parent(self);
    DDS_String_free(self->_tag_name);
    KOLT_Heap_free(self->_attributes);
    DDS_String_free(self->_text);
    *self = DDS_XMLObject{};
}

const char *DDS_XMLObject_get_tag_name(const DDS_XMLObject *self) {
    return self == nullptr ? nullptr : self->_tag_name;
}

const char *DDS_XMLObject_get_text(const DDS_XMLObject *self) {
    if (self == nullptr) {
        return nullptr;
    }
    return self->_text == nullptr ? "" : self->_text;
}

const char *DDS_XMLObject_get_attribute(const DDS_XMLObject *self, const char *name) {
    const char *const *attribute = DDS_XMLObject_get_attributes(self);
    if (attribute == nullptr || name == nullptr) {
        return nullptr;
    }
    for (; attribute[0] != nullptr && attribute[1] != nullptr; attribute += 2) {
        if (std::strcmp(attribute[0], name) == 0) {
            return attribute[1];
        }
    }
    return nullptr;
}

const char *const *DDS_XMLObject_get_attributes(const DDS_XMLObject *self) {
    return self == nullptr ? nullptr : self->_attributes;
}

DDS_XMLObject *DDS_XMLObject_get_parent(const DDS_XMLObject *self) {
    return self == nullptr ? nullptr : self->_parent;
}

DDS_XMLObject *DDS_XMLObject_get_first_child(const DDS_XMLObject *self) {
    return self == nullptr ? nullptr : self->_first_child;
}

DDS_XMLObject *DDS_XMLObject_get_next_sibling(const DDS_XMLObject *self) {
    return self == nullptr ? nullptr : self->_next_sibling;
}

DDS_XMLObject *DDS_XMLObject_find_child(const DDS_XMLObject *self, const char *tag_name) {
    if (self == nullptr || tag_name == nullptr) {
        return nullptr;
    }
    DDS_XMLObject *child = self->_first_child;
    while (child != nullptr && std::strcmp(child->_tag_name, tag_name) != 0) {
        child = child->_next_sibling;
    }
    return child;
}

DDS_XMLExtensionClass *DDS_XMLObject_get_extension_class(const DDS_XMLObject *self) {
    return self == nullptr ? nullptr : self->_extension_class;
}

DDS_UnsignedLong DDS_XMLObject_get_line_number(const DDS_XMLObject *self) {
    return self == nullptr ? 0U : self->_line_number;
}
