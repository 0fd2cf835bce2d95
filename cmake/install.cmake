# Installation: the shared library, its public headers and the generated
# message headers (all flat in include/quillheron/, since generated headers
# include each other by bare file name; consumers write either
# <quillheron/QuillPb.h> or "QuillPb.h"), a relocatable CMake package
# (find_package(quillheron) -> quillheron::quillheron) and a pkg-config file.
#
# Components: `runtime` (the shared library), `development` (headers, CMake
# package, pkg-config file, the library's development symlink) and `tool`
# (the heron program). `cmake --install build --strip` installs all three
# without debug information; `--component runtime` only the library.
include(CMakePackageConfigHelpers)
include(${CMAKE_CURRENT_LIST_DIR}/protobuf_version.cmake)

# The version header and project() must agree.
file(STRINGS ${CMAKE_SOURCE_DIR}/include/quillheron_version.h _qh_version_lines
  REGEX "^#define QUILLHERON_VERSION_(MAJOR|MINOR|PATCH) ")
set(_qh_header_version)
foreach(part MAJOR MINOR PATCH)
  string(REGEX MATCH "QUILLHERON_VERSION_${part} ([0-9]+)" _qh_match "${_qh_version_lines}")
  list(APPEND _qh_header_version ${CMAKE_MATCH_1})
endforeach()
string(REPLACE ";" "." _qh_header_version "${_qh_header_version}")
if(NOT _qh_header_version STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "include/quillheron_version.h says ${_qh_header_version}, "
                      "project() says ${PROJECT_VERSION}: change both together")
endif()

set(QH_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/quillheron)
set(QH_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/quillheron)

# The library is assembled from object libraries through $<TARGET_OBJECTS>, so
# only the library itself (and the imported protobuf target it links) appears
# in the export set.
install(TARGETS quillheron
  EXPORT quillheronTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)

file(GLOB QH_PUBLIC_HEADERS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/include/*.h)
install(FILES ${QH_PUBLIC_HEADERS} ${QH_PROTO_HDRS}
  DESTINATION ${QH_INSTALL_INCLUDEDIR} COMPONENT development)

install(EXPORT quillheronTargets
  NAMESPACE quillheron::
  FILE quillheronTargets.cmake
  DESTINATION ${QH_INSTALL_CMAKEDIR} COMPONENT development)

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/quillheronConfig.cmake.in
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfig.cmake
  INSTALL_DESTINATION ${QH_INSTALL_CMAKEDIR})
# While the version is 0.x every minor release may break the interface.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(QH_VERSION_COMPATIBILITY SameMinorVersion)
else()
  set(QH_VERSION_COMPATIBILITY SameMajorVersion)
endif()
write_basic_package_version_file(
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY ${QH_VERSION_COMPATIBILITY})
install(FILES
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfig.cmake
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfigVersion.cmake
  DESTINATION ${QH_INSTALL_CMAKEDIR} COMPONENT development)

# pkg-config: the prefix is found from the .pc file's own location, so the
# installed tree can be moved or installed with --prefix.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(QH_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(QH_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
  file(RELATIVE_PATH qh_pc_up "/qh/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/qh")
  string(REGEX REPLACE "/$" "" qh_pc_up "${qh_pc_up}")
  set(QH_PC_PREFIX "\${pcfiledir}/${qh_pc_up}")
  set(QH_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(QH_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
else()
  set(QH_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/quillheron.pc.in
  ${CMAKE_BINARY_DIR}/cmake/quillheron.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/cmake/quillheron.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

