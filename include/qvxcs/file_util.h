/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_FILE_UTIL_H
#define QVXCS_FILE_UTIL_H

/**
 * @file
 * Small operations on files and directories.
 *
 * Paths are 8-bit texts that go to the system as they are; a relative one starts at the working
 * directory of the process. Sizes count bytes. A path that is NULL is a failure (-1), as is any
 * other pointer that is NULL; -1 as a status is 0xFFFFFFFF. A directory, FIFO, socket or device
 * where a file is expected counts as a file that cannot be opened.
 *
 * None of these calls takes the lock that the suite's processes share, and none keeps state. All
 * but PXTGetTmpFile(), which visits another working directory, may be called from any thread.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Deletes a file.
 *
 * The file's mode is set to 01664 (octal) first. A file whose mode cannot be set stays. A directory
 * stays and keeps its mode. A symbolic link is deleted itself: the mode is set on the file that it
 * points to, but never on a directory. A FIFO, socket or device with this name is deleted like a
 * file.
 *
 * @param[in] path  the file
 * @retval SM_STATUS_SUCCESS
 * @retval -1 when `path` is NULL, names no file or a directory, or when either step fails
 * @par Memory
 * Allocates nothing.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * POSIX.1-2008 chmod and unlink.
 */
QVX_EXPORT qvx_u32 PXTDeleteFile(const qvx_astring* path);

/**
 * Reads the size of a file.
 *
 * @param[in] path   the file, which must be readable
 * @param[out] size  its length in bytes; 0 after every failure
 * @retval SM_STATUS_SUCCESS
 * @retval -1 when a pointer is NULL (`*size` is set to 0 where there is one), when the file cannot
 * be opened, and when its length is 4 GiB - 1 or more: 4 GiB - 1 counts as 4 GiB, because it is the
 * value that means a failure
 * @par Memory
 * Allocates nothing that outlives the call.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetSizeOfFile(const qvx_astring* path, qvx_u32* size);

/**
 * Makes up the name of a temporary file that does not exist.
 *
 * The name has the form "/tmp/fileXXXXXX" with six random letters and digits: the directory given
 * is entered, so it must exist, but it does not appear in the name. No file is created: open it
 * with O_EXCL, because another process may create it first.
 *
 * @param[in] directory  a directory that can be entered
 * @param[out] name      room for the name, 20 bytes or more
 * @param[in,out] size   bytes of room; then the name's length plus one
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BUFFER_TOO_SMALL when `*size` is below 20, and is then set to 20; also when the
 * path of the working directory is longer than 255 characters, `*size` then as it was
 * @retval SM_STATUS_FAILURE when the directory cannot be entered
 * @retval SM_STATUS_FILE_CREATE_FAILED when no unused name was found
 * @retval 9 when the process could not go back to its working directory; the name is delivered
 * @retval -1 when a pointer is NULL
 * @par Memory
 * Allocates nothing.
 * @par Threads
 * For its duration the whole process has another working directory: no other thread may use
 * relative paths meanwhile.
 * @par Standards
 * The form of the name is that of tmpnam, ISO C.
 */
QVX_EXPORT qvx_u32 PXTGetTmpFile(const qvx_astring* directory, qvx_astring* name, qvx_u32* size);

/**
 * Creates a directory.
 *
 * One level only: everything before the last part of the path must exist. The mode is 0755 (octal)
 * less the umask; a directory that exists already keeps its own.
 *
 * @param[in] path  the directory
 * @retval SM_STATUS_SUCCESS the directory exists now, whether or not this call created it
 * @retval -1 when `path` is NULL, when a file that is no directory has this name, and when the
 * directory can not be created
 * @par Memory
 * Allocates nothing.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * POSIX.1-2008 mkdir.
 */
QVX_EXPORT qvx_u32 PXTMkDir(const qvx_astring* path);

/**
 * Removes an empty directory.
 *
 * @param[in] path  the directory
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_DATA when the directory is not empty
 * @retval SM_STATUS_FAILURE when there is no such directory
 * @retval -1 when `path` is NULL or names no directory, and on any other failure
 * @par Memory
 * Allocates nothing.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * POSIX.1-2008 rmdir.
 */
QVX_EXPORT qvx_u32 PXTRmDir(const qvx_astring* path);

QVX_END_DECLS

#endif
