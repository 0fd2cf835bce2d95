// The operation table: converter operations on every scenario, protobuf
// parsing of the same bytes, the memcpy floor and every designer.
#include "operations.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "QuillPbConvert_Heron_v1_1.h"
#include "designer_catalogue.h"
#include "fixtures.h"
#include "quillHeronCoeffRecords.h"
#include "quillheron_filterdesign.h"

namespace qhbench {
namespace {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::hub::RouteConfiguration;
using quill::pb::model::listeningModel;
using Coeffs = _quillHeronPostmixApiCtrlCoeffs;
using Premix = _quillHeronPremixApiCtrl;

constexpr int kRoomMask = 14;  // wide, front and multichannel rooms

template <class T>
std::shared_ptr<T> Zeroed() {
  auto p = std::make_shared<T>();
  std::memset(p.get(), 0, sizeof(T));
  return p;
}

// ---- converter and protobuf operations on one scenario ----------------------

void AddScenarioOperations(std::vector<Operation>& ops, std::shared_ptr<const Scenario> s, bool convert) {
  const std::string& n = s->name;
  const int ir_calls = n == "large" ? 3 : 20;
  auto converter = std::make_shared<const QuillHeron_v1_1_Pb>(kRate);

  // Parse of the binary route and models, into messages kept from the last
  // call (protobuf reuses their storage) and into fresh ones.
  auto route = std::make_shared<RouteConfiguration>();
  auto models = std::make_shared<std::vector<listeningModel>>(s->model_bytes.size());
  ops.push_back({"parse/" + n + "/reused",
                 [s, route, models] {
                   bool ok = route->ParseFromString(s->route_bytes);
                   for (std::size_t i = 0; i < models->size(); ++i) ok &= (*models)[i].ParseFromString(s->model_bytes[i]);
                   return ok ? 0 : -1;
                 },
                 false, ir_calls});
  ops.push_back({"parse/" + n + "/fresh",
                 [s] {
                   RouteConfiguration r;
                   bool ok = r.ParseFromString(s->route_bytes);
                   for (const std::string& bytes : s->model_bytes) {
                     listeningModel m;
                     ok &= m.ParseFromString(bytes);
                   }
                   return ok ? 0 : -1;
                 },
                 false, ir_calls});

  auto premix = Zeroed<Premix>();
  auto postmix = Zeroed<Coeffs>();
  ops.push_back({"populate/premix/" + n,
                 [s, converter, premix] { return converter->populate(s->route, *premix, true); }, true, ir_calls});
  ops.push_back({"populate/postmix/" + n,
                 [s, converter, postmix] {
                   return converter->populate(s->route, *postmix, true, s->model_list, kRoomMask);
                 },
                 true, ir_calls});
  if (!convert) return;

  // Converts of the populated records, into a fresh HeronSettings and into
  // one cleared after the previous call (protobuf keeps its storage): the
  // difference is protobuf's own allocation work.
  converter->populate(s->route, *premix, true);
  converter->populate(s->route, *postmix, true, s->model_list, kRoomMask);
  auto reused = std::make_shared<HeronSettings>();
  ops.push_back({"convert/premix/" + n + "/fresh",
                 [converter, premix] {
                   HeronSettings out;
                   return converter->convert(*premix, &out) ? 0 : -1;
                 },
                 false, ir_calls});
  ops.push_back({"convert/premix/" + n + "/reused",
                 [converter, premix, reused] {
                   reused->Clear();
                   return converter->convert(*premix, reused.get()) ? 0 : -1;
                 },
                 false, ir_calls});
  ops.push_back({"convert/postmix/" + n + "/fresh",
                 [converter, postmix] {
                   HeronSettings out;
                   return converter->convert(*postmix, &out, true) ? 0 : -1;
                 },
                 false, ir_calls});
  ops.push_back({"convert/postmix/" + n + "/reused",
                 [converter, postmix, reused] {
                   reused->Clear();
                   return converter->convert(*postmix, reused.get(), true) ? 0 : -1;
                 },
                 false, ir_calls});
}

// The floor: copying the bytes of both records.
void AddFloor(std::vector<Operation>& ops) {
  struct Records {
    Premix premix;
    Coeffs postmix;
  };
  auto src = Zeroed<Records>();
  auto dst = Zeroed<Records>();
  ops.push_back({"floor/memcpy_records",
                 [src, dst] {
                   std::memcpy(dst.get(), src.get(), sizeof(Records));
                   return static_cast<int>(reinterpret_cast<unsigned char*>(dst.get())[sizeof(Records) - 1]);
                 },
                 true, 20});
}

// ---- designers -----------------------------------------------------------------

// One scratch area large enough for every designer below.
struct Scratch {
  alignas(8) unsigned char work[8192];
  float f[256];
  std::int32_t w32[256];
  std::int16_t w16[256];
};

qh_design::DesignBuffers Buffers(Scratch* x) {
  qh_design::DesignBuffers b;
  b.floats = x->f;
  b.words32 = x->w32;
  b.words16 = x->w16;
  b.workspace = x->work;
  return b;
}

// One operation per format of the request's family: base + the format's name
// ("fxp32-noscale" as "fxp32_noscale").
template <class Request>
void AddDesign(std::vector<Operation>& ops, const std::string& base, const Request& request,
               const std::shared_ptr<Scratch>& x, qh_design::Family family) {
  for (qh_design::Format format : qh_design::FindDesigner(family)->formats) {
    std::string name = qh_design::FormatName(format);
    for (char& c : name) c = c == '-' ? '_' : c;
    ops.push_back({base + name, [x, request, format] { return qh_design::Run(request, format, Buffers(x.get())); },
                   true, 20});
  }
}

void AddButterworth(std::vector<Operation>& ops, const std::shared_ptr<Scratch>& x) {
  struct Kind {
    const char* name;
    int type;
    float cutoff;
  };
  static const Kind kKinds[] = {{"low", QH_IIR_LOWPASS, 1000.0f}, {"high", QH_IIR_HIGHPASS, 120.0f}};
  for (const Kind& k : kKinds) {
    for (int order : {2, 4, 8}) {
      const std::string base = std::string("design/butterworth_") + k.name + "/order" + std::to_string(order) + "/";
      AddDesign(ops, base, qh_design::ButterworthRequest{k.cutoff, order, kRate, k.type}, x,
                qh_design::Family::kButterworth);
    }
  }
}

void AddParametricEq(std::vector<Operation>& ops, const std::shared_ptr<Scratch>& x) {
  // A mix of band types; the first n are used.
  static const OVAParametriceqBandSpec kBands[10] = {
      {PEQ_BAND_TYPE_TRADITIONAL, 1000.0f, 1.4f, 6.0f, 0}, {PEQ_BAND_TYPE_LOWSHELF, 100.0f, 0.7f, -6.0f, 0},
      {PEQ_BAND_TYPE_HIGHSHELF, 8000.0f, 0.7f, 4.0f, 0},   {PEQ_BAND_TYPE_BANDPASS, 300.0f, 20.0f, 0.0f, 0},
      {PEQ_BAND_TYPE_ALLPASS, 2000.0f, 1.5f, 0.0f, 0},     {PEQ_BAND_TYPE_PEAKING, 500.0f, 3.0f, -9.0f, 0},
      {PEQ_BAND_TYPE_LOWPASS, 16000.0f, 0.7f, 3.0f, 0},    {PEQ_BAND_TYPE_HIGHPASS, 40.0f, 0.7f, 0.0f, 0},
      {PEQ_BAND_TYPE_NOTCH, 5000.0f, 10.0f, 0.0f, 0},      {PEQ_BAND_TYPE_TRADITIONAL, 12000.0f, 2.0f, 2.0f, 1}};
  for (int n : {1, 5, 10}) {
    const std::string base = "design/peq/" + std::to_string(n) + "bands/";
    AddDesign(ops, base, qh_design::PeqRequest{n, kBands, kRate}, x, qh_design::Family::kPeq);
  }
}

// Bass enhancement with the shipped example's parameters.
void AddThumpx(std::vector<Operation>& ops, const std::shared_ptr<Scratch>& x) {
  qh_design::ThumpxRequest request;
  request.custom_speaker_size = 100;
  request.bass_ctrl = 0.3335f;
  request.sampling_rate = kRate;
  AddDesign(ops, "design/thumpx/", request, x, qh_design::Family::kThumpx);
}

void AddCrossover(std::vector<Operation>& ops, const std::shared_ptr<Scratch>& x) {
  AddDesign(ops, "design/crossover/", qh_design::CrossoverRequest{300.0f, kRate}, x, qh_design::Family::kCrossover);
}

// Two blocks of six notch bands each, harmonic and octave spacing.
void AddDistortionPrevention(std::vector<Operation>& ops) {
  struct Area {
    quillDistprevDesignHeader header;
    quillMBHLDistprevCoeff records[2];
    quillDistprevNotchDesignBlock blocks[2];
  };
  auto a = std::make_shared<Area>();
  std::memset(a.get(), 0, sizeof(Area));
  a->blocks[0] = {1, -20.0f, -30.0f, -6.0f, 200.0f, 50.0f, 6, 150.0f, 10.0f, -12.0f, 0, 1, -3.0f};
  a->blocks[1] = {1, -18.0f, -28.0f, -6.0f, 150.0f, 40.0f, 6, 110.0f, 8.0f, -9.0f, 1, 0, -1.5f};
  ops.push_back({"design/distprev/2x6bands",
                 [a] { return qh_design::Run(qh_design::DistprevRequest{a->blocks, 2}, &a->header, a->records); },
                 true, 20});
}

std::vector<Operation> Build() {
  std::vector<Operation> ops;
  auto example = std::make_shared<const Scenario>(ExampleScenario());
  auto tables = std::make_shared<const Scenario>(ExampleTablesScenario());
  auto large = std::make_shared<const Scenario>(LargeScenario());
  AddScenarioOperations(ops, example, true);
  AddScenarioOperations(ops, tables, false);
  AddScenarioOperations(ops, large, true);
  AddFloor(ops);
  auto scratch = std::make_shared<Scratch>();
  std::memset(scratch.get(), 0, sizeof(Scratch));
  AddButterworth(ops, scratch);
  AddParametricEq(ops, scratch);
  AddThumpx(ops, scratch);
  AddCrossover(ops, scratch);
  AddDistortionPrevention(ops);

  // One table reads best floor, parse, populate, convert, then designers.
  static const char* const kGroups[] = {"floor/", "parse/", "populate/", "convert/", "design/"};
  auto rank = [](const Operation& op) {
    int r = 0;
    while (r < 5 && op.name.rfind(kGroups[r], 0) != 0) ++r;
    return r;
  };
  std::stable_sort(ops.begin(), ops.end(),
                   [&rank](const Operation& a, const Operation& b) { return rank(a) < rank(b); });
  return ops;
}

}  // namespace

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> ops = Build();
  return ops;
}

const Operation* FindOperation(const std::string& name) {
  for (const Operation& op : Operations()) {
    if (op.name == name) return &op;
  }
  return nullptr;
}

}  // namespace qhbench
