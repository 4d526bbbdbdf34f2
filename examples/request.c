/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * request LOGIN [PASSWORD]   checks a login, prints its rights and the XML answer, records it
 * request --log              prints the command log as XML
 *
 * Without PASSWORD one line is read from standard input. The exit status is 0 when the login was
 * granted, 1 when it was refused, 2 when something else failed.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

enum { kCommandId = 5100 };

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

static void PrintRights(const char* whose, u32 rights) {
  printf("%s: %s%s (0x%x)\n", whose, LevelInWords(rights),
         (rights & QVX_PRIV_ROOT) != 0 ? ", superuser" : "", (unsigned)rights);
}

/* A new 16-bit copy of UTF-8 text, or NULL and the reason; PXTFreeMem frees it. */
static ustring* Widen(const char* text, u32* status) {
  u32 size = 0; /* the query reports bytes, */
  *status = PXTUTF8StrToUCS2Str(NULL, &size, text);
  if (*status != SM_STATUS_SUCCESS) return NULL;
  ustring* wide = PXTAllocMem(size);
  u32 room = size / (u32)sizeof(ustring) - 1u; /* the call expects units, less the terminator */
  *status = wide == NULL ? SM_STATUS_NO_MEMORY : PXTUTF8StrToUCS2Str(wide, &room, text);
  if (*status != SM_STATUS_SUCCESS) {
    PXTFreeMem(wide);
    wide = NULL;
  }
  return wide;
}

static void Wipe(char* text) {
  for (volatile char* at = text; *at != '\0'; ++at) {
    *at = '\0';
  }
}

/* The library wipes its own copies and the buffer passed to it; the caller wipes what it read. */
static u32 Authenticate(const char* login, char* password, u32* rights) {
  u32 status = SM_STATUS_SUCCESS;
  u32 passwordStatus = SM_STATUS_SUCCESS;
  ustring* const user = Widen(login, &status);
  ustring* const secret = Widen(password, &passwordStatus);
  Wipe(password);
  *rights = PXTAuthenticateUser(NULL, user, secret); /* wipes `secret` even without a user */
  PXTFreeMem(user);
  PXTFreeMem(secret);
  return status != SM_STATUS_SUCCESS ? status : passwordStatus;
}

static u32 PrintAnswer(const char* login, u32 rights) {
  void* const answer = PXTXAllocBuf(512, QVX_TRUE);
  if (answer == NULL) return SM_STATUS_NO_MEMORY;
  const booln granted = rights != 0;
  const PXTTypedValue hexadecimal = {QVX_TYPE_U32, QVX_BASE_HEXADECIMAL, &rights};
  u32 status = PXTXBufCatBeginNode(answer, "Answer", "command=\"login\"");
  if (status == SM_STATUS_SUCCESS) {
    status = PXTXBufCatNode(answer, "User", NULL, QVX_TYPE_XML_ASTRING, login);
  }
  if (status == SM_STATUS_SUCCESS) {
    status = PXTXBufCatNode(answer, "Granted", NULL, QVX_TYPE_BOOLN, &granted);
  }
  if (status == SM_STATUS_SUCCESS) {
    status = PXTXBufCatNode(answer, "Rights", NULL, QVX_TYPE_TYPED_VALUE, &hexadecimal);
  }
  PXTNVSCatSMStatusNode(answer, 0, NULL);
  if (status == SM_STATUS_SUCCESS) status = PXTXBufCatEndNode(answer, "Answer");
  astring* const text = PXTXFreeBufGetContent(answer);
  if (status == SM_STATUS_SUCCESS) puts(text);
  PXTXFreeBufContent(text);
  return status;
}

static u32 Record(const char* login, u32 rights) {
  void* const description = PXTXAllocBuf(256, QVX_FALSE);
  if (description == NULL) return SM_STATUS_NO_MEMORY;
  const booln granted = rights != 0;
  u32 status =
      PXTNVSBufCatSetCmdParam(description, "granted", NULL, NULL, &granted, QVX_TYPE_BOOLN);
  astring* const text = PXTXFreeBufGetContent(description);
  if (status == SM_STATUS_SUCCESS) {
    status = PXTAppendToCmdLog(kCommandId, login, "REQUEST", text,
                               rights != 0 ? QVX_LOG_INFORMATION : QVX_LOG_WARNING);
  }
  PXTXFreeBufContent(text);
  return status;
}

static int PrintLog(void) {
  astring* const path = PXTGetCmdLogPathFileName();
  astring* const content = PXTCmdGetXMLLogContent(path);
  PXTFreeMem(path);
  if (content == NULL) return 2;
  /* The log begins with its own XML instruction; both elements go under one root. */
  printf("<Log>%s</Log>\n", content);
  PXTXFreeBufContent(content);
  return 0;
}

static char* ReadPassword(char* room, int size) {
  setvbuf(stdin, NULL, _IONBF, 0); /* a stream buffer would keep a copy */
  if (fgets(room, size, stdin) == NULL) return NULL;
  room[strcspn(room, "\n")] = '\0';
  return room;
}

int main(int argc, char** argv) {
  char room[256];
  if (argc == 2 && strcmp(argv[1], "--log") == 0) return PrintLog();
  char* const password = argc == 3 ? argv[2] : argc == 2 ? ReadPassword(room, sizeof(room)) : NULL;
  if (password == NULL) {
    fprintf(stderr, "usage: request LOGIN [PASSWORD] | request --log\n");
    return 2;
  }
  const char* const login = argv[1];
  (void)PXTOpenRolemapFile();
  PrintRights("this process, by role map", PXTGetRightsUsingRolemap());
  u32 rights = 0;
  u32 status = Authenticate(login, password, &rights);
  if (status != SM_STATUS_SUCCESS) {
    PrintFailure("request", "the login cannot be converted", status);
    return 2;
  }
  PrintRights(login, rights);
  status = PrintAnswer(login, rights);
  if (status != SM_STATUS_SUCCESS) {
    PrintFailure("request", "the answer could not be made", status);
    return 2;
  }
  errno = 0;
  status = Record(login, rights);
  if (status != SM_STATUS_SUCCESS) {
    PrintFailure("request", "the login could not be recorded", status);
    return 2;
  }
  return rights != 0 ? 0 : 1;
}
