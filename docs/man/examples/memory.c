/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <string.h>

/* Joins words in a block that grows; the caller frees the text. NULL without memory. */
static char* Join(const char* const* words, u32 count) {
  u32 length = 0;
  char* text = PXTAllocMem(1);
  if (text == NULL) return NULL;
  for (u32 at = 0; at < count; ++at) {
    const u32 added = (u32)strlen(words[at]);
    char* const larger = PXTReAllocMem(text, length + added + 1);
    if (larger == NULL) {
      PXTFreeMem(text); /* the old block is still there */
      return NULL;
    }
    text = larger;
    memcpy(text + length, words[at], added);
    length += added;
  }
  text[length] = '\0';
  return text;
}

/* Three names of one function: any of them frees any block, and NULL is ignored. */
static void FreeEach(char* first, char* second, char* third) {
  PXTFreeMem(first);
  PXTGenericFree(second);
  SUPTFreeMem(third);
}

int main(void) {
  const char* const words[] = {"one", "+", "two"};
  char* const text = Join(words, 3);
  if (text == NULL) return 1;
  puts(text);
  FreeEach(text, PXTAllocMem(100), NULL);
  return 0;
}

/*
 * Prints:
 *   one+two
 */
