/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_TYPES_H
#define QVXCS_TYPES_H

/**
 * @file
 * The types by which values cross the interface.
 *
 * Widths are fixed and the same on 64-bit and 32-bit machines; only pointers have the machine's
 * width. Every status and every size is a `u32`.
 */

#include <stdint.h>

#if defined(__GNUC__)
#define QVX_EXPORT __attribute__((visibility("default")))
#else
#define QVX_EXPORT
#endif

#ifdef __cplusplus
#define QVX_BEGIN_DECLS extern "C" {
#define QVX_END_DECLS }
#else
#define QVX_BEGIN_DECLS
#define QVX_END_DECLS
#endif

/** 8-bit text up to a NUL byte: ASCII, UTF-8 or the locale's encoding, as each function says. */
typedef char astring;
/** One 16-bit unit; as `ustring*`, text in UCS-2 up to a 0 unit. */
typedef uint16_t ustring;
/** A 16-bit boolean: exactly 1 is true, any other value counts as false. */
typedef uint16_t booln;

typedef unsigned char u8;
typedef int8_t s8;
typedef uint16_t u16;
typedef int16_t s16;
typedef uint32_t u32;
typedef int32_t s32;
typedef uint64_t u64;
typedef int64_t s64;
/** A 64-bit IEEE double. */
typedef double d64;

#endif
