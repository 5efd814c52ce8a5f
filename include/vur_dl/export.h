/* SPDX-License-Identifier: Apache-2.0 */
/* The one macro that makes a logger symbol part of the library's interface. */
#pragma once

#if defined(__GNUC__)
#define VUR_DL_EXPORT __attribute__((visibility("default")))
#else
#define VUR_DL_EXPORT
#endif

#ifdef __cplusplus
#define VUR_DL_EXTERN_C_BEGIN extern "C" {
#define VUR_DL_EXTERN_C_END }
#else
#define VUR_DL_EXTERN_C_BEGIN
#define VUR_DL_EXTERN_C_END
#endif
