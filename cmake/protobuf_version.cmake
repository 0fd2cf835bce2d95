# QH_PROTOBUF_VERSION: the version of the protobuf headers the library is
# built against (the generated message headers work only with that release
# series, and the library needs its runtime). FindProtobuf reports it; a
# cross build that defines protobuf::libprotobuf by hand does not, so it is
# then read from the headers themselves.
if(Protobuf_VERSION)
  set(QH_PROTOBUF_VERSION ${Protobuf_VERSION})
else()
  get_target_property(_qh_pb_dirs protobuf::libprotobuf INTERFACE_INCLUDE_DIRECTORIES)
  set(_qh_pb_common "")
  foreach(_qh_pb_dir ${_qh_pb_dirs})
    if(NOT _qh_pb_common AND EXISTS ${_qh_pb_dir}/google/protobuf/stubs/common.h)
      set(_qh_pb_common ${_qh_pb_dir}/google/protobuf/stubs/common.h)
    endif()
  endforeach()
  if(NOT _qh_pb_common)
    message(FATAL_ERROR "cannot find google/protobuf/stubs/common.h in ${_qh_pb_dirs}")
  endif()
  file(STRINGS ${_qh_pb_common} _qh_pb_line REGEX "^#define GOOGLE_PROTOBUF_VERSION [0-9]+")
  string(REGEX REPLACE ".* ([0-9]+)$" "\\1" _qh_pb_number "${_qh_pb_line}")
  math(EXPR _qh_pb_major "${_qh_pb_number} / 1000000")
  math(EXPR _qh_pb_minor "${_qh_pb_number} / 1000 % 1000")
  math(EXPR _qh_pb_patch "${_qh_pb_number} % 1000")
  set(QH_PROTOBUF_VERSION ${_qh_pb_major}.${_qh_pb_minor}.${_qh_pb_patch})
endif()
# The release series consumers must use, MAJOR.MINOR, and the first one after
# it (for the pkg-config bound).
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" QH_PROTOBUF_SERIES "${QH_PROTOBUF_VERSION}")
math(EXPR _qh_pb_next "${CMAKE_MATCH_2} + 1")
set(QH_PROTOBUF_NEXT_SERIES ${CMAKE_MATCH_1}.${_qh_pb_next})
message(STATUS "quillheron: message code for protobuf ${QH_PROTOBUF_SERIES}.x (found ${QH_PROTOBUF_VERSION})")
