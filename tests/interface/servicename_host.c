/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * A host whose own definition of the PAM service's name takes the place of the library's. Built as
 * a position-independent executable and as a plain one, which copies the object.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#ifdef QVX_OWN_DEFINITION
static char ownName[] = "ownservice";
astring* pam_servicename = ownName;
#endif

static int WriteText(const char* path, const char* mode, const char* text) {
  FILE* const file = fopen(path, mode);
  if (file == NULL) return 0;
  const int good = fputs(text, file) >= 0;
  return fclose(file) == 0 && good;
}

static u32 Login(void) {
  const ustring user[] = {'r', 'o', 'o', 't', 0};
  ustring password[] = {'x', 0};
  const u32 rights = PXTAuthenticateUser(NULL, user, password);
  return password[0] == 0 ? rights : 0xFFFFFFFF;
}

int main(void) {
  /* One service lets everybody in, the library's own name nobody. */
  if (!WriteText("/etc/pam.d/ownservice", "w",
                 "auth required pam_permit.so\naccount required pam_permit.so\n") ||
      !WriteText("/etc/pam.d/qvauth", "w", "auth required pam_deny.so\n")) {
    return 125;
  }
#ifndef QVX_OWN_DEFINITION
  if (strcmp(pam_servicename, "qvauth") != 0 || Login() != 0) return 1;
  static char other[] = "ownservice";
  pam_servicename = other;
#endif
  if (Login() != (QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR)) return 2;
  pam_servicename = NULL;
  return Login() == 0 ? 0 : 3;
}
