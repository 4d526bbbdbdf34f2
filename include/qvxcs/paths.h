/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_PATHS_H
#define QVXCS_PATHS_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT astring* PXTGetQVXInstallPath(void);

QVX_EXPORT astring* PXTGetRootInstallPath(void);

QVX_EXPORT astring* PXTGetProductIniPath(void);

QVX_EXPORT astring* PXTGetProductVarPath(void);

QVX_EXPORT astring* PXTGetQVXWWWRootPath(void);

QVX_EXPORT astring* PXTGetQVXXSLRootPath(void);

QVX_EXPORT astring* PXTGetQVXDownloadPath(void);

QVX_EXPORT astring* PXTGetQVXUploadPath(void);

QVX_EXPORT astring* PXTGetQVXCLIDocsPath(void);

QVX_EXPORT astring* PXTGetQVXWEBDocsPath(void);

QVX_EXPORT astring* PXTGetIWSTempDirPath(void);

QVX_EXPORT astring* PXTGetOEMINIPathFile(const astring* oem, const astring* file,
                                         const astring* flag);

QVX_EXPORT u32 PXTCheckModularChassis(void);

QVX_EXPORT astring* PXTGetOEMADSchemaPrefix(void);

QVX_EXPORT astring* PXTGetLocaleNameAStr(u32 languageId);

QVX_EXPORT astring* PXTGetOSLocaleName(void);

QVX_EXPORT astring* PXTGetOSLanguage(void);

QVX_EXPORT astring* PXTGetOSCountry(void);

QVX_EXPORT astring* PXTGetHostNameAStr(void);

QVX_EXPORT u32 PXTWebServer(u32 action, u32 reserved, s32* exitCode);

QVX_END_DECLS

#endif
