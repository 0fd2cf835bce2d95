// A host that defines MinimalIwl, MaxAbs and ScaleCascadedTransposedDirectForm2IIR
// itself, under the names the library exports. The library's own calls must
// still reach its own definitions. Every design is run twice: first with the
// host's functions forwarding to the library's (found with dlsym(RTLD_NEXT)),
// then with them answering nonsense. Both runs must give the same bytes, and
// the library must never have called the host's versions.
#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "quillheron_filterdesign.h"

namespace {

bool g_hostile = false;  // the host's functions answer nonsense
int g_hostile_calls = 0;

template <typename F>
F Library(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int MinimalIwl(float x) {
  if (!g_hostile) return Library<int (*)(float)>("MinimalIwl")(x);
  ++g_hostile_calls;
  return 5;
}

extern "C" float MaxAbs(const float* x, int count) {
  if (!g_hostile) return Library<float (*)(const float*, int)>("MaxAbs")(x, count);
  ++g_hostile_calls;
  return 1.0e6f;
}

extern "C" void ScaleCascadedTransposedDirectForm2IIR(float* cascade, int sections, float* workspace) {
  if (!g_hostile) {
    Library<void (*)(float*, int, float*)>("ScaleCascadedTransposedDirectForm2IIR")(cascade, sections, workspace);
    return;
  }
  ++g_hostile_calls;
  for (int i = 0; i < 5 * sections + 1; ++i) cascade[i] = 3.0f;
}

namespace {

using Bytes = std::vector<unsigned char>;

template <typename T>
Bytes AsBytes(const std::vector<T>& v) {
  Bytes b(v.size() * sizeof(T));
  std::memcpy(b.data(), v.data(), b.size());
  return b;
}

// Zeroed workspace, so the bass designer's unwritten floats are the same in both runs.
std::vector<unsigned char> Workspace() { return std::vector<unsigned char>(4096, 0); }

Bytes IirFxp32() {
  std::vector<int32_t> out(QH_IirFixedLength(4));
  auto ws = Workspace();
  OVA_IirFilterDesignFxp32(1000.0f, 4, 48000, QH_IIR_LOWPASS, out.data(), ws.data());
  return AsBytes(out);
}

Bytes IirFxp16() {
  std::vector<int16_t> out(QH_IirFixedLength(3));
  auto ws = Workspace();
  OVA_IirFilterDesignFxp16(120.0f, 3, 44100, QH_IIR_HIGHPASS, out.data(), ws.data());
  return AsBytes(out);
}

Bytes ParametricFxp32() {
  const OVAParametriceqBandSpec bands[3] = {{PEQ_BAND_TYPE_LOWSHELF, 100.0f, 0.7f, 6.0f, 0},
                                            {PEQ_BAND_TYPE_PEAKING, 1000.0f, 2.0f, -4.0f, 0},
                                            {PEQ_BAND_TYPE_HIGHPASS, 40.0f, 0.7f, 0.0f, 0}};
  const OVAParametriceqSpec request = {3, bands, 48000};
  std::vector<int32_t> out(QH_IirFixedLength(6));
  auto ws = Workspace();
  OVA_ParametriceqDesignFxp32(&request, out.data(), ws.data());
  return AsBytes(out);
}

Bytes ThumpxFxp32() {
  std::vector<int32_t> out(QH_THUMPX_FIXED_LENGTH);
  auto ws = Workspace();
  OVA_THUMPX_FilterDesignFxp32(100, 0.3335f, 0.5f, 0.8f, 48000, out.data(), 5.5f, 500.0f, 44.0f, 1.5f, 0,
                               ws.data());
  return AsBytes(out);
}

Bytes CrossoverFxp32() {
  std::vector<int32_t> out(QH_MCDYN_FIXED_LENGTH);
  QUILL_McDyn_FilterDesignFxp32(300.0f, 48000, out.data());
  return AsBytes(out);
}

Bytes DistortionPrevention() {
  quillDistprevNotchDesignBlock blocks[2];
  std::memset(blocks, 0, sizeof blocks);
  for (auto& b : blocks) {
    b.nf_mode = 1;
    b.nf_band_ct = 3;
    b.nf_attk_ms = 200.0f;
    b.nf_rel_ms = 50.0f;
    b.nf_base_freq = 100.0f;
    b.nf_base_q = 10.0f;
    b.nf_base_attn_max = -6.0f;
  }
  quillDistprevDesignHeader header;
  std::vector<quillMBHLDistprevCoeff> records(2);
  quill_distprev_config_designer(&header, records.data(), blocks, 2);
  return AsBytes(records);
}

struct Case {
  const char* name;
  Bytes (*design)();
};

const Case kCases[] = {
    {"OVA_IirFilterDesignFxp32", IirFxp32},         {"OVA_IirFilterDesignFxp16", IirFxp16},
    {"OVA_ParametriceqDesignFxp32", ParametricFxp32}, {"OVA_THUMPX_FilterDesignFxp32", ThumpxFxp32},
    {"QUILL_McDyn_FilterDesignFxp32", CrossoverFxp32}, {"quill_distprev_config_designer", DistortionPrevention},
};

}  // namespace

int main() {
  // The host's definitions are what a global lookup finds, so without
  // internal binding the library would call them.
  if (dlsym(RTLD_DEFAULT, "MinimalIwl") != reinterpret_cast<void*>(&MinimalIwl)) {
    std::fprintf(stderr, "interposition: the host's MinimalIwl is not the global definition\n");
    return 1;
  }
  int failures = 0;
  for (const Case& c : kCases) {
    g_hostile = false;
    const Bytes plain = c.design();
    g_hostile = true;
    g_hostile_calls = 0;
    const Bytes hostile = c.design();
    g_hostile = false;
    if (plain != hostile || g_hostile_calls != 0) {
      std::fprintf(stderr, "interposition: %s changed under the host's helpers (%d calls reached them)\n",
                   c.name, g_hostile_calls);
      ++failures;
    }
  }
  // The host's own calls do reach its definitions.
  g_hostile = true;
  if (MinimalIwl(1.0f) != 5) ++failures;
  std::printf("interposition: %zu designs checked, %d failures\n", sizeof kCases / sizeof kCases[0], failures);
  return failures == 0 ? 0 : 1;
}
