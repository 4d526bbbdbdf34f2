<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-FileCopyrightText: Copyright The libqvxcs authors -->
<!-- SPDX-License-Identifier: MIT -->
<!-- A command log as a web page. The locale's sheets bring its words and its look. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="UTF-8" indent="yes" doctype-system="about:legacy-compat"/>

  <xsl:template match="/EventLog">
    <html lang="{$language}">
      <head>
        <title><xsl:value-of select="$title"/></title>
        <style><xsl:value-of select="$look"/></style>
      </head>
      <body>
        <h1><xsl:value-of select="$title"/></h1>
        <p>
          <xsl:value-of select="count(LogEntry)"/>
          <xsl:text> </xsl:text>
          <xsl:value-of select="$entries"/>
          <xsl:text> </xsl:text>
          <b><xsl:value-of select="LogEntry[1]/ComputerName"/></b>
        </p>
        <table>
          <thead>
            <tr>
              <th><xsl:value-of select="$when"/></th>
              <th><xsl:value-of select="$kind"/></th>
              <th><xsl:value-of select="$event"/></th>
              <th><xsl:value-of select="$who"/></th>
              <th><xsl:value-of select="$source"/></th>
              <th><xsl:value-of select="$what"/></th>
            </tr>
          </thead>
          <tbody>
            <xsl:apply-templates select="LogEntry"/>
          </tbody>
        </table>
      </body>
    </html>
  </xsl:template>

  <xsl:template match="LogEntry">
    <tr class="type{Type}">
      <td><xsl:value-of select="DateTime"/></td>
      <td><span class="mark"><xsl:call-template name="kind-in-words"/></span></td>
      <td><xsl:value-of select="ID"/></td>
      <td><xsl:value-of select="UserInfo"/></td>
      <td><xsl:value-of select="Source"/></td>
      <td><xsl:apply-templates select="Description/node()"/></td>
    </tr>
  </xsl:template>

  <xsl:template match="Parameter">
    <span class="name"><xsl:value-of select="@name"/></span>
    <xsl:text> </xsl:text>
    <xsl:value-of select="@value"/>
  </xsl:template>
</xsl:stylesheet>
