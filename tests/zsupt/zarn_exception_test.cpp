// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_exception.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace {

using ZarnSupport::ZarnException;

TEST(ZarnException, BeginsWithoutCodeTextAndMessages) {
  const ZarnException exception;
  EXPECT_EQ(exception.getCode(), 0);
  EXPECT_EQ(exception.getUText(), L"");
  EXPECT_TRUE(exception.getCallStack().empty());
}

TEST(ZarnException, KeepsCodeAndTextAndTheInnermostMessageFirst) {
  ZarnException exception(4);
  EXPECT_EQ(exception.getCode(), 4);
  exception.setCode(7);
  exception.setText(L"no such file");
  exception.pushMessage(L"while reading");
  exception.pushMessage(L"while starting");
  const ZarnException copy = exception;
  EXPECT_EQ(copy.getCode(), 7);
  EXPECT_EQ(copy.getUText(), L"no such file");
  EXPECT_EQ(copy.getCallStack(), (std::deque<std::wstring>{L"while reading", L"while starting"}));
}

TEST(ZarnException, IsCaughtAsItsBase) {
  class OwnException : public ZarnException {
   public:
    OwnException() : ZarnException(9) {}
  };
  try {
    throw OwnException();
  } catch (const ZarnException& exception) {
    EXPECT_EQ(exception.getCode(), 9);
    EXPECT_NE(dynamic_cast<const OwnException*>(&exception), nullptr);
  }
}

}  // namespace
