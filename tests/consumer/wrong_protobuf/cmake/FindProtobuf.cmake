# Stands in for a protobuf installation of another release series.
set(Protobuf_FOUND TRUE)
set(Protobuf_VERSION 4.25.3)
if(NOT TARGET protobuf::libprotobuf)
  add_library(protobuf::libprotobuf INTERFACE IMPORTED)
endif()
