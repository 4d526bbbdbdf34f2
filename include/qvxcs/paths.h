/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_PATHS_H
#define QVXCS_PATHS_H

/**
 * @file
 * Where the suite's files are, which locale it presents, and the control of its connection service.
 *
 * Programs of the suite find their files through these calls and not by paths in their own code.
 * All paths are fixed texts of the product's layout, in 8-bit characters; a doubled "/" inside some
 * of them belongs to the layout. No call checks whether a path exists, and only
 * `PXTGetIWSTempDirPath` creates anything.
 *
 * Failures have no status: a call that returns text returns NULL when memory is exhausted or a path
 * that it builds on is not available, and the two calls about an OEM return their default.
 *
 * The install path is kept by the library from its load on and is read without a lock, also in a
 * child forked from a process with threads. The calls that read INI files wait for the lock that
 * the suite's processes and their threads share, up to 60,000 attempts, 1 ms apart.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** What PXTWebServer() does. */
enum QVXWebServerAction {
  QVX_WEBSERVER_STOP = 0,       /**< stops the service */
  QVX_WEBSERVER_START = 1,      /**< starts it */
  QVX_WEBSERVER_RESTART = 3,    /**< restarts it */
  QVX_WEBSERVER_RESTART_TOO = 4 /**< restarts it, too */
};

/**
 * Returns the install path.
 *
 * @return "/opt/zarn/plinthos/"; NULL when it cannot be set, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXInstallPath(void);

/**
 * Returns the install path up to its last "/".
 *
 * @return "/opt/zarn/plinthos"; NULL when the install path is not available or has no "/" after its
 * first character
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetRootInstallPath(void);

/**
 * Returns the directory that holds the product's configuration.
 *
 * @return "/etc/cim/zarn/plinthos/vexilon/"; NULL without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetProductIniPath(void);

/**
 * Returns the directory of the product's variable data.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/"; NULL without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetProductVarPath(void);

/**
 * Returns the web server's root.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot/"; NULL without the root install
 * path or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXWWWRootPath(void);

/**
 * Returns the root of the style sheets.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot/"; NULL without the root install
 * path or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXXSLRootPath(void);

/**
 * Returns the directory of files to be downloaded.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/download"; NULL when the product's
 * variable-data path is not available, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXDownloadPath(void);

/**
 * Returns the directory of uploaded files.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/upload"; NULL when the product's
 * variable-data path is not available, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXUploadPath(void);

/**
 * Returns the directory of the command-line tool's documentation in the system's locale.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/cliroot//qvx/docs/en_US"; NULL when the root
 * install path is not available, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXCLIDocsPath(void);

/**
 * Returns the directory of the web front end's documentation in the system's locale.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/docs/en_US"; NULL when the root
 * install path is not available, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetQVXWEBDocsPath(void);

/**
 * Creates the directory for temporary files of the web server, and returns its path.
 *
 * One level is created, with mode 0755 less the umask; a directory that is there already serves.
 *
 * @return "/etc/cim/zarn/plinthos/var/lib/vexilon/iws/temp"; NULL without the root install
 *         path, when the directory cannot be created, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetIWSTempDirPath(void);

/**
 * Returns the path of a file in an OEM's INI tree.
 *
 * The path is "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/", the OEM's name, "/ini/", "zarn" or
 * "debrand", "/" and the file's name, of whatever length.
 *
 * @param[in] oem   the OEM's name
 * @param[in] file  the file's name
 * @param[in] flag  exactly "0" for the directory "zarn"; any other text for "debrand"
 * @return the path; NULL when an argument is NULL, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetOEMINIPathFile(const qvx_astring* oem, const qvx_astring* file,
                                             const qvx_astring* flag);

/**
 * Tells whether the system is a modular (blade) chassis.
 *
 * That is the value of key "blade" in section "blade" of "qvcli32.ini".
 *
 * @retval 1 when the value is exactly "true": lower case, nothing after it
 * @retval 0 for any other value, and whenever it cannot be read
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Any thread may call; takes the shared lock.
 */
QVX_EXPORT qvx_u32 PXTCheckModularChassis(void);

/**
 * Returns the prefix of the OEM's names in a directory service's schema.
 *
 * That is the value of key "adschemaprefix" in section "data" of "oem.ini", of at most 255
 * characters; "zarn" when it cannot be read.
 *
 * @return the prefix in a block of 256 bytes; NULL without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call; takes the shared lock.
 */
QVX_EXPORT qvx_astring* PXTGetOEMADSchemaPrefix(void);

/**
 * Returns the locale name of a language identifier.
 *
 * 1028 zh_TW, 1031 de, 1033 en_US, 1034 es, 1036 fr, 1041 ja, 1046 pt_BR, 2052 zh, 2057 en_GB,
 * 2066 ko; en_US for any other.
 *
 * @param[in] languageId  the identifier
 * @return the name; NULL without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetLocaleNameAStr(qvx_u32 languageId);

/**
 * Returns the name of the locale that the suite presents, "en_US" whatever the environment says.
 *
 * @return the name; NULL without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state and does not look at the environment; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetOSLocaleName(void);

/**
 * Returns the language of the locale that the suite presents: the part of its name before the "_".
 *
 * @return the language in a block of 256 bytes; NULL when the name has no "_", or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state and does not look at the environment; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetOSLanguage(void);

/**
 * Returns the country of the locale that the suite presents: the part of its name after the "_".
 *
 * @return the country; NULL when the name has no "_", or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state and does not look at the environment; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetOSCountry(void);

/**
 * Returns the host's name, at most 255 characters of it.
 *
 * @return the name, empty when the system does not give it; NULL while the library is not attached,
 * or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetHostNameAStr(void);

/**
 * Stops, starts or restarts the suite's connection service.
 *
 * Runs "systemctl stop hvn_qv_connsvc.service" or its like through the shell on a host with
 * "/etc/os-release", and "/etc/init.d/hvn_qv_connsvc stop" on any other. Standard output is
 * discarded. An
 * action that is not listed runs a command that does not exist, and so fails.
 *
 * A restart first closes descriptors 3 to 255 of the process, so that the service inherits none of
 * them; the library's own files, the lock file and an open role map, stay open and are not
 * inherited. Restart only from a process that is prepared for that.
 *
 * @param[in] action     one of `QVXWebServerAction`
 * @param[in] reserved   not used
 * @param[out] exitCode  the shell's exit status, or NULL. It is 127 when there is no shell or the
 * command is not found, -1 when the shell could not be waited for, and 0 for a shell that a signal
 * ended
 * @retval SM_STATUS_SUCCESS when the exit status is 0
 * @retval SM_STATUS_FILE_CREATE_FAILED when the exit status is 2
 * @retval 0xFFFFFFFF for any other exit status
 * @par Memory
 * Nothing is handed over.
 * @par Threads
 * Forks and waits; a restart closes descriptors that other threads of the process may use. The
 * caller's handling of SIGCHLD must let the library wait for its own child.
 */
QVX_EXPORT qvx_u32 PXTWebServer(qvx_u32 action, qvx_u32 reserved, qvx_s32* exitCode);

QVX_END_DECLS

#endif
