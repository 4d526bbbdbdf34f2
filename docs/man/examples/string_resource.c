/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* Three messages in UCS-2, as a translator's tool writes them: "language:identifier=text". */
static int WriteResources(const char* path) {
  static const ustring kText[] = u"\uFEFF0:1F=Disk full\r\n0:20=Fan failed\r\n0:21=No power\r\n";
  FILE* const file = fopen(path, "w");
  if (file == NULL) return 1;
  const size_t units = sizeof(kText) / sizeof(*kText) - 1;
  const size_t written = fwrite(kText, sizeof(*kText), units, file);
  return fclose(file) == 0 && written == units ? 0 : 1;
}

int main(void) {
  const char* const path = "/tmp/messages.res";
  ustring text[64];
  astring narrow[64];
  u32 language = 0;
  u32 size = sizeof(text);
  if (WriteResources(path) != 0) return 1;
  const u32 bytes = PXTGetUnicodeStringFromIDPathFile(0x20, &language, path, text, &size);
  u32 room = sizeof(narrow) - 1;
  if (PXTUCS2StrToUTF8Str(narrow, &room, text) != SM_STATUS_SUCCESS) return 1;
  printf("%s (%u bytes)\n", narrow, bytes);
  return remove(path);
}

/*
 * Prints:
 *   Fan failed (22 bytes)
 */
