// Fuzz harness: every exported filter designer with parameters drawn from
// the input (any float bit pattern, any rate, negative and huge counts),
// over heap outputs and workspaces of exactly the size each call may use.
// The Butterworth designers trust `order`, so orders above 64 are folded back
// into 0..64 to keep the buffers sized by the order that is passed; zero and
// negative orders pass unchanged. A designer must return for every input,
// and the designer catalogue's contract check must say exactly when it
// rejects (designs go through the catalogue's request structs).
#include <cstddef>
#include <cstdint>
#include <vector>

#include "designer_catalogue.h"
#include "exact_buffer.h"
#include "fuzz_input.h"
#include "quillheron_filterdesign.h"

namespace {

using qh_design::Format;
using qh_fuzz::ExactBuffer;
using qh_fuzz::FuzzInput;

constexpr int kMaxOrder = 64;
constexpr int kMaxBands = 32;
constexpr int kMaxDistprevDesigns = 4;

int foldedOrder(FuzzInput& in, int max) {
  int order = in.count(max);
  if (order > max) order %= max + 1;
  return order;
}

std::size_t nonNegative(int n) { return n > 0 ? static_cast<std::size_t>(n) : 0; }

int filterType(FuzzInput& in) {
  const std::uint8_t b = in.u8();
  return b < 0xF0 ? (b % 4) - 1 : in.i32();
}

// Workspaces may start anywhere: the designers align them themselves.
std::size_t misalignment(FuzzInput& in) { return in.u8() % 8; }

void fillFloats(FuzzInput& in, float* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) out[i] = in.designFloat(-4.0f, 4.0f);
}

// Runs a request through the catalogue; the catalogue's contract check must
// predict exactly when the designer rejects it.
template <class Request>
void runChecked(const Request& request, Format format, const qh_design::DesignBuffers& out) {
  const bool rejected = qh_design::Run(request, format, out) == QH_IIR_DESIGN_REJECTED;
  if (rejected != static_cast<bool>(qh_design::CheckContract(request, format))) __builtin_trap();
}

qh_design::DesignBuffers into(ExactBuffer& out, Format format, void* workspace = nullptr) {
  qh_design::DesignBuffers b;
  const int width = qh_design::WordWidth(format);
  if (width == 0) b.floats = out.as<float>();
  else if (width == 16) b.words16 = out.as<std::int16_t>();
  else b.words32 = out.as<std::int32_t>();
  b.workspace = workspace;
  return b;
}

// ---- Butterworth ----------------------------------------------------------

qh_design::ButterworthRequest iirRequest(FuzzInput& in) {
  qh_design::ButterworthRequest r;
  r.cutoff_hz = in.designFloat(1.0f, 30000.0f);
  r.order = foldedOrder(in, kMaxOrder);
  r.sample_rate = in.sampleRate();
  r.filter_type = filterType(in);
  return r;
}

void iirFloat(FuzzInput& in) {
  const qh_design::ButterworthRequest r = iirRequest(in);
  ExactBuffer out(sizeof(float) * QH_IirFloatLength(r.order));
  runChecked(r, Format::kFloat, into(out, Format::kFloat));
}

template <class Word, Format kFormat>
void iirFixed(FuzzInput& in) {
  const qh_design::ButterworthRequest r = iirRequest(in);
  ExactBuffer out(sizeof(Word) * QH_IirFixedLength(r.order));
  ExactBuffer work(QH_IirDesignWorkspaceBytes(QH_IirSectionCount(r.order)), misalignment(in));
  runChecked(r, kFormat, into(out, kFormat, work.data()));
}

// ---- Quantisation, its inverse, joining, scaling ---------------------------

template <class Word, void (*Quantize)(const float*, int, Word*)>
void quantize(FuzzInput& in) {
  const int order = foldedOrder(in, kMaxOrder);
  ExactBuffer cascade(sizeof(float) * QH_IirFloatLength(order));
  fillFloats(in, cascade.as<float>(), QH_IirFloatLength(order));
  ExactBuffer out(sizeof(Word) * QH_IirFixedLength(order));
  Quantize(cascade.as<float>(), order, out.as<Word>());
}

template <class Word, void (*ToFloat)(const Word*, int, float*)>
void dequantize(FuzzInput& in) {
  const int order = foldedOrder(in, kMaxOrder);
  const int words = QH_IirFixedLength(order);
  ExactBuffer fixed(sizeof(Word) * words);
  for (int i = 0; i < words; ++i) {
    // Small iwl words are the interesting ones; coefficients are anything.
    const std::int32_t v = (i % 6 == 0 && in.flag()) ? in.u8() % 40 : in.i32();
    fixed.as<Word>()[i] = static_cast<Word>(v);
  }
  ExactBuffer out(sizeof(float) * QH_IirFloatLength(order));
  ToFloat(fixed.as<Word>(), order, out.as<float>());
}

void concatenate(FuzzInput& in) {
  const int first_order = foldedOrder(in, kMaxOrder);
  const int second_order = foldedOrder(in, kMaxOrder);
  const bool in_place = in.flag();
  const int joined = QH_IirSectionCount(first_order) + QH_IirSectionCount(second_order);
  const int first_floats = in_place ? 5 * joined + 1 : QH_IirFloatLength(first_order);
  ExactBuffer first(sizeof(float) * first_floats);
  ExactBuffer second(sizeof(float) * QH_IirFloatLength(second_order));
  fillFloats(in, first.as<float>(), first_floats);
  fillFloats(in, second.as<float>(), QH_IirFloatLength(second_order));
  ExactBuffer separate(in_place ? 0 : sizeof(float) * (5 * joined + 1));
  float* out = in_place ? first.as<float>() : separate.as<float>();
  ExactBuffer out_order(sizeof(int));
  OVA_ConcatenateIIRs(first.as<float>(), first_order, second.as<float>(), second_order, out,
                      out_order.as<int>());
}

void scale(FuzzInput& in) {
  const int sections = foldedOrder(in, kMaxOrder / 2);
  const std::size_t s = nonNegative(sections);
  ExactBuffer cascade(sizeof(float) * (5 * s + 1));
  fillFloats(in, cascade.as<float>(), 5 * s + 1);
  ExactBuffer work(sizeof(float) * QH_ScaleWorkspaceFloats(static_cast<int>(s)));
  ScaleCascadedTransposedDirectForm2IIR(cascade.as<float>(), sections, work.as<float>());
}

void scaleByOrder(FuzzInput& in) {
  const int order = foldedOrder(in, kMaxOrder);
  ExactBuffer cascade(sizeof(float) * QH_IirFloatLength(order));
  fillFloats(in, cascade.as<float>(), QH_IirFloatLength(order));
  ExactBuffer work(QH_ScaleWorkspaceBytesUnaligned(order), misalignment(in));
  OVA_ScaleCascadedTransposedDirectForm2IIR(cascade.as<float>(), order, work.data());
}

void smallFunctions(FuzzInput& in) {
  MinimalIwl(in.rawFloat());
  const int count = foldedOrder(in, kMaxOrder);
  // x[0] is read even for an empty list.
  const std::size_t n = nonNegative(count) > 0 ? nonNegative(count) : 1;
  ExactBuffer values(sizeof(float) * n);
  fillFloats(in, values.as<float>(), n);
  MaxAbs(values.as<float>(), count);
  const int bytes = in.count(255);
  ExactBuffer dst(nonNegative(bytes > 4096 ? bytes % 4096 : bytes));
  OVA_MemSet(dst.data(), bytes > 4096 ? bytes % 4096 : bytes, in.i32());
}

// ---- Parametric equaliser --------------------------------------------------

struct PeqRequest {
  explicit PeqRequest(FuzzInput& in) : band_count(foldedOrder(in, kMaxBands)),
                                       bands(sizeof(OVAParametriceqBandSpec) * nonNegative(band_count)) {
    OVAParametriceqBandSpec* b = bands.as<OVAParametriceqBandSpec>();
    for (std::size_t i = 0; i < nonNegative(band_count); ++i) {
      const std::uint8_t t = in.u8();
      b[i].type = t < 0xF0 ? (t % 12) - 1 : in.i32();
      b[i].center_freq = in.designFloat(10.0f, 24000.0f);
      b[i].q = in.designFloat(0.05f, 20.0f);
      b[i].gain = in.designFloat(-24.0f, 24.0f);
      b[i].invert = in.u8() < 0xF0 ? 0 : in.i32();
    }
    request.band_count = band_count;
    request.bands = b;
    request.sample_rate = in.sampleRate();
  }
  int band_count;
  ExactBuffer bands;
  OVAParametriceqSpec request;
};

void peqFloat(FuzzInput& in) {
  PeqRequest r(in);
  ExactBuffer out(sizeof(float) * (5 * nonNegative(r.band_count) + 1));
  runChecked(r.request, Format::kFloat, into(out, Format::kFloat));
}

template <class Word, Format kFormat>
void peqFixed(FuzzInput& in) {
  PeqRequest r(in);
  const int bands = static_cast<int>(nonNegative(r.band_count));
  ExactBuffer out(sizeof(Word) * (6 * nonNegative(r.band_count) + 2));
  const bool scaled = kFormat != Format::kFxp32NoScale;
  const int work_bytes = scaled ? QH_IirDesignWorkspaceBytes(bands) : QH_PeqNoScaleWorkspaceBytes(bands);
  ExactBuffer work(work_bytes, misalignment(in));
  runChecked(r.request, kFormat, into(out, kFormat, work.data()));
}

// ---- Bass enhancement, crossovers, distortion prevention ---------------------

qh_design::ThumpxRequest thumpxRequest(FuzzInput& in) {
  qh_design::ThumpxRequest r;
  const std::uint8_t s = in.u8();
  r.custom_speaker_size = s < 0xC0 ? 30 + s * 3 : in.i32();
  r.bass_ctrl = in.designFloat(0.0f, 1.0f);
  r.hp_ratio = in.designFloat(0.0f, 1.0f);
  r.ext_bass = in.designFloat(0.0f, 1.0f);
  r.sampling_rate = in.sampleRate();
  r.lp_ratio = in.designFloat(0.0f, 4.0f);
  r.pre_lp_freq = in.designFloat(20.0f, 20000.0f);
  r.harm_hp_freq = in.designFloat(20.0f, 20000.0f);
  r.clip_level = in.designFloat(0.0f, 1.0f);
  r.reserved = in.i32();
  return r;
}

void thumpxFloat(FuzzInput& in) {
  const qh_design::ThumpxRequest r = thumpxRequest(in);
  ExactBuffer out(sizeof(float) * QH_THUMPX_FLOAT_LENGTH);
  runChecked(r, Format::kFloat, into(out, Format::kFloat));
}

template <class Word, Format kFormat>
void thumpxFixed(FuzzInput& in) {
  const qh_design::ThumpxRequest r = thumpxRequest(in);
  ExactBuffer out(sizeof(Word) * QH_THUMPX_FIXED_LENGTH);
  ExactBuffer work(QH_THUMPX_WORKSPACE_BYTES, misalignment(in));
  runChecked(r, kFormat, into(out, kFormat, work.data()));
}

void crossovers(FuzzInput& in) {
  qh_design::CrossoverRequest r;
  r.crossover_freq = in.designFloat(20.0f, 20000.0f);
  r.sample_rate = in.sampleRate();
  ExactBuffer fl(sizeof(float) * QH_MCDYN_FLOAT_LENGTH);
  runChecked(r, Format::kFloat, into(fl, Format::kFloat));
  ExactBuffer fx(sizeof(int32_t) * QH_MCDYN_FIXED_LENGTH);
  runChecked(r, Format::kFxp32, into(fx, Format::kFxp32));
}

void distprev(FuzzInput& in) {
  const int count = foldedOrder(in, kMaxDistprevDesigns);
  const std::size_t n = nonNegative(count);
  ExactBuffer header(sizeof(quillDistprevDesignHeader));
  ExactBuffer records(sizeof(quillMBHLDistprevCoeff) * n);
  ExactBuffer blocks(sizeof(quillDistprevNotchDesignBlock) * n);
  quillDistprevNotchDesignBlock* b = blocks.as<quillDistprevNotchDesignBlock>();
  for (std::size_t i = 0; i < n; ++i) {
    b[i].nf_mode = in.count(3);
    b[i].nf_thld = in.designFloat(-60.0f, 0.0f);
    b[i].nf_sense = in.designFloat(-60.0f, 0.0f);
    b[i].nf_attk_thld = in.designFloat(-60.0f, 0.0f);
    b[i].nf_attk_ms = in.designFloat(0.0f, 100.0f);
    b[i].nf_rel_ms = in.designFloat(0.0f, 1000.0f);
    b[i].nf_band_ct = in.count(8);
    b[i].nf_base_freq = in.designFloat(20.0f, 2000.0f);
    b[i].nf_base_q = in.designFloat(0.1f, 20.0f);
    b[i].nf_base_attn_max = in.designFloat(-40.0f, 0.0f);
    b[i].nf_spacing = in.count(3);
    b[i].nf_width = in.count(3);
    b[i].nf_slope = in.designFloat(-6.0f, 6.0f);
  }
  qh_design::Run(qh_design::DistprevRequest{b, count}, header.as<quillDistprevDesignHeader>(),
                 records.as<quillMBHLDistprevCoeff>());
}

using Operation = void (*)(FuzzInput&);

const Operation kOperations[] = {
    iirFloat,
    iirFixed<int32_t, Format::kFxp32>,
    iirFixed<int32_t, Format::kFxp24>,
    iirFixed<int16_t, Format::kFxp16>,
    quantize<int32_t, OVA_QuantizeIIR_Fxp32>,
    quantize<int32_t, OVA_QuantizeIIR_Fxp24>,
    quantize<int16_t, OVA_QuantizeIIR_Fxp16>,
    dequantize<int32_t, OVA_Fxp32IIRToFloat>,
    dequantize<int32_t, OVA_Fxp24IIRToFloat>,
    dequantize<int16_t, OVA_Fxp16IIRToFloat>,
    concatenate,
    scale,
    scaleByOrder,
    smallFunctions,
    peqFloat,
    peqFixed<int32_t, Format::kFxp32NoScale>,
    peqFixed<int32_t, Format::kFxp32>,
    peqFixed<int32_t, Format::kFxp24>,
    peqFixed<int16_t, Format::kFxp16>,
    thumpxFloat,
    thumpxFixed<int32_t, Format::kFxp32>,
    thumpxFixed<int32_t, Format::kFxp24>,
    thumpxFixed<int16_t, Format::kFxp16>,
    crossovers,
    distprev,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput in(data, size);
  const std::uint8_t op = in.u8();
  kOperations[op % (sizeof(kOperations) / sizeof(kOperations[0]))](in);
  return 0;
}
