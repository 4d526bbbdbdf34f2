#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/xmllog.c: a log that grows, moves to its backup and is begun anew.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

log=/tmp/notes/notes.xml
instruction='<?xml-stylesheet type="text/xsl" version="1.0" encoding="UTF-8"?>'
entry() { # ID DESCRIPTION, with T for the time that the log has
  printf '<LogEntry><TimeStamp>T</TimeStamp><DateTime>D</DateTime>'
  printf '<ComputerName>qvxtest</ComputerName><Type>4</Type><ID>%s</ID><UserInfo>root</UserInfo>' "$1"
  printf '<Source>XMLLOG</Source><Description>%s</Description><Data></Data></LogEntry>' "$2"
}
answer() { # ENTRIES
  printf '<Log><Content>%s<EventLog>%s</EventLog></Content><SMStatus>0</SMStatus></Log>' \
    "$instruction" "$1"
}
show() { # the log with T and D for its times, which must be one time
  local text=$1 stamp shown
  text=$(xmllog show "$text") || return
  xmllint --noout - <<<"$text"
  while [[ $text =~ \<TimeStamp\>([0-9]+)\</TimeStamp\>\<DateTime\>([^<]+)\< ]]; do
    stamp=${BASH_REMATCH[1]}
    shown=${BASH_REMATCH[2]}
    [ "$(LC_ALL=C date -d "@$stamp" '+%a %b %e %H:%M:%S %Y')" = "$shown" ] || echo "times differ"
    [ $(($(date +%s) - stamp)) -le 60 ] || echo "not the time"
    text=${text/"<TimeStamp>$stamp</TimeStamp><DateTime>$shown<"/"<TimeStamp>T</TimeStamp><DateTime>D<"}
  done
  printf '%s' "$text"
}
check 1 "xmllog: there is no log" xmllog show "$log"
check 0 "" xmllog add "$log" 100000 "first & <best>"
first=$(entry 7001 "first &amp; &lt;best&gt;")
check 0 "$(answer "$first")" show "$log"
# The closing tag has 11 bytes; the times have 10 and 24 in place of two letters.
size=$((65 + 10 + ${#first} + 32 + 11))
same "the log's size" "$size" "$(stat -c %s "$log")"
second=$(entry 7001 second)
reached=$((size + ${#second} + 32))
check 0 "" xmllog add "$log" $((reached + 1)) second
check 0 "$(answer "$first$second")" show "$log"
backup=/tmp/notes/notes.xm_
check 0 "$backup" xmllog backup "$log"
check 1 "xmllog: there is no log" xmllog show "$backup"
cp "$log" /tmp/kept.xml
check 0 "" xmllog add "$log" $((size + 2 * (${#second} + 32))) second
same "the backup is the log that was" "" "$(cmp /tmp/kept.xml "$backup" 2>&1)"
check 0 "$(answer "$(entry 1 "Log backup created")$second")" show "$log"
check 0 "" xmllog clear "$log"
check 0 "$(answer "$(entry 0 "Log was cleared")")" show "$log"
check 2 "xmllog: failed (SM_STATUS_INVALID_PARAMETER)" xmllog add "$log" 1k third
check 2 "xmllog: failed (SM_STATUS_BAD_ARGUMENT)" xmllog add "$log" 100000 ""
check 2 "xmllog: failed (QVX_FAILED: No such file or directory)" xmllog clear /tmp/none.xml
chmod 0600 "$log"
check 2 "xmllog: the log cannot be read (QVX_FAILED: Permission denied)" \
  setpriv --reuid 2999 --clear-groups "$(command -v xmllog)" show "$log"
finish
