// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/paths.h"

#include "base/cancel_hold.h"
#include "base/export_context.h"
#include "config/oem.h"
#include "os/ip_interfaces.h"
#include "paths/install_path.h"
#include "paths/locale.h"
#include "paths/product_paths.h"
#include "paths/web_server.h"

astring* PXTGetQVXInstallPath() { return qvx::SUPTIntfGetQVXInstallPath(); }
astring* PXTGetRootInstallPath() { return qvx::SUPTIntfGetProductInstallPath(); }
astring* PXTGetProductIniPath() {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfGetProductIniPath();
}
astring* PXTGetProductVarPath() {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfGetProductVarPath();
}
astring* PXTGetQVXWWWRootPath() { return qvx::SUPTIntfGetQVXWWWRootPath(); }
astring* PXTGetQVXXSLRootPath() { return qvx::SUPTIntfGetQVXXSLRootPath(); }
astring* PXTGetQVXDownloadPath() { return qvx::SUPTIntfGetQVXDownloadPath(); }
astring* PXTGetQVXUploadPath() { return qvx::SUPTIntfGetQVXUploadPath(); }
astring* PXTGetQVXCLIDocsPath() { return qvx::SUPTIntfGetQVXCLIDocsPath(); }
astring* PXTGetQVXWEBDocsPath() { return qvx::SUPTIntfGetQVXWEBDocsPath(); }
astring* PXTGetIWSTempDirPath() {
  const qvx::CancelHold hold;
  return qvx::SUPTIntfGetIWSTempDirPath();
}
astring* PXTGetOEMINIPathFile(const astring* oem, const astring* file, const astring* flag) {
  return qvx::SUPTIntfGetOEMINIPathFile(oem, file, flag);
}
u32 PXTCheckModularChassis() {
  const qvx::CancelHold hold;
  return qvx::CheckModularChassis();
}
astring* PXTGetOEMADSchemaPrefix() {
  const qvx::CancelHold hold;
  return qvx::GetOEMADSchemaPrefix();
}
astring* PXTGetLocaleNameAStr(u32 languageId) { return qvx::SUPTIntfGetLocaleNameAStr(languageId); }
astring* PXTGetOSLocaleName() { return qvx::SUPTIntfGetOSLocaleName(); }
astring* PXTGetOSLanguage() { return qvx::SUPTIntfGetOSLanguage(); }
astring* PXTGetOSCountry() { return qvx::SUPTIntfGetOSCountry(); }
astring* PXTGetHostNameAStr() { return qvx::SUPTIntfGetHostNameAStr(); }
u32 PXTWebServer(u32 action, u32 reserved, s32* exitCode) {
  const qvx::ExportBracket bracket;
  return qvx::CfgWebServer(action, reserved, exitCode);
}
