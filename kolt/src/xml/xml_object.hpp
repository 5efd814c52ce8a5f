// SPDX-License-Identifier: Apache-2.0
// Functions on objects and extension classes that the files of the XML facility share.
#pragma once

#include <string>
#include <vector>

#include "kolt/xml.h"

struct DDS_XMLExtensionClass {
    std::string tag_name;
    std::vector<std::string> parent_tag_names;  // empty: any
    void *user_data;
    DDS_XMLExtensionClass_OnStartElementFunction on_start_element;
    DDS_XMLExtensionClass_OnEndElementFunction on_end_element;
    DDS_XMLExtensionClass_NewFunction new_object;
    DDS_XMLExtensionClass_DeleteFunction delete_object;
    DDS_XMLExtensionClass_SaveFunction save;
};

namespace kolt::xml {

// A plain object, which delete_object releases; nullptr when memory runs out.
DDS_XMLObject *new_object(DDS_XMLObject *parent, const char *tag_name,
                          const char *const *attributes);
// Releases any object, by its class where it has one. nullptr is ignored.
void delete_object(DDS_XMLObject *object);
// Puts an object without a parent behind the children of `parent`.
void append_child(DDS_XMLObject *parent, DDS_XMLObject *child);

}  // namespace kolt::xml
