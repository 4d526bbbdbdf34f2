/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * The values of the named constants, which never change, and the version, in C and in C++. This
 * file need not run: it compiles, or a header has changed what callers rely on.
 */
#include <stddef.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#ifdef __cplusplus
#define IS(name, value) static_assert((name) == (value), #name)
#else
#define IS(name, value) _Static_assert((name) == (value), #name)
#endif

/* version: that of the build */
IS(QVXCS_VERSION_MAJOR, BUILT_MAJOR);
IS(QVXCS_VERSION_MINOR, BUILT_MINOR);
IS(QVXCS_VERSION_PATCH, BUILT_PATCH);
#if QVXCS_VERSION_MAJOR < 1
#error "the version can be compared by the preprocessor"
#endif

/* types */
IS(QVX_FALSE, 0);
IS(QVX_TRUE, 1);
IS(QVX_BASE_BINARY, 2);
IS(QVX_BASE_OCTAL, 8);
IS(QVX_BASE_DECIMAL, 10);
IS(QVX_BASE_HEXADECIMAL, 16);

/* status: tests/frame/status_test.cpp has the others */
IS(QVX_FAILED, (qvx_u32)-1);

/* xml_buffer, cli_value */
IS(QVX_TYPE_ASTRING, 1);
IS(QVX_TYPE_USTRING, 2);
IS(QVX_TYPE_BOOLN, 4);
IS(QVX_TYPE_U32, 5);
IS(QVX_TYPE_S32, 7);
IS(QVX_TYPE_U64, 9);
IS(QVX_TYPE_S64, 11);
IS(QVX_TYPE_D64, 13);
IS(QVX_TYPE_TIME, 15);
IS(QVX_TYPE_SSASTR, 16);
IS(QVX_TYPE_SSUSTR, 17);
IS(QVX_TYPE_BEGIN, 18);
IS(QVX_TYPE_END, 19);
IS(QVX_TYPE_U8, 20);
IS(QVX_TYPE_S8, 21);
IS(QVX_TYPE_U16, 22);
IS(QVX_TYPE_S16, 23);
IS(QVX_TYPE_TYPED_VALUE, 25);
IS(QVX_TYPE_XML_ASTRING, 26);
IS(QVX_TYPE_XML_USTRING, 27);
IS(QVX_TYPE_THOUSANDTHS, 99);

/* ini_file */
IS(QVX_INI_ASTRING, 1);
IS(QVX_INI_USTRING, 2);
IS(QVX_INI_BINARY, 3);
IS(QVX_INI_BOOLN, 4);
IS(QVX_INI_U32, 5);
IS(QVX_INI_S32, 6);
IS(QVX_INI_U64, 7);
IS(QVX_INI_S64, 8);
IS(QVX_INI_D64, 9);
IS(QVX_LOCK_TRY, 0);
IS(QVX_LOCK_WAIT, 1);

/* xml_log, command_log, os_log */
IS(QVX_LOG_ERROR, 1);
IS(QVX_LOG_WARNING, 2);
IS(QVX_LOG_INFORMATION, 4);
IS(QVX_LOG_CLEARED, 0);
IS(QVX_LOG_BACKUP_CREATED, 1);
IS(QVX_LOG_MAX_USER, 1023);
IS(QVX_LOG_MAX_DESCRIPTION, 16383);
IS(QVX_LOG_MAX_DATA, 32768);
IS(QVX_LOG_NAME_ROOM, 256);
IS(QVX_CMDLOG_FIRST_ID, 5001);
IS(QVX_CMDLOG_LAST_ID, 6999);
IS(QVX_CMDLOG_MAX_SIZE, 131072);
IS(QVX_OSLOG_ERROR, 1);
IS(QVX_OSLOG_WARNING, 2);
IS(QVX_OSLOG_INFORMATION, 4);

/* access */
IS(QVX_PRIV_NONE, 0x0);
IS(QVX_PRIV_USER, 0x1);
IS(QVX_PRIV_POWERUSER, 0x3);
IS(QVX_PRIV_ADMINISTRATOR, 0x7);
IS(QVX_PRIV_LEVEL, 0xFFFF);
IS(QVX_PRIV_ROOT, 0x40000);
IS(QVX_ROLEMAP_MISSING_FIELD, 0x1717);
IS(QVX_ROLEMAP_OPEN_FAILED, 0x1718);
IS(QVX_ROLEMAP_BAD_PERMISSIONS, 0x1719);
IS(QVX_ROLEMAP_NO_RECORDS, 0x171A);
IS(QVX_ROLEMAP_INVALID_ROLE, 0x171B);
IS(QVX_ROLEMAP_CONFLICT, 0x171C);
IS(QVX_MASKED_USER, 1001);
IS(QVX_MASKED_POWERUSER, 1002);

/* shutdown, paths, xsl_path, list */
IS(QVX_OS_LINUX, 2);
IS(QVX_SHUTDOWN_HALT, 0);
IS(QVX_SHUTDOWN_REBOOT, 1);
IS(QVX_WEBSERVER_STOP, 0);
IS(QVX_WEBSERVER_START, 1);
IS(QVX_WEBSERVER_RESTART, 3);
IS(QVX_WEBSERVER_RESTART_TOO, 4);
IS(QVX_SHEET_DECLARATION, 2);
IS(QVX_SHEET_OPENING_TAG, 4);
IS(QVX_SHEET_CLOSING_TAG, 8);
IS(QVX_LIST_BEFORE, -1);
IS(QVX_LIST_SAME, 0);
IS(QVX_LIST_AFTER, 1);

/* Constants fit the arguments that take them, without a conversion that a compiler warns of. */
static u32 Level(u32 rights) { return rights & QVX_PRIV_LEVEL; }
static s32 Type(s32 type) { return type; }
static u16 LogType(u16 type) { return type; }
static u8 Parts(u8 parts) { return parts; }

#define NAME(status) {status, #status},
static const struct {
  u32 status;
  const char* name;
} kStatuses[] = {QVXCS_EACH_STATUS(NAME)};

int main(void) {
  const size_t last = sizeof(kStatuses) / sizeof(*kStatuses) - 1;
  const int holds = strcmp(QVXCS_VERSION, BUILT_VERSION) == 0 &&
                    Level(QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT) == QVX_PRIV_ADMINISTRATOR &&
                    Type(QVX_TYPE_U32) == 5 && LogType(QVX_LOG_WARNING) == 2 &&
                    Parts(QVX_SHEET_DECLARATION | QVX_SHEET_CLOSING_TAG) == 10 &&
                    kStatuses[0].status == 0 &&
                    strcmp(kStatuses[0].name, "SM_STATUS_SUCCESS") == 0 &&
                    kStatuses[last].status == SM_STATUS_IP_INVALID_PARAMETER && last + 1 == 21;
  return holds ? 0 : 1;
}
