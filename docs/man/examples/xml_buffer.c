/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* Appends <Disk> with what it holds; the first status that is not success ends it. */
static u32 AppendDisk(void* buffer, const char* name, u32 flags) {
  const PXTTypedValue hexadecimal = {QVX_TYPE_U32, QVX_BASE_HEXADECIMAL, &flags};
  u32 status = PXTXBufCatBeginNode(buffer, "Disk", "id=\"0\"");
  if (status == SM_STATUS_SUCCESS) {
    status = PXTXBufCatNode(buffer, "Name", NULL, QVX_TYPE_XML_ASTRING, name);
  }
  if (status == SM_STATUS_SUCCESS) {
    status = PXTXBufCatNode(buffer, "Flags", NULL, QVX_TYPE_TYPED_VALUE, &hexadecimal);
  }
  if (status == SM_STATUS_SUCCESS) status = PXTXBufCatEmptyNode(buffer, "Spare", "slot=\"4\"");
  return status == SM_STATUS_SUCCESS ? PXTXBufCatEndNode(buffer, "Disk") : status;
}

int main(void) {
  void* const buffer = PXTXAllocBuf(256, QVX_FALSE);
  if (buffer == NULL) return 1;
  if (AppendDisk(buffer, "R&D archive", 31) != SM_STATUS_SUCCESS) {
    (void)PXTXFreeBuf(buffer); /* the buffer with its text */
    return 1;
  }
  astring* const text = PXTXFreeBufGetContent(buffer); /* the buffer; the text is ours now */
  puts(text);
  PXTXFreeBufContent(text);
  return 0;
}

/*
 * Prints:
 *   <Disk id="0"><Name>R&amp;D archive</Name><Flags>0x1f</Flags><Spare slot="4"/></Disk>
 */
