/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * A host in C11 that is built against an installed library. It prints a path, the host's name and
 * an XML element; the name comes only while the library is attached to its lock file.
 */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

#if __STDC_VERSION__ != 201112L
#error "to be compiled as C11"
#endif

static int PrintPath(void) {
  astring* const path = PXTGetProductIniPath();
  if (path == NULL) return 0;
  printf("%s\n", path);
  PXTFreeMem(path);
  return 1;
}

static int PrintHost(void) {
  astring name[256];
  u32 size = sizeof(name);
  if (PXTGetIPHostName(name, &size) != SM_STATUS_SUCCESS) return 0;
  printf("%s\n", name);
  return 1;
}

static int PrintElement(void) {
  void* const buffer = PXTXAllocBuf(64, 0);
  if (buffer == NULL) return 0;
  const u32 answer = 42;
  const u32 status = PXTXBufCatNode(buffer, "Answer", NULL, QVX_TYPE_U32, &answer);
  astring* const text = PXTXFreeBufGetContent(buffer);
  if (text != NULL) {
    printf("%s\n", text);
  }
  PXTXFreeBufContent(text);
  return status == SM_STATUS_SUCCESS && text != NULL;
}

int main(void) { return PrintPath() && PrintHost() && PrintElement() ? 0 : 1; }
