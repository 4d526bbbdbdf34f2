# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT

# Locales of the tests' own, made in a folder of the build: a decimal comma, two UTF-8 and one 8-bit
# locale whose small "I" is another letter, and an 8-bit one whose letters above 0x7F are Latin.
set(QVX_LOCALES de_DE.UTF-8 tr_TR.UTF-8 az_AZ.UTF-8 en_GB.ISO-8859-1 tr_TR.ISO-8859-9)
set(QVX_LOCALE_FOLDER ${PROJECT_BINARY_DIR}/tests/locales)
find_program(QVX_LOCALEDEF localedef)
if(NOT QVX_LOCALEDEF OR NOT EXISTS /usr/share/i18n/locales/tr_TR)
  message(STATUS "Debian's package locales is missing: no tests under other locales")
  set(QVX_LOCALES "")
endif()

set(made "")
# One more, whose decimal point has two bytes, is there for single tests.
set(QVX_MADE_LOCALES ${QVX_LOCALES})
if(QVX_LOCALES)
  list(APPEND QVX_MADE_LOCALES ps_AF.UTF-8)
endif()
foreach(locale IN LISTS QVX_MADE_LOCALES)
  string(REGEX MATCH "^([^.]+)[.](.+)$" parts ${locale})
  set(stamp ${QVX_LOCALE_FOLDER}/${locale}/LC_IDENTIFICATION)
  add_custom_command(
    OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${QVX_LOCALE_FOLDER}
    COMMAND ${QVX_LOCALEDEF} --no-archive -i ${CMAKE_MATCH_1} -f ${CMAKE_MATCH_2}
            ${QVX_LOCALE_FOLDER}/${locale}
    VERBATIM)
  list(APPEND made ${stamp})
endforeach()
add_custom_target(test_locales DEPENDS ${made})

# The tests of the program that the filter leaves, once more under a locale of our own. Each is a
# own process as usual, and its name begins with the locale's.
function(qvx_test_under_locale program locale filter)
  gtest_discover_tests(
    ${program}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 120
    TEST_FILTER "${filter}"
    TEST_PREFIX ${locale}:
    TEST_LIST ${program}_${locale}
    PROPERTIES TIMEOUT 300 ENVIRONMENT QVX_TEST_LOCALE=${locale})
endfunction()
