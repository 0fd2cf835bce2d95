# Installation: the shared library, its public headers and the generated
# message headers (all flat in one include directory, since generated headers
# include each other by bare file name), a relocatable CMake package
# (find_package(quillheron) -> quillheron::quillheron) and a pkg-config file.
include(CMakePackageConfigHelpers)

set(QH_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/quillheron)
set(QH_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/quillheron)

# The library is assembled from object libraries through $<TARGET_OBJECTS>, so
# only the library itself (and the imported protobuf target it links) appears
# in the export set.
install(TARGETS quillheron
  EXPORT quillheronTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${QH_INSTALL_INCLUDEDIR})

file(GLOB QH_PUBLIC_HEADERS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/include/*.h)
install(FILES ${QH_PUBLIC_HEADERS} ${QH_PROTO_HDRS}
  DESTINATION ${QH_INSTALL_INCLUDEDIR})

install(EXPORT quillheronTargets
  NAMESPACE quillheron::
  FILE quillheronTargets.cmake
  DESTINATION ${QH_INSTALL_CMAKEDIR})

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/quillheronConfig.cmake.in
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfig.cmake
  INSTALL_DESTINATION ${QH_INSTALL_CMAKEDIR})
write_basic_package_version_file(
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfig.cmake
  ${CMAKE_BINARY_DIR}/cmake/quillheronConfigVersion.cmake
  DESTINATION ${QH_INSTALL_CMAKEDIR})

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
  set(QH_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/quillheron")
else()
  set(QH_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}/quillheron")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/quillheron.pc.in
  ${CMAKE_BINARY_DIR}/cmake/quillheron.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/cmake/quillheron.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
