/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_ACCESS_H
#define QVXCS_ACCESS_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * @file
 * Password logins, roles and rights: who a user is and what they may do.
 *
 * A rights value is a `u32`. Its low 16 bits are a level: 0 no access, 1 user, 3 power user, 7
 * administrator. Each level contains the lower ones, so the greater of two values grants more. Bit
 * 0x40000 is set in addition to the level for the operating system's superuser: 0x40007. A result
 * of 0 is always a refusal; it does not show the reason.
 *
 * Two sources decide. PAM checks the password. The role map sets the level that a user has on a
 * host. It is the file /etc/cim/zarn/plinthos/qvxrolemap, whose mode must be 0640 or 01640. Each
 * line has users, hosts and a role:
 *
 *     root,+wheel   *.lab,srv1   poweruser
 *
 * A user is a name, "+" and a group, or "*" for anyone. A host is a name, an address, "*" for any,
 * or "*." and a domain. The role is one of the words administrator, poweruser and user. Blanks
 * separate the fields and commas the names; text after the role is not read. A plain host name
 * applies to groups and to anyone, but not to a user given by name. Empty lines and lines that
 * begin with "#" are skipped; a last line without a newline does not count. Entries that name a
 * user override those of the user's groups, which override those for anyone, even where they grant
 * less.
 *
 * When the role map is missing, has another mode or contains a fault, the fault is written to the
 * command log (user "root", source "QVXSERVER", with the number of the faulty line), and three
 * built-in lines are used instead. They make the superuser an administrator, the members of the
 * superuser's group power users, and everybody else a user. When a file goes missing or gets
 * another mode while its lines are in force, they stay in force.
 *
 * The identifier of the log entry names the fault; it is one of `QVXRoleMapFault`.
 *
 * Open the file once and query it before you open it again. Two opens without a query between them
 * leave the built-in lines in force until the process ends, even if the file is valid. So does an
 * open after a query that met a faulty line or no line that counts, even if the file has been
 * corrected. Giving a user the same host twice is also a fault, but opening a corrected file ends
 * it.
 *
 * A host program that wants the file's roles opens the file with PXTOpenRolemapFile() and then
 * calls PXTGetRightsUsingRolemap() once, which reads it. Logins use it from then on. A login
 * between the two calls uses the built-in lines, which then stay in force until an open sees
 * another modification time.
 *
 * When memory runs out while the role map is read, the call returns 0 and logs nothing. The file
 * may then be half read: the rest is not read, and the built-in lines are used until the process
 * ends. Neither the file nor the built-in lines are ever in force in part, so a failed read never
 * gives anybody rights that neither the whole file nor the built-in lines grant. When memory runs
 * out only while a fault is reported, the built-in lines are used and the log entry may be missing.
 *
 * A query may fail to get the machine's addresses, its domain's name or the user's groups, for lack
 * of memory or for another reason. Entries that depend on them then grant nothing. The remaining
 * entries decide, including those for anyone, which may grant more than the entry of a group that
 * was not found. The machine's own name is the exception: when it is not available, for example
 * while the library is not attached, the host is the empty text, which every domain pattern ("*.")
 * matches.
 *
 * Several threads may log users in at the same time. Open and query the role map from one thread:
 * the calls exclude each other, but the lines that one call reads are in force for all. Process
 * exit does not wait for the calls of other threads, and calls that begin afterwards grant nothing.
 */

/** Rights: a level, and the superuser's bit beside it. */
enum QVXPrivilege {
  QVX_PRIV_NONE = 0x0,          /**< no access */
  QVX_PRIV_USER = 0x1,          /**< user */
  QVX_PRIV_POWERUSER = 0x3,     /**< power user */
  QVX_PRIV_ADMINISTRATOR = 0x7, /**< administrator */
  QVX_PRIV_LEVEL = 0xFFFF,      /**< mask of the level */
  QVX_PRIV_ROOT = 0x40000       /**< bit of the operating system's superuser */
};

/** Identifiers of the command log's entries about faults of the role map. */
enum QVXRoleMapFault {
  QVX_ROLEMAP_MISSING_FIELD = 5911,   /**< a line has fewer than three fields */
  QVX_ROLEMAP_OPEN_FAILED = 5912,     /**< the file cannot be examined or opened */
  QVX_ROLEMAP_BAD_PERMISSIONS = 5913, /**< its mode is neither 0640 nor 01640 */
  QVX_ROLEMAP_NO_RECORDS = 5914,   /**< it has no line that counts, or could not be opened before */
  QVX_ROLEMAP_INVALID_ROLE = 5915, /**< a line's third field is no role */
  QVX_ROLEMAP_CONFLICT = 5916      /**< a user is given the same host twice */
};

/** Why PXTMaskProgramRights() took a level away. */
enum QVXMaskReason {
  QVX_MASKED_USER = 1001,     /**< a user's rights became no access */
  QVX_MASKED_POWERUSER = 1002 /**< a power user's rights became no access */
};

/**
 * Opens the role map file and checks its mode.
 *
 * The file is not parsed here: a fault within a line is found, and logged, by the next
 * PXTGetRightsUsingRolemap(). A file whose modification time has not changed since it was read is
 * not opened again. A second open before the first query leaves the built-in lines in force until
 * the process ends. A file that is missing, cannot be opened or has a mode other than 0640 and
 * 01640 is logged, and the built-in lines are used instead. A file that could not be opened is read
 * only after its modification time changes. When memory runs out the file is not opened: the next
 * query uses the built-in lines, unless the file is opened before it.
 *
 * @retval 0 always
 * @par Memory
 * The library keeps the records until the process ends or the file changes.
 * @par Threads
 * Call it from one thread.
 */
QVX_EXPORT qvx_u32 PXTOpenRolemapFile(void);

/**
 * Returns the level of the process's real user on this machine, according to the role map.
 *
 * The superuser is an administrator even where the role map grants nothing. The superuser bit
 * 0x40000 is never set here. Each call that meets a fault of the role map logs it. When memory runs
 * out while the file is read, the rest is not read: the built-in lines are used from then on.
 *
 * @retval 0 when nothing is granted, the real user has no name, or memory runs out
 * @retval QVX_PRIV_USER user
 * @retval QVX_PRIV_POWERUSER power user
 * @retval QVX_PRIV_ADMINISTRATOR administrator
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Call it from one thread, the one that opens the role map.
 */
QVX_EXPORT qvx_u32 PXTGetRightsUsingRolemap(void);

/**
 * Checks a password with PAM and returns the rights of its user.
 *
 * The login uses the PAM service that ::pam_servicename names. Empty passwords are not allowed and
 * the account must be valid. A module that sends the user a message gets an error instead of a
 * response; most modules then refuse the login.
 *
 * The role map decides next. With a domain the login is "user@domain", and the domain's text is the
 * host to look up in the role map. Without a domain the host is this machine, and a name of the
 * form "user@host" or "domain\user" is split. The operating system looks up the text before the
 * separator: its superuser is an administrator whatever the role map says, and a member of group 0
 * is at least a power user where the role map grants something.
 *
 * A refusal may take seconds, about two where `pam_unix` asks PAM for a delay. The modules write
 * its reason to the system's log.
 *
 * The texts are converted as by PXTUCS2StrToUTF8Str(): each surrogate becomes the first character
 * of its text, and a text that begins with an unpaired one is refused. The role map is searched for
 * a name only when the locale in force has the name's characters; a program that has not called
 * `setlocale` has only those of ASCII.
 *
 * Call PXTOpenRolemapFile() and PXTGetRightsUsingRolemap() once before the first login; otherwise
 * the built-in lines decide.
 *
 * @param[in] domain       UCS-2 text, or NULL for no domain; the empty text is a domain
 * @param[in] userName     UCS-2 text; as UTF-8 it may have one byte more than it has units
 * @param[in,out] password UCS-2 text under the same rule; every unit is 0 afterwards, whatever the
 *                         result
 * @retval 0 when refused: a NULL or unfit argument, a failed login, nothing granted, no memory
 * @retval QVX_PRIV_USER user
 * @retval QVX_PRIV_POWERUSER power user
 * @retval QVX_PRIV_ADMINISTRATOR administrator
 * @retval 0x40007 the operating system's superuser, whatever the role map says
 * @par Memory
 * Copies of name and password are overwritten before they are freed.
 * @par Threads
 * Any thread may call, as far as the PAM modules allow.
 * @par Standards
 * Linux-PAM's application interface; RFC 2279 for the texts passed to it.
 */
QVX_EXPORT qvx_u32 PXTAuthenticateUser(const qvx_ustring* domain, const qvx_ustring* userName,
                                       qvx_ustring* password);

/**
 * Returns the rights of a local user without checking a password.
 *
 * The name is converted and split as in a login. A name that the system does not know gets the
 * rights that the role map grants to it or to anyone. The operating system raises the rights as in
 * a login.
 *
 * @param[in] domain   UCS-2 text; a user of a domain is refused, so NULL or the empty text
 * @param[in] userName UCS-2 text; as UTF-8 it may have one byte more than it has units
 * @retval 0 when refused: a domain, a NULL or unfit name, nothing granted, no memory
 * @retval QVX_PRIV_USER user
 * @retval QVX_PRIV_POWERUSER power user
 * @retval QVX_PRIV_ADMINISTRATOR administrator
 * @retval 0x40007 the operating system's superuser, whatever the role map says
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTAuthorizeUser(const qvx_ustring* domain, const qvx_ustring* userName);

/**
 * Would check a user against a directory service; this platform has none.
 *
 * @param[in] a1 not looked at
 * @param[in] a2 not looked at
 * @param[in] a3 not looked at
 * @param[in] a4 not looked at
 * @param[in] a5 not looked at
 * @param[in] a6 not looked at
 * @param[in] a7 not looked at
 * @param[in] a8 not looked at
 * @param[in] a9 not looked at
 * @retval -1 always
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_s32 PXTADAuthenticateUser(qvx_u32 a1, qvx_u32 a2, qvx_u32 a3, qvx_u32 a4, qvx_u32 a5,
                                         qvx_u32 a6, qvx_u32 a7, qvx_u8 a8, qvx_u32 a9);

/**
 * Would list the domains that users can belong to; this platform has none.
 *
 * @retval NULL always
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void* PXTGetOSDomainList(void);

/**
 * Returns the rights of the calling process by its user and group; the role map is not used.
 *
 * @retval QVX_PRIV_USER neither the effective user nor the effective group is 0
 * @retval QVX_PRIV_POWERUSER the effective group is 0, the effective user is not
 * @retval QVX_PRIV_ADMINISTRATOR the effective user is 0, the real user is not
 * @retval 0x40007 QVX_PRIV_ADMINISTRATOR and QVX_PRIV_ROOT: effective and real user are 0
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetProcessRights(void);

/**
 * Returns the name of the process's real user.
 *
 * @return the name; NULL when the user database knows no such user, or memory runs out
 * @par Memory
 * The name is a new text: free it with PXTFreeMem().
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetProcessUser(void);

/**
 * Lowers or raises a rights value according to the OEM's configuration.
 *
 * Key "name" of section "OEM" of `iniFile`, in the product's INI folder, names the OEM; the OEM's
 * own file is `prefix` followed by "oem.ini". In its section "data", "accessoverride" with exactly
 * the value "true" makes everybody an administrator; otherwise the number "accessmask" decides. A
 * user keeps the level with a mask of 3 and loses it with any other. A power user keeps the level
 * with a mask above 1 and becomes a user with a mask of 1; a mask of 0 or below is cut to its two
 * low bits, which are the new level. Bits above the level are kept, except by the override.
 *
 * @param[in] rights  a rights value; an administrator's is returned at once without reading a file
 * @param[in] prefix  what the name of the OEM's file begins with
 * @param[in] iniFile name of the product's INI file that names the OEM
 * @param[out] reason stored only where a level is lowered to 0, one of `QVXMaskReason`; may be NULL
 * @return the rights that remain; 0 also when an argument is NULL, or the OEM, its file or the mask
 *         cannot be read
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Any thread may call. Each of its reads waits for the lock that the suite's processes, and the
 * threads of one process, share.
 */
QVX_EXPORT qvx_u32 PXTMaskProgramRights(qvx_u32 rights, const qvx_astring* prefix,
                                        const qvx_astring* iniFile, qvx_u32* reason);

/**
 * The PAM service that logins use, initially "qvauth".
 *
 * A host may point it to another text, which must stay valid while users are logged in. It is read
 * at each login; NULL refuses every login. The service is a file of that name in /etc/pam.d; when
 * there is none, PAM uses the service "other", which may let everybody in.
 *
 * @par Memory
 * The text remains the host's; the library neither copies nor frees it.
 * @par Threads
 * Reads of the pointer are not locked: set it before the first login.
 */
QVX_EXPORT extern qvx_astring* pam_servicename;

QVX_END_DECLS

#endif
