/* Type objects: a type as others can look it up (DDS-XTypes 1.3, 7.3.4 and 7.6.3).
 *
 * Writers and readers are announced with the identifiers of their type, and the engine answers
 * those who ask for the type objects behind them, so that a tool which was built without the type
 * can decode samples, and readers and writers are matched by what their types have in common
 * instead of by the names of the types. All of that happens by itself; the function here is for
 * those who want to have or compare the descriptions.
 *
 * A type is announced without a description, and matched by its name, when it has none (see below)
 * or when it holds a mutable union: programs of the engine cannot read samples by the description
 * of such a union, and programs of its IDL compiler, which compiles none, describe the bytes as a
 * structure, with which a union does not match. A participant with the property
 * "dds.participant.announce_types" set to "false" announces all its types so, which is for
 * peers whose descriptions are not what the engine expects.
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
 * BAD_PARAMETER for NULLs and a malformed type code. UNSUPPORTED, logged, for a type that is no
 * structure or union, or that has a part which the standard has no object for: without members,
 * without a name or a member's name of 1 to 256 characters, an enumeration that is mutable or has
 * one value twice, a union with two default branches, arrays with 2^32 elements or more; or when
 * the description is too large to be announced. Annotations other than the id, the key, optional
 * and must-understand are not part of it. */
KOLT_EXPORT DDS_ReturnCode_t KOLT_TypeObject_describe(const DDS_TypeCode *type, const char *name,
                                                      DDS_OctetSeq *information,
                                                      DDS_OctetSeq *mapping);

KOLT_EXTERN_C_END
