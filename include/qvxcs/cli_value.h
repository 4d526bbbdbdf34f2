/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_CLI_VALUE_H
#define QVXCS_CLI_VALUE_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

typedef astring* (*PXTCommandFunction)(s32 count, astring** vector);

typedef struct PXTCommand {
  astring* name;
  PXTCommandFunction function;
} PXTCommand;

QVX_EXPORT u32 PXTNVSASCIIToXVal(const astring* text, s32 type, void* out);

QVX_EXPORT u32 PXTNVSNVPValToXVal(s32 count, astring** vector, const astring* name, s32 type,
                                  void* out);

QVX_EXPORT astring* PXTNVSXValToASCII(s32 type, const void* value);

QVX_EXPORT astring* PXTNVSUstrToAstrD(const ustring* text, const astring* fallback, u32* status);

QVX_EXPORT astring* PXTNVSUstrToAstr(const ustring* text, u32* status);

QVX_EXPORT ustring* PXTNVSAstrToUstrD(const astring* text, const ustring* fallback, u32* status);

QVX_EXPORT ustring* PXTNVSAstrToUstr(const astring* text, u32* status);

QVX_EXPORT u32 PXTNVSBufCatSetCmdParam(void* buffer, const astring* name, const void* oldValue,
                                       const void* newValue, const void* value, s32 type);

QVX_EXPORT void PXTNVSCatSMStatusNode(void* buffer, s32 status, const astring* message);

QVX_EXPORT astring* PXTNVSCMDHelp(s32 ignoredCount, astring** ignoredVector,
                                  const PXTCommand* table, s32 count, PXTCommandFunction self);

QVX_END_DECLS

#endif
