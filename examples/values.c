/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * values NAME
 *
 * Prints an XML element that is built from values of many types, NAME among them. The exit status
 * is 0, or 2 when it could not be built.
 */
#include <stdio.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

enum { kTwoPasses = 2, kFirstRoom = 256 };

typedef struct Node {
  const char* name;
  const char* attributes;
  s32 type;
  const void* value;
} Node;

static u32 AppendAll(void* buffer, const Node* nodes, size_t count) {
  u32 status = PXTXBufCatBeginNode(buffer, "Disk", "bus=\"0\" slot=\"3\"");
  for (size_t at = 0; at < count && status == SM_STATUS_SUCCESS; ++at) {
    const Node* const node = &nodes[at];
    status = PXTXBufCatNode(buffer, node->name, node->attributes, node->type, node->value);
  }
  if (status == SM_STATUS_SUCCESS) {
    status = PXTXBufCatEmptyNode(buffer, "Spare", "slot=\"4\"");
  }
  return status == SM_STATUS_SUCCESS ? PXTXBufCatEndNode(buffer, "Disk") : status;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: values NAME\n");
    return 2;
  }
  const ustring vendor[] = {'A', '&', 0xE9, 0}; /* 16-bit text: A, ampersand, e with acute */
  const booln online = 1;
  u32 flags = 0x1F;
  const u32 hours = 4000000000u;
  const s32 celsius = -7;
  const u64 bytes = 18446744073709551615u;
  const s64 drift = -9000000000;
  const d64 load = 0.375;
  const s32 since = 1000000000; /* seconds since 1970, shown in local time */
  const u8 percent = 255;
  const PXTTypedValue hexadecimal = {QVX_TYPE_U32, QVX_BASE_HEXADECIMAL, &flags};
  const PXTTypedValue twice = {QVX_TYPE_XML_ASTRING, kTwoPasses, argv[1]};
  const Node nodes[] = {
      {"Name", NULL, QVX_TYPE_XML_ASTRING, argv[1]},
      {"Quoted", NULL, QVX_TYPE_TYPED_VALUE, &twice},
      {"Vendor", "code=\"utf-8\"", QVX_TYPE_XML_USTRING, vendor},
      {"Online", NULL, QVX_TYPE_BOOLN, &online},
      {"Flags", NULL, QVX_TYPE_TYPED_VALUE, &hexadecimal},
      {"Hours", NULL, QVX_TYPE_U32, &hours},
      {"Celsius", NULL, QVX_TYPE_S32, &celsius},
      {"Bytes", NULL, QVX_TYPE_U64, &bytes},
      {"Drift", NULL, QVX_TYPE_S64, &drift},
      {"Load", NULL, QVX_TYPE_D64, &load},
      {"Since", NULL, QVX_TYPE_TIME, &since},
      {"Percent", NULL, QVX_TYPE_U8, &percent},
  };
  void* const buffer = PXTXAllocBuf(kFirstRoom, QVX_FALSE);
  if (buffer == NULL) {
    fprintf(stderr, "values: no memory\n");
    return 2;
  }
  const u32 status = AppendAll(buffer, nodes, sizeof(nodes) / sizeof(*nodes));
  if (status != SM_STATUS_SUCCESS) {
    PrintFailure("values", "failed", status);
    (void)PXTXFreeBuf(buffer);
    return 2;
  }
  astring* const text = PXTXFreeBufGetContent(buffer);
  puts(text);
  PXTXFreeBufContent(text);
  return 0;
}
