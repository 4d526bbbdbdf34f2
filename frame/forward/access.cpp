// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/access.h"

#include "access/authenticate.h"
#include "access/mask_rights.h"
#include "access/os_privilege.h"
#include "access/user_rights.h"
#include "base/cancel_hold.h"

u32 PXTOpenRolemapFile() {
  const qvx::CancelHold hold;
  return qvx::OSOpenRolemapFile();
}
u32 PXTGetRightsUsingRolemap() {
  const qvx::CancelHold hold;
  return qvx::OSGetRightsUsingRolemap();
}
u32 PXTAuthenticateUser(const ustring* domain, const ustring* userName, ustring* password) {
  const qvx::CancelHold hold;
  return qvx::OSAuthenticateUser(domain, userName, password);
}
u32 PXTAuthorizeUser(const ustring* domain, const ustring* userName) {
  const qvx::CancelHold hold;
  return qvx::OSAuthorizeUser(domain, userName);
}
s32 PXTADAuthenticateUser(u32 a1, u32 a2, u32 a3, u32 a4, u32 a5, u32 a6, u32 a7, u8 a8, u32 a9) {
  return qvx::OSADAuthenticateUser(a1, a2, a3, a4, a5, a6, a7, a8, a9);
}
void* PXTGetOSDomainList() { return qvx::OSDomainList(); }
u32 PXTGetProcessRights() { return qvx::OSGetProcessRights(); }
astring* PXTGetProcessUser() {
  const qvx::CancelHold hold;
  return qvx::OSGetProcessUser();
}
u32 PXTMaskProgramRights(u32 rights, const astring* prefix, const astring* iniFile, u32* reason) {
  const qvx::CancelHold hold;
  return qvx::MaskProgramRights(rights, prefix, iniFile, reason);
}
