/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* "speed=-3" of a command line as a number; "ratio" is counted in thousandths. */
static int ReadValues(void) {
  static astring speedText[] = "speed=-3";
  astring* parameters[] = {speedText};
  s32 speed = 0;
  s64 ratio = 0;
  if (PXTNVSNVPValToXVal(1, parameters, "speed", QVX_TYPE_S32, &speed) != SM_STATUS_SUCCESS)
    return 1;
  if (PXTNVSASCIIToXVal("2500", QVX_TYPE_THOUSANDTHS, &ratio) != SM_STATUS_SUCCESS) return 1;
  astring* const text = PXTNVSXValToASCII(QVX_TYPE_S32, &speed);
  if (text == NULL) return 1;
  printf("speed %s, ratio %d\n", text, (int)ratio);
  PXTFreeMem(text);
  return 0;
}

/* Between 8-bit and 16-bit text; the D forms take a text for one that is NULL. */
static int ConvertTexts(void) {
  u32 status[4];
  ustring* const wide = PXTNVSAstrToUstr("fan", &status[0]);
  ustring* const wideDefault = PXTNVSAstrToUstrD(NULL, u"none", &status[1]);
  astring* const narrow = PXTNVSUstrToAstr(wide, &status[2]);
  astring* const narrowDefault = PXTNVSUstrToAstrD(NULL, "none", &status[3]);
  if (narrow != NULL && narrowDefault != NULL) printf("%s, %s\n", narrow, narrowDefault);
  PXTFreeMem(wide);
  PXTFreeMem(wideDefault);
  PXTFreeMem(narrow);
  PXTFreeMem(narrowDefault);
  return (status[0] | status[1] | status[2] | status[3]) == SM_STATUS_SUCCESS ? 0 : 1;
}

/* The answer of a command that changed a value. */
static int PrintAnswer(void) {
  const u32 old = 10;
  const u32 new = 20;
  void* const buffer = PXTXAllocBuf(256, QVX_FALSE);
  if (buffer == NULL) return 1;
  if (PXTNVSBufCatSetCmdParam(buffer, "Speed", &old, &new, NULL, QVX_TYPE_U32) !=
      SM_STATUS_SUCCESS) {
    (void)PXTXFreeBuf(buffer);
    return 1;
  }
  PXTNVSCatSMStatusNode(buffer, SM_STATUS_SUCCESS, NULL);
  astring* const answer = PXTXFreeBufGetContent(buffer);
  puts(answer);
  PXTXFreeBufContent(answer);
  return 0;
}

static astring* DescribeReport(s32 count, astring** parameters) {
  (void)count;
  (void)parameters; /* "qvxusrinfo=nvsupt" and "cmdhelp=true" */
  void* const buffer = PXTXAllocBuf(64, QVX_FALSE);
  if (buffer == NULL) return NULL;
  (void)PXTXBufCatNode(buffer, "Text", NULL, QVX_TYPE_ASTRING, "lists the disks");
  return PXTXFreeBufGetContent(buffer);
}

/* The help of all other commands of a table. */
static astring* Help(s32 count, astring** parameters) {
  static astring name[] = "report";
  static astring self[] = "help";
  const PXTCommand table[] = {{name, DescribeReport}, {self, Help}};
  return PXTNVSCMDHelp(count, parameters, table, 2, Help);
}

int main(void) {
  if (ReadValues() != 0 || ConvertTexts() != 0 || PrintAnswer() != 0) return 1;
  astring* const help = Help(0, NULL);
  if (help == NULL) return 1;
  puts(help);
  PXTXFreeBufContent(help);
  return 0;
}

/*
 * Prints:
 *   speed -3, ratio 2
 *   fan, none
 *   <Parameter name="Speed" oldval="10" newval="20"/><SMStatus>0</SMStatus>
 *   <CLICmdHelp count="1"><qvxcmd val="report"><Text>lists the disks</Text></qvxcmd></CLICmdHelp>
 */
