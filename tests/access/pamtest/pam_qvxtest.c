/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* Accepts every user after it has sent the messages that its arguments name: info, error, password,
   user. A failed conversation fails the login, unless "ignore" is among the arguments. With
   "expired" the account is refused; with "record" each step leaves a line in /tmp/pam_record. */
#define PAM_SM_AUTH
#define PAM_SM_ACCOUNT
#include <security/pam_modules.h>
#include <stdio.h>
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

static int Has(int count, const char** arguments, const char* argument) {
  for (int at = 0; at < count; ++at) {
    if (strcmp(arguments[at], argument) == 0) return 1;
  }
  return 0;
}

static void Record(const char* step, int number) {
  FILE* file = fopen("/tmp/pam_record", "ae");
  if (file == NULL) return;
  fprintf(file, "%s %d\n", step, number);
  fclose(file);
}

static void RecordEnd(pam_handle_t* handle, void* data, int status) {
  (void)handle, (void)data;
  Record("end", status);
}

int pam_sm_authenticate(pam_handle_t* handle, int flags, int count, const char** arguments) {
  const void* item = NULL;
  int failure = PAM_SUCCESS;
  int ignored = 0;
  if (Has(count, arguments, "record")) {
    Record("authenticate", flags);
    if (pam_set_data(handle, "qvxtest", NULL, RecordEnd) != PAM_SUCCESS) return PAM_AUTH_ERR;
  }
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
  (void)handle;
  if (Has(count, arguments, "record")) Record("account", flags);
  return Has(count, arguments, "expired") ? PAM_ACCT_EXPIRED : PAM_SUCCESS;
}
