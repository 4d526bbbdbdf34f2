/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <stdlib.h>
#include <uchar.h>

/* Before a conversion that reports no fault, look at the text: 0 means that it has the form. */
static void PrintForms(const char* text) {
  printf("%s:%s%s%s%s%s%s\n", text, PXTIsASCIIIntNum(text, 1) == 0 ? " integer" : "",
         PXTIsASCIIHexNum(text, 1) == 0 ? " hexadecimal" : "",
         PXTIsASCIIOctalNum(text) == 0 ? " octal" : "",
         PXTIsASCIIAlpha(text) == 0 ? " letters" : "",
         PXTIsASCIIAlphaNumeric(text) == 0 ? " letters-digits" : "",
         PXTIsASCIIAlphaNumericPlus(text, "-_") == 0 ? " name" : "");
}

/* A text that is no number becomes 0, without a word. */
static void ReadPlainly(void) {
  printf("%d %u\n", PXTASCIIToSigned32("-42"), PXTASCIIToUnSigned32("4294967295"));
  printf("%lld %llu\n", (long long)PXTASCIIToSigned64("-5000000000"),
         (unsigned long long)PXTASCIIToUnSigned64("18446744073709551615"));
  printf("%.2f %u\n", PXTASCIIToDouble("2.5"), PXTASCIIToBooln("true"));
}

/* These say whether the text was valid, in base 10 or 16. */
static int ReadChecked(void) {
  u32 status[5];
  const u32 natural = PXTASCIIToUnSigned32VT("0x1F", QVX_BASE_HEXADECIMAL, &status[0]);
  const s32 whole = PXTASCIIToSigned32VT("-17", QVX_BASE_DECIMAL, &status[1]);
  const u64 wide = PXTASCIIToUnSigned64VT("5000000000", QVX_BASE_DECIMAL, &status[2]);
  const s64 wideWhole = PXTASCIIToSigned64VT("-5000000000", QVX_BASE_DECIMAL, &status[3]);
  const booln flag = PXTASCIIToBoolnV("perhaps", &status[4]);
  printf("%u %d %llu %lld\n", natural, whole, (unsigned long long)wide, (long long)wideWhole);
  printf("perhaps: %u, 0x%x\n", flag, status[4]); /* SM_STATUS_INVALID_PARAMETER */
  return (status[0] | status[1] | status[2] | status[3]) == SM_STATUS_SUCCESS ? 0 : 1;
}

/* 16-bit text. */
static void ReadUnits(void) {
  printf("%d %u %lld %llu %.2f\n", PXTUniToSigned32(u"-42"), PXTUniToUnSigned32(u"42"),
         (long long)PXTUniToSigned64(u"-5"), (unsigned long long)PXTUniToUnSigned64(u"5"),
         PXTUniToDouble(u"2.5"));
}

/* The caller knows the room: 21 bytes hold any of these numbers. */
static void Write(void) {
  astring text[5][21];
  (void)PXTSigned32ToASCII(text[0], -5);
  (void)PXTUnSigned32ToASCII(text[1], 5);
  PXTSigned64ToASCII(text[2], -5000000000);
  PXTUnSigned64ToASCII(text[3], 5000000000);
  PXTBoolnToASCII(text[4], QVX_TRUE);
  for (int at = 0; at < 5; ++at)
    printf("%s%s", text[at], at < 4 ? " " : "\n");
}

/* Here the text that is in the buffer says how much room there is. */
static void WriteDouble(void) {
  astring text[] = "xxxxxxxxxxxxxxxxxxxx";
  PXTDoubleToASCII(text, 2.5);
  puts(text);
}

static void PrintUnits(const ustring* units) {
  astring* const text = PXTGetXMLUTF8StrFromUStr(units, 1);
  printf("%s\n", text != NULL ? text : "(no memory)");
  PXTFreeMem(text);
}

/* 16-bit text in a buffer of a size in bytes. */
static int WriteUnits(void) {
  ustring units[32];
  u32 size = sizeof(units);
  if (PXTUniDoubleToStr(units, &size, 2.5, 2) != 0) return 1;
  PrintUnits(units);
  size = sizeof(units);
  if (PXTUniUnSigned32ToStr(units, &size, 1234, QVX_BASE_HEXADECIMAL) != 0) return 1;
  PrintUnits(units);
  size = sizeof(units);
  if (PXTUniSigned32ToStr(units, &size, -12, QVX_BASE_DECIMAL) != 0) return 1;
  PrintUnits(units);
  return 0;
}

/* Local time; the second call expects units of room. */
static int WriteTimes(void) {
  astring text[26];
  ustring units[32];
  u32 size = 32;
  time_t summer = 1720000000; /* 3 July 2024 */
  PXTDSTFix(&summer);         /* an hour more, where daylight saving time is in force */
  printf("%d\n", (int)(summer - 1720000000));
  if (PXTTimeToAStr(text, 0) != 0 || PXTUniTimeToStr(units, &size, 86400) != 0) return 1;
  puts(text);
  PrintUnits(units);
  return 0;
}

int main(void) {
  setenv("TZ", "UTC", 1);
  PrintForms("17");
  PrintForms("fan-2");
  ReadPlainly();
  ReadUnits();
  Write();
  WriteDouble();
  return ReadChecked() != 0 || WriteUnits() != 0 || WriteTimes() != 0;
}

/*
 * Prints:
 *   17: integer hexadecimal octal letters-digits name
 *   fan-2: name
 *   -42 4294967295
 *   -5000000000 18446744073709551615
 *   2.50 1
 *   -42 42 -5 5 2.50
 *   -5 5 -5000000000 5000000000 true
 *   2.50000000
 *   31 -17 5000000000 -5000000000
 *   perhaps: 0, 0x10f
 *   2.50
 *   4d2
 *   -12
 *   0
 *   Thu Jan  1 00:00:00 1970
 *   Fri Jan  2 00:00:00 1970
 */
