#include "populate_report.h"

#include <cctype>

#include "QuillPb.h"

namespace heron_tool {
namespace {

using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quill::pb::model::listeningModel;

bool EqualIgnoringCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::toupper(static_cast<unsigned char>(a[i])) !=
        std::toupper(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

// The models the driver searches: the caller's, then the embedded one.
struct ModelRef {
  const listeningModel* model;
  std::string source;
};

std::vector<ModelRef> SearchOrder(const Postmix& postmix, const LoadedModels& models) {
  std::vector<ModelRef> out;
  for (size_t i = 0; i < models.models.size(); ++i) {
    out.push_back({models.models[i].get(), models.paths[i]});
  }
  if (postmix.has_model()) out.push_back({&postmix.model(), "the route's embedded model"});
  return out;
}

const CoefTable* TableForRate(const google::protobuf::RepeatedPtrField<CoefTable>& tables, int rate) {
  for (const CoefTable& t : tables) {
    if (t.has_samplerate() && t.samplerate() == rate) return &t;
  }
  return nullptr;
}

std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

std::string DescribeRoom(const std::string& uuid, const std::vector<ModelRef>& order, int rate) {
  if (uuid.empty()) return "no room requested (empty identifier)";
  for (const ModelRef& m : order) {
    for (const auto& room : m.model->rooms()) {
      if (!EqualIgnoringCase(room.uuid(), uuid)) continue;
      const unsigned int bytes = QuillPb::sizeofRoom(&room, rate);
      if (bytes == 0) {
        return uuid + " " + Quoted(room.name()) + " from " + m.source + ": no table for " +
               std::to_string(rate) + " Hz";
      }
      return uuid + " " + Quoted(room.name()) + " from " + m.source + ": " +
             std::to_string((bytes - 40) / 2) + " taps at " + std::to_string(rate) + " Hz";
    }
  }
  return uuid + ": not found in any listening model";
}

void DescribeRooms(const Postmix& postmix, const std::vector<ModelRef>& order, int room_mask,
                   int rate, std::vector<std::pair<std::string, std::string>>* out) {
  struct RoomList {
    int bit;
    const char* name;
    const google::protobuf::RepeatedPtrField<quill::pb::hub::ResourceLocator>* locators;
  };
  const RoomList lists[] = {{2, "wide room", &postmix.wideroom()},
                            {4, "front room", &postmix.frontroom()},
                            {8, "multichannel room", &postmix.multichroom()}};
  for (const RoomList& list : lists) {
    if ((room_mask & list.bit) == 0) {
      out->emplace_back(list.name, "not selected by the room mask");
      continue;
    }
    std::vector<std::string> uuids;
    for (const auto& loc : *list.locators) uuids.push_back(loc.uuid());
    std::string prefix;
    if (uuids.empty() && postmix.has_model()) {
      for (const auto& room : postmix.model().rooms()) uuids.push_back(room.uuid());
      prefix = "(no locators; the embedded model's rooms) ";
    }
    if (uuids.empty()) {
      out->emplace_back(list.name, "none listed");
      continue;
    }
    for (const std::string& uuid : uuids) out->emplace_back(list.name, prefix + DescribeRoom(uuid, order, rate));
  }
}

std::string DescribeHpeq(quill::pb::hub::AudioRoute route, const std::string& uuid,
                         const std::vector<ModelRef>& order, int rate) {
  for (const ModelRef& m : order) {
    for (const auto& eq : m.model->headphones()) {
      if (!EqualIgnoringCase(eq.uuid(), uuid)) continue;
      bool accepted = eq.audio_route_info_size() == 0;
      for (const auto& info : eq.audio_route_info()) accepted |= info.route() == route;
      if (!accepted) break;  // the search moves on to the next model
      const unsigned int bytes = QuillPb::sizeofHpeq(&eq, rate);
      if (bytes == 0) return uuid + " from " + m.source + ": no table for " + std::to_string(rate) + " Hz";
      return uuid + " " + Quoted(eq.name()) + " from " + m.source + ": " +
             std::to_string((bytes - 24) / 2) + " values, ihpirLength " + std::to_string(eq.ihpirlength());
    }
  }
  return uuid + ": no headphone EQ for this route (none loaded)";
}

std::string DescribeAeq(quill::pb::hub::AudioRoute route, const Postmix& postmix,
                        const std::vector<ModelRef>& order, int rate) {
  for (const auto& loc : postmix.aeqcoef()) {
    if (loc.uuid().empty()) continue;
    for (const ModelRef& m : order) {
      for (const auto& aeq : m.model->aeqs()) {
        if (!EqualIgnoringCase(aeq.uuid(), loc.uuid())) continue;
        bool accepted = aeq.audio_route_info_size() == 0;
        for (const auto& info : aeq.audio_route_info()) accepted |= info.route() == route;
        if (!accepted) break;
        int with_table = 0;
        for (const auto& bank : aeq.coefficient_table()) with_table += TableForRate(bank.iircoefs(), rate) != nullptr;
        return loc.uuid() + " from " + m.source + ": " + std::to_string(aeq.coefficient_table_size()) +
               " filter banks, " + std::to_string(with_table) + " with a table for " + std::to_string(rate) + " Hz";
      }
    }
    return loc.uuid() + ": no AEQ for this route";
  }
  return "none listed";
}

std::string TableSummary(const google::protobuf::RepeatedPtrField<CoefTable>& tables, int rate,
                         bool sixteen) {
  const CoefTable* t = TableForRate(tables, rate);
  if (!t) return tables.empty() ? "no tables" : "no table for " + std::to_string(rate) + " Hz";
  const int n = sixteen ? t->coeff_16_size() : t->coeff_32_size();
  return "table for " + std::to_string(rate) + " Hz, " + std::to_string(n) + (sixteen ? " halfwords" : " words");
}

}  // namespace

std::vector<std::pair<std::string, std::string>> DescribePostmixSources(
    quill::pb::hub::AudioRoute route, const HeronSettings& settings, const LoadedModels& models,
    int room_mask, int rate) {
  std::vector<std::pair<std::string, std::string>> out;
  const Postmix& postmix = settings.postmix();
  const std::vector<ModelRef> order = SearchOrder(postmix, models);

  DescribeRooms(postmix, order, room_mask, rate, &out);
  if (postmix.hpeqcoef_size() == 0) out.emplace_back("headphone EQ", "none listed");
  for (const auto& loc : postmix.hpeqcoef()) out.emplace_back("headphone EQ", DescribeHpeq(route, loc.uuid(), order, rate));
  out.emplace_back("output high-pass", postmix.has_hpf_coef()
                                           ? TableSummary(postmix.hpf_coef().coeffs(), rate, false) +
                                                 ", order " + std::to_string(postmix.hpf_coef().order())
                                           : "not present");
  out.emplace_back("AEQ", DescribeAeq(route, postmix, order, rate));
  const auto& xover = postmix.brio_xover_coef();
  out.emplace_back("Brio crossover", "low-pass " + TableSummary(xover.lpf_coeffs(), rate, true) +
                                         "; high-pass " + TableSummary(xover.hpf_coeffs(), rate, true) +
                                         ", order " + std::to_string(xover.order()));
  const auto& bhpf = postmix.brio_hpf_coef();
  out.emplace_back("Brio high-pass", bhpf.order() == 0 ? "order 0: not loaded"
                                                        : TableSummary(bhpf.hpf_coeffs(), rate, true) +
                                                              ", order " + std::to_string(bhpf.order()));

  // Bass enhancement: only for an enabled Brio/Thumpx with speaker size 12.
  const auto& brio = postmix.brio();
  std::string thumpx;
  if (!postmix.has_brio() || brio.enable() == 0 || !brio.has_thumpx() || brio.thumpx().enable() == 0) {
    thumpx = "not loaded: Brio or its Thumpx is absent or disabled";
  } else if (!postmix.has_thumpx_coef()) {
    thumpx = "not loaded: no thumpx_coef";
  } else if (brio.thumpx().speaker_size() != 12) {
    thumpx = "not loaded: Thumpx speaker_size " + std::to_string(brio.thumpx().speaker_size()) + " is not 12";
  } else if (postmix.thumpx_coef().coeffs_size() > 0) {
    thumpx = "from tables: " + TableSummary(postmix.thumpx_coef().coeffs(), rate, false);
  } else if (postmix.thumpx_coef().has_filterdesignparams()) {
    const auto& p = postmix.thumpx_coef().filterdesignparams();
    thumpx = "designed from filterDesignParams (speaker size " + std::to_string(p.custom_speaker_size()) +
             ", designed for " + std::to_string(p.sampling_rate()) + " Hz)";
  } else {
    thumpx = "neither tables nor design parameters";
  }
  out.emplace_back("Thumpx", thumpx);

  const auto& mbhl = postmix.mbhl();
  if (!postmix.has_mbhl() || mbhl.enable() == 0) {
    out.emplace_back("MBHL crossovers", "not loaded: Mbhl absent or disabled");
    out.emplace_back("distortion prevention", "not loaded: Mbhl absent or disabled");
    return out;
  }
  if (postmix.has_mbhl_coef()) {
    out.emplace_back("MBHL crossovers", "from tables (low " +
                                            std::to_string(postmix.mbhl_coef().low_cross_coeffs().samplerate()) +
                                            " Hz, mid " +
                                            std::to_string(postmix.mbhl_coef().mid_cross_coeffs().samplerate()) + " Hz)");
  } else {
    const auto& p = settings.designerparameters().mbhl_design_params();
    out.emplace_back("MBHL crossovers", "designed at " + std::to_string(p.custom_low_cross()) + " Hz and " +
                                            std::to_string(p.custom_mid_cross()) + " Hz (parameters for " +
                                            std::to_string(p.sampling_rate()) + " Hz)");
  }
  if (mbhl.dist_prev_enable() == 0) {
    out.emplace_back("distortion prevention", "not loaded: dist_prev_enable is 0");
  } else if (postmix.mbhl_dist_prev_size() == 2) {
    out.emplace_back("distortion prevention", "from the two precomputed designs");
  } else {
    out.emplace_back("distortion prevention",
                     "designed from " + std::to_string(settings.designerparameters().mbhl_nf_design_params_size()) +
                         " notch design parameter sets");
  }
  return out;
}

}  // namespace heron_tool
