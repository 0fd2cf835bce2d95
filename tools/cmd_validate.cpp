// heron validate: lint a route before it ships. Lists every place where a
// message is outside what the engine accepts, or where populate would
// silently do less than the author probably meant.
#include <cctype>
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "QuillPb.h"
#include "commands.h"
#include "model_inputs.h"
#include "option_checks.h"
#include "quillHeronCoeffRecords.h"

namespace heron_tool {
namespace {

using google::protobuf::Message;
using google::protobuf::RepeatedPtrField;
using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;

struct ValidateOptions {
  std::string route;
  int rate = 48000;
  std::vector<std::string> models;
  std::string input_format;
};

class Findings {
 public:
  void Add(const std::string& path, const std::string& what) { lines_.push_back(path + ": " + what); }
  const std::vector<std::string>& lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

std::string Upper(const std::string& s) {
  std::string out = s;
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

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

// Repeated fields the converter cuts at a native capacity.
void CheckCount(Findings& f, const std::string& path, int count, int capacity, const char* consequence) {
  if (count > capacity) {
    f.Add(path, std::to_string(count) + " values, the native array holds " + std::to_string(capacity) + "; " +
                    consequence);
  }
}

// Present int16-bound fields (by name, through reflection) whose values do
// not fit 16 bits: populate keeps only the low 16 bits.
void CheckInt16(Findings& f, const std::string& path, const Message& m, std::initializer_list<const char*> names) {
  const auto* d = m.GetDescriptor();
  const auto* r = m.GetReflection();
  for (const char* name : names) {
    const auto* field = d->FindFieldByName(name);
    if (!field || !r->HasField(m, field)) continue;
    const int32_t v = r->GetInt32(m, field);
    if (v < -32768 || v > 32767) {
      f.Add(path + "." + name, std::to_string(v) + " does not fit the 16-bit native field (stored as " +
                                   std::to_string(static_cast<int16_t>(static_cast<uint16_t>(v))) + ")");
    }
  }
}

const CoefTable* TableForRate(const RepeatedPtrField<CoefTable>& tables, int rate) {
  for (const CoefTable& t : tables) {
    if (t.has_samplerate() && t.samplerate() == rate) return &t;
  }
  return nullptr;
}

void CheckTables(Findings& f, const std::string& path, const RepeatedPtrField<CoefTable>& tables, int rate,
                 bool sixteen, int capacity) {
  const CoefTable* t = TableForRate(tables, rate);
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

struct Models {
  std::vector<std::pair<const quill::pb::model::listeningModel*, std::string>> list;
};

// Finds an entry by identifier the way the converter compares (case-blind,
// nothing stripped); reports near misses that differ only by braces.
template <typename Entries, typename Check>
void ResolveLocator(Findings& f, const std::string& path, const std::string& uuid, const Models& models,
                    Entries entries_of, const char* kind, Check check) {
  if (!uuid.empty() && !WellFormedIdentifier(uuid)) f.Add(path + ".uuid", "malformed identifier '" + uuid + "'");
  bool found = false, braces_only = false;
  for (const auto& [model, source] : models.list) {
    for (const auto& entry : entries_of(*model)) {
      if (Upper(entry.uuid()) == Upper(uuid)) {
        if (!found) check(entry, source);
        found = true;
      } else if (Upper(StripBraces(entry.uuid())) == Upper(StripBraces(uuid))) {
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

bool ListedForRoute(const RepeatedPtrField<quill::pb::hub::AudioRouteInfo>& infos, quill::pb::hub::AudioRoute route) {
  if (infos.empty()) return true;
  for (const auto& info : infos) {
    if (info.route() == route) return true;
  }
  return false;
}

void CheckModels(Findings& f, const Models& models) {
  for (const auto& [model, source] : models.list) {
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

void CheckPostmix(Findings& f, const HeronSettings& s, quill::pb::hub::AudioRoute route, int rate,
                  const Models& models) {
  const Postmix& p = s.postmix();
  const std::string pm = "postmix";
  CheckCount(f, pm + ".lyra_input_gain", p.lyra_input_gain_size(), 6, "the rest is ignored");
  CheckCount(f, pm + ".bypass_hpeq", p.bypass_hpeq_size(), 6, "the rest is ignored");
  CheckCount(f, pm + ".aeq_enable", p.aeq_enable_size(), 6, "the rest is ignored");
  CheckCount(f, pm + ".bypass_mode", p.bypass_mode_size(), 5, "the rest is ignored");
  if (p.has_enhance2()) {
    CheckCount(f, pm + ".enhance2.htest", p.enhance2().htest_size(), 7, "the rest is ignored");
    CheckCount(f, pm + ".enhance2.ref_htest", p.enhance2().ref_htest_size(), 7, "the rest is ignored");
    for (int v : p.enhance2().ref_htest()) {
      if (v < 0) {
        f.Add(pm + ".enhance2.ref_htest", "a negative value fails the postmix populate (-997)");
        break;
      }
    }
  }
  if (p.has_brio()) {
    const auto& b = p.brio();
    CheckInt16(f, pm + ".brio", b, {"input_gain", "output_gain", "bypass_gain", "def_level", "focus_level"});
    if (b.has_ova3d()) {
      CheckInt16(f, pm + ".brio.ova3d", b.ova3d(),
                 {"input_gain", "output_gain", "bypass_gain", "space_level", "center_level"});
    }
    if (b.has_vista()) {
      CheckInt16(f, pm + ".brio.vista", b.vista(),
                 {"input_gain", "bypass_gain", "center_boost_level", "speaker_separation_level"});
    }
    if (b.has_thumpx()) CheckInt16(f, pm + ".brio.thumpx", b.thumpx(), {"input_gain"});
  }
  if (p.has_geq10b()) {
    CheckInt16(f, pm + ".geq10b", p.geq10b(),
               {"input_gain", "band0_gain", "band1_gain", "band2_gain", "band3_gain", "band4_gain", "band5_gain",
                "band6_gain", "band7_gain", "band8_gain", "band9_gain"});
  }
  if (p.has_aeq()) CheckInt16(f, pm + ".aeq", p.aeq(), {"input_gain", "output_gain", "bypass_gain"});
  if (p.has_mbhl()) CheckInt16(f, pm + ".mbhl", p.mbhl(), {"output_gain", "anti_clip_level"});
  if (p.has_lyra() && p.lyra().super_stereo_coef_size() != 0 && p.lyra().super_stereo_coef_size() != 4) {
    f.Add(pm + ".lyra.super_stereo_coef",
          std::to_string(p.lyra().super_stereo_coef_size()) + " values; only exactly 4 are copied, so none is");
  }

  // Coefficient tables.
  if (p.has_hpf_coef()) {
    const CoefTable* t = TableForRate(p.hpf_coef().coeffs(), rate);
    if (!t) {
      f.Add(pm + ".hpf_coef.coeffs", "no table for " + std::to_string(rate) + " Hz");
    } else if (t->coeff_32_size() > 20) {
      f.Add(pm + ".hpf_coef.coeffs", "the " + std::to_string(rate) + " Hz table has " +
                                         std::to_string(t->coeff_32_size()) + " values (at most 20): nothing is copied");
    }
  }
  if (p.has_brio_hpf_coef() && p.brio_hpf_coef().order() != 0) {
    const auto& tables = p.brio_hpf_coef().hpf_coeffs();
    CheckTables(f, pm + ".brio_hpf_coef.hpf_coeffs", tables, rate, true, 20);
    const CoefTable* t = TableForRate(tables, rate);
    if (t && t->coeff_16_size() == 0 && t->coeff_32_size() > 0) {
      f.Add(pm + ".brio_hpf_coef.hpf_coeffs", "the " + std::to_string(rate) +
                                                  " Hz table holds only coeff_32; the Brio high-pass loads coeff_16, so "
                                                  "nothing is copied");
    }
  }
  if (p.has_brio_xover_coef()) {
    CheckTables(f, pm + ".brio_xover_coef.lpf_coeffs", p.brio_xover_coef().lpf_coeffs(), rate, true, 14);
    CheckTables(f, pm + ".brio_xover_coef.hpf_coeffs", p.brio_xover_coef().hpf_coeffs(), rate, true, 14);
  }
  if (p.has_thumpx_coef()) {
    const auto& tc = p.thumpx_coef();
    const bool gated = p.has_brio() && p.brio().enable() != 0 && p.brio().has_thumpx() &&
                       p.brio().thumpx().enable() != 0;
    if (p.brio().thumpx().speaker_size() != 12) {
      f.Add(pm + ".brio.thumpx.speaker_size",
            std::to_string(p.brio().thumpx().speaker_size()) +
                " is not 12 while Thumpx coefficients are present: the coefficients are never loaded");
    }
    if (tc.coeffs_size() > 0) {
      CheckTables(f, pm + ".thumpx_coef.coeffs", tc.coeffs(), rate, false, 63);
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
    (void)gated;
  }
  if (p.has_mbhl() && p.mbhl().enable() != 0) {
    if (p.has_mbhl_coef()) {
      const auto& mc = p.mbhl_coef();
      for (const auto& [name, table, present] :
           {std::make_tuple("low_cross_coeffs", &mc.low_cross_coeffs(), mc.has_low_cross_coeffs()),
            std::make_tuple("mid_cross_coeffs", &mc.mid_cross_coeffs(), mc.has_mid_cross_coeffs())}) {
        const std::string path = pm + ".mbhl_coef." + name;
        if (!present) {
          f.Add(path, "missing: the MBHL load fails (-998)");
        } else if (table->samplerate() != rate) {
          f.Add(path, "a table for " + std::to_string(table->samplerate()) + " Hz, not " + std::to_string(rate) + " Hz");
        } else {
          CheckCount(f, path + ".coeff_32", table->coeff_32_size(), 12, "cut at 12");
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
    if (p.mbhl().dist_prev_enable() != 0) {
      if (p.mbhl_dist_prev_size() == 2) {
        for (int i = 0; i < 2; ++i) {
          const auto& e = p.mbhl_dist_prev(i);
          const std::string path = pm + ".mbhl_dist_prev[" + std::to_string(i) + "]";
          CheckCount(f, path + ".sense_config.bandSosCount", e.sense_config().bandsoscount_size(), 6, "cut at 6");
          CheckCount(f, path + ".sense_config.bandCoeffs", e.sense_config().bandcoeffs_size(), 144, "cut at 144");
          CheckCount(f, path + ".sense_config.bandCoeffsFloat32", e.sense_config().bandcoeffsfloat32_size(), 108,
                     "cut at 108");
          const auto& n = e.notch_config();
          CheckCount(f, path + ".notch_config.bandAttenuationMax", n.bandattenuationmax_size(), 6, "cut at 6");
          CheckCount(f, path + ".notch_config.bandGainScalars", n.bandgainscalars_size(), 6, "cut at 6");
          CheckCount(f, path + ".notch_config.bandSosCount", n.bandsoscount_size(), 6, "cut at 6");
          CheckCount(f, path + ".notch_config.smoothers", n.smoothers_size(), 9, "cut at 9");
          CheckCount(f, path + ".notch_config.bandCoeffs", n.bandcoeffs_size(), 144, "cut at 144");
          CheckCount(f, path + ".notch_config.bandCoeffsFloat32", n.bandcoeffsfloat32_size(), 108, "cut at 108");
        }
      } else if (s.designerparameters().mbhl_nf_design_params_size() != 2) {
        f.Add("DesignerParameters.mbhl_nf_design_params",
              std::to_string(s.designerparameters().mbhl_nf_design_params_size()) +
                  " entries and no two precomputed designs: distortion prevention fails (-998)");
      }
    }
  }
  for (int i = 0; i < s.designerparameters().mbhl_nf_design_params_size(); ++i) {
    const int ct = s.designerparameters().mbhl_nf_design_params(i).nf_band_ct();
    if (ct < 0 || ct > 6) {
      f.Add("DesignerParameters.mbhl_nf_design_params[" + std::to_string(i) + "].nf_band_ct",
            std::to_string(ct) + " is outside 0 to 6 (designs are cut at 6 bands)");
    }
  }

  // Listening-model references.
  struct RoomList {
    const char* name;
    const RepeatedPtrField<quill::pb::hub::ResourceLocator>* locators;
    unsigned int capacity;
  };
  const RoomList rooms[] = {{"wideRoom", &p.wideroom(), kQuillWideRoomBytes},
                            {"frontRoom", &p.frontroom(), kQuillFrontRoomBytes},
                            {"multichRoom", &p.multichroom(), kQuillMultichRoomBytes}};
  for (const RoomList& list : rooms) {
    for (int i = 0; i < list.locators->size(); ++i) {
      const std::string path = pm + "." + list.name + "[" + std::to_string(i) + "]";
      ResolveLocator(
          f, path, list.locators->Get(i).uuid(), models, [](const auto& m) -> const auto& { return m.rooms(); }, "room",
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
  for (int i = 0; i < p.hpeqcoef_size(); ++i) {
    const std::string path = pm + ".hpeqCoef[" + std::to_string(i) + "]";
    ResolveLocator(
        f, path, p.hpeqcoef(i).uuid(), models, [](const auto& m) -> const auto& { return m.headphones(); },
        "headphone EQ", [&](const quill::pb::model::headphoneEq& eq, const std::string& source) {
          if (!ListedForRoute(eq.audio_route_info(), route)) {
            f.Add(path, "headphone EQ '" + eq.uuid() + "' in " + source + " is not listed for route " +
                            quill::pb::hub::AudioRoute_Name(route));
          } else if (QuillPb::sizeofHpeq(&eq, rate) == 0) {
            f.Add(path, "headphone EQ '" + eq.uuid() + "' has no table for " + std::to_string(rate) + " Hz");
          } else if (eq.ihpirlength() > 128) {
            f.Add(path, "headphone EQ '" + eq.uuid() + "' has ihpirLength " + std::to_string(eq.ihpirlength()) +
                            ": each channel is cut to 128 taps");
          }
        });
  }
  for (int i = 0; i < p.aeqcoef_size(); ++i) {
    const std::string path = pm + ".aeqCoef[" + std::to_string(i) + "]";
    ResolveLocator(
        f, path, p.aeqcoef(i).uuid(), models, [](const auto& m) -> const auto& { return m.aeqs(); }, "AEQ",
        [&](const quill::pb::coef::Aeq& aeq, const std::string& source) {
          if (!ListedForRoute(aeq.audio_route_info(), route)) {
            f.Add(path, "AEQ '" + aeq.uuid() + "' in " + source + " is not listed for route " +
                            quill::pb::hub::AudioRoute_Name(route));
            return;
          }
          int usable = 0;
          for (int b = 0; b < aeq.coefficient_table_size(); ++b) {
            const auto& bank = aeq.coefficient_table(b);
            const CoefTable* t = TableForRate(bank.iircoefs(), rate);
            usable += t != nullptr;
            if (t && t->coeff_32_size() > 74) {
              f.Add(path, "AEQ '" + aeq.uuid() + "' bank " + std::to_string(b) + " has " +
                              std::to_string(t->coeff_32_size()) + " IIR values, the native bank holds 74");
            }
          }
          if (usable < 2) {
            f.Add(path, "AEQ '" + aeq.uuid() + "' has " + std::to_string(usable) + " filter banks with a table for " +
                            std::to_string(rate) + " Hz; two are needed (-998)");
          }
        });
  }
}

int RunValidate(const ValidateOptions& o) {
  const auto format = InputFormatOption(o.input_format);
  quill::pb::hub::RouteConfiguration route;
  ReadMessage(o.route, format, &route);
  const LoadedModels loaded = LoadModels(o.models, format);

  Findings f;
  int settings_index = -1;
  for (int i = 0; i < route.tech_size(); ++i) {
    if (route.tech(i).has_heron_v1_1()) {
      settings_index = i;
      break;
    }
  }
  if (settings_index < 0) {
    bool legacy = false;
    for (const auto& t : route.tech()) legacy |= t.has_heron();
    f.Add("tech", legacy ? "only legacy heron settings: the converter reads heron_v1_1 and finds none (-1000)"
                         : "no heron_v1_1 settings (-1000)");
  } else {
    const HeronSettings& s = route.tech(settings_index).heron_v1_1();
    Models models;
    for (size_t i = 0; i < loaded.models.size(); ++i) models.list.push_back({loaded.models[i].get(), loaded.paths[i]});
    if (s.postmix().has_model()) models.list.push_back({&s.postmix().model(), "the embedded model"});
    const auto& pre = s.premix();
    CheckCount(f, "premix.bypass_mode", pre.bypass_mode_size(), 5, "the rest is ignored");
    if (pre.has_enhance2()) {
      CheckCount(f, "premix.enhance2.htest", pre.enhance2().htest_size(), 7, "the rest is ignored");
      CheckCount(f, "premix.enhance2.ref_htest", pre.enhance2().ref_htest_size(), 7, "the rest is ignored");
    }
    if (pre.has_steady()) CheckInt16(f, "premix.steady", pre.steady(), {"input_gain", "output_gain", "lkfs_gain"});
    CheckPostmix(f, s, route.route(), o.rate, models);
    CheckModels(f, models);
  }
  for (const std::string& line : f.lines()) std::printf("%s\n", line.c_str());
  if (f.lines().empty()) {
    std::printf("%s: clean at %d Hz\n", o.route.c_str(), o.rate);
    return kExitOk;
  }
  std::printf("%zu finding%s at %d Hz\n", f.lines().size(), f.lines().size() == 1 ? "" : "s", o.rate);
  return kExitFindings;
}

}  // namespace

void RegisterValidate(CLI::App& app, Action& run) {
  auto o = std::make_shared<ValidateOptions>();
  CLI::App* sub = app.add_subcommand("validate", "Lint a route and its listening models before they ship");
  sub->add_option("ROUTE", o->route, "quill.pb.hub.RouteConfiguration file")->required();
  sub->add_option("--rate", o->rate, "engine sample rate in Hz")->capture_default_str()->check(PositiveRate());
  sub->add_option("--model", o->models, "quill.pb.model.listeningModel file (repeatable)");
  sub->add_option("--input-format", o->input_format, "binary, text or json (default: by extension)");
  sub->callback([o, &run] { run = [o] { return RunValidate(*o); }; });
}

}  // namespace heron_tool
