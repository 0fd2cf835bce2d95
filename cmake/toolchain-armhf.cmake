# Cross build for 32-bit Arm Linux, hard-float ABI (armhf), with Debian's
# arm-linux-gnueabihf cross compiler. protobuf, zlib, GoogleTest and CLI11 come
# from Debian's armhf packages unpacked by scripts/armhf-sysroot.sh; the host
# protoc generates the message code. Executables are linked statically so that
# qemu-arm runs them without a sysroot (ctest does so through the emulator);
# the shared library stays a shared object linked against libprotobuf.so.
#
#   scripts/armhf-sysroot.sh build-arm/sysroot
#   cmake -S . -B build-arm -G Ninja \
#     -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-armhf.cmake \
#     -DQH_ARMHF_SYSROOT=$PWD/build-arm/sysroot
#
# Options: QH_ARMHF_SYSROOT (default <source>/build-arm/sysroot),
# QH_STATIC_EXECUTABLES (default ON). The project's QH_FILTERDESIGN_NEON=ON
# (default OFF) builds filterdesign/ with -mfpu=neon, as on Android's 32-bit
# Arm ABI; scripts/test-arm.sh builds the designers that way too, in
# build-arm-neon/.

# ---------------------------------------------------------------------------
# Second pass: this file is also the project include (CMAKE_PROJECT_INCLUDE,
# read at the end of project(), once the compilers are known). It defines the
# protobuf target before FindProtobuf would: the library must link
# libprotobuf.so while the static executables need libprotobuf.a, and one
# imported file cannot be both. A plain -lprotobuf lets the linker choose:
# under -static it takes the archive, otherwise the shared object.
# ---------------------------------------------------------------------------
if(CMAKE_CXX_COMPILER_LOADED AND DEFINED PROJECT_NAME
   AND NOT PROJECT_NAME STREQUAL "CMAKE_TRY_COMPILE")
  if(NOT TARGET protobuf::libprotobuf)
    set(_qh_libdir ${QH_ARMHF_SYSROOT}/usr/lib/${QH_ARMHF_TRIPLET})
    add_library(protobuf::libprotobuf INTERFACE IMPORTED)
    set_target_properties(protobuf::libprotobuf PROPERTIES
      INTERFACE_INCLUDE_DIRECTORIES "${QH_ARMHF_SYSROOT}/usr/include"
      INTERFACE_LINK_DIRECTORIES "${_qh_libdir}"
      INTERFACE_LINK_LIBRARIES "-lprotobuf;-lz")
    unset(_qh_libdir)
  endif()
  return()
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(QH_ARMHF_TRIPLET arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${QH_ARMHF_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${QH_ARMHF_TRIPLET}-g++)

if(NOT QH_ARMHF_SYSROOT)
  if(DEFINED ENV{QH_ARMHF_SYSROOT})
    set(QH_ARMHF_SYSROOT "$ENV{QH_ARMHF_SYSROOT}")
  else()
    get_filename_component(QH_ARMHF_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build-arm/sysroot" ABSOLUTE)
  endif()
endif()
if(NOT EXISTS "${QH_ARMHF_SYSROOT}/usr/include/google/protobuf")
  message(FATAL_ERROR "No armhf protobuf in ${QH_ARMHF_SYSROOT}: run scripts/armhf-sysroot.sh first")
endif()

# Libraries, headers and packages only from the unpacked armhf packages and the
# cross compiler's own tree; programs (protoc, qemu-arm) from the host.
set(CMAKE_FIND_ROOT_PATH ${QH_ARMHF_SYSROOT} /usr/${QH_ARMHF_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE ${QH_ARMHF_TRIPLET})

if(NOT DEFINED QH_STATIC_EXECUTABLES)
  set(QH_STATIC_EXECUTABLES ON)
endif()
set(QH_STATIC_EXECUTABLES ${QH_STATIC_EXECUTABLES} CACHE BOOL
  "Link executables statically so that qemu-arm runs them without a sysroot")
if(QH_STATIC_EXECUTABLES)
  # glibc 2.34 and later carry the thread functions in libc itself, so a
  # static link needs no --whole-archive -lpthread workaround.
  set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
endif()

find_program(QH_QEMU_ARM qemu-arm)
if(QH_QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${QH_QEMU_ARM})
endif()

# The settings above reach CMake's own compiler checks as well.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QH_ARMHF_SYSROOT QH_STATIC_EXECUTABLES)

set(CMAKE_PROJECT_INCLUDE ${CMAKE_CURRENT_LIST_FILE})
