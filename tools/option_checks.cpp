#include "option_checks.h"

#include <cstdio>
#include <string>

namespace heron_tool {

CLI::Validator PositiveRate() {
  return CLI::Validator(
      [](std::string& value) -> std::string {
        try {
          size_t used = 0;
          const long hz = std::stol(value, &used);
          if (used == value.size() && hz > 0) return "";
        } catch (const std::exception&) {
        }
        return "must be a positive number of Hz, not '" + value + "'";
      },
      "HZ>0");
}

void NoteIgnoredRoomBits(int room_mask) {
  constexpr unsigned kRoomBits = 2 | 4 | 8;
  const unsigned ignored = static_cast<unsigned>(room_mask) & ~kRoomBits;
  if (ignored == 0) return;
  // A few bits by value, many as one mask (-1 sets 29 ignored bits).
  std::string bits;
  int count = 0;
  for (int bit = 0; bit < 32; ++bit) {
    if ((ignored >> bit & 1u) == 0) continue;
    bits += (count++ == 0 ? "" : ", ") + std::to_string(1ull << bit);
  }
  char mask[16];
  std::snprintf(mask, sizeof mask, "0x%x", ignored);
  std::fprintf(stderr,
               "heron: --room-mask %d: only the bits 2 (wide), 4 (front) and 8 (multichannel) select rooms; "
               "ignored: %s\n",
               room_mask, count <= 4 ? (bits + " (" + mask + ")").c_str() : mask);
}

}  // namespace heron_tool
