# Cross-architecture identity: the designer sweep program.
include(${CMAKE_CURRENT_SOURCE_DIR}/identity/CMakeLists.txt)

# Install check: installs this build tree into a temporary prefix and builds
# a small client project against it, through find_package and pkg-config.
# The client is built and run for the build machine, so not when cross-compiling.
if(CMAKE_CROSSCOMPILING)
  return()
endif()
add_test(NAME install_consumer
  COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/consumer/run_consumer.sh
    ${CMAKE_COMMAND} ${CMAKE_BINARY_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/consumer
    ${CMAKE_GENERATOR} ${CMAKE_CXX_COMPILER}
    "${CMAKE_CXX_FLAGS}" "${CMAKE_EXE_LINKER_FLAGS}")
set_tests_properties(install_consumer PROPERTIES TIMEOUT 600 LABELS install)
