// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using ZarnSupport::ZarnTokenizer;
using Tokens = std::vector<std::wstring>;

Tokens Split(const std::wstring& text, const std::wstring& separators) {
  Tokens tokens;
  ZarnTokenizer tokenizer(text, separators);
  while (tokenizer.hasMoreTokens())
    tokens.push_back(tokenizer.nextToken());
  return tokens;
}

TEST(ZarnTokenizer, SplitsAtEverySeparatorOfTheSet) {
  EXPECT_EQ(Split(L"a b\tc", L" \t"), (Tokens{L"a", L"b", L"c"}));
}

TEST(ZarnTokenizer, KeepsEmptyTokensBetweenBeforeAndBehindSeparators) {
  EXPECT_EQ(Split(L",a,,b,", L","), (Tokens{L"", L"a", L"", L"b", L""}));
}

TEST(ZarnTokenizer, TheEmptyTextIsOneEmptyToken) { EXPECT_EQ(Split(L"", L","), Tokens{L""}); }

TEST(ZarnTokenizer, WithoutSeparatorsTheTextIsOneToken) {
  EXPECT_EQ(Split(L"a,b", L""), Tokens{L"a,b"});
}

TEST(ZarnTokenizer, GivesEmptyTextsOnceExhausted) {
  ZarnTokenizer tokenizer(L"a", L",");
  EXPECT_EQ(tokenizer.nextToken(), L"a");
  EXPECT_FALSE(tokenizer.hasMoreTokens());
  EXPECT_EQ(tokenizer.nextToken(), L"");
}

}  // namespace
