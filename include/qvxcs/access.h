/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_ACCESS_H
#define QVXCS_ACCESS_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * @file
 * Logins by password, roles and rights: who somebody is, and what they may do.
 *
 * A rights value is a `u32`. Its low 16 bits are a level: 0 no access, 1 user, 3 power user, 7
 * administrator. Each level contains the lower ones, so that of two grants the greater number is
 * the larger. Bit 0x40000 stands beside the level of the operating system's superuser: 0x40007. An
 * answer of 0 is always a refusal, and gives no reason.
 *
 * Two sources decide. PAM says whether a password is right. The role map says which level a user
 * has on a host: lines of users, hosts and a role in /etc/cim/zarn/plinthos/qvxrolemap, whose mode
 * must be 0640 or 01640. A line reads
 *
 *     root,+wheel   *.lab,srv1   poweruser
 *
 * with users (or "+" and a group, or "*" for anyone), hosts (a name, an address, "*" for any,
 * "*." and a domain) and one of the words administrator, poweruser and user; blanks part the
 * fields, commas the names, and what follows the role is not read. A plain host name counts for
 * groups and for anyone, not for a user that is named. Lines that begin with "#" and empty lines
 * are skipped; a last line without its newline does not count. Entries that name a user
 * beat those of the user's groups, which beat those for anyone, even where they grant less.
 *
 * A role map that is missing, has another mode, or holds a fault does not leave the system without
 * an answer: the fault is written to the command log, by user "root" and source "QVXSERVER" with
 * the line at fault, and three built-in lines stand in. The superuser then administers, the
 * superuser's group are power users, and everybody else is a user. A file that goes missing or gets
 * another mode while its lines are in force leaves them in force.
 *
 * The entry's identifier is the fault, one of `QVXRoleMapFault`.
 *
 * Open the file once and query it before you open it again. Two opens without a query between them
 * leave the built-in lines in force until the process ends, even though the file is valid. So does
 * an open after a query that met a line at fault or no line that counts, also when the file has
 * been corrected. To give a user the same host twice is a fault as well, but one that is gone when
 * a corrected file is opened.
 *
 * A host that wants the file's roles opens it with PXTOpenRolemapFile() and asks once with
 * PXTGetRightsUsingRolemap(), which reads it; logins then are answered from it too. A login between
 * the two finds the built-in lines, and keeps them until an open sees another modification time.
 *
 * Memory may run out while the role map is read. The call then answers 0 and logs nothing, and the
 * file may be left half read: it is not read on, and the built-in lines stand in until the process
 * ends. Neither a part of the file nor a part of the built-in lines is ever in force, so a reading
 * that failed gives nobody rights that neither the whole file nor the built-in lines grant. When
 * there is too little memory only to report a fault, the built-in lines stand in and the log may
 * lack the entry.
 *
 * What a question needs and cannot get, also for want of memory, grants nothing: the machine's
 * addresses and its domain's name, the groups of the user. The entries that remain decide, those
 * for anyone too, which may grant more than the entry of a group that is not seen. The machine's
 * own name is the exception: where it cannot be had, as while the library is not attached, the host
 * is the empty text, which every domain pattern ("*.") matches.
 *
 * Several threads may log users in at the same time. The role map should be opened and queried from
 * one thread: the calls exclude each other, but what one call reads is in force for all. When the
 * process exits, no call of another thread is waited for, and calls that begin afterwards grant
 * nothing.
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
  QVX_ROLEMAP_NO_RECORDS = 5914,      /**< it has no line that counts */
  QVX_ROLEMAP_INVALID_ROLE = 5915,    /**< a line's third field is no role */
  QVX_ROLEMAP_CONFLICT = 5916         /**< a user is given the same host twice */
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
 * the process ends. A file that is missing, cannot be opened or has another mode than 0640 and
 * 01640 is logged, and the built-in lines stand in. When memory runs out the file is not opened:
 * they stand in at the next question, unless the file is opened before it.
 *
 * @retval 0 always
 * @par Memory
 * The records are kept until the process ends or the file changes.
 * @par Threads
 * Call it from one thread.
 */
QVX_EXPORT qvx_u32 PXTOpenRolemapFile(void);

/**
 * Tells the level of the process's real user on this machine, by the role map.
 *
 * Where the role map grants nothing, the superuser is an administrator all the same. The superuser
 * bit 0x40000 is not given here. A fault of the role map is logged by each call that meets it. When
 * memory runs out while the file is read, it is not read on: the built-in lines stand in from then
 * on.
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
 * Checks a password by PAM and tells the rights of its user.
 *
 * The login goes to the PAM service that ::pam_servicename names; empty passwords are not allowed,
 * the account must be valid, and a module that sends the user a message gets an error instead of an
 * answer: most modules then refuse the login. Then the role map decides. With a domain the login is
 * "user@domain", and the domain's text is the host that the role map is asked for; without one it
 * is this machine, and a name of the form "user@host" or "domain\user" is split. The operating
 * system is asked of what stands before the separator: its superuser is an administrator whatever
 * the role map says, and where the role map grants something, a member of group 0 is at least a
 * power user. A refusal may take seconds, about two where `pam_unix` asks PAM for a delay, and the
 * modules write its reason to the system's log.
 *
 * The texts are converted as by PXTUCS2StrToUTF8Str(): each surrogate becomes the character that
 * its text begins with, and a text that begins with an unpaired one is refused. The role map is
 * asked of a name only where the locale in force has its characters: a program that has not called
 * `setlocale` has only those of ASCII.
 *
 * Call PXTOpenRolemapFile() and PXTGetRightsUsingRolemap() once before the first login; else the
 * built-in lines decide.
 *
 * @param[in] domain       UCS-2 text, or NULL for none; the empty text is one
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
 * Linux-PAM's application interface; RFC 2279 for the texts that it is given.
 */
QVX_EXPORT qvx_u32 PXTAuthenticateUser(const qvx_ustring* domain, const qvx_ustring* userName,
                                       qvx_ustring* password);

/**
 * Tells the rights of a local user without asking for a password.
 *
 * The name is converted and split as that of a login. A name that the system does not know has what
 * the role map grants to it or to anyone. The operating system raises rights as it does a login's.
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
 * Would check a user against a directory service; there is none on this platform.
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
 * Would list the domains that users can belong to; there are none on this platform.
 *
 * @retval NULL always
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void* PXTGetOSDomainList(void);

/**
 * Tells the rights of the calling process by its identities; the role map is not asked.
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
 * Gives the name of the process's real user.
 *
 * @return the name; NULL when the user database knows no such user, or memory runs out
 * @par Memory
 * The name is a new text: free it with PXTFreeMem().
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetProcessUser(void);

/**
 * Lowers or raises a rights value as the OEM's configuration says.
 *
 * Key "name" of section "OEM" of `iniFile`, in the product's INI folder, names the OEM; the OEM's
 * own file is `prefix` followed by "oem.ini". In its section "data", "accessoverride" with exactly
 * the value "true" makes everybody an administrator; otherwise the number "accessmask" decides. A
 * mask of 3 leaves a user's rights and any other takes them away; of a power user a mask above 1
 * leaves the rights, a mask of 1 makes a user, a mask of 0 or below is cut to its two low bits.
 * Bits above the level are kept, except by the override.
 *
 * @param[in] rights  a rights value; an administrator's is returned at once and no file is read
 * @param[in] prefix  what the name of the OEM's file begins with
 * @param[in] iniFile name of the product's INI file that names the OEM
 * @param[out] reason stored only where a level is lowered to 0, one of `QVXMaskReason`; may be NULL
 * @return the rights that remain; 0 also when an argument is NULL, or the OEM, its file or the mask
 *         cannot be read
 * @par Memory
 * Nothing is handed to the caller.
 * @par Threads
 * Waits for the lock that the suite's processes share. Threads of one process are not kept apart.
 */
QVX_EXPORT qvx_u32 PXTMaskProgramRights(qvx_u32 rights, const qvx_astring* prefix,
                                        const qvx_astring* iniFile, qvx_u32* reason);

/**
 * The PAM service that logins go to, initially "qvauth".
 *
 * A host may point it at another text, which must stay valid while users are logged in; it is read
 * at each login, and no text (NULL) refuses every login. The service is a file of that name in
 * /etc/pam.d; where there is none, PAM asks the service "other", which may let everybody in.
 *
 * @par Memory
 * The text stays the host's; the library neither copies nor frees it.
 * @par Threads
 * Reads of the pointer are not locked: set it before the first login.
 */
QVX_EXPORT extern qvx_astring* pam_servicename;

QVX_END_DECLS

#endif
