/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_MEMORY_H
#define QVXCS_MEMORY_H

/**
 * @file
 * Memory: blocks of the process heap, the same for the host and for the library.
 *
 * A text or buffer that a function of the library hands over is a block of this heap, released with
 * `PXTFreeMem` unless its family has its own free call (growable strings, XML buffers,
 * key=value entries, lists). The three names of freeing are one operation and may be mixed. Only
 * the text of PXTGetLoopBack() is a constant.
 *
 * Sizes are bytes. No lock is taken here; the heap itself is safe for threads, and a block belongs
 * to the code that holds it. The calls also work in a child forked from a process with threads.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Allocates a block.
 *
 * @param[in] size  the bytes wanted; for 0 the C library's `malloc` decides
 * @return the block, its contents undefined; NULL without memory
 * @par Memory
 * The block is the caller's, for `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void* PXTAllocMem(qvx_u32 size);

/**
 * Changes the size of a block, which may move.
 *
 * The bytes up to the smaller of the two sizes are kept; those after them are undefined.
 *
 * @param[in] block  the block, or NULL to allocate a new one
 * @param[in] size   the bytes wanted; for 0 the C library's `realloc` decides, which may release
 *                   the block and return NULL
 * @return the block; NULL without memory, and then `block` stays as it was and still is the
 * caller's
 * @par Memory
 * On success `block` is no longer to be used; the result is the caller's, for `PXTFreeMem`.
 * @par Threads
 * Any thread may call; no other may use the block meanwhile.
 */
QVX_EXPORT void* PXTReAllocMem(void* block, qvx_u32 size);

/**
 * Releases a block.
 *
 * @param[in] block  a block of the process heap; NULL is ignored
 * @par Memory
 * The block is gone.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void PXTFreeMem(void* block);

/**
 * Releases a block, as `PXTFreeMem` does.
 *
 * @param[in] block  a block of the process heap; NULL is ignored
 * @par Memory
 * The block is gone.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void PXTGenericFree(void* block);

/**
 * Releases a block, as `PXTFreeMem` does; the name by which support code calls it.
 *
 * @param[in] block  a block of the process heap; NULL is ignored
 * @par Memory
 * The block is gone.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void SUPTFreeMem(void* block);

QVX_END_DECLS

#endif
