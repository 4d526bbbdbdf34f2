/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_VERSION_H
#define QVXCS_VERSION_H

/**
 * @file
 * The version of these headers.
 *
 * A program that is built against a version runs with every later one of the same major number.
 */

/** Changes when programs have to be built anew. */
#define QVXCS_VERSION_MAJOR 1
/** Changes when functions or constants are added. */
#define QVXCS_VERSION_MINOR 0
/** Changes when faults are mended. */
#define QVXCS_VERSION_PATCH 0
/** The three numbers as text. */
#define QVXCS_VERSION "1.0.0"

#endif
