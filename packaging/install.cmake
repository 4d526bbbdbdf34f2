# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT

# What `cmake --install` lays out: the library, its headers, its manual pages, and what pkg-config
# and CMake need to find them. Nothing of it tells where it was built or first installed, so the
# whole can be moved; only what is made for /usr says so to pkg-config.
include(CMakePackageConfigHelpers)

install(
  TARGETS qvxcs
  EXPORT qvxcs
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/qvxcs DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING
        PATTERN "*.h")

# Pages made from the headers, if they were, and those written by hand.
foreach(section 3 5 7)
  set(destination ${CMAKE_INSTALL_MANDIR}/man${section})
  install(DIRECTORY ${PROJECT_BINARY_DIR}/man/man${section}/ DESTINATION ${destination} OPTIONAL)
  file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.${section})
  if(pages)
    install(FILES ${pages} DESTINATION ${destination})
  endif()
endforeach()

# pkg-config reckons from the file's own place, unless a folder was fixed by an absolute path. Of
# /usr it has to be told plainly: then it leaves the folders that compilers look into anyway out of
# their arguments.
set(pc_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH up ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" up "${up}")
set(QVXCS_PC_PREFIX "\${pcfiledir}/${up}")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" OR IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(QVXCS_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
endif()
foreach(kind LIB INCLUDE)
  set(QVXCS_PC_${kind}DIR ${CMAKE_INSTALL_${kind}DIR})
  if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_${kind}DIR})
    string(PREPEND QVXCS_PC_${kind}DIR "\${prefix}/")
  endif()
endforeach()
configure_file(packaging/qvxcs.pc.in packaging/qvxcs.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/qvxcs.pc DESTINATION ${pc_folder})

set(cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qvxcs)
configure_package_config_file(
  packaging/qvxcs-config.cmake.in packaging/qvxcs-config.cmake
  INSTALL_DESTINATION ${cmake_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/packaging/qvxcs-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/packaging/qvxcs-config.cmake
              ${PROJECT_BINARY_DIR}/packaging/qvxcs-config-version.cmake
        DESTINATION ${cmake_folder})
install(
  EXPORT qvxcs
  NAMESPACE qvxcs::
  FILE qvxcs-targets.cmake
  DESTINATION ${cmake_folder})
