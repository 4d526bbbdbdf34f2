# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT

# The support library under access/: the folder zsupt/, built in and hidden, or one that is
# installed. To try the latter, the folder can be built and installed as such a library:
#   cmake --build BUILD --target zsupt && cmake --install BUILD --component zsupt
set(QVXCS_ZSUPT bundled CACHE STRING "The support library: bundled or system")
set_property(CACHE QVXCS_ZSUPT PROPERTY STRINGS bundled system)

if(QVXCS_ZSUPT STREQUAL "bundled")
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/zsupt/*.cpp)
  add_library(zsupt SHARED EXCLUDE_FROM_ALL ${sources})
  target_link_libraries(zsupt PRIVATE qvx_flags qvx_hardening)
  set_target_properties(zsupt PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1)
  install(
    TARGETS zsupt
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT zsupt
            EXCLUDE_FROM_ALL)
  install(
    DIRECTORY include/zsupt
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT zsupt EXCLUDE_FROM_ALL)
elseif(QVXCS_ZSUPT STREQUAL "system")
  find_library(QVXCS_ZSUPT_LIBRARY zsupt REQUIRED)
  find_path(QVXCS_ZSUPT_INCLUDE zsupt/zarn_exception.h REQUIRED)
  # The folder include/ holds the bundled headers too, which must not be found beside the others.
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/include/qvxcs ${PROJECT_BINARY_DIR}/include/qvxcs SYMBOLIC)
  set_property(
    TARGET qvx_flags PROPERTY INTERFACE_INCLUDE_DIRECTORIES ${PROJECT_SOURCE_DIR}
                              ${PROJECT_BINARY_DIR}/include ${QVXCS_ZSUPT_INCLUDE})
  target_link_libraries(qvx_flags INTERFACE ${QVXCS_ZSUPT_LIBRARY})
else()
  message(FATAL_ERROR "QVXCS_ZSUPT is bundled or system, not ${QVXCS_ZSUPT}")
endif()
