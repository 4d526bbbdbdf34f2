// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_LAYOUT_H
#define QVX_BASE_LAYOUT_H

// Every fixed path of the product. A doubled "/" is part of the layout.
namespace qvx {

inline constexpr char kInstallPath[] = "/opt/zarn/plinthos/";
inline constexpr char kProductIniPath[] = "/etc/cim/zarn/plinthos/vexilon/";
inline constexpr char kProductVarPath[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/";

inline constexpr char kWwwRootPath[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot/";
inline constexpr char kXslRootPath[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot/";
inline constexpr char kDownloadPath[] =
    "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/download";
inline constexpr char kUploadPath[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/upload";
inline constexpr char kCliDocsDirectory[] =
    "/etc/cim/zarn/plinthos/var/lib/vexilon/cliroot//qvx/docs/";
inline constexpr char kWebDocsDirectory[] =
    "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/docs/";
inline constexpr char kTempDirPath[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/iws/temp";

inline constexpr char kIniFileDirectory[] = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/";
inline constexpr char kOemDirectory[] = "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/";

inline constexpr char kCmdLogDirectory[] = "/etc/cim/zarn/plinthos/var/log/vexilon/";
inline constexpr char kCmdLogFileName[] = "qvcmdlog.xml";
// Relative to kProductIniPath.
inline constexpr char kPropertiesFileName[] = "qvx/ini/qvx.properties";

inline constexpr char kRoleMapPath[] = "/etc/cim/zarn/plinthos/qvxrolemap";

inline constexpr char kIPCConfigPath[] = "/etc/qvx.conf";
inline constexpr char kIPCFilePath[] = "/etc/cim/zarn/plinthos/var/lib/vexilon//.qvxipc";

inline constexpr char kOsReleasePath[] = "/etc/os-release";
inline constexpr char kServiceName[] = "hvn_qv_connsvc";
inline constexpr char kServiceInitScript[] = "/etc/init.d/hvn_qv_connsvc";
inline constexpr char kShutdownProgram[] = "/sbin/shutdown";

}  // namespace qvx

#endif
