/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* uni_string, transcode, number_text, grow_string, param_vector */
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "calls.h"

static void CallUniStrings(void) {
  ustring text[16] = u"xxxxx";
  const ustring* const hello = u"hello";
  EXPECT_EQ(CALL(PXTUniStrlen)(hello), 5);
  CALL(PXTUniStrncpy)(text, u"abc", 2);
  EXPECT_UNITS(text, u"abxxx");
  CALL(PXTUniStrcpy)(text, u"ab");
  EXPECT_UNITS(text, u"ab");
  CALL(PXTUniStrcat)(text, u"cd");
  CALL(PXTUniStrncat)(text, u"efgh", 2);
  EXPECT_UNITS(text, u"abcdef");
  EXPECT_EQ(CALL(PXTUniStrcmp)(u"a", u"b"), 65535);
  EXPECT_EQ(CALL(PXTUniStrcmp)(hello, u"hello"), 0);
  EXPECT(CALL(PXTUniStrchr)(hello, 'l') == hello + 2);
  EXPECT(CALL(PXTUniStrchr)(hello, 0) == hello + 5);
  EXPECT(CALL(PXTUniStrchr)(hello, 'z') == NULL);
  EXPECT(CALL(PXTUniStrstr)(hello, u"lo") == hello + 3);
  EXPECT(CALL(PXTUniStrstr)(hello, u"") == hello);
  EXPECT_EQ(CALL(PXTUniStrspn)(u"aabc", u"ab"), 3);
  EXPECT_EQ(CALL(PXTUniStrcspn)(hello, u"xl"), 2);

  ustring list[] = u" a, b";
  EXPECT_UNITS(CALL(PXTUniStrtok)(list, u" ,"), u"a");
  EXPECT_UNITS(CALL(PXTUniStrtok)(NULL, u" ,"), u"b");
  EXPECT(CALL(PXTUniStrtok)(NULL, u" ,") == NULL);

  EXPECT(CALL(PXTUniStrrev)(text) == text);
  EXPECT_UNITS(text, u"fedcba");
  EXPECT(CALL(PXTUniStrset)(text, 'x') == text);
  EXPECT_UNITS(text, u"xxxxxx");
  CALL(PXTUniStrnset)(text, 'y', 7); /* over the terminator */
  EXPECT_UNITS(text, u"yyyyyyy");
}

/* Each takes room for 16 elements. */
static void ToUtf8(u32 (*convert)(astring*, u32*, const ustring*), const ustring* text,
                   const char* expected) {
  astring out[16] = "";
  u32 size = 0;
  EXPECT_EQ(convert(NULL, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, strlen(expected) + 1);
  EXPECT_EQ(convert(out, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, strlen(expected) + 1);
  EXPECT_TEXT(out, expected);
  size = 0;
  EXPECT_EQ(convert(out, &size, text), SM_STATUS_BUFFER_TOO_SMALL);
}

static void ToUnits(u32 (*convert)(ustring*, u32*, const astring*), const astring* text,
                    const ustring* expected, u32 bytes) {
  ustring out[16] = u"";
  u32 size = 0;
  EXPECT_EQ(convert(NULL, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, bytes);
  size = 16;
  EXPECT_EQ(convert(out, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, bytes);
  EXPECT_UNITS(out, expected);
}

static void CallTranscoders(void) {
  static const ustring kSurrogates[] = {'A', 0xD83D, 0xDE00, 0};
  static const ustring kPair[] = {0xD87D, 0xDE00, 0}; /* 0x10000 is not taken off */
  static const u32 kCodePoints[] = {0x1F600, 0xE9, 0};
  ToUtf8(CALL(PXTUCS2StrToUTF8Str), kSurrogates, "AAA");
  ToUtf8(CALL(PXTUnicodeToASCII), u"\u20AC", "\xE2\x82\xAC");
  ToUtf8(CALL(PXTUnicodeToLocal), u"\u00E9", "\xC3\xA9");
  ToUnits(CALL(PXTUTF8StrToUCS2Str), "ab", u"ab", 6);
  ToUnits(CALL(PXTASCIIToUnicode), "\xC3\xA9", u"\u00E9", 4);
  ToUnits(CALL(PXTLocalToUnicode), "\xF0\x9F\x98\x80", kPair, 6);

  astring out[32] = "";
  u32 size = sizeof(out);
  EXPECT_EQ(CALL(PXTUCS4StrToUTF8Str)(out, &size, kCodePoints), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 7);
  EXPECT_TEXT(out, "\xF0\x9F\x98\x80\xC3\xA9");

  booln escaped = 7;
  EXPECT_EQ(CALL(PXTUTF8StrToXMLUTF8Str)(NULL, &size, &escaped, "a<b"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 7);
  EXPECT_EQ(CALL(PXTUTF8StrToXMLUTF8Str)(out, &size, &escaped, "a<b"), SM_STATUS_SUCCESS);
  EXPECT_TEXT(out, "a&lt;b");
  EXPECT_EQ(escaped, 1);

  size = 0;
  EXPECT_EQ(CALL(PXTUnicodeToEscape)(NULL, &size, u"\t\u00E9"), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 9);
  EXPECT_EQ(CALL(PXTUnicodeToEscape)(out, &size, u"\t\u00E9"), SM_STATUS_SUCCESS);
  EXPECT_TEXT(out, "\\t\\u00e9");

  EXPECT_OWN(CALL(PXTGetXMLUTF8StrFromAStr)("a&b", 3), "a&amp;amp;amp;b");
  EXPECT_OWN(CALL(PXTGetXMLUTF8StrFromUStr)(u"<\u00E9>", 1), "&lt;\xC3\xA9&gt;");
  EXPECT_EQ(CALL(PXTGetLocalLanguageID)(), 1033);
}

static void CallCharacterTests(void) {
  EXPECT_EQ(CALL(PXTIsASCIIIntNum)("-", 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTIsASCIIIntNum)("-1", 0), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTIsASCIIHexNum)("0xab", 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTIsASCIIHexNum)("0xab", 0), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTIsASCIIOctalNum)("17"), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTIsASCIIOctalNum)("18"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTIsASCIIAlpha)("aZ"), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTIsASCIIAlpha)("a1"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTIsASCIIAlphaNumeric)("a1"), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTIsASCIIAlphaNumeric)("a_"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTIsASCIIAlphaNumericPlus)("a_", "_"), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTIsASCIIAlphaNumericPlus)("a_", ""), SM_STATUS_INVALID_PARAMETER);
}

static void CallTextToNumber(void) {
  EXPECT_EQ(CALL(PXTASCIIToSigned32)("-42"), -42);
  EXPECT_EQ(CALL(PXTASCIIToUnSigned32)("4294967295"), 4294967295);
  EXPECT_EQ(CALL(PXTASCIIToSigned64)("  -5000000000"), -5000000000);
  EXPECT(CALL(PXTASCIIToUnSigned64)("18446744073709551615") == UINT64_MAX);
  EXPECT_EQ(CALL(PXTASCIIToUnSigned64)("-42"), 0);
  EXPECT(CALL(PXTASCIIToDouble)("2.5") == 2.5);
  EXPECT_EQ(CALL(PXTASCIIToBooln)("TRUE"), 1);
  EXPECT_EQ(CALL(PXTASCIIToBooln)("yes"), 0);

  u32 status = 77;
  EXPECT_EQ(CALL(PXTASCIIToBoolnV)("True", &status), 1);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTASCIIToBoolnV)("no", &status), 0);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTASCIIToUnSigned32VT)("0x1F", QVX_BASE_HEXADECIMAL, &status), 31);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTASCIIToUnSigned32VT)("7", 3, &status), 0xFFFFFFFF);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTASCIIToSigned32VT)("-17", QVX_BASE_DECIMAL, &status), -17);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTASCIIToSigned32VT)("7", 3, &status), 0);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTASCIIToUnSigned64VT)("ff", QVX_BASE_HEXADECIMAL, &status), 0);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTASCIIToUnSigned64VT)("5000000000", QVX_BASE_DECIMAL, &status), 5000000000);
  EXPECT_EQ(CALL(PXTASCIIToSigned64VT)("-5000000000", QVX_BASE_DECIMAL, &status), -5000000000);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);

  EXPECT_EQ(CALL(PXTUniToSigned32)(u"-42"), -42);
  EXPECT_EQ(CALL(PXTUniToUnSigned32)(u"4294967295"), 4294967295);
  EXPECT_EQ(CALL(PXTUniToSigned64)(u"-5000000000"), -5000000000);
  EXPECT_EQ(CALL(PXTUniToUnSigned64)(u"5000000000"), 5000000000);
  EXPECT(CALL(PXTUniToDouble)(u"2.5") == 2.5);
}

static void CallNumberToText(void) {
  astring out[32] = "";
  EXPECT_EQ(CALL(PXTSigned32ToASCII)(out, -5), 2);
  EXPECT_TEXT(out, "-5");
  EXPECT_EQ(CALL(PXTUnSigned32ToASCII)(out, 4294967295), 10);
  EXPECT_TEXT(out, "4294967295");
  CALL(PXTUnSigned64ToASCII)(out, UINT64_MAX);
  EXPECT_TEXT(out, "18446744073709551615");
  CALL(PXTSigned64ToASCII)(out, INT64_MIN);
  EXPECT_TEXT(out, "-9223372036854775808");
  strcpy(out, "eleven char");
  CALL(PXTDoubleToASCII)(out, 2.5);
  EXPECT_TEXT(out, "2.50000000");
  CALL(PXTBoolnToASCII)(out, 2);
  EXPECT_TEXT(out, "false");
  CALL(PXTBoolnToASCII)(out, 1);
  EXPECT_TEXT(out, "true");

  ustring units[32] = u"";
  u32 size = sizeof(units);
  EXPECT_EQ(CALL(PXTUniDoubleToStr)(units, &size, 2.5, 2), 0);
  EXPECT_UNITS(units, u"2.50");
  EXPECT_EQ(size, 10);
  size = sizeof(units);
  EXPECT_EQ(CALL(PXTUniUnSigned32ToStr)(units, &size, 1234, 16), 0);
  EXPECT_UNITS(units, u"4d2");
  EXPECT_EQ(size, 8);
  size = sizeof(units);
  EXPECT_EQ(CALL(PXTUniSigned32ToStr)(units, &size, -1234, 10), 0);
  EXPECT_UNITS(units, u"-12"); /* three characters are kept */
  EXPECT_EQ(size, 8);
}

static void CallTimes(void) {
  astring out[26] = "";
  ustring units[32] = u"";
  u32 size = 32;
  setenv("TZ", "UTC0", 1);
  EXPECT_EQ(CALL(PXTTimeToAStr)(out, 0), 0);
  EXPECT_TEXT(out, "Thu Jan  1 00:00:00 1970");
  EXPECT_EQ(CALL(PXTUniTimeToStr)(units, &size, 86400), 0);
  EXPECT_UNITS(units, u"Fri Jan  2 00:00:00 1970");
  EXPECT_EQ(size, 50);

  setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
  time_t summer = 1720000000; /* 3 July 2024 */
  time_t winter = 1704067200; /* 1 January 2024 */
  CALL(PXTDSTFix)(&summer);
  CALL(PXTDSTFix)(&winter);
  EXPECT_EQ(summer, 1720003600);
  EXPECT_EQ(winter, 1704067200);
  setenv("TZ", "UTC0", 1);
}

static void CallGrowingStrings(void) {
  SSAStr text = {NULL, 77, 77};
  EXPECT_TEXT(CALL(PXTSSAStrAlloc)(&text, 8), "");
  EXPECT(text.capacity == 8 && text.length == 0);
  EXPECT_TEXT(CALL(PXTSSAStrCatAStr)(&text, "abc"), "abc");
  EXPECT_TEXT(CALL(PXTSSAStrCatAStr)(&text, "0123456789"), "abc0123456789");
  EXPECT(text.capacity == 16 && text.length == 13);
  EXPECT_TEXT(CALL(PXTSSAStrCatUStr)(&text, u"\u00E9"), "abc0123456789\xC3\xA9");
  EXPECT(text.capacity == 16 && text.length == 15);
  CALL(PXTSSAStrFree)(&text);
  EXPECT(text.text == NULL && text.capacity == 0 && text.length == 0);

  SSUStr units = {NULL, 77, 77};
  EXPECT_UNITS(CALL(PXTSSUStrAlloc)(&units, 4), u"");
  EXPECT_UNITS(CALL(PXTSSUStrCatUStr)(&units, u"ab"), u"ab");
  EXPECT(units.capacity == 8 && units.length == 2);
  EXPECT_UNITS(CALL(PXTSSUStrCatAStr)(&units, "\xC3\xA9"), u"ab\u00E9");
  EXPECT(units.capacity == 8 && units.length == 3);
  CALL(PXTSSUStrFree)(&units);
  EXPECT(units.text == NULL && units.capacity == 0 && units.length == 0);

  CALL(PXTSSUStrAlloc)(&units, 2);
  EXPECT_EQ(CALL(PXTBufToUStr)(&units, "0123456789ABCDEF~az{", 20, 0x1000), 0);
  EXPECT_UNITS(units.text,
               u"0x00001000: 30 31 32 33:34 35 36 37:38 39 41 42:43 44 45 46"
               u"    0123456789ABCDEF \r\n"
               u"0x00001010: 7E 61 7A 7B                                    "
               u"    .az.             \r\n");
  EXPECT_EQ(units.length, 164);
  CALL(PXTSSUStrFree)(&units);
}

static void CallAsciiUtilities(void) {
  astring* joined = NULL;
  CALL(PXTAppendDNode)("ab", "cd", &joined);
  EXPECT_OWN(joined, "abcd");
  astring first[] = "\"a\"b";
  astring second[] = "\"\"";
  astring* strings[] = {first, second};
  CALL(PXTRemoveDQuotesInStrArr)(2, strings);
  EXPECT_TEXT(first, "ab");
  EXPECT_TEXT(second, "");
  EXPECT_EQ(CALL(PXTAStrnicmp)("ABC", "abd", 2), 0);
  EXPECT_EQ(CALL(PXTAStrnicmp)("ABC", "abd", 3), -1);

  astring out[16] = "";
  u32 size = 5;
  EXPECT_EQ(CALL(PXTASCIIReplaceSubstr)("abcdef", "bd", "X", &size, out), SM_STATUS_SIZE_REQUIRED);
  EXPECT_EQ(size, 6);
  EXPECT_EQ(CALL(PXTASCIIReplaceSubstr)("abcdef", "bd", "X", &size, out), SM_STATUS_SUCCESS);
  EXPECT_TEXT(out, "abXef");
}

static void CallParameterVectors(void) {
  astring whole[] = "name=value";
  EXPECT_TEXT(CALL(PXTGetAStrParamValue)(whole), "value");
  EXPECT(CALL(PXTGetAStrParamName)(whole) == whole);
  EXPECT_TEXT(whole, "name");
  EXPECT_EQ(CALL(PXTIsValidParam)("a="), 1);
  EXPECT_EQ(CALL(PXTIsValidParam)("=x"), 0);
  astring a[] = "a=1";
  astring mode[] = "mode=on";
  astring* entries[] = {a, mode};
  EXPECT_EQ(CALL(PXTGetParamIndexByAStrName)(2, entries, "Mode", 1), 1);
  EXPECT_EQ(CALL(PXTGetParamIndexByAStrName)(2, entries, "Mode", 0), -1);
  EXPECT(CALL(PXTGetAStrParamValueByAStrName)(2, entries, "mode", 0) == mode + 5);
  EXPECT(CALL(PXTGetAStrParamValueByAStrName)(2, entries, "none", 0) == NULL);

  ustring units[] = u"name=value";
  EXPECT_UNITS(CALL(PXTGetUStrParamValue)(units), u"value");
  EXPECT(CALL(PXTGetUStrParamName)(units) == units);
  EXPECT_UNITS(units, u"name");
  EXPECT_EQ(CALL(PXTIsValidUParam)(u"a="), 1);
  EXPECT_EQ(CALL(PXTIsValidUParam)(u"=x"), 0);
  /* Units are compared in pairs, an entry's "=" with the name's end: no name is ever found. */
  ustring modeUnits[] = u"mode=on";
  ustring* unitEntries[] = {modeUnits};
  EXPECT_EQ(CALL(PXTGetParamIndexByUStrName)(1, unitEntries, u"mode", 0), -1);
  EXPECT(CALL(PXTGetUStrParamValueByUStrName)(1, unitEntries, u"mode", 1) == NULL);
}

void CallText(void) {
  CallUniStrings();
  CallTranscoders();
  CallCharacterTests();
  CallTextToNumber();
  CallNumberToText();
  CallTimes();
  CallGrowingStrings();
  CallAsciiUtilities();
  CallParameterVectors();
}
