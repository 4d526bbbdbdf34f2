#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/text.c: text in UTF-8, 16-bit units, escapes and XML.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

check 0 'units: 005a 006f 00eb 0020 0026 0020 005c 0020 0022 0042 006f 0062 0022 000a
back: Zoë & \ "Bob"

escaped: Zo\u00eb & \\ "Bob"\n
xml: Zoë &amp; \ &quot;Bob&quot;' text $'Zoë & \\ "Bob"\n'
check 1 'units: 0061 d87d de00
back: aaa
escaped: a\ud87d\ude00
xml: a😀' text a😀
check 2 "text: the text cannot be converted (SM_STATUS_BAD_DATA)" text $'\xff'
finish
