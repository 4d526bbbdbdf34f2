/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* paths, xsl_path */
#include <stdlib.h>
#include <unistd.h>

#include "calls.h"

#define BASE "/etc/cim/zarn/plinthos/"
#define VAR BASE "var/lib/vexilon/"

static void CallFixedPaths(void) {
  EXPECT_OWN(CALL(PXTGetQVXInstallPath)(), "/opt/zarn/plinthos/");
  EXPECT_OWN(CALL(PXTGetRootInstallPath)(), "/opt/zarn/plinthos");
  EXPECT_OWN(CALL(PXTGetProductIniPath)(), BASE "vexilon/");
  EXPECT_OWN(CALL(PXTGetProductVarPath)(), VAR);
  EXPECT_OWN(CALL(PXTGetQVXWWWRootPath)(), VAR "wwwroot/");
  EXPECT_OWN(CALL(PXTGetQVXXSLRootPath)(), VAR "xslroot/");
  EXPECT_OWN(CALL(PXTGetQVXDownloadPath)(), VAR "wwwroot//qvx/download");
  EXPECT_OWN(CALL(PXTGetQVXUploadPath)(), VAR "wwwroot//qvx/upload");
  EXPECT_OWN(CALL(PXTGetQVXCLIDocsPath)(), VAR "cliroot//qvx/docs/en_US");
  EXPECT_OWN(CALL(PXTGetQVXWEBDocsPath)(), VAR "wwwroot//qvx/docs/en_US");
  EXPECT(!Exists(VAR "iws/temp"));
  EXPECT_OWN(CALL(PXTGetIWSTempDirPath)(), VAR "iws/temp");
  EXPECT(Exists(VAR "iws/temp"));
}

static void CallLocale(void) {
  setenv("LANG", "fr_FR.UTF-8", 1);
  EXPECT_OWN(CALL(PXTGetLocaleNameAStr)(1031), "de");
  EXPECT_OWN(CALL(PXTGetLocaleNameAStr)(9999), "en_US");
  EXPECT_OWN(CALL(PXTGetOSLocaleName)(), "en_US");
  EXPECT_OWN(CALL(PXTGetOSLanguage)(), "en");
  EXPECT_OWN(CALL(PXTGetOSCountry)(), "US");
  EXPECT_OWN(CALL(PXTGetHostNameAStr)(), "qvxtest");
}

static void CallOem(void) {
  static const char kChassis[] = BASE "vexilon/qvx/ini/qvcli32.ini";
  static const char kOem[] = BASE "vexilon/qvx/ini/oem.ini";
  EXPECT_OWN(CALL(PXTGetOEMINIPathFile)("acme", "x.ini", "0"),
             BASE "vexilon/wwwroot/oem/acme/ini/zarn/x.ini");
  EXPECT_OWN(CALL(PXTGetOEMINIPathFile)("acme", "x.ini", "1"),
             BASE "vexilon/wwwroot/oem/acme/ini/debrand/x.ini");
  EXPECT_EQ(CALL(PXTCheckModularChassis)(), 0);
  WriteText(kChassis, "[blade]\nblade=true\n");
  EXPECT_EQ(CALL(PXTCheckModularChassis)(), 1);
  EXPECT_OWN(CALL(PXTGetOEMADSchemaPrefix)(), "zarn");
  WriteText(kOem, "[data]\nadschemaprefix=acme\n");
  EXPECT_OWN(CALL(PXTGetOEMADSchemaPrefix)(), "acme");
}

/* A recorder replaces the service's command. */
static void CallWebServer(void) {
  s32 code = 77;
  setenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin", 1);
  (void)unlink("/etc/os-release");
  WriteText("/etc/os-release", "ID=host\n");
  MakeProgram("/usr/bin/systemctl", "#!/bin/sh\necho \"$*\" >/run/systemctl.record\nexit 2\n");
  EXPECT_EQ(CALL(PXTWebServer)(1, 0, &code), SM_STATUS_FILE_CREATE_FAILED);
  EXPECT_EQ(code, 2);
  EXPECT_TEXT(ReadText("/run/systemctl.record"), "start hvn_qv_connsvc.service\n");
}

static void CallStyleSheets(void) {
  EXPECT_OWN(CALL(PXTGetXSLPathLocale)("p", "d", "my file.xsl", NULL, 14, 1),
             VAR "xslroot//p/d/my%20file.xsl");
  EXPECT(CALL(PXTGetXSLPathLocale)("p", "d", "f.xsl", "pt_BRX", 0, 1) == NULL);
  Shell("mkdir -p " VAR "xslroot/p/template/d " VAR "xslroot/p/template/zh/d");
  WriteText(VAR "xslroot/p/template/d/f.xsl", "");
  WriteText(VAR "xslroot/p/template/zh/d/f.xsl", "");
  EXPECT_OWN(CALL(PXTGetXSLPathLocale)("p", "d", "f.xsl", "zh_TW", 14, 0),
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
             "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\""
             " xmlns:fo=\"http://www.w3.org/1999/XSL/Format\">"
             "<xsl:include href=\"" VAR
             "xslroot//p/template/d/f.xsl\" />"
             "<xsl:include href=\"" VAR
             "xslroot//p/template/zh/d/f.xsl\" />"
             "</xsl:stylesheet>");
}

void CallPaths(void) {
  CallFixedPaths();
  CallLocale();
  CallOem();
  CallWebServer();
  CallStyleSheets();
}
