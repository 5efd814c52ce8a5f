/* SPDX-License-Identifier: Apache-2.0 */
/* The logger configured by an XML document: the element `distributed_logger`.
 *
 *     <dds>
 *       <distributed_logger>
 *         <enabled>true</enabled>
 *         <filter_level>DEBUG</filter_level>
 *         <queue_size>512</queue_size>
 *         <echo_to_stdout>false</echo_to_stdout>
 *         <log_infrastructure_messages>true</log_infrastructure_messages>
 *         <thread>
 *           <mask>STDIO | REALTIME_PRIORITY</mask>
 *           <priority>10</priority>
 *           <stack_size>0x40000</stack_size>
 *           <cpu_list><element>0</element><element>1</element></cpu_list>
 *           <cpu_rotation>CPU_RR_ROTATION</cpu_rotation>
 *         </thread>
 *       </distributed_logger>
 *     </dds>
 *
 * Every child may be left out. It then has the default of VUR_DL_Options, except `enabled`, without
 * which the logger stays off. Children with other names are ignored; the schema xml/distlog.xsd
 * reports them.
 *
 * An application that has a document and wants a logger calls VUR_DL_XMLConfig_startFromFile. An
 * application that parses documents itself (kolt/xml.h) takes these steps:
 *
 *  1. It makes the extension class with VUR_DL_XMLConfig_createXMLExtensionClass and registers it
 *     with its parser.
 *  2. After the parse it finds the element with VUR_DL_XMLConfig_getXMLConfigFromXMLRoot.
 *  3. It hands the element's options (VUR_DL_XMLConfig_getDLOptions) to
 *     VUR_DL_XMLConfig_startWithXMLConfiguration.
 *
 * Objects belong to the thread that runs the parser. The functions that start the logger may be
 * called from any thread.
 */
#pragma once

#include "kolt/thread_settings.h"
#include "kolt/xml.h"
#include "vur_dl/Options.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* ---- Starting the logger from a document --------------------------------------------------- */

/* Reads the document at `path` (a path or a file URL), loads the QoS libraries that it contains
 * into the participant factory (kolt/domain.h, KOLT_DomainParticipantFactory_add_profiles), and
 * starts the logger as the document's first `distributed_logger` element says, with the QoS that
 * VUR_DL_XMLConfig_chooseQosProfile finds.
 *
 *   domainParticipant  where the logger creates its entities; borrowed, must outlive the logger.
 *                      NULL: the logger creates a participant of its own in `domainId`
 *   domainId           0 to 230; not used with a participant
 *   applicationKind    copied; NULL: none
 *
 * Returns 1 when the logger was started, and also, with a printed line, when the element does not
 * enable it or it runs already. Returns 0, with a printed line that says why, when the document
 * cannot be read or is wrong, when it has no such element, and when the logger does not start. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_startFromFile(const char *path,
                                                 DDS_DomainParticipant *domainParticipant,
                                                 int domainId, const char *applicationKind);

/* The name of the logger's own QoS profile. */
#define VUR_DL_XML_CONFIG_QOS_PROFILE "distributed_logger"

/* Names the profile "distributed_logger" of the first loaded library that has one in the options
 * (VUR_DL_Options_setQosLibrary, VUR_DL_Options_setQosProfile). The logger's entities then have the
 * QoS of that profile. Leaves the options alone when they name a library or a profile already, and
 * when there is no such profile. Returns 1 on success; 0, with a printed line, for NULL and when
 * memory runs out. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_chooseQosProfile(VUR_DL_Options *options);

/* Starts the logger with parsed options. Puts the participant (borrowed, must outlive the logger)
 * and the application kind (copied; NULL leaves the old one) into the options, which stay the
 * caller's. Returns 1 on success and also, with a printed line, when the options do not enable the
 * logger or it runs already. Returns 0, with a printed line, for missing options or a missing
 * participant, and when the logger does not start. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_startWithXMLConfiguration(
    DDS_DomainParticipant *domainParticipant, VUR_DL_Options *options, const char *applicationKind);

/* ---- The configuration object -------------------------------------------------------------- */

/* Is told of every error inside the element: the text, the function that found it, and the line.
 * The texts are valid during the call. Called on the parser's thread. */
typedef void (*VUR_DL_XMLConfig_ParseErrorLogFunction)(const char *message, const char *methodName,
                                                       DDS_UnsignedLong lineNumber);

/* What the extension class carries for its objects. */
typedef struct VUR_DL_XMLConfig_ExtensionClassListener {
    VUR_DL_XMLConfig_ParseErrorLogFunction parserErrorLogFunction;
} VUR_DL_XMLConfig_ExtensionClassListener;

/* The child of the element that the parser is inside. */
typedef enum DL_XMLConfig_TagType {
    DL_XMLCONFIG_OTHER = 0,
    DL_XMLCONFIG_FILTER_LEVEL_TAG = 1,
    DL_XMLCONFIG_ENABLED_TAG = 2,
    DL_XMLCONFIG_THREAD_TAG = 3,
    DL_XMLCONFIG_THREAD_MASK_TAG = 4,
    DL_XMLCONFIG_THREAD_PRIORITY_TAG = 5,
    DL_XMLCONFIG_THREAD_STACK_SIZE_TAG = 6,
    DL_XMLCONFIG_THREAD_CPU_LIST_TAG = 7,
    DL_XMLCONFIG_THREAD_CPU_ROTATION_TAG = 8,
    DL_XMLCONFIG_QUEUE_SIZE_TAG = 9,
    DL_XMLCONFIG_ECHO_TO_STDOUT_TAG = 10,
    DL_XMLCONFIG_LOG_INFRASTRUCTURE_MESSAGES_TAG = 11
} DL_XMLConfig_TagType;

/* One parsed element. Made, filled and deleted by the parser. */
typedef struct VUR_DL_XMLConfig {
    DDS_XMLObject baseObject;        /* first: the parser knows the record by it */
    VUR_DL_Options *parsedDLOptions; /* owned */
    DL_XMLConfig_TagType currentStatus;
    VUR_DL_XMLConfig_ExtensionClassListener *extensionListener; /* the extension class's */
} VUR_DL_XMLConfig;

/* Returns the extension class of the element; NULL, with a printed line, for a NULL function or
 * when memory runs out. Release it with VUR_DL_XMLConfig_destroyXMLExtensionClass, after the
 * parser. */
VUR_DL_EXPORT DDS_XMLExtensionClass *VUR_DL_XMLConfig_createXMLExtensionClass(
    VUR_DL_XMLConfig_ParseErrorLogFunction parseErrorFunction);
/* Releases the extension class and its listener. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_destroyXMLExtensionClass(DDS_XMLExtensionClass *extensionClass);

/* Returns the options that the element sets, owned by the object; NULL, with a printed line, for
 * NULL. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_XMLConfig_getDLOptions(const VUR_DL_XMLConfig *self);
/* Returns the first element `distributed_logger` at or below `rootObject` or among the siblings
 * that follow it, in document order; NULL when there is none. The element belongs to the tree. */
VUR_DL_EXPORT DDS_XMLObject *VUR_DL_XMLConfig_getDLXMLObjectFromRoot(DDS_XMLObject *rootObject);
/* Returns the same element as the configuration object. */
VUR_DL_EXPORT const VUR_DL_XMLConfig *VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(
    DDS_XMLObject *rootObject);

/* ---- Callbacks of the extension class ------------------------------------------------------ */

/* Returns uninitialised memory for an object; NULL, with a printed line, when memory runs out. */
VUR_DL_EXPORT VUR_DL_XMLConfig *VUR_DL_XMLConfig_create(void);
/* Releases an object and its options. `self` must not be NULL. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_finalize(VUR_DL_XMLConfig *self);
/* Returns a new object with the default options, of which `enabled` is 0; NULL, with an error
 * reported, when memory runs out or the extension class has no listener. */
VUR_DL_EXPORT DDS_XMLObject *VUR_DL_XMLConfig_new(DDS_XMLExtensionClass *extensionClass,
                                                  DDS_XMLObject *parentObject,
                                                  const char **attributes, DDS_XMLContext *context);
/* Does what _finalize does. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_delete(DDS_XMLObject *self);
/* Notes which child the parser is inside from here on. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_onStartElement(DDS_XMLObject *self, const char *tagName,
                                                   const char **attributes,
                                                   DDS_XMLContext *context);
/* Sets the option of the child that ends from its text. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_onEndElement(DDS_XMLObject *self, const char *tagName,
                                                 const char *elementText, DDS_XMLContext *context);
/* Writes the element. While the logger runs, the filter level is the one in force, which remote
 * commands may have changed; everything else is as parsed. Sets the context's error flag when the
 * object has no options or an option cannot be written. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_save(const DDS_XMLObject *self,
                                         DDS_XMLSaveContext *saveContext);

/* ---- Conversions of element texts ---------------------------------------------------------- */

/* On error the conversions call `logFunction`, which must not be NULL, and set `context->error`.
 * Numbers are read from the start of the text: leading white space and a sign are accepted, the
 * text behind the digits is ignored, and the value is cut to 32 bits. "Any base" means decimal, 0x
 * hexadecimal or, with a leading zero, octal. */

/* Accepts SILENT, FATAL, SEVERE, ERROR, WARNING, NOTICE, INFO, DEBUG or TRACE (0, 100, 200, ...
 * 800; capitals only), or a decimal number of 0 or more. Returns -1 on error. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_getFilterLevelFromString(
    const char *string, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Accepts a number of 1 or more, in any base. On error `*integer` stays as it was. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getQueueSize(
    int *integer, const char *string, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Accepts names of mask bits in any letter case, joined by '|', with or without blanks around them:
 * MASK_DEFAULT, FLOATING_POINT, STDIO, REALTIME_PRIORITY, PRIORITY_ENFORCE, each also with its
 * prefix (THREAD_SETTINGS_STDIO, DDS_THREAD_SETTINGS_STDIO). A blank text means 0. At an unknown
 * name the bits before it stay set. The text has at most 2047 characters. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadSettingsKindMask(
    DDS_ThreadSettingsKindMask *threadSettingsMask, const char *elementText,
    DDS_XMLContext *context, VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Ends `string` at its first '|' and returns the text that follows; NULL when there is no '|'. */
VUR_DL_EXPORT char *VUR_DL_XMLConfig_separateFirstElementFromMask(char *string);
/* Accepts THREAD_PRIORITY_DEFAULT, _HIGH, _ABOVE_NORMAL, _NORMAL, _BELOW_NORMAL, _LOW (also with
 * DDS_ in front), MAX_PRIORITY, NORM_PRIORITY or MIN_PRIORITY in any letter case, or any decimal
 * number. Any other text is an error and sets 0. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadPriority(
    DDS_Long *integer, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Accepts THREAD_STACK_SIZE_DEFAULT (also with DDS_ in front, in any letter case), or a number of
 * bytes, 0 or more, in any base. On error `*integer` stays as it was. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadStackSize(
    DDS_Long *integer, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Appends the number of a processor, 0 or more, in any base. On error the list still grows by one
 * element, which is 0. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_addElementToThreadCpuList(
    DDS_LongSeq *sequence, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Accepts CPU_NO_ROTATION or CPU_RR_ROTATION, also with THREAD_SETTINGS_ or DDS_THREAD_SETTINGS_ in
 * front, in any letter case. On error `*result` stays as it was. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadCpuRotation(
    DDS_ThreadSettingsCpuRotationKind *result, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Writes thread settings as an element; writes nothing when they are the default ones. A rotation
 * without a name sets the context's error flag and leaves the element open. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_saveThreadSettings(const char *tagName,
                                                       const DDS_ThreadSettings_t *threadSettings,
                                                       DDS_XMLSaveContext *context);

VUR_DL_EXTERN_C_END
