/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

static const char* LevelName(u32 rights) {
  switch (rights & QVX_PRIV_LEVEL) {
    case QVX_PRIV_ADMINISTRATOR:
      return "administrator";
    case QVX_PRIV_POWERUSER:
      return "power user";
    case QVX_PRIV_USER:
      return "user";
    default:
      return "nobody";
  }
}

/* A login through PAM. The password is wiped in any case; 0 rights refuse the login. */
static u32 Login(const ustring* user, ustring* password) {
  pam_servicename = "qvauth"; /* the file of /etc/pam.d; this is what it is anyway */
  return PXTAuthenticateUser(NULL, user, password);
}

/* The rights of a user who has logged in by other means. */
static u32 RightsOf(const ustring* user) { return PXTAuthorizeUser(NULL, user); }

/* Opens and reads the role map. Without one, built-in lines decide. */
static u32 ReadRoleMap(void) {
  (void)PXTOpenRolemapFile(); /* always 0: a fault of the file is in the command log */
  return PXTGetRightsUsingRolemap();
}

/* This process, by its user and group. */
static int PrintOwnRights(void) {
  astring* const user = PXTGetProcessUser();
  if (user == NULL) return 1;
  printf("%s: %s\n", user, LevelName(PXTGetProcessRights()));
  PXTFreeMem(user);
  return 0;
}

/* What a program that an OEM has closed to some levels leaves of the rights. */
static void PrintMasked(void) {
  u32 reason = 0;
  const u32 rights = PXTMaskProgramRights(QVX_PRIV_ADMINISTRATOR, "raid", "oem.ini", &reason);
  printf("in this program: %s\n", LevelName(rights));
}

/* Two calls for another platform: here one always fails, and the other has no list. */
static int HasDirectory(void) {
  return PXTADAuthenticateUser(0, 0, 0, 0, 0, 0, 0, 0, 0) != -1 || PXTGetOSDomainList() != NULL;
}

int main(void) {
  ustring password[] = u"not the password";
  printf("by the role map: %s\n", LevelName(ReadRoleMap())); /* before the first login */
  printf("login: %s\n", LevelName(Login(u"root", password)));
  printf("wiped: %s\n", password[0] == 0 ? "yes" : "no");
  printf("root: %s\n", LevelName(RightsOf(u"root")));
  if (PrintOwnRights() != 0) return 1;
  PrintMasked();
  return HasDirectory();
}

/*
 * Prints:
 *   by the role map: administrator
 *   login: nobody
 *   wiped: yes
 *   root: administrator
 *   root: administrator
 *   in this program: administrator
 */
