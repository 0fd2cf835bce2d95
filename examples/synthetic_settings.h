// Helpers for building synthetic settings messages: a deterministic noise
// source, 16-bit scaling, and coefficient tables designed with the library's
// own designers. Shared by the example generator and the benchmarks.
#ifndef QUILLHERON_EXAMPLES_SYNTHETIC_SETTINGS_H_
#define QUILLHERON_EXAMPLES_SYNTHETIC_SETTINGS_H_

#include <cmath>
#include <cstdint>
#include <vector>

#include "coefs.pb.h"
#include "quillheron_filterdesign.h"

namespace synthetic {

// A small deterministic generator, so generated settings are the same every time.
class Noise {
 public:
  double Next() {  // uniform in [-1, 1)
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state_ >> 11) / 4503599627370496.0 - 1.0;
  }

 private:
  std::uint64_t state_ = 0x5eed5eed5eedULL;
};

// v in [-1, 1] as a rounded, saturated 16-bit value.
inline std::int16_t ToInt16(double v) {
  v = std::round(v * 32767.0);
  return static_cast<std::int16_t>(std::fmax(-32768.0, std::fmin(32767.0, v)));
}

inline quill::pb::coef::CoefTable* AddTable(google::protobuf::RepeatedPtrField<quill::pb::coef::CoefTable>* tables,
                                            int rate) {
  quill::pb::coef::CoefTable* t = tables->Add();
  t->set_samplerate(rate);
  return t;
}

// Fills `t` with a fixed-point Butterworth design: coeff_16 when `sixteen`,
// else coeff_32. Returns the designer's result.
inline int ButterworthTable(quill::pb::coef::CoefTable* t, int rate, float cutoff, int order, int type,
                            bool sixteen) {
  const int sections = QH_IirSectionCount(order);
  std::vector<unsigned char> workspace(QH_IirDesignWorkspaceBytes(sections));
  int rc;
  if (sixteen) {
    std::vector<std::int16_t> w(QH_IirFixedLength(order));
    rc = OVA_IirFilterDesignFxp16(cutoff, order, rate, type, w.data(), workspace.data());
    for (std::int16_t v : w) t->add_coeff_16(v);
  } else {
    std::vector<std::int32_t> w(QH_IirFixedLength(order));
    rc = OVA_IirFilterDesignFxp32(cutoff, order, rate, type, w.data(), workspace.data());
    for (std::int32_t v : w) t->add_coeff_32(v);
  }
  return rc;
}

}  // namespace synthetic

#endif  // QUILLHERON_EXAMPLES_SYNTHETIC_SETTINGS_H_
