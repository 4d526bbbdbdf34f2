/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* Accepts everybody after it has sent the messages that its arguments name: info, error, password,
 * user. A conversation that fails fails the login, unless "ignore" is among the arguments. */
#define PAM_SM_AUTH
#define PAM_SM_ACCOUNT
#include <security/pam_modules.h>
#include <stdlib.h>
#include <string.h>

static int StyleOf(const char* name) {
  if (strcmp(name, "info") == 0) return PAM_TEXT_INFO;
  if (strcmp(name, "error") == 0) return PAM_ERROR_MSG;
  if (strcmp(name, "user") == 0) return PAM_PROMPT_ECHO_ON;
  return strcmp(name, "password") == 0 ? PAM_PROMPT_ECHO_OFF : 0;
}

static int Send(const struct pam_conv* conversation, int style) {
  const struct pam_message message = {style, "message"};
  const struct pam_message* messages = &message;
  struct pam_response* responses = NULL;
  int status = conversation->conv(1, &messages, &responses, conversation->appdata_ptr);
  if (status == PAM_SUCCESS && responses != NULL) {
    if (responses->resp != NULL) explicit_bzero(responses->resp, strlen(responses->resp));
    free(responses->resp);
    free(responses);
  }
  return status;
}

int pam_sm_authenticate(pam_handle_t* handle, int flags, int count, const char** arguments) {
  const void* item = NULL;
  int failure = PAM_SUCCESS;
  int ignored = 0;
  (void)flags;
  if (pam_get_item(handle, PAM_CONV, &item) != PAM_SUCCESS || item == NULL) return PAM_AUTH_ERR;
  for (int at = 0; at < count; ++at) {
    const int style = StyleOf(arguments[at]);
    if (strcmp(arguments[at], "ignore") == 0) ignored = 1;
    if (style != 0 && Send(item, style) != PAM_SUCCESS) failure = PAM_AUTH_ERR;
  }
  return ignored ? PAM_SUCCESS : failure;
}

int pam_sm_setcred(pam_handle_t* handle, int flags, int count, const char** arguments) {
  (void)handle, (void)flags, (void)count, (void)arguments;
  return PAM_SUCCESS;
}

int pam_sm_acct_mgmt(pam_handle_t* handle, int flags, int count, const char** arguments) {
  (void)handle, (void)flags, (void)count, (void)arguments;
  return PAM_SUCCESS;
}
