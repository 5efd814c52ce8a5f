// SPDX-License-Identifier: Apache-2.0
// The configuration object of the element `distributed_logger`: its extension class, its life, and
// the search for it in a parsed tree.

#include "vur_dl/XMLConfig.h"

#include <cstring>

#include "distlogger/report.hpp"
#include "kolt/os.h"

namespace {

using vur_dl::report;

constexpr const char *kTagName = "distributed_logger";

// Fills in a record of zero bytes. False, with the error reported, on failure.
bool initialize(VUR_DL_XMLConfig &self, DDS_XMLExtensionClass *extension_class,
                DDS_XMLObject *parent, DDS_XMLContext *context) {
    constexpr const char *kMethodName = "VUR_DL_XMLConfig_new";
    self.extensionListener = static_cast<VUR_DL_XMLConfig_ExtensionClassListener *>(
        DDS_XMLExtensionClass_get_user_data(extension_class));
    if (self.extensionListener == nullptr) {
        report("could not get extension listener", kMethodName);
        return false;
    }
    const auto log = self.extensionListener->parserErrorLogFunction;
    if (log == nullptr) {
        report("invalid parsing error log function", kMethodName);
        return false;
    }
    self.parsedDLOptions = VUR_DL_Options_createDefault();
    if (self.parsedDLOptions == nullptr) {
        log("default options creation failed", kMethodName,
            DDS_XMLContext_get_current_line_number(context));
        return false;
    }
    // Unlike options made in code, those of a document leave the logger off unless they enable it.
    self.parsedDLOptions->enabled = 0;
    if (!DDS_XMLObject_initialize(&self.baseObject, extension_class, parent, kTagName, nullptr)) {
        log("XML object initialization failed", kMethodName,
            DDS_XMLContext_get_current_line_number(context));
        return false;
    }
    self.currentStatus = DL_XMLCONFIG_OTHER;
    return true;
}

}  // namespace

DDS_XMLExtensionClass *VUR_DL_XMLConfig_createXMLExtensionClass(
    VUR_DL_XMLConfig_ParseErrorLogFunction parse_error_function) {
    if (parse_error_function == nullptr) {
        report("invalid log function", __func__);
        return nullptr;
    }
    auto *listener = static_cast<VUR_DL_XMLConfig_ExtensionClassListener *>(
        KOLT_Heap_allocate(sizeof(VUR_DL_XMLConfig_ExtensionClassListener)));
    if (listener == nullptr) {
        report("could not allocate extension class listener", __func__);
        return nullptr;
    }
    listener->parserErrorLogFunction = parse_error_function;
    DDS_XMLExtensionClass *extension_class =
        DDS_XMLExtensionClass_new(kTagName, listener, nullptr, 0U, VUR_DL_XMLConfig_onStartElement,
                                  VUR_DL_XMLConfig_onEndElement, VUR_DL_XMLConfig_new,
                                  VUR_DL_XMLConfig_delete, VUR_DL_XMLConfig_save);
    if (extension_class == nullptr) {
        report("creation of XML extension class failed", __func__);
    }
    return extension_class;
}

void VUR_DL_XMLConfig_destroyXMLExtensionClass(DDS_XMLExtensionClass *extension_class) {
    KOLT_Heap_free(DDS_XMLExtensionClass_get_user_data(extension_class));
    DDS_XMLExtensionClass_delete(extension_class);
}

VUR_DL_XMLConfig *VUR_DL_XMLConfig_create() {
    auto *self = static_cast<VUR_DL_XMLConfig *>(KOLT_Heap_allocate(sizeof(VUR_DL_XMLConfig)));
    if (self == nullptr) {
        report("could not allocate XML options object", __func__);
    }
    return self;
}

DDS_XMLObject *VUR_DL_XMLConfig_new(DDS_XMLExtensionClass *extension_class,
                                    DDS_XMLObject *parent_object, const char **,
                                    DDS_XMLContext *context) {
    VUR_DL_XMLConfig *self = VUR_DL_XMLConfig_create();
    if (self == nullptr) {
        report("XML object creation failed", __func__);
        return nullptr;
    }
    *self = VUR_DL_XMLConfig{};
    if (!initialize(*self, extension_class, parent_object, context)) {
        VUR_DL_XMLConfig_finalize(self);
        return nullptr;
    }
    return &self->baseObject;
}

void VUR_DL_XMLConfig_finalize(VUR_DL_XMLConfig *self) {
    if (self->parsedDLOptions != nullptr) {
        self->parsedDLOptions = VUR_DL_Options_delete(self->parsedDLOptions);
    }
    DDS_XMLObject_finalize(&self->baseObject);
    KOLT_Heap_free(self);
}

void VUR_DL_XMLConfig_delete(DDS_XMLObject *self) {
    VUR_DL_XMLConfig_finalize(reinterpret_cast<VUR_DL_XMLConfig *>(self));
}

VUR_DL_Options *VUR_DL_XMLConfig_getDLOptions(const VUR_DL_XMLConfig *self) {
    if (self == nullptr) {
        report("invalid XML configuration object", __func__);
        return nullptr;
    }
    return self->parsedDLOptions;
}

DDS_XMLObject *VUR_DL_XMLConfig_getDLXMLObjectFromRoot(DDS_XMLObject *root_object) {
    for (DDS_XMLObject *object = root_object; object != nullptr;
         object = DDS_XMLObject_get_next_sibling(object)) {
        const char *tag_name = DDS_XMLObject_get_tag_name(object);
        if (tag_name != nullptr && std::strcmp(tag_name, kTagName) == 0) {
            return object;
        }
        DDS_XMLObject *found =
            VUR_DL_XMLConfig_getDLXMLObjectFromRoot(DDS_XMLObject_get_first_child(object));
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

const VUR_DL_XMLConfig *VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(DDS_XMLObject *root_object) {
    return reinterpret_cast<const VUR_DL_XMLConfig *>(
        VUR_DL_XMLConfig_getDLXMLObjectFromRoot(root_object));
}
