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
 * Every child may be left out and then has the default of VUR_DL_Options, except `enabled`: without
 * it the logger stays off. Children of other names are ignored (xml/distlog.xsd finds them).
 *
 * An application that has a document and wants a logger calls VUR_DL_XMLConfig_startFromFile. One
 * that parses documents itself (kolt/xml.h) registers the extension class of
 * VUR_DL_XMLConfig_createXMLExtensionClass with its parser, finds the element in the parsed tree
 * with VUR_DL_XMLConfig_getXMLConfigFromXMLRoot, and hands its options to
 * VUR_DL_XMLConfig_startWithXMLConfiguration.
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
 * starts the logger as its first `distributed_logger` element says, with the QoS that
 * VUR_DL_XMLConfig_chooseQosProfile finds.
 *
 *   domainParticipant  where the logger creates its entities; borrowed, must outlive the logger.
 *                      NULL: the logger creates a participant of its own in `domainId`
 *   domainId           0 to 230; not used with a participant
 *   applicationKind    copied; NULL: none
 *
 * 1 when the logger was started, and also, with a printed line, when the element does not enable it
 * or it runs already. 0, with a printed line that says why, when the document cannot be read or is
 * wrong, when it has no such element, and when the logger does not start. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_startFromFile(const char *path,
                                                 DDS_DomainParticipant *domainParticipant,
                                                 int domainId, const char *applicationKind);

/* The name of the QoS profile that is the logger's own. */
#define VUR_DL_XML_CONFIG_QOS_PROFILE "distributed_logger"

/* Names the profile "distributed_logger" in the options (VUR_DL_Options_setQosLibrary,
 * VUR_DL_Options_setQosProfile), from the first loaded library that has one; the logger's entities
 * then have the QoS that it says. Options that name a library or a profile stay as they are, and so
 * do all others when there is no such profile. 1; 0, with a printed line, for NULL and when memory
 * runs out. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_chooseQosProfile(VUR_DL_Options *options);

/* Starts the logger with parsed options, which stay the caller's and into which the participant and
 * the application kind (NULL: left as it is) are set. 1 on success, and, with a printed line, when
 * the options do not enable the logger or it runs already. 0, with a printed line, for missing
 * options or a missing participant, and when the logger does not start. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_startWithXMLConfiguration(
    DDS_DomainParticipant *domainParticipant, VUR_DL_Options *options, const char *applicationKind);

/* ---- The configuration object -------------------------------------------------------------- */

/* Told of every error inside the element: the text, the function that found it, and the line. The
 * texts are valid during the call. Called on the parser's thread. */
typedef void (*VUR_DL_XMLConfig_ParseErrorLogFunction)(const char *message, const char *methodName,
                                                       DDS_UnsignedLong lineNumber);

typedef struct VUR_DL_XMLConfig_ExtensionClassListener {
    VUR_DL_XMLConfig_ParseErrorLogFunction parserErrorLogFunction;
} VUR_DL_XMLConfig_ExtensionClassListener;

/* Which child of the element the parser is inside. */
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

/* The extension class of the element. NULL, with a printed line, for a NULL function or when memory
 * runs out. Delete it with the function below, after the parser. */
VUR_DL_EXPORT DDS_XMLExtensionClass *VUR_DL_XMLConfig_createXMLExtensionClass(
    VUR_DL_XMLConfig_ParseErrorLogFunction parseErrorFunction);
VUR_DL_EXPORT void VUR_DL_XMLConfig_destroyXMLExtensionClass(DDS_XMLExtensionClass *extensionClass);

/* The options that the element says, owned by the object. NULL, with a printed line, for NULL. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_XMLConfig_getDLOptions(const VUR_DL_XMLConfig *self);
/* The first element `distributed_logger` at or below `rootObject` or among the siblings that follow
 * it, in document order; NULL when there is none. It belongs to the tree. */
VUR_DL_EXPORT DDS_XMLObject *VUR_DL_XMLConfig_getDLXMLObjectFromRoot(DDS_XMLObject *rootObject);
/* The same, seen as the configuration object. */
VUR_DL_EXPORT const VUR_DL_XMLConfig *VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(
    DDS_XMLObject *rootObject);

/* ---- Callbacks of the extension class ------------------------------------------------------ */

/* Uninitialised memory for an object; NULL, with a printed line, when memory runs out. */
VUR_DL_EXPORT VUR_DL_XMLConfig *VUR_DL_XMLConfig_create(void);
/* Releases an object and its options; it must not be NULL. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_finalize(VUR_DL_XMLConfig *self);
VUR_DL_EXPORT DDS_XMLObject *VUR_DL_XMLConfig_new(DDS_XMLExtensionClass *extensionClass,
                                                  DDS_XMLObject *parentObject,
                                                  const char **attributes, DDS_XMLContext *context);
VUR_DL_EXPORT void VUR_DL_XMLConfig_delete(DDS_XMLObject *self);
VUR_DL_EXPORT void VUR_DL_XMLConfig_onStartElement(DDS_XMLObject *self, const char *tagName,
                                                   const char **attributes,
                                                   DDS_XMLContext *context);
VUR_DL_EXPORT void VUR_DL_XMLConfig_onEndElement(DDS_XMLObject *self, const char *tagName,
                                                 const char *elementText, DDS_XMLContext *context);
/* Writes the element. The filter level is the running logger's, when it runs, which remote commands
 * may have changed; everything else is as parsed. Sets the context's error flag when the object has
 * no options or an option cannot be written. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_save(const DDS_XMLObject *self,
                                         DDS_XMLSaveContext *saveContext);

/* ---- Conversions of element texts ---------------------------------------------------------- */

/* All of them report an error to `logFunction` (required) and set `context->error`. Numbers are
 * read from the start of the text: leading white space and a sign are accepted, whatever follows
 * the digits is ignored, and the value is cut to 32 bits. "Any base": decimal, 0x hexadecimal or,
 * with a leading zero, octal. */

/* SILENT, FATAL, SEVERE, ERROR, WARNING, NOTICE, INFO, DEBUG or TRACE (0, 100, 200, ... 800;
 * capitals only), or a decimal number of 0 or more. -1 on error. */
VUR_DL_EXPORT int VUR_DL_XMLConfig_getFilterLevelFromString(
    const char *string, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* A number of 1 or more, in any base. On error `*integer` stays as it was. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getQueueSize(
    int *integer, const char *string, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Names of mask bits in any letter case, joined by '|', blanks around them allowed: MASK_DEFAULT,
 * FLOATING_POINT, STDIO, REALTIME_PRIORITY, PRIORITY_ENFORCE, each also with its prefix
 * (THREAD_SETTINGS_STDIO, DDS_THREAD_SETTINGS_STDIO). A blank text is 0. On a name that is none of
 * these the bits before it stay set. At most 2047 characters. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadSettingsKindMask(
    DDS_ThreadSettingsKindMask *threadSettingsMask, const char *elementText,
    DDS_XMLContext *context, VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Ends `string` at its first '|' and returns what follows; NULL when it has none. */
VUR_DL_EXPORT char *VUR_DL_XMLConfig_separateFirstElementFromMask(char *string);
/* THREAD_PRIORITY_DEFAULT, _HIGH, _ABOVE_NORMAL, _NORMAL, _BELOW_NORMAL, _LOW (also with DDS_ in
 * front), MAX_PRIORITY, NORM_PRIORITY or MIN_PRIORITY in any letter case, or any decimal number. A
 * text that is neither is an error and sets 0. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadPriority(
    DDS_Long *integer, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* THREAD_STACK_SIZE_DEFAULT (also with DDS_ in front, any letter case), or bytes, 0 or more, in any
 * base. On error `*integer` stays as it was. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadStackSize(
    DDS_Long *integer, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Appends a processor's number, 0 or more, in any base. On error the list has grown by one element
 * all the same, which is 0. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_addElementToThreadCpuList(
    DDS_LongSeq *sequence, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* CPU_NO_ROTATION or CPU_RR_ROTATION, also with THREAD_SETTINGS_ or DDS_THREAD_SETTINGS_ in front,
 * in any letter case. On error `*result` stays as it was. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_getThreadCpuRotation(
    DDS_ThreadSettingsCpuRotationKind *result, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction logFunction);
/* Writes thread settings as an element; nothing when they are the default ones. A rotation that is
 * none sets the context's error flag and leaves the element open. */
VUR_DL_EXPORT void VUR_DL_XMLConfig_saveThreadSettings(const char *tagName,
                                                       const DDS_ThreadSettings_t *threadSettings,
                                                       DDS_XMLSaveContext *context);

VUR_DL_EXTERN_C_END
