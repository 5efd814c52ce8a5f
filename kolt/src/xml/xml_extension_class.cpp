// SPDX-License-Identifier: Apache-2.0
// Extension classes: the elements of other libraries.

#include <new>

#include "xml/xml_object.hpp"

DDS_XMLExtensionClass *DDS_XMLExtensionClass_new(
    const char *tag_name, void *user_data, const char *const *parent_tag_names,
    DDS_UnsignedLong parent_count, DDS_XMLExtensionClass_OnStartElementFunction on_start_element,
    DDS_XMLExtensionClass_OnEndElementFunction on_end_element,
    DDS_XMLExtensionClass_NewFunction new_object,
    DDS_XMLExtensionClass_DeleteFunction delete_object, DDS_XMLExtensionClass_SaveFunction save) {
    if (tag_name == nullptr || new_object == nullptr || delete_object == nullptr ||
        (parent_tag_names == nullptr && parent_count != 0U)) {
        return nullptr;
    }
    try {
        std::vector<std::string> parents(parent_tag_names, parent_tag_names + parent_count);
        return new DDS_XMLExtensionClass{
            tag_name,       std::move(parents), user_data,     on_start_element,
            on_end_element, new_object,         delete_object, save};
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void DDS_XMLExtensionClass_delete(DDS_XMLExtensionClass *self) {
    delete self;
}

void *DDS_XMLExtensionClass_get_user_data(const DDS_XMLExtensionClass *self) {
    return self == nullptr ? nullptr : self->user_data;
}

const char *DDS_XMLExtensionClass_get_tag_name(const DDS_XMLExtensionClass *self) {
    return self == nullptr ? nullptr : self->tag_name.c_str();
}
