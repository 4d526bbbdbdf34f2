# shellcheck shell=bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Users, groups and a role map for the examples that show who may do what.
good='open sesame'
hash=$(openssl passwd -6 -salt qvxdemo "$good")
today=$(($(date +%s) / 86400))
add_user ada 2001 "$hash"
add_user paul 2002 "$hash"
add_user una 2003 "$hash"
add_user zoë 2004 "$hash"
add_user lotte 2005 "!$hash"
add_user open 2006 ""
add_user expired 2007 "$hash" 10000:0:99999:7::10001:
add_user aged 2008 "$hash" 10000:0:99:7:::
add_user new 2009 "$hash" 0:0:99999:7:::
add_user warned 2010 "$hash" "$((today - 95)):0:99:7:::"
add_user accent 2011 "$(openssl passwd -6 -salt qvxdemo sésame)"
add_user accents 2012 "$(openssl passwd -6 -salt qvxdemo sésamé)"
add_user euro 2013 "$(openssl passwd -6 -salt qvxdemo 100€)"
sed -i "s|^root:[^:]*:|root:$hash:|" /etc/shadow
echo "operators:x:2100:paul" >>/etc/group
write_role_map <<'ROLES'
# who       where  as what
ada         *      administrator
+operators  *      poweruser
*           *      user
ROLES
