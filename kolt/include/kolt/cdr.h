/* SPDX-License-Identifier: Apache-2.0 */
/* The CDR engine: records to bytes and back, driven by type codes (DDS-XTypes 1.3, clause 7.4).
 *
 * A type code is compiled, once per type and representation, into flat programs. A program set is
 * immutable and shared: any number of threads may run it at once.
 *
 * Every buffer here begins with the 4-byte encapsulation header (identifier, options) of
 * DDS-XTypes 1.3, 7.6.3.1.2. Reading accepts XCDR1 and XCDR2 in both byte orders and every form
 * that the standard allows; writing uses the byte order that the identifier names. An identifier
 * that is not one of the type's (unknown, a representation that the type does not allow, another
 * extensibility) fails.
 *
 * The standard leaves a choice in writing, which is made as follows:
 *  - XCDR1 parameters have the short header when id <= 0x3f00 and length <= 65535, the extended
 *    one otherwise; lengths are those of the values, without padding; the list ends with
 *    PID_SENTINEL (0x3f02), length 0, no flags.
 *  - XCDR2 members have length code 0 to 3 for one primitive or enumeration, 5 to 7 where the value
 *    begins with a count that serves as NEXTINT, 4 otherwise.
 *  - Members go in the order of their declaration; absent optional members of mutable types are
 *    left out. Key members, members that say so, and the discriminator of a mutable union
 *    (member 0) carry the must-understand flag.
 *  - The options tell how many bytes of padding make the payload a multiple of 4. The padding
 *    itself is not written: it is added where a payload leaves for the wire. Readers take both.
 *
 * The standard leaves a choice in reading, too:
 *  - An enumeration may hold a value without an enumerator, and a discriminator may select no
 *    branch: both arrive as they came, with no branch read.
 *  - A branch of a mutable union that is not the selected one is passed over.
 *  - A string of length 0, without even its terminator, is "". A string ends at its first NUL,
 *    wherever its length ends.
 *  - Of several values of one member the first counts.
 *  - The end of an XCDR1 list may have any flags and any length.
 *  - An appendable type may end before its last members wherever something else tells its end: in
 *    XCDR2 always, in XCDR1 as the whole sample or as the value of a parameter.
 */
#pragma once

#include "kolt/typecode.h"

KOLT_EXTERN_C_BEGIN

/* RTPS encapsulation identifiers, as a 16-bit number whose high byte goes first. */
#define KOLT_ENCAPSULATION_CDR_BE 0x0000U
#define KOLT_ENCAPSULATION_CDR_LE 0x0001U
#define KOLT_ENCAPSULATION_PL_CDR_BE 0x0002U
#define KOLT_ENCAPSULATION_PL_CDR_LE 0x0003U
#define KOLT_ENCAPSULATION_CDR2_BE 0x0006U
#define KOLT_ENCAPSULATION_CDR2_LE 0x0007U
#define KOLT_ENCAPSULATION_D_CDR2_BE 0x0008U
#define KOLT_ENCAPSULATION_D_CDR2_LE 0x0009U
#define KOLT_ENCAPSULATION_PL_CDR2_BE 0x000aU
#define KOLT_ENCAPSULATION_PL_CDR2_LE 0x000bU
#define KOLT_ENCAPSULATION_INVALID 0xffffU
#define KOLT_ENCAPSULATION_HEADER_SIZE 4U

/* The size that stands for "unbounded, or more than 32 bits hold". */
#define KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED 2147482623U /* 0x7FFFFBFF */

/* The compiled programs of one type, for all representations that it allows. */
typedef struct KOLT_TypePrograms KOLT_TypePrograms;

/* The programs of a structure, union or enumeration, compiled on first use and kept in a
 * process-wide list. Each success takes a reference, to be given back with _release. NULL when
 * the type code is malformed (logged) or memory runs out. Thread-safe. */
KOLT_EXPORT const KOLT_TypePrograms *KOLT_TypePrograms_acquire(const DDS_TypeCode *type);
/* Gives a reference back; the last one removes the programs from the list. NULL is ignored. */
KOLT_EXPORT void KOLT_TypePrograms_release(const KOLT_TypePrograms *self);
KOLT_EXPORT const DDS_TypeCode *KOLT_TypePrograms_type(const KOLT_TypePrograms *self);

/* Exact size in bytes of `record` in an encapsulation, header included, padding not; 0 when the
 * record cannot be serialised (a string or sequence longer than its bound, a NULL string, 2 GiB or
 * more) or the encapsulation is not the type's. */
KOLT_EXPORT DDS_UnsignedLong KOLT_Cdr_serialized_size(const KOLT_TypePrograms *self,
                                                      DDS_UnsignedShort encapsulation,
                                                      const void *record);
/* Largest and smallest size of any record, header included;
 * KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED where there is no limit; 0 for an encapsulation that is
 * not the type's. */
KOLT_EXPORT DDS_UnsignedLong KOLT_Cdr_serialized_max_size(const KOLT_TypePrograms *self,
                                                          DDS_UnsignedShort encapsulation);
KOLT_EXPORT DDS_UnsignedLong KOLT_Cdr_serialized_min_size(const KOLT_TypePrograms *self,
                                                          DDS_UnsignedShort encapsulation);
/* Largest size of the key in big-endian XCDR2, without a header (RTPS key hash rules). */
KOLT_EXPORT DDS_UnsignedLong KOLT_Cdr_key_max_size(const KOLT_TypePrograms *self);

/* Writes header and body of `record`. `*length` becomes the bytes written. False when the buffer is
 * too small or the record cannot be serialised; the buffer's content is then undefined. */
KOLT_EXPORT DDS_Boolean KOLT_Cdr_serialize(const KOLT_TypePrograms *self,
                                           DDS_UnsignedShort encapsulation, const void *record,
                                           DDS_Octet *buffer, size_t capacity, size_t *length);
/* Reads a sample into an initialised record, whatever it holds: its buffers are used again. Members
 * that are absent get their initial values; unknown members are skipped unless they must be
 * understood, which fails the sample. Branches of a union other than the selected one stay as they
 * are. False for anything malformed and when memory runs out; the record is then still safe to
 * finalise and to read again into. */
KOLT_EXPORT DDS_Boolean KOLT_Cdr_deserialize(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                             size_t length, void *record);

/* The same for the key-only payload that goes with dispose and unregister (RTPS 2.3, 9.6.4.8 /
 * DDS-XTypes 1.3, 7.6.8): key members in the order of their ids. In XCDR1 they keep the frames of
 * the type (a parameter list for a mutable one). In XCDR2 they are plain, whatever the
 * extensibility, under the type's identifier: that is what the engine's own types exchange. Reading
 * takes both forms of XCDR2, and plain XCDR2 (0x0006, 0x0007) for every type; all keys must be
 * there. The non-key members of the record stay as they are. A type without keys has an empty
 * payload. */
KOLT_EXPORT DDS_UnsignedLong KOLT_Cdr_serialized_key_size(const KOLT_TypePrograms *self,
                                                          DDS_UnsignedShort encapsulation,
                                                          const void *record);
KOLT_EXPORT DDS_Boolean KOLT_Cdr_serialize_key(const KOLT_TypePrograms *self,
                                               DDS_UnsignedShort encapsulation, const void *record,
                                               DDS_Octet *buffer, size_t capacity, size_t *length);
KOLT_EXPORT DDS_Boolean KOLT_Cdr_deserialize_key(const KOLT_TypePrograms *self,
                                                 const DDS_Octet *bytes, size_t length,
                                                 void *record);

/* The canonical key: the key members in big-endian XCDR2 without header, which is what RTPS hashes
 * and what two samples of one instance have in common. `*length` in: capacity, out: bytes needed;
 * false when it does not fit or the input is malformed. An unkeyed type has an empty key. */
KOLT_EXPORT DDS_Boolean KOLT_Cdr_key_of_record(const KOLT_TypePrograms *self, const void *record,
                                               DDS_Octet *key, size_t *length);
/* From serialised bytes, header included, without reading more than the keys. `is_key_only`: the
 * bytes are a key-only payload instead of a sample. */
KOLT_EXPORT DDS_Boolean KOLT_Cdr_key_of_serialized(const KOLT_TypePrograms *self,
                                                   const DDS_Octet *bytes, size_t length,
                                                   DDS_Boolean is_key_only, DDS_Octet *key,
                                                   size_t *key_length);
/* The RTPS key hash (RTPS 2.3, 9.6.3.8) of a canonical key: the key itself padded with zeros when
 * KOLT_Cdr_key_max_size is at most 16, its MD5 otherwise or when `force_md5` is set. */
KOLT_EXPORT void KOLT_Cdr_keyhash(const KOLT_TypePrograms *self, const DDS_Octet *key,
                                  size_t key_length, DDS_Boolean force_md5, DDS_Octet hash[16]);

/* ---- Reading one field of a serialised sample -------------------------------------------- */

/* A value found in serialised bytes. Strings point into the bytes and are not terminated by
 * contract (`length` characters). */
typedef struct KOLT_CdrValue {
    DDS_TCKind kind; /* DDS_TK_NULL when the field is absent */
    union {
        DDS_LongLong integer; /* BOOLEAN, CHAR, OCTET, SHORT, USHORT, LONG, ULONG, LONGLONG, ENUM */
        DDS_UnsignedLongLong unsigned_integer; /* ULONGLONG */
        DDS_Double real;                       /* FLOAT, DOUBLE */
        struct {
            const DDS_Char *characters;
            size_t length;
        } string;
    } value;
} KOLT_CdrValue;

/* One step into a value: a member (by its index in the type code), or an element (of an array with
 * several dimensions: counted row by row). */
typedef struct KOLT_CdrPathStep {
    DDS_Boolean is_element;
    DDS_UnsignedLong index;
} KOLT_CdrPathStep;

/* Finds the primitive, enumeration or string at `path` without reading anything else into memory. A
 * field that is not in the sample (a member that the writer left out, a branch that is not
 * selected, an element past the end) gives its default value, or DDS_TK_NULL for an optional
 * member, a branch that is not selected or an element past the end. False when the path does not
 * lead to such a field or the bytes are malformed. */
KOLT_EXPORT DDS_Boolean KOLT_Cdr_find_field(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                            size_t length, const KOLT_CdrPathStep *path,
                                            size_t path_length, KOLT_CdrValue *value);

KOLT_EXTERN_C_END
