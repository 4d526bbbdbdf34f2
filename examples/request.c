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

enum { kTypeBooln = 4, kTypeU32 = 5, kTypeRecord = 25, kTypeEscapedText = 26 };
enum { kCommandId = 5100, kLogSuccess = 4, kLogWarning = 2, kRoot = 0x40000 };

static const char* LevelInWords(u32 rights) {
  switch (rights & 0xFFFF) {
    case 7:
      return "administrator";
    case 3:
      return "power user";
    case 1:
      return "user";
    default:
      return "no access";
  }
}

static void PrintRights(const char* whose, u32 rights) {
  printf("%s: %s%s (0x%x)\n", whose, LevelInWords(rights),
         (rights & kRoot) != 0 ? ", superuser" : "", (unsigned)rights);
}

/* A new 16-bit copy of UTF-8 text, or NULL; PXTFreeMem frees it. */
static ustring* Widen(const char* text) {
  u32 size = 0; /* a size query gives bytes */
  if (PXTUTF8StrToUCS2Str(NULL, &size, text) != SM_STATUS_SUCCESS) {
    return NULL;
  }
  ustring* wide = PXTAllocMem(size);
  if (wide != NULL && PXTUTF8StrToUCS2Str(wide, &size, text) != SM_STATUS_SUCCESS) {
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

/* The library wipes its own copies and the one it is handed; the caller wipes what it read. */
static int Authenticate(const char* login, char* password, u32* rights) {
  ustring* const user = Widen(login);
  ustring* const secret = Widen(password);
  Wipe(password);
  const int usable = user != NULL && secret != NULL;
  *rights = PXTAuthenticateUser(NULL, user, secret); /* wipes `secret` without a user, too */
  PXTFreeMem(user);
  PXTFreeMem(secret);
  return usable;
}

static int PrintAnswer(const char* login, u32 rights) {
  void* const answer = PXTXAllocBuf(512, 1);
  if (answer == NULL) {
    return 0;
  }
  const booln granted = rights != 0;
  const PXTTypedValue hexadecimal = {kTypeU32, 16, &rights};
  const int built =
      PXTXBufCatBeginNode(answer, "Answer", "command=\"login\"") == SM_STATUS_SUCCESS &&
      PXTXBufCatNode(answer, "User", NULL, kTypeEscapedText, login) == SM_STATUS_SUCCESS &&
      PXTXBufCatNode(answer, "Granted", NULL, kTypeBooln, &granted) == SM_STATUS_SUCCESS &&
      PXTXBufCatNode(answer, "Rights", NULL, kTypeRecord, &hexadecimal) == SM_STATUS_SUCCESS;
  PXTNVSCatSMStatusNode(answer, 0, NULL);
  const int closed = PXTXBufCatEndNode(answer, "Answer") == SM_STATUS_SUCCESS;
  astring* const text = PXTXFreeBufGetContent(answer);
  if (text != NULL) {
    printf("%s\n", text);
  }
  PXTXFreeBufContent(text);
  return built && closed && text != NULL;
}

static int Record(const char* login, u32 rights) {
  void* const description = PXTXAllocBuf(256, 0);
  if (description == NULL) {
    return 0;
  }
  const booln granted = rights != 0;
  u32 status = PXTNVSBufCatSetCmdParam(description, "granted", NULL, NULL, &granted, kTypeBooln);
  astring* const text = PXTXFreeBufGetContent(description);
  if (status == SM_STATUS_SUCCESS) {
    status = PXTAppendToCmdLog(kCommandId, login, "REQUEST", text,
                               rights != 0 ? kLogSuccess : kLogWarning);
  }
  PXTXFreeBufContent(text);
  return status == SM_STATUS_SUCCESS;
}

static int PrintLog(void) {
  astring* const path = PXTGetCmdLogPathFileName();
  astring* const content = PXTCmdGetXMLLogContent(path);
  PXTFreeMem(path);
  if (content == NULL) {
    return 2;
  }
  /* The log opens with an instruction of its own; the two elements get one root. */
  printf("<Log>%s</Log>\n", content);
  PXTXFreeBufContent(content);
  return 0;
}

static char* ReadPassword(char* room, int size) {
  setvbuf(stdin, NULL, _IONBF, 0); /* a buffer of the stream would keep a copy */
  if (fgets(room, size, stdin) == NULL) {
    return NULL;
  }
  room[strcspn(room, "\n")] = '\0';
  return room;
}

int main(int argc, char** argv) {
  char room[256];
  if (argc == 2 && strcmp(argv[1], "--log") == 0) {
    return PrintLog();
  }
  char* const password = argc == 3 ? argv[2] : argc == 2 ? ReadPassword(room, sizeof room) : NULL;
  if (password == NULL) {
    fprintf(stderr, "usage: request LOGIN [PASSWORD] | request --log\n");
    return 2;
  }
  const char* const login = argv[1];
  (void)PXTOpenRolemapFile();
  PrintRights("this process, by role map", PXTGetRightsUsingRolemap());
  u32 rights = 0;
  if (!Authenticate(login, password, &rights)) {
    fprintf(stderr, "request: the login is no UTF-8 text\n");
    return 2;
  }
  PrintRights(login, rights);
  if (!PrintAnswer(login, rights) || !Record(login, rights)) {
    fprintf(stderr, "request: the answer or its record could not be made\n");
    return 2;
  }
  return rights != 0 ? 0 : 1;
}
