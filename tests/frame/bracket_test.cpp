// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "qvxcs/qvxcs.h"

#include "support/alone.h"
#include "support/bracket_watch.h"

namespace {

using Call = void (*)();

struct Case {
  const char* name;
  Call call;
};

// Null arguments end most calls at once; a bracket comes before any look at them.
const Case kBracketed[] = {
    {"PXTGetProductIniPath", [] { PXTFreeMem(PXTGetProductIniPath()); }},
    {"PXTGetProductVarPath", [] { PXTFreeMem(PXTGetProductVarPath()); }},
    {"PXTReadINIFileValue",
     [] {
       (void)PXTReadINIFileValue(nullptr, nullptr, QVX_INI_ASTRING, nullptr, nullptr, nullptr, 0,
                                 nullptr, QVX_LOCK_TRY);
     }},
    {"PXTReadINIPathFileValue",
     [] {
       (void)PXTReadINIPathFileValue(nullptr, nullptr, QVX_INI_ASTRING, nullptr, nullptr, nullptr,
                                     0, nullptr, QVX_LOCK_TRY);
     }},
    {"PXTWriteINIFileValue",
     [] {
       (void)PXTWriteINIFileValue(nullptr, nullptr, QVX_INI_ASTRING, nullptr, 0, nullptr,
                                  QVX_LOCK_TRY);
     }},
    {"PXTWriteINIPathFileValue",
     [] {
       (void)PXTWriteINIPathFileValue(nullptr, nullptr, QVX_INI_ASTRING, nullptr, 0, nullptr,
                                      QVX_LOCK_TRY);
     }},
    {"PXTGetCmdLogPathFileName", [] { PXTFreeMem(PXTGetCmdLogPathFileName()); }},
    {"PXTAppendToCmdLog", [] { (void)PXTAppendToCmdLog(0, nullptr, nullptr, nullptr, 0); }},
    {"PXTClearCmdLog", [] { (void)PXTClearCmdLog(nullptr, nullptr); }},
    {"PXTGetCmdLogSize", [] { (void)PXTGetCmdLogSize(nullptr); }},
    {"PXTGetCmdLogMaxSize", [] { (void)PXTGetCmdLogMaxSize(nullptr); }},
    {"PXTSetCmdLogMaxSize", [] { (void)PXTSetCmdLogMaxSize(0); }},
    {"PXTForceXMLLogExists", [] { (void)PXTForceXMLLogExists(nullptr, nullptr, nullptr); }},
    {"PXTClearXMLLog", [] { (void)PXTClearXMLLog(nullptr, nullptr, nullptr); }},
    {"PXTAppendToXMLLog",
     [] { (void)PXTAppendToXMLLog(nullptr, 0, 0, nullptr, nullptr, nullptr, nullptr, 0, 0); }},
    {"PXTGetBackupXMLLogPathFileName",
     [] { (void)PXTGetBackupXMLLogPathFileName(nullptr, nullptr, nullptr); }},
    {"PXTAppendToOSLog", [] { (void)PXTAppendToOSLog(0, 0, nullptr, nullptr); }},
    {"PXTClearOSLog", [] { (void)PXTClearOSLog(); }},
    {"PXTCFGGetKeyValueEntries", [] { (void)PXTCFGGetKeyValueEntries(nullptr, nullptr); }},
    {"PXTCFGInstGetKeyValueEntries", [] { (void)PXTCFGInstGetKeyValueEntries(nullptr, nullptr); }},
    {"PXTCFGGetKeyValue", [] { (void)PXTCFGGetKeyValue(nullptr, 0, nullptr, 0); }},
    {"PXTCFGFreeKeyValueEntries", [] { PXTCFGFreeKeyValueEntries(nullptr, 0); }},
    {"PXTCFGSetKeyValue", [] { (void)PXTCFGSetKeyValue(nullptr, nullptr, 0); }},
    {"PXTCFGInstSetKeyValue", [] { (void)PXTCFGInstSetKeyValue(nullptr, nullptr, 0); }},
    {"PXTWebServer", [] { (void)PXTWebServer(0, 0, nullptr); }},
};

QVX_ALONE(Bracket, StandsAroundEachOfTheTwentyFiveCalls) {
  EXPECT_EQ(sizeof(kBracketed) / sizeof(kBracketed[0]), 25U);
  (void)qvx::test::TakeBrackets();
  for (const Case& one : kBracketed) {
    one.call();
    EXPECT_EQ(qvx::test::TakeBrackets(), "()") << one.name;
  }
}

QVX_ALONE(Bracket, IsNotMadeAroundOthersThatTouchFiles) {
  (void)qvx::test::TakeBrackets();
  (void)PXTDeleteFile("/run/missing");
  (void)PXTCmdGetXMLLogContent("/run/missing");
  (void)PXTCheckModularChassis();
  (void)PXTMaskProgramRights(0, "", "missing.ini", nullptr);
  PXTFreeMem(PXTGetOEMADSchemaPrefix());
  PXTFreeMem(PXTGetQVXInstallPath());
  EXPECT_EQ(qvx::test::TakeBrackets(), "");
}

}  // namespace
