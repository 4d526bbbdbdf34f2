// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/xsl_path.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "qvxcs/xsl_path.h"

#include "base/heap.h"
#include "support/alloc_fault.h"
#include "support/files.h"

namespace qvx {
namespace {

const std::string kBase = "/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot//p";
const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
const std::string kOpening =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\" "
    "xmlns:fo=\"http://www.w3.org/1999/XSL/Format\">";
const std::string kClosing = "</xsl:stylesheet>";
constexpr u8 kAllParts = QVX_SHEET_DECLARATION | QVX_SHEET_OPENING_TAG | QVX_SHEET_CLOSING_TAG;

std::string Text(astring* text) {
  const HeapArray<astring> owner(text);
  return text == nullptr ? "(null)" : text;
}

// Makes an empty file below the product's directory, and the directories that contain it.
void MakeSheet(const std::string& name) {
  test::RequireSandbox();
  const std::string path = kBase + "/" + name;
  for (size_t at = kBase.size(); at != std::string::npos; at = path.find('/', at + 1)) {
    (void)mkdir(path.substr(0, at).c_str(), 0755);
  }
  test::WriteFile(path, "");
}

std::string Include(const std::string& name) {
  return "<xsl:include href=\"" + kBase + "/" + name + "\" />";
}

std::string Find(const char* locale, u8 flags = 0) {
  return Text(PXTGetXSLPathLocale("p", "d", "f.xsl", locale, flags, 0));
}

TEST(XslPath, WithoutAnyFileIsTheUriOfThePlainSheet) {
  EXPECT_EQ(Find("zh_TW"), kBase + "/d/f.xsl");
  EXPECT_EQ(Find(nullptr, kAllParts), kBase + "/d/f.xsl");
}

TEST(XslPath, LocaleFileComesBeforeThePlainSheet) {
  MakeSheet("d/f.xsl");
  MakeSheet("zh/d/f.xsl");
  EXPECT_EQ(Find("zh_TW"), kBase + "/zh/d/f.xsl");
  EXPECT_EQ(Find("zh"), kBase + "/zh/d/f.xsl");
  MakeSheet("zh/TW/d/f.xsl");
  EXPECT_EQ(Find("zh_TW"), kBase + "/zh/TW/d/f.xsl");
  EXPECT_EQ(Find("zh"), kBase + "/zh/d/f.xsl");
  EXPECT_EQ(Find("ja"), kBase + "/d/f.xsl");
}

TEST(XslPath, NullLocaleIsAmericanEnglish) {
  MakeSheet("en/d/f.xsl");
  EXPECT_EQ(Find(nullptr), kBase + "/en/d/f.xsl");
  MakeSheet("en/US/d/f.xsl");
  EXPECT_EQ(Find(nullptr), kBase + "/en/US/d/f.xsl");
}

TEST(XslPath, PlainSheetHasNoFallbackToAmericanEnglish) {
  MakeSheet("en/US/d/f.xsl");
  EXPECT_EQ(Find("ja"), kBase + "/d/f.xsl");
}

TEST(XslPath, LocaleOfMoreThanFiveCharactersIsNull) {
  EXPECT_EQ(Find("pt_BRX"), "(null)");
  EXPECT_EQ(Find("pt_BR"), kBase + "/d/f.xsl");
}

TEST(XslPath, NullProductDirectoryOrFileIsNull) {
  EXPECT_EQ(PXTGetXSLPathLocale(nullptr, "d", "f.xsl", "en", 0, 0), nullptr);
  EXPECT_EQ(PXTGetXSLPathLocale("p", nullptr, "f.xsl", "en", 0, 0), nullptr);
  EXPECT_EQ(PXTGetXSLPathLocale("p", "d", nullptr, "en", 0, 0), nullptr);
}

TEST(XslPath, AllFlagsWrapThreeIncludes) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/en/d/f.xsl");
  MakeSheet("template/en/d/globals.xsl");
  EXPECT_EQ(Find("en", kAllParts), kDeclaration + kOpening + Include("template/d/f.xsl") +
                                       Include("template/en/d/f.xsl") +
                                       Include("template/en/d/globals.xsl") + kClosing);
}

TEST(XslPath, NoFlagsGiveTheIncludesAlone) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/en/d/f.xsl");
  MakeSheet("template/en/d/globals.xsl");
  const std::string includes = Include("template/d/f.xsl") + Include("template/en/d/f.xsl") +
                               Include("template/en/d/globals.xsl");
  EXPECT_EQ(Find("en", 0), includes);
  EXPECT_EQ(Find("en", 1), includes);
  EXPECT_EQ(Find("en", 0xF1), includes);
}

TEST(XslPath, EachFlagAddsItsPart) {
  MakeSheet("template/d/f.xsl");
  const std::string include = Include("template/d/f.xsl");
  EXPECT_EQ(Find("en", QVX_SHEET_DECLARATION), kDeclaration + include);
  EXPECT_EQ(Find("en", QVX_SHEET_OPENING_TAG), kOpening + include);
  EXPECT_EQ(Find("en", QVX_SHEET_CLOSING_TAG), include + kClosing);
}

TEST(XslPath, CountryDirectoryComesBeforeTheLanguage) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/zh/d/f.xsl");
  MakeSheet("template/zh/TW/d/f.xsl");
  MakeSheet("template/zh/d/globals.xsl");
  EXPECT_EQ(Find("zh_TW"), Include("template/d/f.xsl") + Include("template/zh/TW/d/f.xsl") +
                               Include("template/zh/d/globals.xsl"));
}

TEST(XslPath, AmericanEnglishStandsInForAMissingLocaleFile) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/en/US/d/f.xsl");
  MakeSheet("template/en/d/globals.xsl");
  EXPECT_EQ(Find("ja"), Include("template/d/f.xsl") + Include("template/en/US/d/f.xsl") +
                            Include("template/en/d/globals.xsl"));
}

TEST(XslPath, GlobalsAreSoughtOnlyUnderTheStandInOnceItWasNeeded) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/ja/d/globals.xsl");
  EXPECT_EQ(Find("ja"), Include("template/d/f.xsl"));
  MakeSheet("template/en/US/d/f.xsl");
  EXPECT_EQ(Find("ja"), Include("template/d/f.xsl") + Include("template/en/US/d/f.xsl"));
}

TEST(XslPath, GlobalsHaveAStandInOfTheirOwn) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/ja/d/f.xsl");
  MakeSheet("template/en/US/d/f.xsl");
  MakeSheet("template/en/US/d/globals.xsl");
  EXPECT_EQ(Find("ja"), Include("template/d/f.xsl") + Include("template/ja/d/f.xsl") +
                            Include("template/en/US/d/globals.xsl"));
}

TEST(XslPath, TemplateSheetDoesNotLookOutsideTheTemplate) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("en/d/f.xsl");
  MakeSheet("d/globals.xsl");
  EXPECT_EQ(Find("en"), Include("template/d/f.xsl"));
}

TEST(XslPath, WithoutTheTemplatesSheetItsLocalesDoNotCount) {
  MakeSheet("template/en/US/d/f.xsl");
  MakeSheet("template/en/d/f.xsl");
  MakeSheet("template/d/globals.xsl");
  EXPECT_EQ(Find("en_US", kAllParts), kBase + "/d/f.xsl");
}

TEST(XslPath, GlobalsLieInTheCountryDirectoryOrTheLanguages) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/zh/d/f.xsl");
  MakeSheet("template/zh/d/globals.xsl");
  MakeSheet("template/zh/TW/d/globals.xsl");
  EXPECT_EQ(Find("zh_TW"), Include("template/d/f.xsl") + Include("template/zh/d/f.xsl") +
                               Include("template/zh/TW/d/globals.xsl"));
}

TEST(XslPath, BlanksAreEscapedAndBackslashesTurned) {
  EXPECT_EQ(Text(PXTGetXSLPathLocale("p", "a b", "c\\d.xsl", nullptr, 0, 0)),
            kBase + "/a%20b/c/d.xsl");
  MakeSheet("template/a b/f.xsl");
  EXPECT_EQ(Text(PXTGetXSLPathLocale("p", "a b", "f.xsl", nullptr, 0, 1)),
            Include("template/a%20b/f.xsl"));
}

// Every path of the result is a URI, so that the flag finds nothing left to turn.
TEST(XslPath, NoBackslashIsLeftWhateverTheFlag) {
  EXPECT_EQ(Text(PXTGetXSLPathLocale("p", "d\\e", "f\\g.xsl", nullptr, 0, 0)),
            kBase + "/d/e/f/g.xsl");
  MakeSheet("template/d/f\\g.xsl");
  for (const booln forward : {booln{0}, booln{1}, booln{0x100}}) {
    EXPECT_EQ(Text(PXTGetXSLPathLocale("p", "d", "f\\g.xsl", nullptr, 0, forward)),
              Include("template/d/f/g.xsl"));
  }
}

TEST(XslPath, TurnsEveryBackslashOfAText) {
  astring text[] = "\\a\\\\b/c\\";
  TurnBackslashes(text);
  EXPECT_STREQ(text, "/a//b/c/");
}

TEST(XslPath, ComposedSheetIsCutAt512Characters) {
  const std::string dir(100, 'd');
  MakeSheet("template/" + dir + "/f.xsl");
  MakeSheet("template/en/" + dir + "/f.xsl");
  MakeSheet("template/en/" + dir + "/globals.xsl");
  const std::string whole = kDeclaration + kOpening + Include("template/" + dir + "/f.xsl") +
                            Include("template/en/" + dir + "/f.xsl") +
                            Include("template/en/" + dir + "/globals.xsl") + kClosing;
  ASSERT_GT(whole.size(), 512u);
  EXPECT_EQ(Text(PXTGetXSLPathLocale("p", dir.c_str(), "f.xsl", "en", kAllParts, 0)),
            whole.substr(0, 512));
}

TEST(XslPath, PathIsCutAt255Characters) {
  const std::string dir(300, 'd');
  const std::string whole = kBase + "/" + dir + "/f.xsl";
  EXPECT_EQ(Text(PXTGetXSLPathLocale("p", dir.c_str(), "f.xsl", "en", 0, 0)), whole.substr(0, 255));
  const std::string product(300, 'p');
  EXPECT_EQ(Text(PXTGetXSLPathLocale(product.c_str(), "d", "f.xsl", "en", 0, 0)),
            ("/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot//" + product).substr(0, 255));
}

TEST(XslPath, IsNullWheneverAnAllocationFails) {
  MakeSheet("template/d/f.xsl");
  MakeSheet("template/en/d/f.xsl");
  HeapArray<astring> last;
  const u32 met = test::FailEachAllocation(
      [&] {
        last.reset(SUPTIntfGetXSLPathLocale("p", "d", "f.xsl", "en", 0, 0));
        return last.get();
      },
      [](const astring* text) { EXPECT_EQ(text, nullptr); });
  // The install path and the root, two URIs and the result.
  EXPECT_GE(met, 5u);
  EXPECT_NE(last, nullptr);
}

TEST(XslPath, JoinsItsPiecesWithSlashes) {
  EXPECT_EQ(Text(SIGetXSLPath("r", "d", "f", nullptr, 0, 0)), "r/d/f");
  EXPECT_EQ(Text(SIGetXSLPath("r", "d", "f", "l", 0, 0)), "r/l/d/f");
  EXPECT_EQ(Text(SIGetXSLPath("r", "d", "f", nullptr, 1, 0)), "r/template/d/f");
  EXPECT_EQ(Text(SIGetXSLPath("r", "d", "f", "l", 1, 0)), "r/template/l/d/f");
  EXPECT_EQ(Text(SIGetXSLPath("r", "d", "f", "l", 0x100, 0)), "r/template/l/d/f");
}

TEST(XslPath, JoinRefusesNullPieces) {
  EXPECT_EQ(SIGetXSLPath(nullptr, "d", "f", "l", 0, 0), nullptr);
  EXPECT_EQ(SIGetXSLPath("r", nullptr, "f", "l", 0, 0), nullptr);
  EXPECT_EQ(SIGetXSLPath("r", "d", nullptr, "l", 0, 0), nullptr);
}

TEST(XslPath, JoinAsksForTheFileWhenTold) {
  MakeSheet("d/f.xsl");
  EXPECT_EQ(Text(SIGetXSLPath(kBase.c_str(), "d", "f.xsl", nullptr, 0, 1)), kBase + "/d/f.xsl");
  EXPECT_EQ(SIGetXSLPath(kBase.c_str(), "d", "g.xsl", nullptr, 0, 1), nullptr);
  EXPECT_EQ(SIGetXSLPath(kBase.c_str(), "d", "f.xsl", nullptr, 1, 1), nullptr);
}

TEST(XslPath, PermutationTriesThePairThenTheLanguage) {
  const char* const base = kBase.c_str();
  EXPECT_EQ(SIGetXSLPathLocalePermutate(base, "d", "f.xsl", "zh_TW", 0, 1), nullptr);
  EXPECT_EQ(Text(SIGetXSLPathLocalePermutate(base, "d", "f.xsl", "zh_TW", 0, 0)),
            kBase + "/zh/TW/d/f.xsl");
  MakeSheet("zh/d/f.xsl");
  EXPECT_EQ(Text(SIGetXSLPathLocalePermutate(base, "d", "f.xsl", "zh_TW", 0, 1)),
            kBase + "/zh/d/f.xsl");
}

TEST(XslPath, PermutationTurnsTheFirstMarkOnly) {
  EXPECT_EQ(Text(SIGetXSLPathLocalePermutate("r", "d", "f", "a_b_c", 0, 0)), "r/a/b_c/d/f");
  MakeSheet("a/d/f.xsl");
  EXPECT_EQ(Text(SIGetXSLPathLocalePermutate(kBase.c_str(), "d", "f.xsl", "a_b_c", 0, 1)),
            kBase + "/a/d/f.xsl");
}

TEST(XslPath, PermutationRefusesLongLocalesAndNullPieces) {
  EXPECT_EQ(SIGetXSLPathLocalePermutate("r", "d", "f", "pt_BRX", 0, 0), nullptr);
  EXPECT_EQ(SIGetXSLPathLocalePermutate(nullptr, "d", "f", "l", 0, 0), nullptr);
  EXPECT_EQ(SIGetXSLPathLocalePermutate("r", nullptr, "f", "l", 0, 0), nullptr);
  EXPECT_EQ(SIGetXSLPathLocalePermutate("r", "d", nullptr, "l", 0, 0), nullptr);
  EXPECT_EQ(SIGetXSLPathLocalePermutate("r", "d", "f", nullptr, 0, 0), nullptr);
}

TEST(XslPath, UriTurnsBackslashesAndEscapesBlanks) {
  EXPECT_EQ(Text(ConvertPathToURI("C:\\x y")), "C:/x%20y");
  EXPECT_EQ(Text(ConvertPathToURI("   ")), "%20%20%20");
  EXPECT_EQ(Text(ConvertPathToURI("")), "");
  EXPECT_EQ(ConvertPathToURI(nullptr), nullptr);
}

}  // namespace
}  // namespace qvx
