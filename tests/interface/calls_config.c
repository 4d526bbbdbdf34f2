/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* ini_file, keyvalue, string_resource, file_util */
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "calls.h"

static void CallIniFiles(void) {
  static const char kIni[] = "/run/host.ini";
  const ustring units[] = u"A";
  const u8 bytes[] = {0x0A, 0xFF};
  const booln yes = 1;
  const u32 natural = 4294967295;
  const s32 whole = -80;
  const u64 wideNatural = UINT64_MAX;
  const s64 wideWhole = INT64_MIN;
  const d64 real = 1.5;
  const struct {
    const char* key;
    s32 type;
    const void* value;
    u32 size;
  } cases[] = {
      {"text", 1, "some text", 10},
      {"units", 2, units, 4},
      {"bytes", 3, bytes, 2},
      {"flag", 4, &yes, 2},
      {"natural", 5, &natural, 4},
      {"whole", 6, &whole, 4},
      {"wideNatural", 7, &wideNatural, 8},
      {"wideWhole", 8, &wideWhole, 8},
      {"real", 9, &real, 8},
  };
  const size_t count = sizeof(cases) / sizeof(*cases);
  for (size_t at = 0; at < count; ++at) {
    EXPECT_EQ(CALL(PXTWriteINIPathFileValue)("Host", cases[at].key, cases[at].type, cases[at].value,
                                             (s32)cases[at].size, kIni, QVX_LOCK_WAIT),
              SM_STATUS_SUCCESS);
  }
  EXPECT_TEXT(ReadText(kIni),
              "[Host]\ntext=some text\nunits=0x41,0x00,0x00,0x00\nbytes=0x0A,0xFF\nflag=TRUE\n"
              "natural=4294967295\nwhole=-80\nwideNatural=18446744073709551615\n"
              "wideWhole=-9223372036854775808\nreal=1.50000000\n");
  for (size_t at = 0; at < count; ++at) {
    char value[64] = "";
    u32 size = cases[at].type < 4 ? sizeof(value) : cases[at].size;
    EXPECT_EQ(CALL(PXTReadINIPathFileValue)("Host", cases[at].key, cases[at].type, value, &size,
                                            NULL, 0, kIni, QVX_LOCK_WAIT),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(size, cases[at].size);
    EXPECT(memcmp(value, cases[at].value, cases[at].size) == 0);
  }

  astring text[3] = "";
  u32 size = sizeof(text);
  EXPECT_EQ(CALL(PXTReadINIPathFileValue)("Host", "none", QVX_INI_ASTRING, text, &size, "default",
                                          8, kIni, QVX_LOCK_WAIT),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_TEXT(text, "de");
  EXPECT_EQ(size, 3);

  static const char kOwn[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/host.ini";
  size = sizeof(text);
  EXPECT_EQ(
      CALL(PXTWriteINIFileValue)("S", "k", QVX_INI_ASTRING, "v", 2, "host.ini", QVX_LOCK_WAIT),
      SM_STATUS_SUCCESS);
  EXPECT_TEXT(ReadText(kOwn), "[S]\nk=v\n");
  EXPECT_EQ(CALL(PXTReadINIFileValue)("S", "k", QVX_INI_ASTRING, text, &size, NULL, 0, "host.ini",
                                      QVX_LOCK_WAIT),
            SM_STATUS_SUCCESS);
  EXPECT_TEXT(text, "v");
  EXPECT_EQ(size, 2);
  (void)unlink(kOwn);
}

static void CallKeyValueFiles(void) {
  static const char kFile[] = "/run/host.properties";
  static const char kOwn[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/host.properties";
  u32 count = 77;
  WriteText(kFile, "a=1\n# c=2\n b = \"x y\" \n");
  PXTKeyValue* entries = CALL(PXTCFGGetKeyValueEntries)(kFile, &count);
  EXPECT_EQ(count, 2);
  EXPECT_TEXT(entries[0].key, "a");
  EXPECT_TEXT(entries[0].value, "1");
  EXPECT_TEXT(CALL(PXTCFGGetKeyValue)(entries, count, "b", 0), "x y");
  EXPECT(CALL(PXTCFGGetKeyValue)(entries, count, "b", 1) == NULL);
  CALL(PXTCFGFreeKeyValueEntries)(entries, count);

  astring key[] = "a";
  astring value[] = "2";
  const PXTKeyValue pair = {key, value};
  EXPECT_EQ(CALL(PXTCFGSetKeyValue)(kFile, &pair, 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTCFGSetKeyValue)(kFile, &pair, 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTCFGSetKeyValue)(kFile, &pair, 3), SM_STATUS_INVALID_PARAMETER);
  EXPECT_TEXT(ReadText(kFile), "a=2\n# c=2\n b = \"x y\" \na=2\n");

  EXPECT_EQ(CALL(PXTCFGInstSetKeyValue)("qvx/ini/host.properties", &pair, 0),
            SM_STATUS_FILE_OPEN_ERROR);
  WriteText(kOwn, "k=v\n");
  EXPECT_EQ(CALL(PXTCFGInstSetKeyValue)("qvx/ini/host.properties", &pair, 0), SM_STATUS_SUCCESS);
  EXPECT_TEXT(ReadText(kOwn), "k=v\na=2\n");
  entries = CALL(PXTCFGInstGetKeyValueEntries)("qvx/ini/host.properties", &count);
  EXPECT_EQ(count, 2);
  EXPECT_TEXT(CALL(PXTCFGGetKeyValue)(entries, count, "a", 0), "2");
  CALL(PXTCFGFreeKeyValueEntries)(entries, count);
  (void)unlink(kOwn);
}

static void CallStringResources(void) {
  static const char kFile[] = "/run/host.res";
  static const ustring kText[] = u"\uFEFF0:1F=Disk full\r\n10C:1F=other\r\n";
  ustring text[64] = u"";
  u32 size = sizeof(text);
  u32 language = 1033;
  WriteWhole(kFile, kText, sizeof(kText) - 2);
  EXPECT_EQ(CALL(PXTGetUnicodeStringFromIDPathFile)(0x1F, &language, kFile, text, &size), 20);
  EXPECT_UNITS(text, u"Disk full");
  EXPECT_EQ(size, 20);
  EXPECT_EQ(language, 0);
  size = sizeof(text);
  EXPECT_EQ(CALL(PXTGetUnicodeStringFromIDPathFile)(1, NULL, NULL, text, &size), 46);
  EXPECT_UNITS(text, u"Invalid Path File Name");
}

static void CallFileUtilities(void) {
  static const char kFolder[] = "/run/folder";
  static const char kFile[] = "/run/folder/file";
  u32 size = 77;
  EXPECT_EQ(CALL(PXTRmDir)(kFolder), SM_STATUS_FAILURE);
  EXPECT_EQ(CALL(PXTMkDir)(kFolder), 0);
  EXPECT_EQ(CALL(PXTMkDir)(kFolder), 0);
  EXPECT_EQ(CALL(PXTGetSizeOfFile)(kFile, &size), 0xFFFFFFFF);
  EXPECT_EQ(size, 0);
  WriteText(kFile, "12345");
  EXPECT_EQ(CALL(PXTGetSizeOfFile)(kFile, &size), 0);
  EXPECT_EQ(size, 5);
  EXPECT_EQ(CALL(PXTRmDir)(kFolder), SM_STATUS_BAD_DATA);
  EXPECT_EQ(CALL(PXTDeleteFile)(kFile), 0);
  EXPECT(!Exists(kFile));
  EXPECT_EQ(CALL(PXTDeleteFile)(kFile), 0xFFFFFFFF);
  EXPECT_EQ(CALL(PXTRmDir)(kFolder), 0);
  EXPECT(!Exists(kFolder));

  astring name[20] = "";
  size = 19;
  EXPECT_EQ(CALL(PXTGetTmpFile)("/run", name, &size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 20);
  EXPECT_EQ(CALL(PXTGetTmpFile)("/run", name, &size), 0);
  EXPECT(size > 1 && size == strlen(name) + 1);
  EXPECT(!Exists(name));
}

void CallConfig(void) {
  CallIniFiles();
  CallKeyValueFiles();
  CallStringResources();
  CallFileUtilities();
}
