/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_SHUTDOWN_H
#define QVXCS_SHUTDOWN_H

/**
 * @file
 * Shutting this machine down, and the kind of its operating system.
 *
 * The work is done by the system's program /sbin/shutdown in a separate process. No shell is
 * involved, and no search path. Nothing is kept between calls and no lock is taken.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Families of operating systems. */
enum QVXOsType {
  QVX_OS_LINUX = 2 /**< this one */
};

/** What PXTOSShutdown() does. */
enum QVXShutdownMode {
  QVX_SHUTDOWN_HALT = 0,  /**< halts, as with any value but 1 */
  QVX_SHUTDOWN_REBOOT = 1 /**< reboots */
};

/**
 * Halts or reboots this machine.
 *
 * Runs /sbin/shutdown with the arguments "-h", "now" and "&", for a reboot with "-r" instead of
 * "-h". The "&" reaches the program unchanged. The call neither waits nor reports whether the
 * program could be run; a child that could not become the program ends with the error number as its
 * exit status. The host must wait for the child.
 *
 * @param[in] ignored  not used
 * @param[in] mode     QVX_SHUTDOWN_REBOOT reboots, any other value halts
 * @retval 1 always
 * @par Memory
 * Nothing is allocated.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTOSShutdown(qvx_u16 ignored, qvx_u16 mode);

/**
 * Returns the family of the operating system.
 *
 * @retval QVX_OS_LINUX the code of this family, always
 * @par Memory
 * Nothing is allocated.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTOSGetType(void);

QVX_END_DECLS

#endif
