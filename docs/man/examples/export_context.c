/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* What a host that is also built for other platforms does around its own calls. */
static void CallInModuleContext(void (*call)(void)) {
  u32 context = 0;
  u32 saved = 0;
  PXTGetExportContext(&context);
  PXTSetExportContext(&saved, &context);
  call();
  PXTResetExportContext(&saved);
}

static void Work(void) { puts("working"); }

/* Hooks around the start of a daemon and for long file names; here none of them has an effect. */
static s32 Prepare(void) {
  PXTSetProcessEnvironment();
  SUPTBeforeForkForDaemon();
  return PXTEnableLongFileNames();
}

int main(void) {
  if (Prepare() != 0) return 1;
  CallInModuleContext(Work);
  return PXTDisableLongFileNames() == 0 ? 0 : 1;
}

/*
 * Prints:
 *   working
 */
