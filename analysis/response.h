// Frequency response of a biquad cascade: complex value, magnitude in dB,
// phase and group delay, at given frequencies or on a log-spaced grid.
#ifndef QUILLHERON_ANALYSIS_RESPONSE_H_
#define QUILLHERON_ANALYSIS_RESPONSE_H_

#include <complex>
#include <vector>

#include "cascade.h"

namespace quillheron::analysis {

struct ResponsePoint {
  double hz = 0;
  double magnitude_db = 0;  // 20 log10 |H|; -inf at an exact zero
  double phase = 0;         // arg H in radians, in (-pi, pi]
  double group_delay = 0;   // samples; NaN where a zero lies on the unit circle
};

// n points from `low` to `high` Hz (both included), evenly spaced in log frequency.
// REQUIRES: 0 < low < high, n >= 2.
std::vector<double> LogGrid(double low, double high, int n);

// gain * prod_s H_s(e^{j 2 pi hz / rate}).
std::complex<double> Evaluate(const Cascade& cascade, double hz, double rate);

std::vector<ResponsePoint> Response(const Cascade& cascade, double rate, const std::vector<double>& hz);

}  // namespace quillheron::analysis

#endif  // QUILLHERON_ANALYSIS_RESPONSE_H_
