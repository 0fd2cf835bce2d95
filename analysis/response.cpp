#include "response.h"

#include <cmath>

namespace quillheron::analysis {
namespace {

using Complex = std::complex<double>;

// c0 + c1 e^{-jw} + c2 e^{-2jw}, and the sum weighted by the delay k.
struct Polynomial {
  Complex value;
  Complex weighted;
};

Polynomial AtFrequency(double c0, double c1, double c2, double w) {
  const Complex z1 = std::polar(1.0, -w), z2 = std::polar(1.0, -2 * w);
  return {c0 + c1 * z1 + c2 * z2, c1 * z1 + 2.0 * c2 * z2};
}

// Group delay of one polynomial in samples: Re(sum k c_k e^{-jwk} / sum c_k e^{-jwk}).
double Delay(const Polynomial& p) {
  if (p.value == Complex(0, 0)) return std::nan("");
  return (p.weighted / p.value).real();
}

}  // namespace

std::vector<double> LogGrid(double low, double high, int n) {
  std::vector<double> grid(n);
  const double step = std::log(high / low) / (n - 1);
  for (int i = 0; i < n; ++i) grid[i] = low * std::exp(step * i);
  grid[n - 1] = high;
  return grid;
}

Complex Evaluate(const Cascade& cascade, double hz, double rate) {
  const double w = 2 * M_PI * hz / rate;
  Complex h = cascade.gain;
  for (const Section& s : cascade.sections) {
    h *= AtFrequency(s.b0, s.b1, s.b2, w).value / AtFrequency(1.0, -s.a1, -s.a2, w).value;
  }
  return h;
}

std::vector<ResponsePoint> Response(const Cascade& cascade, double rate, const std::vector<double>& hz) {
  std::vector<ResponsePoint> out;
  out.reserve(hz.size());
  for (double f : hz) {
    const double w = 2 * M_PI * f / rate;
    Complex h = cascade.gain;
    double delay = 0;
    for (const Section& s : cascade.sections) {
      const Polynomial b = AtFrequency(s.b0, s.b1, s.b2, w);
      const Polynomial a = AtFrequency(1.0, -s.a1, -s.a2, w);
      h *= b.value / a.value;
      delay += Delay(b) - Delay(a);
    }
    out.push_back({f, 20 * std::log10(std::abs(h)), std::arg(h), delay});
  }
  return out;
}

}  // namespace quillheron::analysis
