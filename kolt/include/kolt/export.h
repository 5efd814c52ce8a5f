/* SPDX-License-Identifier: Apache-2.0 */
/* The one macro that makes a KOLT symbol part of the library's interface. */
#pragma once

#if defined(__GNUC__)
#define KOLT_EXPORT __attribute__((visibility("default")))
#else
#define KOLT_EXPORT
#endif

#ifdef __cplusplus
#define KOLT_EXTERN_C_BEGIN extern "C" {
#define KOLT_EXTERN_C_END }
#else
#define KOLT_EXTERN_C_BEGIN
#define KOLT_EXTERN_C_END
#endif

/* The type under an enumeration. C callers may store any number in one; with a fixed type C++ reads
 * it back as that number. */
#ifdef __cplusplus
#define KOLT_ENUM_BASE : int
#else
#define KOLT_ENUM_BASE
#endif
