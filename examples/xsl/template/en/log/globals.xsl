<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-FileCopyrightText: Copyright The libqvxcs authors -->
<!-- SPDX-License-Identifier: MIT -->
<!-- What all pages of the locale share: their look. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:variable name="look">
    body { font: 15px/1.4 sans-serif; margin: 2em; color: #1c2530; }
    h1 { font-size: 1.5em; margin: 0; }
    p { margin: .2em 0 1.2em; color: #5a6675; }
    table { border-collapse: collapse; }
    th, td { text-align: left; padding: .45em 1.2em .45em 0; border-bottom: 1px solid #dfe4ea; }
    th { color: #5a6675; font-weight: normal; }
    td { font-variant-numeric: tabular-nums; }
    .mark { padding: .1em .6em; border-radius: .8em; background: #e3edf7; }
    .type1 .mark { background: #f7d9d7; }
    .type2 .mark { background: #fbe9c4; }
    .name { color: #5a6675; }
  </xsl:variable>
</xsl:stylesheet>
