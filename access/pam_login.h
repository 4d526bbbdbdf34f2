// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_PAM_LOGIN_H
#define QVX_ACCESS_PAM_LOGIN_H

#include <security/pam_appl.h>

#include "qvxcs/types.h"

namespace qvx {

// What the conversation answers with, in this order.
struct PamAnswers {
  const astring* user;
  const astring* password;
};

// One whole transaction with the service that `pam_servicename` names: the password, then the
// account. 0 when both are accepted, else -1.
s32 pam_auth_basic_user(const astring* login, const astring* password);

// The conversation function; `data` is a PamAnswers. Only prompts are answered.
int auth_pam_talker(int count, const pam_message** messages, pam_response** responses, void* data);

}  // namespace qvx

#endif
