// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/export_context.h"

#include <gtest/gtest.h>

#include "qvxcs/export_context.h"

namespace {

TEST(ExportContext, TheContextIsAlwaysZero) {
  u32 slot = 0xDEADBEEF;
  PXTGetExportContext(&slot);
  EXPECT_EQ(slot, 0U);
  PXTGetExportContext(nullptr);
}

TEST(ExportContext, TheHooksTouchNothing) {
  u32 save = 11;
  u32 context = 22;
  PXTSetExportContext(&save, &context);
  PXTResetExportContext(&save);
  PXTSetExportContext(nullptr, nullptr);
  PXTResetExportContext(nullptr);
  PXTSetProcessEnvironment();
  SUPTBeforeForkForDaemon();
  EXPECT_EQ(save, 11U);
  EXPECT_EQ(context, 22U);
}

TEST(ExportContext, LongFileNamesAnswerZero) {
  EXPECT_EQ(PXTEnableLongFileNames(), 0);
  EXPECT_EQ(PXTDisableLongFileNames(), 0);
}

}  // namespace
