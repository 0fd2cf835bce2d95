// Field-by-field differences between two settings messages of one type,
// and between two native records of one kind.
#ifndef QUILLHERON_TOOLS_DIFF_SETTINGS_H_
#define QUILLHERON_TOOLS_DIFF_SETTINGS_H_

#include <cstdint>
#include <string>
#include <vector>

#include <google/protobuf/message.h>

namespace heron_tool {

struct Difference {
  std::string kind;  // "modified", "added" or "deleted"
  std::string path;  // "postmix.lyra_input_gain[3]", "front_room.coeffs[512..515]"
  std::string old_value, new_value;  // text format; empty for the side that has none
  int64_t offset = -1;               // records only: byte offset of the first element
};

// Every field that differs, walked by protobuf's MessageDifferencer.
// REQUIRES: a and b of the same type.
std::vector<Difference> DiffMessages(const google::protobuf::Message& a, const google::protobuf::Message& b);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DIFF_SETTINGS_H_
