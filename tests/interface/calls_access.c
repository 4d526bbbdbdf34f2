/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* access, ip_address */
#include <net/if.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "calls.h"

/* An account of the machine whose password is "open sesame". */
static void MakeAccount(void) {
  static const char kShadow[] =
      "hostuser:$6$qvxhosts$kF5bhfoDCmtVfkQu58fbmysxWkkNZiP.2rvqXxeXWYTxlZAJD7Q0RLLQ0F5VUct/"
      "e0vVTOYbYd3QtsjYr2qgf0:19000:0:99999:7:::\n";
  WriteText("/etc/passwd", "root:x:0:0:root:/root:/bin/sh\nhostuser:x:4242:4242::/tmp:/bin/sh\n");
  WriteText("/etc/group", "root:x:0:\nshadow:x:42:\nhostuser:x:4242:\n");
  WriteText("/etc/shadow", kShadow);
  EXPECT_EQ(chmod("/etc/shadow", 0640), 0);
  WriteText("/etc/pam.d/qvauth",
            "auth required pam_unix.so nodelay\naccount required pam_unix.so\n");
  WriteText("/etc/pam.d/everybody",
            "auth required pam_permit.so\naccount required pam_permit.so\n");
}

static u32 Login(const ustring* password) {
  ustring own[32] = u"";
  memcpy(own, password, 2 * (CALL(PXTUniStrlen)(password) + 1));
  const u32 rights = CALL(PXTAuthenticateUser)(NULL, u"hostuser", own);
  for (size_t at = 0; at < sizeof(own) / sizeof(*own); ++at) {
    EXPECT_EQ(own[at], 0);
  }
  return rights;
}

static void CallLogin(void) {
  static const char kRoleMap[] = "/etc/cim/zarn/plinthos/qvxrolemap";
  MakeAccount();
  EXPECT_EQ(Login(u"open sesame"), QVX_PRIV_USER);
  EXPECT_EQ(Login(u"open barley"), 0);

  astring** const service = CALL(pam_servicename);
  astring everybody[] = "everybody";
  EXPECT_TEXT(*service, "qvauth");
  astring* const before = *service;
  *service = everybody;
  EXPECT_EQ(Login(u"open barley"), QVX_PRIV_USER);
  *service = before;

  WriteText(kRoleMap, "root * administrator\nhostuser * poweruser\n");
  EXPECT_EQ(chmod(kRoleMap, 0640), 0);
  EXPECT_EQ(CALL(PXTOpenRolemapFile)(), 0);
  EXPECT_EQ(CALL(PXTGetRightsUsingRolemap)(), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(CALL(PXTAuthorizeUser)(NULL, u"hostuser"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(CALL(PXTAuthorizeUser)(NULL, u"root"), QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(CALL(PXTAuthorizeUser)(u"domain", u"hostuser"), 0);
  EXPECT_EQ(Login(u"open sesame"), QVX_PRIV_POWERUSER);

  EXPECT_EQ(CALL(PXTADAuthenticateUser)(1, 2, 3, 4, 5, 6, 7, 8, 9), -1);
  EXPECT(CALL(PXTGetOSDomainList)() == NULL);
  EXPECT_EQ(CALL(PXTGetProcessRights)(), QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR);
  EXPECT_OWN(CALL(PXTGetProcessUser)(), "root");
}

static void CallMasking(void) {
  static const char kOem[] = "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/acme/ini/zarn/hostoem.ini";
  u32 reason = 77;
  EXPECT_EQ(CALL(PXTMaskProgramRights)(QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR, "host", "none.ini",
                                       &reason),
            QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(CALL(PXTMaskProgramRights)(QVX_PRIV_POWERUSER, "host", "none.ini", &reason), 0);
  EXPECT_EQ(reason, 77);
  WriteText("/etc/cim/zarn/plinthos/vexilon/qvx/ini/mask.ini", "[OEM]\nname=acme\n");
  Shell("mkdir -p /etc/cim/zarn/plinthos/vexilon/wwwroot/oem/acme/ini/zarn");
  WriteText(kOem, "[data]\naccessmask=1\n");
  EXPECT_EQ(
      CALL(PXTMaskProgramRights)(QVX_PRIV_ROOT | QVX_PRIV_POWERUSER, "host", "mask.ini", &reason),
      QVX_PRIV_ROOT | QVX_PRIV_USER);
  EXPECT_EQ(reason, 77);
  EXPECT_EQ(CALL(PXTMaskProgramRights)(QVX_PRIV_USER, "host", "mask.ini", &reason), 0);
  EXPECT_EQ(reason, 1001);
  WriteText(kOem, "[data]\naccessmask=0\n");
  EXPECT_EQ(CALL(PXTMaskProgramRights)(QVX_PRIV_POWERUSER, "host", "mask.ini", &reason), 0);
  EXPECT_EQ(reason, 1002);
  WriteText(kOem, "[data]\naccessoverride=true\n");
  EXPECT_EQ(CALL(PXTMaskProgramRights)(QVX_PRIV_USER, "host", "mask.ini", &reason),
            QVX_PRIV_ADMINISTRATOR);
}

static void CallNames(void) {
  astring name[256] = "";
  ustring units[64] = u"";
  u32 size = sizeof(name);
  EXPECT_OWN(CALL(PXTGetComputerDomainName)(), "example");
  EXPECT_EQ(CALL(PXTGetIPHostName)(name, &size), SM_STATUS_SUCCESS);
  EXPECT_TEXT(name, "qvxtest");
  EXPECT_EQ(size, 8);
  size = 64;
  EXPECT_EQ(CALL(PXTUniGetIPHostName)(units, &size), SM_STATUS_SUCCESS);
  EXPECT_UNITS(units, u"qvxtest");
  EXPECT_EQ(size, 16);
  EXPECT_EQ(CALL(PXTGetDNSSuffixNameName)(name, 0), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTGetDNSSuffixNameName)(name, 10), 0xFFFFFFFF);
  EXPECT_EQ(CALL(PXTValidateHostName)("srv-1.lab_"), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTValidateHostName)("-srv"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTValidateHostName)("srv."), 0xFFFFFFFF);
}

static u32 HasFamily(int family) {
  const int any = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (any < 0) return 0;
  close(any);
  return 1;
}

static void CallAddresses(void) {
  const u32 type = HasFamily(AF_INET6) * 2 + HasFamily(AF_INET);
  EXPECT_EQ(CALL(PXTGetSockType)(), type);
  if (type == 0) {
    EXPECT(CALL(PXTGetLoopBack)() == NULL);
  } else {
    EXPECT_TEXT(CALL(PXTGetLoopBack)(), type == 2 ? "::1" : "127.0.0.1");
  }
  EXPECT_EQ(CALL(PXTIsIPv4)("1..2"), 1);
  EXPECT_EQ(CALL(PXTIsIPv4)("1.2.3.a"), 0);
  EXPECT_EQ(CALL(PXTIsIPv4)(NULL), 2);
  EXPECT_EQ(CALL(PXTIsIPv6)("::1"), 1);
  EXPECT_EQ(CALL(PXTIsIPv6)(NULL), SM_STATUS_IP_INVALID_PARAMETER);
  EXPECT_EQ(CALL(PXTIsLinkLocal)("FE80::1"), 0);
  EXPECT_EQ(CALL(PXTIsLinkLocal)("::1"), 0xFFFFFFFF);

  u8 bytes[16];
  u32 room = 4;
  EXPECT_EQ(CALL(PXTIPAddrASCIIToNetwork)("::1", bytes, &room), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(room, 16);
  EXPECT_EQ(CALL(PXTIPAddrASCIIToNetwork)("10.1.2.3", bytes, &room), SM_STATUS_SUCCESS);
  EXPECT_EQ(room, 4);
  EXPECT(memcmp(bytes, "\x0A\x01\x02\x03", 4) == 0);
  astring text[65] = "";
  s32 size = 8;
  EXPECT_EQ(CALL(PXTIPAddrNetworkToASCII)(bytes, 4, text, &size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 9);
  EXPECT_EQ(CALL(PXTIPAddrNetworkToASCII)(bytes, 4, text, &size), SM_STATUS_SUCCESS);
  EXPECT_TEXT(text, "10.1.2.3");
  EXPECT_EQ(CALL(PXTCheckIPEqual)("::1", "0:0:0:0:0:0:0:1"), 1);
  EXPECT_EQ(CALL(PXTCheckIPEqual)("127.0.0.1", "::1"), 0);
}

/* The kernel settles whether an interface runs a moment after it was brought up. */
static void WaitUntilItRuns(const char* interface) {
  struct ifreq request = {0};
  strcpy(request.ifr_name, interface);
  const int any = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  for (int tries = 0; tries < 5000 && (request.ifr_flags & IFF_RUNNING) == 0; ++tries) {
    usleep(1000);
    EXPECT_EQ(ioctl(any, SIOCGIFFLAGS, &request), 0);
  }
  close(any);
}

static void CallInterfaces(void) {
  u32 count = 77;
  char slots[2][65];
  Shell(
      "ip link add host0 type veth peer name host1 && ip link set host0 addrgenmode none &&"
      " ip link set host1 addrgenmode none && ip link set host0 up && ip link set host1 up &&"
      " ip addr add 192.0.2.1/24 dev host0 && ip addr add 192.0.2.2/24 dev host0");
  WaitUntilItRuns("host0");
  EXPECT_EQ(CALL(PXTGetIPAddrStrList)(NULL, &count, NULL), 0);
  EXPECT_EQ(count, 2);
  memset(slots, '#', sizeof(slots));
  count = 1;
  EXPECT_EQ(CALL(PXTGetIPAddrStrList)(NULL, &count, slots), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(count, 2);
  EXPECT_TEXT(slots[0], "192.0.2.1");
  EXPECT_EQ(slots[1][0], '#');
  astring* const list = CALL(PXTHostGetHostIPAddrList)(&count);
  EXPECT_EQ(count, 2);
  EXPECT_TEXT(list, "192.0.2.1");
  EXPECT_TEXT(list + 65, "192.0.2.2");
  CALL(PXTFreeMem)(list);
}

static void CallDigest(void) {
  static const u8 kAbc[] = {0x90, 0x01, 0x50, 0x98, 0x3C, 0xD2, 0x4F, 0xB0,
                            0xD6, 0x96, 0x3F, 0x7D, 0x28, 0xE1, 0x7F, 0x72};
  u8 digest[16] = {0};
  EXPECT_EQ(CALL(PXTMD5Hash)("abc", digest), 1);
  EXPECT(memcmp(digest, kAbc, 16) == 0);
}

void CallAccess(void) {
  CallLogin();
  CallMasking();
  CallNames();
  CallAddresses();
  CallInterfaces();
  CallDigest();
}
