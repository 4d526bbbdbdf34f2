/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_STATUS_H
#define QVXCS_STATUS_H

/**
 * @file
 * The statuses that every family shares.
 *
 * A status is a `u32`; 0 is success, and -1 as a status is 0xFFFFFFFF. Functions whose result is a
 * count, an index or a value report failure as -1 or as 0, as each says. Codes carry no text.
 */

#include "qvxcs/types.h"

/** The operation succeeded. */
#define SM_STATUS_SUCCESS 0x0000u
/**
 * An argument is not valid: a pointer is NULL, a text too long, a type code unknown; or an equal
 * entry is already in the list. Some families report these as SM_STATUS_INVALID_PARAMETER.
 */
#define SM_STATUS_BAD_ARGUMENT 0x0002u
/**
 * A wait gave up after its last attempt. No call returns it: those that wait for the lock return
 * SM_STATUS_LOCK_FAILED.
 */
#define SM_STATUS_TIMEOUT 0x0003u
/** The INI file, or the copy that is to replace it, could not be opened. */
#define SM_STATUS_FILE_OPEN_FAILED 0x0007u
/** The lock that the suite's processes share could not be taken. */
#define SM_STATUS_LOCK_FAILED 0x000Bu
/** A text replacement has no output or too little room; the size needed is written back. */
#define SM_STATUS_SIZE_REQUIRED 0x000Fu
/** The caller's buffer is too small. */
#define SM_STATUS_BUFFER_TOO_SMALL 0x0010u
/** The library is not attached, as when its lock file cannot be opened; no IP support is loaded. */
#define SM_STATUS_NOT_LOADED 0x0011u
/** Writing to the file failed. */
#define SM_STATUS_WRITE_FAILED 0x0013u
/** Unspecified failure of a system call or a lookup. */
#define SM_STATUS_FAILURE 0x0100u
/** A value that cannot be represented, a malformed sequence, a directory that is not empty. */
#define SM_STATUS_BAD_DATA 0x0101u
/** A temporary file could not be made, or a file could not be moved into place. */
#define SM_STATUS_FILE_CREATE_FAILED 0x0102u
/** A key=value file or its temporary copy could not be opened. */
#define SM_STATUS_FILE_OPEN_ERROR 0x0104u
/** An INI line begins with "[" and has no "]". */
#define SM_STATUS_BAD_SECTION_HEADER 0x0105u
/** The INI file ended without the section. */
#define SM_STATUS_SECTION_NOT_FOUND 0x0106u
/** The section ended without the key. */
#define SM_STATUS_KEY_NOT_FOUND 0x0107u
/** A value does not fit its type, its limits or a line. */
#define SM_STATUS_DATA_TOO_LARGE 0x0108u
/** The file to be replaced could not be replaced. */
#define SM_STATUS_FILE_DELETE_FAILED 0x010Eu
/** An argument is NULL or out of range, or a text is not a number or boolean of the kind asked for.
 */
#define SM_STATUS_INVALID_PARAMETER 0x010Fu
/** An allocation failed. */
#define SM_STATUS_NO_MEMORY 0x0110u
/** The address text given to an IP test is NULL. */
#define SM_STATUS_IP_INVALID_PARAMETER 0x2018u
/** -1 as a status: a failure for which the call has no other code. */
#define QVX_FAILED 0xFFFFFFFFu

/**
 * Applies a macro to the name of every status, QVX_FAILED excepted, as a program needs it to print
 * names: `#define CASE(name) case name: return #name;` and, in a `switch`,
 * `QVXCS_EACH_STATUS(CASE)`.
 */
/* clang-format off */
#define QVXCS_EACH_STATUS(apply) \
  apply(SM_STATUS_SUCCESS) \
  apply(SM_STATUS_BAD_ARGUMENT) \
  apply(SM_STATUS_TIMEOUT) \
  apply(SM_STATUS_FILE_OPEN_FAILED) \
  apply(SM_STATUS_LOCK_FAILED) \
  apply(SM_STATUS_SIZE_REQUIRED) \
  apply(SM_STATUS_BUFFER_TOO_SMALL) \
  apply(SM_STATUS_NOT_LOADED) \
  apply(SM_STATUS_WRITE_FAILED) \
  apply(SM_STATUS_FAILURE) \
  apply(SM_STATUS_BAD_DATA) \
  apply(SM_STATUS_FILE_CREATE_FAILED) \
  apply(SM_STATUS_FILE_OPEN_ERROR) \
  apply(SM_STATUS_BAD_SECTION_HEADER) \
  apply(SM_STATUS_SECTION_NOT_FOUND) \
  apply(SM_STATUS_KEY_NOT_FOUND) \
  apply(SM_STATUS_DATA_TOO_LARGE) \
  apply(SM_STATUS_FILE_DELETE_FAILED) \
  apply(SM_STATUS_INVALID_PARAMETER) \
  apply(SM_STATUS_NO_MEMORY) \
  apply(SM_STATUS_IP_INVALID_PARAMETER)
/* clang-format on */

#endif
