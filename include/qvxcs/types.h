/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_TYPES_H
#define QVXCS_TYPES_H

/**
 * @file
 * The types by which values cross the interface.
 *
 * Widths are fixed and the same on 64-bit and 32-bit machines; only pointers, `time_t` and
 * `pthread_t` have the machine's width. Every status and every size is a `u32`.
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

/** 8 bits, 0 to 255. */
typedef unsigned char u8;
/** 8 bits with a sign. */
typedef int8_t s8;
/** 16 bits, 0 to 65,535. */
typedef uint16_t u16;
/** 16 bits with a sign. */
typedef int16_t s16;
/** 32 bits, 0 to 4,294,967,295; every status and size. */
typedef uint32_t u32;
/** 32 bits with a sign. */
typedef int32_t s32;
/** 64 bits without a sign. */
typedef uint64_t u64;
/** 64 bits with a sign. */
typedef int64_t s64;
/** A 64-bit IEEE double. */
typedef double d64;

#endif
