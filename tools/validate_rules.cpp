// The warning rules of `heron validate`, each a small named check over the
// settings at one rate (or once, for what does not depend on the rate).
// Capacities come from the record catalogue and gates from the driver
// itself; whether populate fails is not decided here (validate_populate.cpp).
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>

#include "QuillPb.h"
#include "QuillPb_identifiers.h"
#include "QuillPb_models.h"
#include "coefficient_io.h"
#include "postmix_steps.h"
#include "record_layout.h"
#include "validate_findings.h"
#include "validate_tables.h"

namespace heron_tool {
namespace {

using google::protobuf::Message;
using google::protobuf::RepeatedPtrField;
using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quillheron::CompareCI;
using quillheron::findCoefficients;

// Adds the warnings of one step.
struct Warner {
  const RuleContext& c;
  const char* step;
  void Add(const std::string& path, const std::string& what) const { c.Warn(path, step, what); }
};

using qh_catalogue::Capacity;
using qh_catalogue::kPostmix;
using qh_catalogue::kPostmixControl;
using qh_catalogue::kPremix;
using quillheron::CompareCI;
using quillheron::findCoefficients;

// Native capacities, from the record catalogue.
constexpr int kModeSlots = Capacity(kPostmixControl, "lyra_input_gain");
constexpr int kBypassModes = Capacity(kPostmixControl, "bypass_mode");
constexpr int kPremixBypassModes = Capacity(kPremix, "bypass_mode");
constexpr int kHtest = Capacity(kPostmixControl, "enhance2.htest");
constexpr int kPremixHtest = Capacity(kPremix, "enhance2.htest");
constexpr int kSuperStereoCoef = Capacity(kPostmixControl, "lyra.super_stereo_coef");
constexpr int kHpfCoeffs = Capacity(kPostmix, "hpf.coeffs");
constexpr int kBrioHpfCoeffs = Capacity(kPostmix, "brio_hpf.coeffs");
constexpr int kXoverLpf = Capacity(kPostmix, "brio_xover.lpf_coeffs");
constexpr int kXoverHpf = Capacity(kPostmix, "brio_xover.hpf_coeffs");
constexpr int kThumpxCoeffs = Capacity(kPostmix, "thumpx.coeffs");
constexpr int kMbhlLow = Capacity(kPostmix, "mbhl_coef.low_cross_coeffs");
constexpr int kMbhlMid = Capacity(kPostmix, "mbhl_coef.mid_cross_coeffs");
constexpr int kAeqIir = Capacity(kPostmix, "aeq.bank[0].iir_coeffs");
// Two leading values, then the two channel responses.
constexpr int kHpeqTapsPerChannel = (Capacity(kPostmix, "hpeq.coeffs") - 2) / 2;
static_assert(kModeSlots > 0 && kBypassModes > 0 && kPremixBypassModes > 0 && kHtest > 0 && kPremixHtest > 0 &&
                  kSuperStereoCoef > 0 && kHpfCoeffs > 0 && kBrioHpfCoeffs > 0 && kXoverLpf > 0 && kXoverHpf > 0 &&
                  kThumpxCoeffs > 0 && kMbhlLow > 0 && kMbhlMid > 0 && kAeqIir > 0 && kHpeqTapsPerChannel > 0,
              "every capacity names a catalogue field");

std::string StripBraces(const std::string& s) {
  if (s.size() >= 2 && s.front() == '{' && s.back() == '}') return s.substr(1, s.size() - 2);
  return s;
}

// 8-4-4-4-12 hexadecimal digits.
bool WellFormedIdentifier(const std::string& s) {
  if (s.size() != 36) return false;
  for (size_t i = 0; i < s.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    if (dash ? s[i] != '-' : !std::isxdigit(static_cast<unsigned char>(s[i]))) return false;
  }
  return true;
}

// Repeated fields the converter cuts at a native capacity; `consequence`
// defaults to "cut at <capacity>".
void CheckCount(const Warner& f, const std::string& path, int count, int capacity, const char* consequence = nullptr) {
  if (count > capacity) {
    f.Add(path, std::to_string(count) + " values, the native array holds " + std::to_string(capacity) + "; " +
                    (consequence ? consequence : "cut at " + std::to_string(capacity)));
  }
}

// The arrays of a precomputed distortion-prevention entry and their native capacities.
using quill::pb::coef::MbhlDistPrevCoeff;
struct DistPrevArray {
  const char* path;
  int (*count)(const MbhlDistPrevCoeff&);
  int capacity;
};
constexpr DistPrevArray kDistPrevArrays[] = {
    {"sense_config.bandSosCount", [](const MbhlDistPrevCoeff& e) { return e.sense_config().bandsoscount_size(); },
     Capacity(kPostmix, "dist_prev[0].sense_band_sos_count")},
    {"sense_config.bandCoeffs", [](const MbhlDistPrevCoeff& e) { return e.sense_config().bandcoeffs_size(); },
     Capacity(kPostmix, "dist_prev[0].sense_band_coeffs")},
    {"sense_config.bandCoeffsFloat32",
     [](const MbhlDistPrevCoeff& e) { return e.sense_config().bandcoeffsfloat32_size(); },
     Capacity(kPostmix, "dist_prev[0].sense_band_coeffs_float32")},
    {"notch_config.bandAttenuationMax",
     [](const MbhlDistPrevCoeff& e) { return e.notch_config().bandattenuationmax_size(); },
     Capacity(kPostmix, "dist_prev[0].notch_band_attenuation_max")},
    {"notch_config.bandGainScalars", [](const MbhlDistPrevCoeff& e) { return e.notch_config().bandgainscalars_size(); },
     Capacity(kPostmix, "dist_prev[0].notch_band_gain_scalars")},
    {"notch_config.bandSosCount", [](const MbhlDistPrevCoeff& e) { return e.notch_config().bandsoscount_size(); },
     Capacity(kPostmix, "dist_prev[0].notch_band_sos_count")},
    {"notch_config.smoothers", [](const MbhlDistPrevCoeff& e) { return e.notch_config().smoothers_size(); },
     Capacity(kPostmix, "dist_prev[0].notch_smoothers")},
    {"notch_config.bandCoeffs", [](const MbhlDistPrevCoeff& e) { return e.notch_config().bandcoeffs_size(); },
     Capacity(kPostmix, "dist_prev[0].notch_band_coeffs")},
    {"notch_config.bandCoeffsFloat32",
     [](const MbhlDistPrevCoeff& e) { return e.notch_config().bandcoeffsfloat32_size(); },
     Capacity(kPostmix, "dist_prev[0].notch_band_coeffs_float32")},
};
constexpr bool AllNamed(const DistPrevArray (&rows)[std::size(kDistPrevArrays)]) {
  for (const DistPrevArray& r : rows) {
    if (r.capacity <= 0) return false;
  }
  return true;
}
static_assert(AllNamed(kDistPrevArrays), "every distortion-prevention capacity names a catalogue field");
// Bands per design: the sense band arrays hold one entry per band.
constexpr int kDistPrevBands = Capacity(kPostmix, "dist_prev[0].sense_band_sos_count");

// Present message fields bound to the int16 fields of one block of `record`
// (its catalogue name prefix, e.g. "brio.ova3d."), whose values do not fit 16
// bits: populate keeps only the low 16 bits. Element k of an int16 array is
// the message field with k before the first underscore (band_gain[3]:
// band3_gain).
void CheckInt16(const Warner& f, const std::string& path, const Message& m, const qh_catalogue::RecordLayout& record,
                std::string_view block) {
  const auto* d = m.GetDescriptor();
  const auto* r = m.GetReflection();
  for (const qh_catalogue::FieldLayout& field : record) {
    const std::string_view name = field.name;
    if (field.type != qh_catalogue::ValueType::kInt16 || name.substr(0, block.size()) != block) continue;
    const std::string leaf(name.substr(block.size()));
    if (leaf.find('.') != std::string::npos) continue;  // a nested block
    for (uint32_t k = 0; k < field.count; ++k) {
      std::string message_name = leaf;
      if (field.count > 1) message_name.insert(std::min(leaf.find('_'), leaf.size()), std::to_string(k));
      const auto* fd = d->FindFieldByName(message_name);
      if (!fd || !r->HasField(m, fd)) continue;
      const int32_t v = r->GetInt32(m, fd);
      if (v < INT16_MIN || v > INT16_MAX) {
        f.Add(path + "." + message_name, std::to_string(v) + " does not fit the 16-bit native field (stored as " +
                                             std::to_string(static_cast<int16_t>(static_cast<uint16_t>(v))) + ")");
      }
    }
  }
}

void CheckTables(const Warner& f, const std::string& path, const RepeatedPtrField<CoefTable>& tables, int rate,
                 bool sixteen, int capacity) {
  const CoefTable* t = findCoefficients(tables, rate);
  if (!t) {
    f.Add(path, tables.empty() ? "no coefficient tables" : "no table for " + std::to_string(rate) + " Hz");
    return;
  }
  const int n = sixteen ? t->coeff_16_size() : t->coeff_32_size();
  if (n > capacity) {
    f.Add(path, "the " + std::to_string(rate) + " Hz table has " + std::to_string(n) + " values, the native array holds " +
                    std::to_string(capacity));
  }
  if (sixteen) {
    for (int v : t->coeff_16()) {
      if (v < -32768 || v > 32767) {
        f.Add(path, "coeff_16 value " + std::to_string(v) + " does not fit 16 bits");
        break;
      }
    }
  }
}

// Finds an entry by identifier the way the converter compares (case-blind,
// nothing stripped); reports near misses that differ only by braces.
template <typename Entries, typename Check>
void ResolveLocator(const Warner& f, const std::string& path, const std::string& uuid, const ModelSources& models,
                    Entries entries_of, const char* kind, Check check) {
  if (!uuid.empty() && !WellFormedIdentifier(uuid)) f.Add(path + ".uuid", "malformed identifier '" + uuid + "'");
  bool found = false, braces_only = false;
  for (const auto& [model, source] : models) {
    for (const auto& entry : entries_of(*model)) {
      if (CompareCI(entry.uuid(), uuid)) {
        if (!found) check(entry, source);
        found = true;
      } else if (CompareCI(StripBraces(entry.uuid()), StripBraces(uuid))) {
        braces_only = true;
      }
    }
  }
  if (!found) {
    f.Add(path + ".uuid", braces_only ? std::string("'") + uuid + "' matches a " + kind +
                                            " only when braces are ignored; the converter compares them as they stand"
                                      : std::string("'") + uuid + "' matches no " + kind + " of the listening models");
  }
}

void CheckModels(const Warner& f, const ModelSources& models) {
  for (const auto& [model, source] : models) {
    auto check_id = [&](const std::string& what, int i, const std::string& uuid) {
      if (!WellFormedIdentifier(uuid)) {
        f.Add(source + ": " + what + "[" + std::to_string(i) + "].uuid", "malformed identifier '" + uuid + "'");
      }
    };
    for (int i = 0; i < model->rooms_size(); ++i) check_id("rooms", i, model->rooms(i).uuid());
    for (int i = 0; i < model->headphones_size(); ++i) check_id("headphones", i, model->headphones(i).uuid());
    for (int i = 0; i < model->aeqs_size(); ++i) check_id("aeqs", i, model->aeqs(i).uuid());
  }
}

// Premix lists longer than their native arrays, int16 fields that do not fit.
void PremixFields(const RuleContext& c) {
  const Warner f{c, "premix"};
  const HeronSettings& s = c.settings;
  const auto& pre = s.premix();
  CheckCount(f, "premix.bypass_mode", pre.bypass_mode_size(), kPremixBypassModes, "the rest is ignored");
  if (pre.has_enhance2()) {
    CheckCount(f, "premix.enhance2.htest", pre.enhance2().htest_size(), kPremixHtest, "the rest is ignored");
    CheckCount(f, "premix.enhance2.ref_htest", pre.enhance2().ref_htest_size(), kPremixHtest, "the rest is ignored");
  }
  if (pre.has_steady()) CheckInt16(f, "premix.steady", pre.steady(), kPremix, "steady.");
}

// Postmix control lists longer than their native arrays.
void ControlArrayLengths(const RuleContext& c) {
  const Warner f{c, "control"};
  const Postmix& p = c.settings.postmix();
  const std::string pm = "postmix";
  CheckCount(f, pm + ".lyra_input_gain", p.lyra_input_gain_size(), kModeSlots, "the rest is ignored");
  CheckCount(f, pm + ".bypass_hpeq", p.bypass_hpeq_size(), kModeSlots, "the rest is ignored");
  CheckCount(f, pm + ".aeq_enable", p.aeq_enable_size(), kModeSlots, "the rest is ignored");
  CheckCount(f, pm + ".bypass_mode", p.bypass_mode_size(), kBypassModes, "the rest is ignored");
  if (p.has_enhance2()) {
    CheckCount(f, pm + ".enhance2.htest", p.enhance2().htest_size(), kHtest, "the rest is ignored");
    CheckCount(f, pm + ".enhance2.ref_htest", p.enhance2().ref_htest_size(), kHtest, "the rest is ignored");
    for (int v : p.enhance2().ref_htest()) {
      if (v < 0) {
        f.Add(pm + ".enhance2.ref_htest", "a negative value fails the postmix populate (-997)");
        break;
      }
    }
  }
}

// Postmix int16 fields that do not fit 16 bits.
void ControlInt16Fields(const RuleContext& c) {
  const Warner f{c, "control"};
  const Postmix& p = c.settings.postmix();
  const std::string pm = "postmix";
  if (p.has_brio()) {
    const auto& b = p.brio();
    CheckInt16(f, pm + ".brio", b, kPostmixControl, "brio.");
    if (b.has_ova3d()) {
      CheckInt16(f, pm + ".brio.ova3d", b.ova3d(), kPostmixControl, "brio.ova3d.");
    }
    if (b.has_vista()) {
      CheckInt16(f, pm + ".brio.vista", b.vista(), kPostmixControl, "brio.vista.");
    }
    if (b.has_thumpx()) CheckInt16(f, pm + ".brio.thumpx", b.thumpx(), kPostmixControl, "brio.thumpx.");
  }
  if (p.has_geq10b()) {
    CheckInt16(f, pm + ".geq10b", p.geq10b(), kPostmixControl, "geq10b.");
  }
  if (p.has_aeq()) CheckInt16(f, pm + ".aeq", p.aeq(), kPostmixControl, "aeq.");
  if (p.has_mbhl()) CheckInt16(f, pm + ".mbhl", p.mbhl(), kPostmixControl, "mbhl.");
}

// Lyra super-stereo coefficients: all four or none are copied.
void SuperStereoCoefficients(const RuleContext& c) {
  const Warner f{c, "control"};
  const Postmix& p = c.settings.postmix();
  const std::string pm = "postmix";
  if (p.has_lyra() && p.lyra().super_stereo_coef_size() != 0 &&
      p.lyra().super_stereo_coef_size() != kSuperStereoCoef) {
    f.Add(pm + ".lyra.super_stereo_coef", std::to_string(p.lyra().super_stereo_coef_size()) +
                                              " values; only exactly " + std::to_string(kSuperStereoCoef) +
                                              " are copied, so none is");
  }
}

// The output high-pass table for the rate.
void OutputHighPassTable(const RuleContext& c) {
  const Warner f{c, "output_hpf"};
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  if (p.has_hpf_coef()) {
    const CoefTable* t = findCoefficients(p.hpf_coef().coeffs(), rate);
    if (!t) {
      f.Add(pm + ".hpf_coef.coeffs", "no table for " + std::to_string(rate) + " Hz");
    } else if (t->coeff_32_size() > kHpfCoeffs) {
      f.Add(pm + ".hpf_coef.coeffs", "the " + std::to_string(rate) + " Hz table has " +
                                         std::to_string(t->coeff_32_size()) + " values (at most " +
                                         std::to_string(kHpfCoeffs) + "): nothing is copied");
    }
  }
}

// The Brio high-pass table for the rate.
void BrioHighPassTable(const RuleContext& c) {
  const Warner f{c, "brio_hpf"};
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  if (p.has_brio_hpf_coef() && p.brio_hpf_coef().order() != 0) {
    const auto& tables = p.brio_hpf_coef().hpf_coeffs();
    CheckTables(f, pm + ".brio_hpf_coef.hpf_coeffs", tables, rate, true, kBrioHpfCoeffs);
    const CoefTable* t = findCoefficients(tables, rate);
    if (t && t->coeff_16_size() == 0 && t->coeff_32_size() > 0) {
      f.Add(pm + ".brio_hpf_coef.hpf_coeffs", "the " + std::to_string(rate) +
                                                  " Hz table holds only coeff_32; the Brio high-pass loads coeff_16, so "
                                                  "nothing is copied");
    }
  }
}

// The Brio crossover tables for the rate.
void BrioCrossoverTables(const RuleContext& c) {
  const Warner f{c, "brio_crossover"};
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  if (p.has_brio_xover_coef()) {
    CheckTables(f, pm + ".brio_xover_coef.lpf_coeffs", p.brio_xover_coef().lpf_coeffs(), rate, true, kXoverLpf);
    CheckTables(f, pm + ".brio_xover_coef.hpf_coeffs", p.brio_xover_coef().hpf_coeffs(), rate, true, kXoverHpf);
  }
}

// Bass-enhancement tables or design parameters, behind the driver's own gate.
void ThumpxCoefficients(const RuleContext& c) {
  const Warner f{c, "thumpx"};
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  // The driver's own gate decides whether the Thumpx coefficients are read.
  const QuillTraceReason thumpx_gate = quillheron::thumpxGate(p);
  if (thumpx_gate == QUILL_REASON_SPEAKER_SIZE) {
    f.Add(pm + ".brio.thumpx.speaker_size",
          std::to_string(p.brio().thumpx().speaker_size()) + " is not " +
              std::to_string(QUILL_THUMPX_COEFF_SPEAKER_SIZE) +
              " while Thumpx coefficients are present: the coefficients are never loaded");
  } else if (thumpx_gate == QUILL_REASON_NONE) {
    const auto& tc = p.thumpx_coef();
    if (tc.coeffs_size() > 0) {
      CheckTables(f, pm + ".thumpx_coef.coeffs", tc.coeffs(), rate, false, kThumpxCoeffs);
      for (int i = 0; i < tc.coeffs_size(); ++i) {
        if (tc.coeffs(i).samplerate() != rate) {
          f.Add(pm + ".thumpx_coef.coeffs[" + std::to_string(i) + "]",
                "a table for " + std::to_string(tc.coeffs(i).samplerate()) + " Hz makes the Thumpx load fail (-998) at " +
                    std::to_string(rate) + " Hz even when a matching table is copied");
        }
      }
    } else if (!tc.has_filterdesignparams()) {
      f.Add(pm + ".thumpx_coef", "neither tables nor filterDesignParams: the Thumpx load fails (-998)");
    } else if (tc.filterdesignparams().sampling_rate() != rate) {
      f.Add(pm + ".thumpx_coef.filterDesignParams.sampling_rate",
            std::to_string(tc.filterdesignparams().sampling_rate()) + " is not " + std::to_string(rate) +
                ": the Thumpx design fails (-998)");
    }
  }
}

// Limiter crossover tables or design parameters.
void MbhlCrossovers(const RuleContext& c) {
  const Warner f{c, "mbhl_crossover"};
  const Postmix& p = c.settings.postmix();
  const HeronSettings& s = c.settings;
  const int rate = c.rate;
  const std::string pm = "postmix";
  if (quillheron::mbhlGate(p) == QUILL_REASON_NONE) {
    if (p.has_mbhl_coef()) {
      const auto& mc = p.mbhl_coef();
      for (const auto& [name, table, present, capacity] :
           {std::make_tuple("low_cross_coeffs", &mc.low_cross_coeffs(), mc.has_low_cross_coeffs(), kMbhlLow),
            std::make_tuple("mid_cross_coeffs", &mc.mid_cross_coeffs(), mc.has_mid_cross_coeffs(), kMbhlMid)}) {
        const std::string path = pm + ".mbhl_coef." + name;
        if (!present) {
          f.Add(path, "missing: the MBHL load fails (-998)");
        } else if (table->samplerate() != rate) {
          f.Add(path, "a table for " + std::to_string(table->samplerate()) + " Hz, not " + std::to_string(rate) + " Hz");
        } else {
          CheckCount(f, path + ".coeff_32", table->coeff_32_size(), capacity);
        }
      }
    } else {
      const auto& dp = s.designerparameters().mbhl_design_params();
      if (!s.designerparameters().has_mbhl_design_params() || !dp.has_custom_low_cross() ||
          !dp.has_custom_mid_cross()) {
        f.Add("DesignerParameters.mbhl_design_params",
              "no mbhl_coef and no complete crossover design parameters: the MBHL load fails (-998)");
      } else if (dp.sampling_rate() != rate) {
        f.Add("DesignerParameters.mbhl_design_params.sampling_rate",
              std::to_string(dp.sampling_rate()) + " is not " + std::to_string(rate) + ": the MBHL design fails (-998)");
      }
    }
  }
}

// Distortion-prevention records or design parameters.
void DistortionPrevention(const RuleContext& c) {
  const Warner f{c, "distortion_prevention"};
  const Postmix& p = c.settings.postmix();
  const HeronSettings& s = c.settings;
  const std::string pm = "postmix";
  if (quillheron::mbhlGate(p) == QUILL_REASON_NONE) {
    if (quillheron::distPrevGate(p) == QUILL_REASON_NONE) {
      if (p.mbhl_dist_prev_size() == 2) {
        for (int i = 0; i < 2; ++i) {
          const std::string path = pm + ".mbhl_dist_prev[" + std::to_string(i) + "].";
          for (const DistPrevArray& a : kDistPrevArrays) {
            CheckCount(f, path + a.path, a.count(p.mbhl_dist_prev(i)), a.capacity);
          }
        }
      } else if (s.designerparameters().mbhl_nf_design_params_size() != 2) {
        f.Add("DesignerParameters.mbhl_nf_design_params",
              std::to_string(s.designerparameters().mbhl_nf_design_params_size()) +
                  " entries and no two precomputed designs: distortion prevention fails (-998)");
      }
    }
  }
}

// Notch band counts the designer cuts.
void NotchBandCounts(const RuleContext& c) {
  const Warner f{c, "distortion_prevention"};
  const HeronSettings& s = c.settings;
  for (int i = 0; i < s.designerparameters().mbhl_nf_design_params_size(); ++i) {
    const int ct = s.designerparameters().mbhl_nf_design_params(i).nf_band_ct();
    if (ct < 0 || ct > kDistPrevBands) {
      f.Add("DesignerParameters.mbhl_nf_design_params[" + std::to_string(i) + "].nf_band_ct",
            std::to_string(ct) + " is outside 0 to " + std::to_string(kDistPrevBands) + " (designs are cut at " +
                std::to_string(kDistPrevBands) + " bands)");
    }
  }
}

// Room locators: resolved, with a table for the rate, fitting their region.
void RoomLocators(const RuleContext& c) {
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  // Listening-model references.
  struct RoomList {
    const char* step;
    const char* name;
    const RepeatedPtrField<quill::pb::hub::ResourceLocator>* locators;
    unsigned int capacity;
  };
  const RoomList rooms[] = {
      {"wide_room", "wideRoom", &p.wideroom(), qh_catalogue::RegionForStep(QUILL_STEP_WIDE_ROOM)->bytes},
      {"front_room", "frontRoom", &p.frontroom(), qh_catalogue::RegionForStep(QUILL_STEP_FRONT_ROOM)->bytes},
      {"multichannel_room", "multichRoom", &p.multichroom(),
       qh_catalogue::RegionForStep(QUILL_STEP_MULTICHANNEL_ROOM)->bytes}};
  for (const RoomList& list : rooms) {
    const Warner f{c, list.step};
    for (int i = 0; i < list.locators->size(); ++i) {
      const std::string path = pm + "." + list.name + "[" + std::to_string(i) + "]";
      ResolveLocator(
          f, path, list.locators->Get(i).uuid(), c.models, [](const auto& m) -> const auto& { return m.rooms(); }, "room",
          [&](const quill::pb::model::roomModel& room, const std::string& source) {
            const unsigned int bytes = QuillPb::sizeofRoom(&room, rate);
            if (bytes == 0) {
              f.Add(path, "room '" + room.uuid() + "' in " + source + " has no table for " + std::to_string(rate) + " Hz");
            } else if (bytes > list.capacity) {
              f.Add(path, "room '" + room.uuid() + "' needs " + std::to_string(bytes) + " bytes, its region holds " +
                              std::to_string(list.capacity) + " (-997)");
            }
          });
    }
  }
}

// Headphone-EQ locators.
void HeadphoneEqLocators(const RuleContext& c) {
  const Warner f{c, "headphone_eq"};
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  for (int i = 0; i < p.hpeqcoef_size(); ++i) {
    const std::string path = pm + ".hpeqCoef[" + std::to_string(i) + "]";
    ResolveLocator(
        f, path, p.hpeqcoef(i).uuid(), c.models, [](const auto& m) -> const auto& { return m.headphones(); },
        "headphone EQ", [&](const quill::pb::model::headphoneEq& eq, const std::string& source) {
          if (!quillheron::servesRoute(eq, c.route)) {
            f.Add(path, "headphone EQ '" + eq.uuid() + "' in " + source + " is not listed for route " +
                            quill::pb::hub::AudioRoute_Name(c.route));
          } else if (QuillPb::sizeofHpeq(&eq, rate) == 0) {
            f.Add(path, "headphone EQ '" + eq.uuid() + "' has no table for " + std::to_string(rate) + " Hz");
          } else if (eq.ihpirlength() > static_cast<unsigned>(kHpeqTapsPerChannel)) {
            f.Add(path, "headphone EQ '" + eq.uuid() + "' has ihpirLength " + std::to_string(eq.ihpirlength()) +
                            ": each channel is cut to " + std::to_string(kHpeqTapsPerChannel) + " taps");
          }
        });
  }
}

// AEQ locators: two banks with a table for the rate.
void AeqLocators(const RuleContext& c) {
  const Warner f{c, "aeq"};
  const Postmix& p = c.settings.postmix();
  const int rate = c.rate;
  const std::string pm = "postmix";
  for (int i = 0; i < p.aeqcoef_size(); ++i) {
    const std::string path = pm + ".aeqCoef[" + std::to_string(i) + "]";
    ResolveLocator(
        f, path, p.aeqcoef(i).uuid(), c.models, [](const auto& m) -> const auto& { return m.aeqs(); }, "AEQ",
        [&](const quill::pb::coef::Aeq& aeq, const std::string& source) {
          if (!quillheron::servesRoute(aeq, c.route)) {
            f.Add(path, "AEQ '" + aeq.uuid() + "' in " + source + " is not listed for route " +
                            quill::pb::hub::AudioRoute_Name(c.route));
            return;
          }
          int usable = 0;
          for (int b = 0; b < aeq.coefficient_table_size(); ++b) {
            const auto& bank = aeq.coefficient_table(b);
            const CoefTable* t = findCoefficients(bank.iircoefs(), rate);
            usable += t != nullptr;
            if (t && t->coeff_32_size() > kAeqIir) {
              f.Add(path, "AEQ '" + aeq.uuid() + "' bank " + std::to_string(b) + " has " +
                              std::to_string(t->coeff_32_size()) + " IIR values, the native bank holds " +
                              std::to_string(kAeqIir));
            }
          }
          if (usable < 2) {
            f.Add(path, "AEQ '" + aeq.uuid() + "' has " + std::to_string(usable) + " filter banks with a table for " +
                            std::to_string(rate) + " Hz; two are needed (-998)");
          }
        });
  }
}

// Identifiers of the listening models.
void ModelIdentifiers(const RuleContext& c) {
  const Warner f{c, "models"};
  CheckModels(f, c.models);
}

// Per-mode arrays given with fewer values than slots: the slots past the list
// keep what the record held (zero in a fresh record: a gain of 0 silences).
void ShortControlArrays(const RuleContext& c) {
  const Postmix& p = c.settings.postmix();
  const struct {
    const char* name;
    int count;
  } kArrays[] = {{"lyra_input_gain", p.lyra_input_gain_size()},
                 {"bypass_hpeq", p.bypass_hpeq_size()},
                 {"aeq_enable", p.aeq_enable_size()}};
  for (const auto& a : kArrays) {
    if (a.count > 0 && a.count < kModeSlots) {
      c.Warn("postmix." + std::string(a.name), "control",
             std::to_string(a.count) + " values for " + std::to_string(kModeSlots) + " mode slots: slots " +
                 std::to_string(a.count) + " to " + std::to_string(kModeSlots - 1) +
                 " keep what the record held (0 in a fresh record)");
    }
  }
}

std::string FloatText(float v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g", static_cast<double>(v));
  return buf;
}

// Notch design values the designer takes as given but a person did not mean:
// a base Q or attack/release time that is not positive. A field left out
// reads 0 in the design block (not the message's default).
void NotchDesignParameters(const RuleContext& c) {
  const auto& list = c.settings.designerparameters().mbhl_nf_design_params();
  for (int i = 0; i < list.size(); ++i) {
    const auto& n = list.Get(i);
    const std::string path = "DesignerParameters.mbhl_nf_design_params[" + std::to_string(i) + "].";
    const struct {
      const char* name;
      bool present;
      float value;
    } kValues[] = {{"nf_base_q", n.has_nf_base_q(), n.nf_base_q()},
                   {"nf_attk_ms", n.has_nf_attk_ms(), n.nf_attk_ms()},
                   {"nf_rel_ms", n.has_nf_rel_ms(), n.nf_rel_ms()}};
    for (const auto& v : kValues) {
      const float used = v.present ? v.value : 0.0f;
      if (used > 0) continue;
      c.Warn(path + v.name, "distortion_prevention",
             v.present ? FloatText(used) + " is not positive: the design divides by it"
                       : std::string("absent: the design block reads 0, not the message default"));
    }
  }
}

}  // namespace

const std::vector<Rule>& ValidateRules() {
  static const std::vector<Rule> kRules = {
      {"premix fields", false, PremixFields},
      {"control array lengths", false, ControlArrayLengths},
      {"control arrays shorter than their slots", false, ShortControlArrays},
      {"control int16 fields", false, ControlInt16Fields},
      {"super-stereo coefficients", false, SuperStereoCoefficients},
      {"notch band counts", false, NotchBandCounts},
      {"notch design parameters", false, NotchDesignParameters},
      {"listening-model identifiers", false, ModelIdentifiers},
      {"output high-pass table", true, OutputHighPassTable},
      {"Brio high-pass table", true, BrioHighPassTable},
      {"Brio crossover tables", true, BrioCrossoverTables},
      {"bass-enhancement coefficients", true, ThumpxCoefficients},
      {"limiter crossovers", true, MbhlCrossovers},
      {"distortion prevention", true, DistortionPrevention},
      {"room locators", true, RoomLocators},
      {"headphone-EQ locators", true, HeadphoneEqLocators},
      {"AEQ locators", true, AeqLocators},
      {"frequencies at or above half the rate", true, HalfRateFrequencies},
      {"table lengths against their order", true, TableLengths},
      {"quantised tables that are unstable or marginal", true, TableStability},
      {"tables against what they are designed from", true, StaleTables},
      {"widths of one table that disagree", true, TableWidths},
  };
  return kRules;
}

}  // namespace heron_tool
