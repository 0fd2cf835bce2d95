// designer_sweep: runs every filter designer over a fixed grid of parameters
// and writes all results, as little-endian bytes, to one file (plus an index
// of the cases). Built for the build machine and for 32-bit Arm; the two files
// must be identical byte for byte, since coefficients designed on a device
// must equal those authored elsewhere.
//
// usage: designer_sweep OUTPUT_FILE
//
// Every output buffer is pre-filled with a fixed byte pattern and every
// workspace is zeroed before a call, so words a designer leaves alone compare
// equal too; result codes are part of the output.
#include <cstdio>

#include "sweep_cases.h"
#include "sweep_sink.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUTPUT_FILE\n", argv[0]);
    return 2;
  }
  qh_identity::SweepSink sink;
  qh_identity::SweepIirCore(sink);
  qh_identity::SweepButterworth(sink);
  qh_identity::SweepParametricEq(sink);
  qh_identity::SweepThumpx(sink);
  qh_identity::SweepCrossover(sink);
  qh_identity::SweepDistprev(sink);
  if (!sink.Write(argv[1])) {
    std::fprintf(stderr, "%s: cannot write %s\n", argv[0], argv[1]);
    return 1;
  }
  std::printf("designer_sweep: %d cases, %zu bytes\n", sink.cases(), sink.size());
  return 0;
}
