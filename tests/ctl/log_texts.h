// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_CTL_LOG_TEXTS_H
#define QVX_TESTS_CTL_LOG_TEXTS_H

#include <string>

// XML logs as the library writes them.
namespace qvx::test {

constexpr char kLogHead[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?><EventLog>";
constexpr char kLogClosing[] = "</EventLog>";

inline std::string Entry(long time, const std::string& description,
                         const std::string& user = "root", unsigned id = 5001,
                         const std::string& data = "") {
  return "<LogEntry><TimeStamp>" + std::to_string(time) +
         "</TimeStamp><DateTime>Tue Nov 14 22:13:20 2023</DateTime><ComputerName>srv1"
         "</ComputerName><Type>2</Type><ID>" +
         std::to_string(id) + "</ID><UserInfo>" + user +
         "</UserInfo><Source>host</Source><Description>" + description + "</Description><Data>" +
         data + "</Data></LogEntry>";
}

inline std::string Log(const std::string& entries) { return kLogHead + entries + kLogClosing; }

}  // namespace qvx::test

#endif
