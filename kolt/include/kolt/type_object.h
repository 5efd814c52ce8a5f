/* SPDX-License-Identifier: Apache-2.0 */
/* Type objects: a type as others can look it up (DDS-XTypes 1.3, 7.3.4 and 7.6.3).
 *
 * Writers and readers are announced with the identifiers of their type, and the engine answers
 * requests for the type objects behind them. So a tool that was built without the type can decode
 * samples, and readers and writers are matched by the members that their types share instead of by
 * the types' names. All of that happens by itself; the function here is for programs that want to
 * have or compare the descriptions.
 *
 * A type is announced without a description, and matched by its name, when it has none (see below)
 * or when it holds a mutable union: programs of the engine cannot read samples by the description
 * of such a union, and programs of its IDL compiler, which compiles none, describe the bytes as a
 * structure, with which a union does not match. A participant whose property
 * "dds.participant.announce_types" is "false" announces none of its types with a description. That
 * serves peers whose descriptions the engine does not understand.
 */
#pragma once

#include "kolt/sequence.h"
#include "kolt/typecode.h"

KOLT_EXTERN_C_BEGIN

/* Describes a structure or union, and all types that it consists of, in minimal and complete form.
 *
 * `name` is the name that the type is registered under. Types in the modules of the type code's
 * name are described as lying in the modules of that one: if "A::B::T" is registered as "x::b::T",
 * "A::B::U" is called "x::b::U" and "A::V" is called "x::V".
 *
 * `information` becomes the serialised TypeInformation and `mapping` the serialised TypeMapping,
 * both in little-endian XCDR2 without an encapsulation header; they own their bytes.
 *
 * BAD_PARAMETER for NULLs and a malformed type code. UNSUPPORTED, logged, when the type is not a
 * structure or union, when the description is too large to be announced, or when the standard has
 * no object for a part of the type:
 *  - a structure, union or enumeration without members;
 *  - a name, of a type or a member, that is missing or not 1 to 256 characters long;
 *  - an enumeration that is mutable or has one value twice;
 *  - a union with two default branches;
 *  - an array with 2^32 elements or more.
 * Annotations other than the id, the key, optional and must-understand are not part of it. */
KOLT_EXPORT DDS_ReturnCode_t KOLT_TypeObject_describe(const DDS_TypeCode *type, const char *name,
                                                      DDS_OctetSeq *information,
                                                      DDS_OctetSeq *mapping);

KOLT_EXTERN_C_END
