/* SPDX-License-Identifier: Apache-2.0 */
/* The logger's configuration record.
 *
 * An application fills in a record and hands it to VUR_DL_DistLogger_setOptions
 * (vur_dl/DistLogger.h), which keeps a copy for the next creation of the logger. A record belongs
 * to one thread at a time.
 *
 * Setters return DDS_RETCODE_OK. On failure they print one line that says why and return
 *   DDS_RETCODE_NO_DATA        when `self` is NULL
 *   DDS_RETCODE_BAD_PARAMETER  when the value is out of bounds or NULL; the old value stays
 *   DDS_RETCODE_ERROR          when memory runs out; a string field is then absent
 *
 * Getters that are given NULL print one line and return the value named at each.
 */
#pragma once

#include "kolt/domain.h"
#include "kolt/thread_settings.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

typedef struct VUR_DL_Options {
    /* The participant in which the logger creates its entities; borrowed, must be enabled when the
     * logger is created, must enable what is created in it, and must outlive the logger. A callback
     * of its listeners that does not return holds up the logger's State and commands. NULL: the
     * logger creates one of its own in `domainId`. */
    DDS_DomainParticipant *domainParticipant;
    /* A participant object of another language binding; borrowed, never used by the library. */
    void *cppDomainParticipant;
    /* Not 0: a configuration in XML asks for the logger to be started. */
    int enabled;
    /* 0: the logger neither takes nor answers remote commands. */
    int remoteAdministrationEnabled;
    /* Messages with a numerically greater level are not published: 0 silent, 100 fatal, 200 severe,
     * 300 error, 400 warning, 500 notice, 600 info, 700 debug, 800 trace, or any value between. */
    int filterLevel;
    /* The domain of the participant that the logger creates: 0 to 230. */
    DDS_UnsignedLong domainId;
    /* The QoS library and profile for all entities: both or neither. Owned by the record. */
    DDS_Char *qosLibrary;
    DDS_Char *qosProfile;
    /* The number of messages that can wait to be published: 1 or more. A full queue drops the
     * newest message. */
    DDS_UnsignedLong queueSize;
    /* The settings of the thread that publishes. Owned by the record. */
    DDS_ThreadSettings_t threadSettings;
    /* The kind of application, for people who watch. At most 256 characters are published. Owned by
     * the record. */
    DDS_Char *applicationKind;
    /* 1: every log call also prints its message on standard output. */
    int echoToStdout;
    /* Not 0: the middleware's own log messages join the distributed log. */
    int logInfrastructureMessages;
} VUR_DL_Options;

/* Sets every field to its default without releasing what the record held: enabled 1, remote
 * administration 1, filter level 600, domain 0, queue size 128, default thread settings, echo 1,
 * middleware messages 1, everything else absent. `self` must not be NULL. */
VUR_DL_EXPORT void VUR_DL_Options_initialize(VUR_DL_Options *self);
/* Returns a new record with the defaults, to be released with VUR_DL_Options_delete; NULL, with a
 * printed line, when memory runs out. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_Options_createDefault(void);
/* Copies deeply into a freshly initialised record. A string that is absent in `other` leaves the
 * one in `self` as it is. Returns 1 on success; 0, with a printed line, for a NULL or when memory
 * runs out. `self` then holds a part of the copy. */
VUR_DL_EXPORT int VUR_DL_Options_copy(VUR_DL_Options *self, const VUR_DL_Options *other);
/* Returns 1 when all fields are equal: participants by identity, strings by content. An absent
 * string equals only an absent one. Returns 0 otherwise, also when both records are NULL. */
VUR_DL_EXPORT int VUR_DL_Options_equals(const VUR_DL_Options *self, const VUR_DL_Options *other);
/* Returns a new record with the content of `other`, to be released with VUR_DL_Options_delete; NULL
 * for NULL or when memory runs out. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_Options_dup(const VUR_DL_Options *other);
/* Releases what the record owns, but not the record. Prints a line when `self` is NULL. */
VUR_DL_EXPORT void VUR_DL_Options_finalize(VUR_DL_Options *self);
/* Finalises and frees a record that _createDefault or _dup returned. Prints a line when `self` is
 * NULL. Always returns NULL. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_Options_delete(VUR_DL_Options *self);

/* ---- Accessors ----------------------------------------------------------------------------- */

/* Returns NULL for a NULL record. */
VUR_DL_EXPORT DDS_DomainParticipant *VUR_DL_Options_getDomainParticipant(
    const VUR_DL_Options *self);
/* Borrows the participant, which must not be NULL and must outlive the logger. The logger is not
 * created in one that is not enabled yet. */
VUR_DL_EXPORT DDS_ReturnCode_t
VUR_DL_Options_setDomainParticipant(VUR_DL_Options *self, DDS_DomainParticipant *domainParticipant);
/* Returns 0 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_isRemoteAdministrationEnabled(const VUR_DL_Options *self);
/* Stores the number: 0 disables remote administration. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setRemoteAdministrationEnabled(VUR_DL_Options *self,
                                                                             int enabled);
/* Returns -1 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getFilterLevel(const VUR_DL_Options *self);
/* Accepts 0 or more. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setFilterLevel(VUR_DL_Options *self, int filterLevel);
/* Returns -1 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getDomainId(const VUR_DL_Options *self);
/* Accepts 0 or more. The middleware refuses numbers above 230 when the logger is created. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setDomainId(VUR_DL_Options *self, int domainId);
/* Returns the record's own string; NULL when it is absent or for a NULL record. */
VUR_DL_EXPORT const char *VUR_DL_Options_getQosLibrary(const VUR_DL_Options *self);
/* Copies the string, which must not be NULL. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setQosLibrary(VUR_DL_Options *self,
                                                            const char *qosLibrary);
/* Returns the record's own string; NULL when it is absent or for a NULL record. */
VUR_DL_EXPORT const char *VUR_DL_Options_getQosProfile(const VUR_DL_Options *self);
/* Copies the string, which must not be NULL. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setQosProfile(VUR_DL_Options *self,
                                                            const char *qosProfile);
/* Returns -1 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getQueueSize(const VUR_DL_Options *self);
/* Accepts 1 or more. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setQueueSize(VUR_DL_Options *self, int queueSize);
/* Returns the embedded settings, to be changed in place; NULL for a NULL record. */
VUR_DL_EXPORT DDS_ThreadSettings_t *VUR_DL_Options_getThreadSettings(VUR_DL_Options *self);
/* Copies the settings. On ERROR the copy was refused or memory ran out. */
VUR_DL_EXPORT DDS_ReturnCode_t
VUR_DL_Options_setThreadSettings(VUR_DL_Options *self, const DDS_ThreadSettings_t *threadSettings);
/* Returns the record's own string; NULL when it is absent or for a NULL record. */
VUR_DL_EXPORT const char *VUR_DL_Options_getApplicationKind(const VUR_DL_Options *self);
/* Copies the string, which must not be NULL. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setApplicationKind(VUR_DL_Options *self,
                                                                 const char *applicationKind);
/* Returns 0 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getEchoToStdout(const VUR_DL_Options *self);
/* Switches the echo on with 1 and off with any other value. On the running logger's record
 * (VUR_DL_DistLogger_getOptions) the change takes effect at once, also while other threads log. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setEchoToStdout(VUR_DL_Options *self,
                                                              int echoToStdout);
/* Returns 0 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getLogInfrastructureMessages(const VUR_DL_Options *self);
/* Stores the number: 0 keeps the middleware's messages out of the distributed log. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setLogInfrastructureMessages(VUR_DL_Options *self,
                                                                           int log);

VUR_DL_EXTERN_C_END
