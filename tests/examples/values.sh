#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# examples/values.c: an element of values of many types.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

check 0 "<Disk bus=\"0\" slot=\"3\"><Name>R&amp;D</Name><Quoted>R&amp;amp;D</Quoted>\
<Vendor code=\"utf-8\">A&amp;é</Vendor><Online>true</Online><Flags>0x1f</Flags>\
<Hours>4000000000</Hours><Celsius>-7</Celsius><Bytes>18446744073709551615</Bytes>\
<Drift>-9000000000</Drift><Load>0.37500000</Load><Since>Sun Sep  9 01:46:40 2001</Since>\
<Percent>255</Percent><Spare slot=\"4\"/></Disk>" values "R&D"
check 2 "usage: values NAME" values
finish
