#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/login.c through examples/pam/qvauth, and what examples/pam/README.md says of it.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/users.sh"

service=/etc/pam.d/qvauth

sample() { # [SED-SCRIPT]: installs the sample service file, changed by the script
  sed "${1:-}" "$(dirname "$0")/../../examples/pam/qvauth" >"$service"
  chmod 0644 "$service"
}

login_as() { # USER PASSWORD
  printf '%s\n' "$2" | login "$1"
}

printf 'auth required pam_deny.so\naccount required pam_deny.so\n' >/etc/pam.d/other

# A login, by the sample as it is.
sample
check 0 "ada: administrator" login_as ada "$good"
check 0 "paul: power user" login_as paul "$good"
check 0 "una: user" login_as una "$good"
check 0 "root: administrator, superuser" login_as root "$good"
check 0 "zoë: user" login_as zoë "$good"
LC_ALL=C check 1 "zoë: no access" login_as zoë "$good"
missing="login: the password is missing or too long"
unusable="login: the name or the password cannot be converted (SM_STATUS_BAD_DATA)"
check 2 "$missing" login_as ada "$(printf '%0256d' 0)"
check 2 "$unusable" login_as ada $'\xff'
check 2 "$unusable" login_as $'\xff' "$good"
check 2 "$missing" login ada </dev/null
check 0 "una: user" login una <<<"$good"
check 0 "una: user" login una < <(printf '%s' "$good")
check 2 "usage: login USER" login

# What examples/pam/README.md says, by the sample.
before=$(date +%s%N)
check 1 "una: no access" login_as una "open barley"
waited=$((($(date +%s%N) - before) / 1000000))
same "a wrong password takes its time" yes "$([ "$waited" -ge 900 ] && echo yes || echo "$waited ms")"
check 1 "expired: no access" login_as expired "$good"
check 1 "aged: no access" login_as aged "$good"
check 1 "new: no access" login_as new "$good"
check 0 "warned: user" login_as warned "$good"
check 0 "accent: user" login_as accent sésame
check 1 "accents: no access" login_as accents sésamé
check 1 "euro: no access" login_as euro 100€

sample '/^auth/s/$/ nodelay nullok/'
before=$(date +%s%N)
check 1 "una: no access" login_as una "open barley"
waited=$((($(date +%s%N) - before) / 1000000))
same "nodelay takes the delay away" yes "$([ "$waited" -lt 900 ] && echo yes || echo "$waited ms")"
check 1 "lotte: no access" login_as lotte "$good"
check 1 "open: no access" login_as open ""

echo "closed until noon" >/etc/nologin
check 0 "una: user" login_as una "$good"
sample '/pam_nologin/s/^#//'
check 1 "una: no access" login_as una "$good"
check 0 "root: administrator, superuser" login_as root "$good"
rm /etc/nologin

everybody='/^a/s/pam_unix/pam_permit/'
sample "$everybody"
check 0 "root@somewhere: administrator, superuser" login_as root@somewhere any
check 0 'root\somebody: administrator, superuser' login_as 'root\somebody' any
sample "$everybody; /pam_localuser/s/^#//"
check 0 "una: user" login_as una any
check 1 "root@somewhere: no access" login_as root@somewhere any
check 1 'root\somebody: no access' login_as 'root\somebody' any

talker="$QVX_BUILD/tests/modules/pam_qvxtest.so"
sample "\$aauth required $talker user password"
check 0 "una: user" login_as una "$good"
for message in info error "password info"; do
  sample "\$aauth required $talker $message"
  check 1 "una: no access" login_as una "$good"
  sample "\$aauth optional $talker $message"
  check 0 "una: user" login_as una "$good"
done
rm "$service"
check 1 "una: no access" login_as una "$good"
sample
check 0 "una: user" login_as una "$good"
finish
