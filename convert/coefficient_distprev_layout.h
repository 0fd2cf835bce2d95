// Where each repeated list of the distortion-prevention messages lives in a
// quillMBHLDistprevCoeff record: one row per list, walked by both the loader
// and the reverse converter. Constant data; safe from any thread.
#ifndef QUILLHERON_CONVERT_COEFFICIENT_DISTPREV_LAYOUT_H_
#define QUILLHERON_CONVERT_COEFFICIENT_DISTPREV_LAYOUT_H_

#include <cstddef>

#include "coefMbhlDistPrev.pb.h"
#include "coefficient_io.h"
#include "quillHeronDistprev.h"

namespace quillheron {
namespace distprev {

using quill::pb::coef::distPrevNotchConfig;
using quill::pb::coef::distPrevSenseConfig;
using Record = quillMBHLDistprevCoeff;

// One repeated list of Msg and its native array: getter, mutable getter,
// byte offset inside the record, capacity in elements.
template <class Msg, class List>
struct ArrayRow {
  const List& (Msg::*get)() const;
  List* (Msg::*mut)();
  std::size_t offset;
  std::size_t capacity;
};

template <class Msg>
using Int32Row = ArrayRow<Msg, Int32List>;
template <class Msg>
using FloatRow = ArrayRow<Msg, FloatList>;

constexpr Int32Row<distPrevSenseConfig> kSenseInt32[] = {
    {&distPrevSenseConfig::bandsoscount, &distPrevSenseConfig::mutable_bandsoscount,
     offsetof(Record, sense_band_sos_count), 6},
    {&distPrevSenseConfig::bandcoeffs, &distPrevSenseConfig::mutable_bandcoeffs,
     offsetof(Record, sense_band_coeffs), 144},
};
constexpr FloatRow<distPrevSenseConfig> kSenseFloat[] = {
    {&distPrevSenseConfig::bandcoeffsfloat32, &distPrevSenseConfig::mutable_bandcoeffsfloat32,
     offsetof(Record, sense_band_coeffs_float32), 108},
};

constexpr Int32Row<distPrevNotchConfig> kNotchInt32[] = {
    {&distPrevNotchConfig::bandattenuationmax, &distPrevNotchConfig::mutable_bandattenuationmax,
     offsetof(Record, notch_band_attenuation_max), 6},
    {&distPrevNotchConfig::bandgainscalars, &distPrevNotchConfig::mutable_bandgainscalars,
     offsetof(Record, notch_band_gain_scalars), 6},
    {&distPrevNotchConfig::bandsoscount, &distPrevNotchConfig::mutable_bandsoscount,
     offsetof(Record, notch_band_sos_count), 6},
    {&distPrevNotchConfig::smoothers, &distPrevNotchConfig::mutable_smoothers,
     offsetof(Record, notch_smoothers), 9},
    {&distPrevNotchConfig::bandcoeffs, &distPrevNotchConfig::mutable_bandcoeffs,
     offsetof(Record, notch_band_coeffs), 144},
};
constexpr FloatRow<distPrevNotchConfig> kNotchFloat[] = {
    {&distPrevNotchConfig::bandcoeffsfloat32, &distPrevNotchConfig::mutable_bandcoeffsfloat32,
     offsetof(Record, notch_band_coeffs_float32), 108},
};

// The notch scalars, copied present or not.
struct ScalarRow {
  std::int32_t (distPrevNotchConfig::*get)() const;
  void (distPrevNotchConfig::*set)(std::int32_t);
  std::size_t offset;
};

constexpr ScalarRow kNotchScalars[] = {
    {&distPrevNotchConfig::mode, &distPrevNotchConfig::set_mode, offsetof(Record, notch_mode)},
    {&distPrevNotchConfig::thresholddb, &distPrevNotchConfig::set_thresholddb,
     offsetof(Record, notch_threshold_db)},
    {&distPrevNotchConfig::sensitivitydb, &distPrevNotchConfig::set_sensitivitydb,
     offsetof(Record, notch_sensitivity_db)},
    {&distPrevNotchConfig::bandcount, &distPrevNotchConfig::set_bandcount,
     offsetof(Record, notch_band_count)},
};

}  // namespace distprev
}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_COEFFICIENT_DISTPREV_LAYOUT_H_
