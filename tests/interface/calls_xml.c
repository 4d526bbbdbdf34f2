/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* xml_buffer, xml_log, command_log, os_log, cli_value */
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "calls.h"

#define STYLESHEET "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>"

static void CallXmlBuffer(void) {
  const u32 number = 255;
  const s8 narrow = -1;
  const u64 wide = UINT64_MAX;
  const booln two = 2;
  const d64 half = 0.5;
  PXTTypedValue hex = {5, 16, (void*)&number};
  void* buffer = CALL(PXTXAllocBuf)(0, 0);
  EXPECT(buffer != NULL);
  EXPECT_EQ(CALL(PXTXBufCatBeginNode)(buffer, "Node", "id=\"1\""), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "U", NULL, QVX_TYPE_U32, &number), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "S", NULL, QVX_TYPE_S8, &narrow), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "W", NULL, QVX_TYPE_U64, &wide), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "B", NULL, QVX_TYPE_BOOLN, &two), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "D", NULL, QVX_TYPE_D64, &half), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "R", NULL, QVX_TYPE_TYPED_VALUE, &hex), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "T", "k=\"v\"", QVX_TYPE_XML_ASTRING, "a<b"),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "N", NULL, 3, &number), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTXBufCatEmptyNode)(buffer, "E", NULL), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTXBufCatEndNode)(buffer, "Node"), SM_STATUS_SUCCESS);
  astring* const text = CALL(PXTXFreeBufGetContent)(buffer);
  EXPECT_TEXT(text,
              "<Node id=\"1\"><U>255</U><S>-1</S><W>18446744073709551615</W><B>false</B>"
              "<D>0.50000000</D><R>0xff</R><T k=\"v\">a&lt;b</T><E/></Node>");
  CALL(PXTXFreeBufContent)(text);

  EXPECT_OWN(CALL(PXTXFreeBufGetContent)(CALL(PXTXAllocBuf)(10, 1)), STYLESHEET);
  EXPECT(CALL(PXTXFreeBuf)(CALL(PXTXAllocBuf)(10, 1)) == NULL);
}

static void CallXmlLog(void) {
  static const char kLog[] = "/run/log.xml";
  static const char kHead[] = STYLESHEET "<EventLog><LogEntry><TimeStamp>";
  astring backup[256] = "";
  u32 size = 0;
  EXPECT_EQ(CALL(PXTGetBackupXMLLogPathFileName)(kLog, backup, &size), SM_STATUS_SUCCESS);
  EXPECT_TEXT(backup, "/run/log.xm_");
  EXPECT_EQ(size, 13);
  EXPECT_EQ(CALL(PXTGetBackupXMLLogPathFileName)("a", backup, &size), SM_STATUS_INVALID_PARAMETER);

  EXPECT(CALL(PXTCmdGetXMLLogContent)(kLog) == NULL);
  EXPECT_EQ(CALL(PXTForceXMLLogExists)(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT(strncmp(ReadText(kLog), kHead, sizeof(kHead) - 1) == 0);
  EXPECT_HAS(ReadText(kLog),
             "</DateTime><ComputerName>qvxtest</ComputerName><Type>4</Type><ID>0</ID><UserInfo>u"
             "</UserInfo><Source>s</Source><Description>Log was cleared</Description><Data></Data>"
             "</LogEntry></EventLog>");
  EXPECT_EQ(
      CALL(PXTAppendToXMLLog)(kLog, QVX_LOG_WARNING, 7, "a<b", NULL, "text", "\x01", 1, 131072),
      SM_STATUS_SUCCESS);
  EXPECT_HAS(ReadText(kLog), "</LogEntry><LogEntry><TimeStamp>");
  EXPECT_HAS(ReadText(kLog),
             "<Type>2</Type><ID>7</ID><UserInfo>a&lt;b</UserInfo><Source></Source>"
             "<Description>text</Description><Data>0x00000000: 01"
             "                                                 .                \r\n"
             "</Data></LogEntry></EventLog>");

  char expected[8192];
  (void)snprintf(expected, sizeof(expected), "<Content>%s</Content><SMStatus>0</SMStatus>",
                 ReadText(kLog));
  EXPECT_OWN(CALL(PXTCmdGetXMLLogContent)(kLog), expected);
  EXPECT_EQ(CALL(PXTClearXMLLog)(kLog, "me", "here"), SM_STATUS_SUCCESS);
  EXPECT(strstr(ReadText(kLog), "<ID>7</ID>") == NULL);
  EXPECT_HAS(ReadText(kLog), "<UserInfo>me</UserInfo><Source>here</Source>");
}

static void CallCommandLog(void) {
  static const char kLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon//qvcmdlog.xml";
  static const char kProperties[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvx.properties";
  u32 size = 77;
  EXPECT_OWN(CALL(PXTGetCmdLogPathFileName)(), kLog);
  EXPECT_HAS(ReadText(kLog), "<UserInfo>Local System</UserInfo><Source>QVPX</Source>");
  EXPECT_EQ(CALL(PXTAppendToCmdLog)(5000, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTAppendToCmdLog)(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  EXPECT_HAS(ReadText(kLog),
             "<Type>4</Type><ID>5001</ID><UserInfo>u</UserInfo><Source>s</Source>"
             "<Description>d</Description><Data></Data></LogEntry></EventLog>");
  EXPECT_EQ(CALL(PXTGetCmdLogSize)(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, strlen(ReadText(kLog)));
  EXPECT_EQ(CALL(PXTClearCmdLog)("u", "s"), SM_STATUS_SUCCESS);
  EXPECT(strstr(ReadText(kLog), "<ID>5001</ID>") == NULL);

  EXPECT_EQ(CALL(PXTGetCmdLogMaxSize)(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 131072);
  WriteText(kProperties, "preferences.system.cmdlogmaxsize=500000\n");
  EXPECT_EQ(CALL(PXTGetCmdLogMaxSize)(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 500000);
  (void)unlink(kProperties);
  EXPECT_EQ(CALL(PXTSetCmdLogMaxSize)(65536), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTSetCmdLogMaxSize)(QVX_CMDLOG_MAX_SIZE), SM_STATUS_SUCCESS);
}

static void CallOsLog(void) {
  const struct sockaddr_un name = {AF_UNIX, "/dev/log"};
  const int service = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  EXPECT_EQ(bind(service, (const struct sockaddr*)&name, sizeof(name)), 0);
  EXPECT_EQ(CALL(PXTAppendToOSLog)(QVX_OSLOG_ERROR, 42, u"qvhost", u"a\r\nb %s"),
            SM_STATUS_SUCCESS);
  char message[1024] = "";
  EXPECT(recv(service, message, sizeof(message) - 1, 0) > 0);
  EXPECT(strncmp(message, "<27>", 4) == 0); /* LOG_DAEMON and LOG_ERR */
  EXPECT_HAS(message, " qvhost: EventID: 42  a \nb %s");
  EXPECT_EQ(CALL(PXTClearOSLog)(), 0);
  EXPECT(recv(service, message, sizeof(message) - 1, 0) < 0);
  close(service);
  (void)unlink("/dev/log");
}

static void CallValues(void) {
  s64 wide = 77;
  s32 number = 77;
  const s8 narrow = -1;
  u32 status = 77;
  EXPECT_EQ(CALL(PXTNVSASCIIToXVal)("-2500", QVX_TYPE_THOUSANDTHS, &wide), SM_STATUS_SUCCESS);
  EXPECT_EQ(wide, -2);
  EXPECT_EQ(CALL(PXTNVSASCIIToXVal)("1", 3, &wide), SM_STATUS_BAD_ARGUMENT);
  astring a[] = "a=1";
  astring n[] = "n=-3";
  astring* vector[] = {a, n};
  EXPECT_EQ(CALL(PXTNVSNVPValToXVal)(2, vector, "n", QVX_TYPE_S32, &number), SM_STATUS_SUCCESS);
  EXPECT_EQ(number, -3);
  EXPECT_EQ(CALL(PXTNVSNVPValToXVal)(2, vector, "N", QVX_TYPE_S32, &number),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_OWN(CALL(PXTNVSXValToASCII)(QVX_TYPE_S8, &narrow), "-1");
  EXPECT(CALL(PXTNVSXValToASCII)(28, &narrow) == NULL);

  EXPECT_OWN(CALL(PXTNVSUstrToAstrD)(NULL, "fallback", &status), "fallback");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_OWN(CALL(PXTNVSUstrToAstr)(u"ab", &status), "ab");
  EXPECT(CALL(PXTNVSUstrToAstr)(u"\u00E9", &status) == NULL);
  EXPECT_EQ(status, SM_STATUS_BUFFER_TOO_SMALL);
  ustring* units = CALL(PXTNVSAstrToUstrD)(NULL, u"fallback", &status);
  EXPECT_UNITS(units, u"fallback");
  CALL(PXTFreeMem)(units);
  units = CALL(PXTNVSAstrToUstr)("\xC3\xA9", &status);
  EXPECT_UNITS(units, u"\u00E9");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  CALL(PXTFreeMem)(units);

  const u32 old = 10;
  const u32 new = 20;
  void* const buffer = CALL(PXTXAllocBuf)(256, 0);
  EXPECT_EQ(CALL(PXTNVSBufCatSetCmdParam)(buffer, "Speed", &old, &new, NULL, QVX_TYPE_U32),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTNVSBufCatSetCmdParam)(buffer, "Speed", &old, NULL, NULL, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  CALL(PXTNVSCatSMStatusNode)(buffer, -1, "no");
  EXPECT_OWN(CALL(PXTXFreeBufGetContent)(buffer),
             "<Parameter name=\"Speed\" oldval=\"10\" newval=\"20\"/>"
             "<SMStatus mssg=\"no\">-1</SMStatus>");
}

/* A command that answers with what it was called with. */
static astring* Help(s32 count, astring** vector) {
  void* const buffer = CALL(PXTXAllocBuf)(64, 0);
  EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "Count", NULL, QVX_TYPE_S32, &count), SM_STATUS_SUCCESS);
  for (s32 at = 0; at < count; ++at) {
    EXPECT_EQ(CALL(PXTXBufCatNode)(buffer, "V", NULL, QVX_TYPE_ASTRING, vector[at]),
              SM_STATUS_SUCCESS);
  }
  return CALL(PXTXFreeBufGetContent)(buffer);
}

static astring* NoHelp(s32 count, astring** vector) {
  (void)count;
  (void)vector;
  return NULL;
}

static int timesSelfWasAsked;

static astring* Self(s32 count, astring** vector) {
  (void)count;
  (void)vector;
  ++timesSelfWasAsked;
  return NULL;
}

static void CallHelp(void) {
  astring one[] = "one";
  astring two[] = "two";
  astring self[] = "self";
  const PXTCommand table[] = {{one, Help}, {self, Self}, {two, NoHelp}};
  astring* const help = CALL(PXTNVSCMDHelp)(0, NULL, table, 3, Self);
  EXPECT_TEXT(help,
              "<CLICmdHelp count=\"2\"><qvxcmd val=\"one\"><Count>2</Count>"
              "<V>qvxusrinfo=nvsupt</V><V>cmdhelp=true</V></qvxcmd></CLICmdHelp>");
  CALL(PXTXFreeBufContent)(help);
  EXPECT_EQ(timesSelfWasAsked, 0);
}

void CallXml(void) {
  CallXmlBuffer();
  CallXmlLog();
  CallCommandLog();
  CallOsLog();
  CallValues();
  CallHelp();
}
