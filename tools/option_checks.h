// Checks on option values shared by several subcommands.
#ifndef QUILLHERON_TOOLS_OPTION_CHECKS_H_
#define QUILLHERON_TOOLS_OPTION_CHECKS_H_

#include <CLI/CLI.hpp>

namespace heron_tool {

// A sample rate: a positive whole number of Hz.
CLI::Validator PositiveRate();

// The library reads only the room bits 2 (wide), 4 (front) and 8
// (multichannel) of a room mask and ignores the others; a mask with other
// bits set is passed on as it is, with a note on stderr naming them.
void NoteIgnoredRoomBits(int room_mask);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_OPTION_CHECKS_H_
