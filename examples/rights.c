/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * rights        prints who this process is and what it may do
 * rights USER   prints what a local user may do, without asking for a password
 *
 * The exit status is 0 when something is granted, 1 when nothing is, 2 when that could not be
 * determined.
 */
#include <locale.h>
#include <stdio.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

static void Print(const char* whose, u32 rights) {
  const char* words = "no access";
  switch (rights & QVX_PRIV_LEVEL) {
    case QVX_PRIV_ADMINISTRATOR:
      words = "administrator";
      break;
    case QVX_PRIV_POWERUSER:
      words = "power user";
      break;
    case QVX_PRIV_USER:
      words = "user";
      break;
  }
  printf("%s: %s%s (0x%x)\n", whose, words, (rights & QVX_PRIV_ROOT) != 0 ? ", superuser" : "",
         (unsigned)rights);
}

static int OfThisProcess(u32 byRoleMap) {
  astring* const user = PXTGetProcessUser();
  if (user == NULL) {
    fprintf(stderr, "rights: the real user of this process has no name\n");
    return 2;
  }
  printf("user: %s\n", user);
  PXTFreeMem(user);
  Print("by its identities", PXTGetProcessRights());
  Print("by the role map", byRoleMap);
  return byRoleMap != 0 ? 0 : 1;
}

static int OfUser(const char* name) {
  u32 status = SM_STATUS_SUCCESS;
  ustring* const user = PXTNVSAstrToUstr(name, &status);
  if (user == NULL) {
    PrintFailure("rights", "the name cannot be converted", status);
    return 2;
  }
  const u32 rights = PXTAuthorizeUser(NULL, user);
  PXTFreeMem(user);
  Print(name, rights);
  return rights != 0 ? 0 : 1;
}

int main(int argc, char** argv) {
  if (argc > 2) {
    fprintf(stderr, "usage: rights [USER]\n");
    return 2;
  }
  setlocale(LC_CTYPE, ""); /* the role map is queried only for names in the locale */
  (void)PXTOpenRolemapFile();
  const u32 byRoleMap = PXTGetRightsUsingRolemap(); /* reads the file, also for OfUser() */
  return argc == 2 ? OfUser(argv[1]) : OfThisProcess(byRoleMap);
}
