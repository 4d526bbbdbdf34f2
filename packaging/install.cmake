# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT

# What `cmake --install` lays out: the library, its headers, its manual, its examples, the files by
# which systemd makes its group, folders and lock file, and what pkg-config and CMake need to find it.
# Nothing of it names the place where it was built or first installed, so the whole can be moved;
# only what is made for /usr says so to pkg-config.
include(CMakePackageConfigHelpers)

install(
  TARGETS qvxcs
  EXPORT qvxcs
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/qvxcs DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING
        PATTERN "*.h")

# A page for every function is made from the headers where Doxygen and Python are there.
find_program(QVXCS_DOXYGEN doxygen)
find_program(QVXCS_PYTHON python3)
mark_as_advanced(QVXCS_DOXYGEN QVXCS_PYTHON)
set(QVXCS_MANUAL AUTO CACHE STRING
    "Make the manual with every build: ON, OFF, or AUTO: where they are, but not for debugging")
set(with_manual ${QVXCS_MANUAL})
if(QVXCS_MANUAL STREQUAL "AUTO")
  set(with_manual OFF)
  if(QVXCS_DOXYGEN AND QVXCS_PYTHON AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    set(with_manual ON)
  endif()
endif()
if(with_manual)
  set(with_all ALL)
endif()
file(GLOB manual_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/qvxcs/*.h
     ${PROJECT_SOURCE_DIR}/docs/man/*.[0-9] ${PROJECT_SOURCE_DIR}/docs/man/examples/*.c)
set(manual_made ${PROJECT_BINARY_DIR}/man/made)
add_custom_command(
  OUTPUT ${manual_made}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/man/man3
  COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man/man3
  COMMAND ${PROJECT_SOURCE_DIR}/tools/man ${PROJECT_BINARY_DIR}/man/man3
  COMMAND ${CMAKE_COMMAND} -E touch ${manual_made}
  DEPENDS ${manual_sources} ${PROJECT_SOURCE_DIR}/tools/man ${PROJECT_SOURCE_DIR}/tools/mdoc.py
          ${PROJECT_SOURCE_DIR}/frame/libqvxcs.map
  COMMENT "Making the manual")
add_custom_target(manual ${with_all} DEPENDS ${manual_made})

foreach(section 3 5 7)
  set(destination ${CMAKE_INSTALL_MANDIR}/man${section})
  if(section EQUAL 3)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/man/man3/ DESTINATION ${destination} OPTIONAL)
  endif()
  file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.${section})
  if(pages)
    install(FILES ${pages} DESTINATION ${destination})
  endif()
endforeach()

# systemd looks into lib/ below /usr and /usr/local, whatever the machine calls its library folder.
foreach(kind sysusers tmpfiles)
  install(FILES packaging/qvxcs.${kind} DESTINATION lib/${kind}.d RENAME qvxcs.conf)
endforeach()
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qvxcs/examples
        PATTERN CMakeLists.txt EXCLUDE)

# pkg-config computes the folders from the place of its own file, unless one was set by an absolute
# path. /usr has to be named, because then pkg-config leaves out the folders that compilers search
# anyway.
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
