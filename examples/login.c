/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * login USER
 *
 * Checks a login and prints in words what the user may do. The password is one line on standard
 * input. The PAM service "qvauth" decides whether it is right (see pam/); the role map defines
 * which rights the user has. The exit status is 0 when the login was granted, 1 when it was
 * refused, 2 when it could not be checked.
 */
#include <locale.h>
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

static const char* LevelInWords(u32 rights) {
  switch (rights & QVX_PRIV_LEVEL) {
    case QVX_PRIV_ADMINISTRATOR:
      return "administrator";
    case QVX_PRIV_POWERUSER:
      return "power user";
    case QVX_PRIV_USER:
      return "user";
    default:
      return "no access";
  }
}

/* Volatile, so that no compiler omits a write to memory that is never read again. */
static void Wipe(void* memory, size_t size) {
  volatile unsigned char* const bytes = memory;
  for (size_t at = 0; at < size; ++at) {
    bytes[at] = 0;
  }
}

/* One line without its line end; 0 when there is none or it does not fit the buffer. */
static int ReadLine(char* room, int size) {
  setvbuf(stdin, NULL, _IONBF, 0); /* a stream buffer would keep a copy */
  if (fgets(room, size, stdin) == NULL) return 0;
  const size_t length = strcspn(room, "\n");
  const int whole = room[length] == '\n' || feof(stdin);
  room[length] = '\0';
  return whole;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: login USER\n");
    return 2;
  }
  setlocale(LC_CTYPE, ""); /* the role map is queried only for names in the locale */
  char password[256];
  u32 userStatus = SM_STATUS_SUCCESS;
  u32 secretStatus = SM_STATUS_SUCCESS;
  const int read = ReadLine(password, sizeof(password));
  ustring* const user = PXTNVSAstrToUstr(argv[1], &userStatus);
  ustring* const secret = read ? PXTNVSAstrToUstr(password, &secretStatus) : NULL;
  Wipe(password, sizeof(password));

  /* Logins use the role map only after a query has opened and read the file. */
  (void)PXTOpenRolemapFile();
  (void)PXTGetRightsUsingRolemap();
  const u32 rights = PXTAuthenticateUser(NULL, user, secret); /* wipes `secret` in any case */
  PXTFreeMem(user);
  PXTFreeMem(secret);
  if (!read) {
    fprintf(stderr, "login: the password is missing or too long\n");
    return 2;
  }
  if (userStatus != SM_STATUS_SUCCESS || secretStatus != SM_STATUS_SUCCESS) {
    PrintFailure("login", "the name or the password cannot be converted",
                 userStatus != SM_STATUS_SUCCESS ? userStatus : secretStatus);
    return 2;
  }
  printf("%s: %s%s\n", argv[1], LevelInWords(rights),
         (rights & QVX_PRIV_ROOT) != 0 ? ", superuser" : "");
  return rights != 0 ? 0 : 1;
}
