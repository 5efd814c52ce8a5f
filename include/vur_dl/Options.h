/* The logger's configuration record.
 *
 * An application fills a record and hands it to VUR_DL_DistLogger_setOptions (vur_dl/DistLogger.h),
 * which keeps a copy for the next creation of the logger. A record belongs to one thread at a time.
 *
 * Setters return DDS_RETCODE_OK, or, with one printed line that says why:
 *   DDS_RETCODE_NO_DATA        `self` is NULL
 *   DDS_RETCODE_BAD_PARAMETER  the value is out of bounds or NULL; the old value stays
 *   DDS_RETCODE_ERROR          memory ran out; a string field is then absent
 * Getters given NULL print one line and return the sentinel named at each.
 */
#pragma once

#include "kolt/domain.h"
#include "kolt/thread_settings.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

typedef struct VUR_DL_Options {
    /* Participant in which the logger creates its entities; borrowed, must outlive the logger.
     * NULL: the logger creates one of its own in `domainId`. */
    DDS_DomainParticipant *domainParticipant;
    /* A participant object of another language binding, carried along untouched; borrowed. */
    void *cppDomainParticipant;
    /* Whether a configuration in XML asks for the logger to be started. */
    int enabled;
    /* 0: the logger neither takes nor answers remote commands. */
    int remoteAdministrationEnabled;
    /* Messages with a numerically greater level are not published: 0 silent, 100 fatal, 200 severe,
     * 300 error, 400 warning, 500 notice, 600 info, 700 debug, 800 trace, or any value between. */
    int filterLevel;
    /* Domain of the participant that the logger creates: 0 to 230. */
    DDS_UnsignedLong domainId;
    /* QoS library and profile for all entities; both or neither. Owned by the record. */
    DDS_Char *qosLibrary;
    DDS_Char *qosProfile;
    /* Messages that can wait to be published: 1 or more. A full queue drops the newest. */
    DDS_UnsignedLong queueSize;
    /* Settings of the thread that publishes. Owned by the record. */
    DDS_ThreadSettings_t threadSettings;
    /* What kind of application this is, for people who watch: at most 256 characters are published.
     * Owned by the record. */
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
/* A new record with the defaults; NULL when memory runs out. Delete it with VUR_DL_Options_delete.
 */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_Options_createDefault(void);
/* Deep copy into a freshly initialised record: a string that is absent in `other` leaves the one in
 * `self` as it is. 1 on success; 0 for a NULL or when memory runs out, `self` is then copied in
 * part. */
VUR_DL_EXPORT int VUR_DL_Options_copy(VUR_DL_Options *self, const VUR_DL_Options *other);
/* 1 when all fields are equal: participants by identity, strings by content (an absent string
 * equals an absent one only). 0 otherwise, also when both records are NULL. */
VUR_DL_EXPORT int VUR_DL_Options_equals(const VUR_DL_Options *self, const VUR_DL_Options *other);
/* A new record with the content of `other`; NULL for NULL or when memory runs out. Delete it with
 * VUR_DL_Options_delete. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_Options_dup(const VUR_DL_Options *other);
/* Releases what the record owns. NULL prints a line. */
VUR_DL_EXPORT void VUR_DL_Options_finalize(VUR_DL_Options *self);
/* Finalises and frees a record of _createDefault or _dup. Always returns NULL. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_Options_delete(VUR_DL_Options *self);

/* ---- Accessors ----------------------------------------------------------------------------- */

/* NULL for a NULL record. */
VUR_DL_EXPORT DDS_DomainParticipant *VUR_DL_Options_getDomainParticipant(
    const VUR_DL_Options *self);
/* Borrows the participant, which must not be NULL. */
VUR_DL_EXPORT DDS_ReturnCode_t
VUR_DL_Options_setDomainParticipant(VUR_DL_Options *self, DDS_DomainParticipant *domainParticipant);
/* 0 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_isRemoteAdministrationEnabled(const VUR_DL_Options *self);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setRemoteAdministrationEnabled(VUR_DL_Options *self,
                                                                             int enabled);
/* -1 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getFilterLevel(const VUR_DL_Options *self);
/* 0 or more. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setFilterLevel(VUR_DL_Options *self, int filterLevel);
/* -1 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getDomainId(const VUR_DL_Options *self);
/* 0 or more; the middleware refuses what is above 230 when the logger is created. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setDomainId(VUR_DL_Options *self, int domainId);
/* The record's own string; NULL when absent or for a NULL record. */
VUR_DL_EXPORT const char *VUR_DL_Options_getQosLibrary(const VUR_DL_Options *self);
/* Copies the string, which must not be NULL. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setQosLibrary(VUR_DL_Options *self,
                                                            const char *qosLibrary);
VUR_DL_EXPORT const char *VUR_DL_Options_getQosProfile(const VUR_DL_Options *self);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setQosProfile(VUR_DL_Options *self,
                                                            const char *qosProfile);
/* -1 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getQueueSize(const VUR_DL_Options *self);
/* 1 or more. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setQueueSize(VUR_DL_Options *self, int queueSize);
/* The embedded settings, to be changed in place; NULL for a NULL record. */
VUR_DL_EXPORT DDS_ThreadSettings_t *VUR_DL_Options_getThreadSettings(VUR_DL_Options *self);
/* Copies the settings. */
VUR_DL_EXPORT DDS_ReturnCode_t
VUR_DL_Options_setThreadSettings(VUR_DL_Options *self, const DDS_ThreadSettings_t *threadSettings);
VUR_DL_EXPORT const char *VUR_DL_Options_getApplicationKind(const VUR_DL_Options *self);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setApplicationKind(VUR_DL_Options *self,
                                                                 const char *applicationKind);
/* 0 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getEchoToStdout(const VUR_DL_Options *self);
/* 1 echoes; any other value does not. With the running logger's record
 * (VUR_DL_DistLogger_getOptions) it switches the echo at once, while others log. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setEchoToStdout(VUR_DL_Options *self,
                                                              int echoToStdout);
/* 0 for a NULL record. */
VUR_DL_EXPORT int VUR_DL_Options_getLogInfrastructureMessages(const VUR_DL_Options *self);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_Options_setLogInfrastructureMessages(VUR_DL_Options *self,
                                                                           int log);

VUR_DL_EXTERN_C_END
