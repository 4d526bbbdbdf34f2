/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* Each of these calls gives a new text, or NULL; the caller frees it. */
static void Print(const char* what, astring* text) {
  printf("%s: %s\n", what, text != NULL ? text : "(none)");
  PXTFreeMem(text);
}

static void PrintFolders(void) {
  Print("installed", PXTGetQVXInstallPath());
  Print("root", PXTGetRootInstallPath());
  Print("settings", PXTGetProductIniPath());
  Print("data", PXTGetProductVarPath());
}

static void PrintWebFolders(void) {
  Print("web", PXTGetQVXWWWRootPath());
  Print("sheets", PXTGetQVXXSLRootPath());
  Print("download", PXTGetQVXDownloadPath());
  Print("upload", PXTGetQVXUploadPath());
  Print("temporary", PXTGetIWSTempDirPath()); /* makes it */
}

static void PrintDocuments(void) {
  Print("of the tool", PXTGetQVXCLIDocsPath());
  Print("of the pages", PXTGetQVXWEBDocsPath());
}

static void PrintLocale(void) {
  Print("1031", PXTGetLocaleNameAStr(1031));
  Print("locale", PXTGetOSLocaleName());
  Print("language", PXTGetOSLanguage());
  Print("country", PXTGetOSCountry());
  Print("host", PXTGetHostNameAStr());
}

static void PrintBrand(void) {
  Print("an OEM's settings", PXTGetOEMINIPathFile("acme", "page.ini", "0"));
  Print("prefix", PXTGetOEMADSchemaPrefix());
  printf("modular: %u\n", PXTCheckModularChassis());
}

/* Starts the product's web service; needs root and systemd. main() does not call it. */
int StartWebService(void) {
  s32 exitCode = 0;
  const u32 status = PXTWebServer(QVX_WEBSERVER_START, 0, &exitCode);
  if (status != SM_STATUS_SUCCESS) fprintf(stderr, "systemctl left with %d\n", exitCode);
  return status == SM_STATUS_SUCCESS ? 0 : 1;
}

int main(void) {
  PrintFolders();
  PrintWebFolders();
  PrintDocuments();
  PrintLocale();
  PrintBrand();
  return 0;
}

/*
 * Prints:
 *   installed: /opt/zarn/plinthos/
 *   root: /opt/zarn/plinthos
 *   settings: /etc/cim/zarn/plinthos/vexilon/
 *   data: /etc/cim/zarn/plinthos/var/lib/vexilon/
 *   web: /etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot/
 *   sheets: /etc/cim/zarn/plinthos/var/lib/vexilon/xslroot/
 *   download: /etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/download
 *   upload: /etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/upload
 *   temporary: /etc/cim/zarn/plinthos/var/lib/vexilon/iws/temp
 *   of the tool: /etc/cim/zarn/plinthos/var/lib/vexilon/cliroot//qvx/docs/en_US
 *   of the pages: /etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/docs/en_US
 *   1031: de
 *   locale: en_US
 *   language: en
 *   country: US
 *   host: qvxtest
 *   an OEM's settings: /etc/cim/zarn/plinthos/vexilon/wwwroot/oem/acme/ini/zarn/page.ini
 *   prefix: zarn
 *   modular: 0
 */
