// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/pam_login.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "qvxcs/access.h"

#include "base/heap.h"

namespace {

astring g_defaultServiceName[] = "qvauth";

}  // namespace

astring* pam_servicename = g_defaultServiceName;

namespace qvx {
namespace {

// The answers so far, passwords among them: wiped and freed unless they are released.
class Responses {
 public:
  explicit Responses(int count)
      : list_(static_cast<pam_response*>(calloc(static_cast<size_t>(count), sizeof(*list_)))),
        count_(count) {}
  ~Responses() {
    for (int at = 0; list_ != nullptr && at < count_; ++at) {
      const HeapArray<astring> answer(list_[at].resp);
      if (answer) explicit_bzero(answer.get(), strlen(answer.get()));
    }
    free(list_);
  }
  Responses(const Responses&) = delete;
  Responses& operator=(const Responses&) = delete;

  explicit operator bool() const { return list_ != nullptr; }
  pam_response* Get() { return list_; }
  pam_response* Release() { return std::exchange(list_, nullptr); }

 private:
  pam_response* list_;
  int count_;
};

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
  Responses answered(count);
  if (!answered) return PAM_CONV_ERR;
  const PamAnswers& answers = *static_cast<const PamAnswers*>(data);
  if (!AnswerAll(count, messages, answered.Get(), answers)) return PAM_CONV_ERR;
  *responses = answered.Release();
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
