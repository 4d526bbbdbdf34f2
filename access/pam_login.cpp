// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/pam_login.h"

#include <cstdlib>
#include <cstring>

#include "qvxcs/access.h"

#include "base/heap.h"

namespace {

astring g_defaultServiceName[] = "qvauth";

}  // namespace

astring* pam_servicename = g_defaultServiceName;

namespace qvx {
namespace {

// The answers so far, passwords among them.
void DiscardResponses(pam_response* responses, int count) {
  for (int at = 0; at < count; ++at) {
    if (responses[at].resp == nullptr) continue;
    explicit_bzero(responses[at].resp, strlen(responses[at].resp));
    free(responses[at].resp);
  }
  free(responses);
}

// Null for a message that is no prompt.
const astring* AnswerTo(const pam_message* message, const PamAnswers& answers) {
  if (message == nullptr) return nullptr;
  switch (message->msg_style) {
    case PAM_PROMPT_ECHO_OFF:
      return answers.password;
    case PAM_PROMPT_ECHO_ON:
      return answers.user;
    default:
      return nullptr;
  }
}

bool AnswerAll(int count, const pam_message** messages, pam_response* responses,
               const PamAnswers& answers) {
  for (int at = 0; at < count; ++at) {
    // Deliberate: an informational message ends the conversation, and with it the login, as an
    // error message does. Held by PamLogin.AnInformationalMessageFailsTheLogin.
    const astring* answer = AnswerTo(messages[at], answers);
    if (answer == nullptr) return false;
    responses[at].resp = CopyText(answer).release();
    if (responses[at].resp == nullptr) return false;
  }
  return true;
}

}  // namespace

int auth_pam_talker(int count, const pam_message** messages, pam_response** responses, void* data) {
  if (responses == nullptr || messages == nullptr || data == nullptr) return PAM_CONV_ERR;
  if (count < 1 || count > PAM_MAX_NUM_MSG) return PAM_CONV_ERR;
  auto* answered =
      static_cast<pam_response*>(calloc(static_cast<size_t>(count), sizeof(pam_response)));
  if (answered == nullptr) return PAM_CONV_ERR;
  if (!AnswerAll(count, messages, answered, *static_cast<const PamAnswers*>(data))) {
    DiscardResponses(answered, count);
    return PAM_CONV_ERR;
  }
  *responses = answered;
  return PAM_SUCCESS;
}

s32 pam_auth_basic_user(const astring* login, const astring* password) {
  const astring* service = ::pam_servicename;
  if (service == nullptr) return -1;
  PamAnswers answers{login, password};
  const pam_conv conversation{auth_pam_talker, &answers};
  pam_handle_t* handle = nullptr;
  if (pam_start(service, login, &conversation, &handle) != PAM_SUCCESS) return -1;
  int status = pam_authenticate(handle, PAM_DISALLOW_NULL_AUTHTOK);
  if (status == PAM_SUCCESS) status = pam_acct_mgmt(handle, PAM_DISALLOW_NULL_AUTHTOK);
  (void)pam_end(handle, status);
  return status == PAM_SUCCESS ? 0 : -1;
}

}  // namespace qvx
