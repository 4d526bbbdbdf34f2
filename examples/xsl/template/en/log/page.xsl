<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-FileCopyrightText: Copyright The libqvxcs authors -->
<!-- SPDX-License-Identifier: MIT -->
<!-- The command log's words in English. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:variable name="language">en</xsl:variable>
  <xsl:variable name="title">Command log</xsl:variable>
  <xsl:variable name="entries">entries on</xsl:variable>
  <xsl:variable name="when">When</xsl:variable>
  <xsl:variable name="kind">Kind</xsl:variable>
  <xsl:variable name="event">Event</xsl:variable>
  <xsl:variable name="who">Who</xsl:variable>
  <xsl:variable name="source">Source</xsl:variable>
  <xsl:variable name="what">What</xsl:variable>

  <xsl:template name="kind-in-words">
    <xsl:choose>
      <xsl:when test="Type = 1">error</xsl:when>
      <xsl:when test="Type = 2">warning</xsl:when>
      <xsl:when test="Type = 4">information</xsl:when>
      <xsl:otherwise><xsl:value-of select="Type"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>
</xsl:stylesheet>
