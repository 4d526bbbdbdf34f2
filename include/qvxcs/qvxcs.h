/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_QVXCS_H
#define QVXCS_QVXCS_H

/* Every family of libqvxcs. */

#include "qvxcs/access.h"
#include "qvxcs/cli_value.h"
#include "qvxcs/command_log.h"
#include "qvxcs/context_lock.h"
#include "qvxcs/export_context.h"
#include "qvxcs/file_util.h"
#include "qvxcs/grow_string.h"
#include "qvxcs/hash_id.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/ip_address.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/library.h"
#include "qvxcs/list.h"
#include "qvxcs/memory.h"
#include "qvxcs/number_text.h"
#include "qvxcs/os_log.h"
#include "qvxcs/param_vector.h"
#include "qvxcs/paths.h"
#include "qvxcs/shutdown.h"
#include "qvxcs/status.h"
#include "qvxcs/string_resource.h"
#include "qvxcs/thread.h"
#include "qvxcs/transcode.h"
#include "qvxcs/types.h"
#include "qvxcs/uni_string.h"
#include "qvxcs/version.h"
#include "qvxcs/xml_buffer.h"
#include "qvxcs/xml_log.h"
#include "qvxcs/xsl_path.h"

#endif
