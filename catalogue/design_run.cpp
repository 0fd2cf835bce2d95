// Run functions of the design requests: each family's exported designers,
// chosen by format, over the caller's buffers.
#include <cstring>

#include "design_requests.h"

namespace qh_design {
namespace {

struct FormatRow {
  Format format;
  const char* name;
  int width;
};
constexpr FormatRow kFormats[] = {
    {Format::kFloat, "float", 0},          {Format::kFxp32, "fxp32", 32}, {Format::kFxp32NoScale, "fxp32-noscale", 32},
    {Format::kFxp24, "fxp24", 24},         {Format::kFxp16, "fxp16", 16}, {Format::kRecord, "record", 32},
};

int NonNegative(int n) { return n > 0 ? n : 0; }

}  // namespace

const char* FormatName(Format format) {
  for (const FormatRow& row : kFormats) {
    if (row.format == format) return row.name;
  }
  return "?";
}

bool ParseFormat(const char* name, Format* format) {
  for (const FormatRow& row : kFormats) {
    if (std::strcmp(row.name, name) == 0) {
      *format = row.format;
      return true;
    }
  }
  return false;
}

int WordWidth(Format format) {
  for (const FormatRow& row : kFormats) {
    if (row.format == format) return row.width;
  }
  return 0;
}

// ---- Butterworth: 5*S + 1 floats or 6*S + 2 words ----

int OutputLength(const ButterworthRequest& r, Format f) {
  switch (f) {
    case Format::kFloat: return QH_IirFloatLength(r.order);
    case Format::kFxp32: case Format::kFxp24: case Format::kFxp16: return QH_IirFixedLength(r.order);
    default: return 0;
  }
}

int WorkspaceBytes(const ButterworthRequest& r, Format f) {
  return f == Format::kFloat || OutputLength(r, f) == 0 ? 0 : QH_IirDesignWorkspaceBytes(QH_IirSectionCount(r.order));
}

int Run(const ButterworthRequest& r, Format f, const DesignBuffers& out) {
  switch (f) {
    case Format::kFloat:
      return OVA_IirFilterDesignFloat(r.cutoff_hz, r.order, r.sample_rate, r.filter_type, out.floats);
    case Format::kFxp32:
      return OVA_IirFilterDesignFxp32(r.cutoff_hz, r.order, r.sample_rate, r.filter_type, out.words32, out.workspace);
    case Format::kFxp24:
      return OVA_IirFilterDesignFxp24(r.cutoff_hz, r.order, r.sample_rate, r.filter_type, out.words32, out.workspace);
    case Format::kFxp16:
      return OVA_IirFilterDesignFxp16(r.cutoff_hz, r.order, r.sample_rate, r.filter_type, out.words16, out.workspace);
    default:
      return QH_IIR_DESIGN_REJECTED;
  }
}

// ---- Parametric EQ: one section per band ----

int OutputLength(const PeqRequest& r, Format f) {
  const int bands = NonNegative(r.band_count);
  if (f == Format::kFloat) return 5 * bands + 1;
  if (f == Format::kRecord) return 0;
  return 6 * bands + 2;
}

int WorkspaceBytes(const PeqRequest& r, Format f) {
  const int bands = NonNegative(r.band_count);
  if (f == Format::kFloat || f == Format::kRecord) return 0;
  return f == Format::kFxp32NoScale ? QH_PeqNoScaleWorkspaceBytes(bands) : QH_IirDesignWorkspaceBytes(bands);
}

int Run(const PeqRequest& r, Format f, const DesignBuffers& out) {
  switch (f) {
    case Format::kFloat: return OVA_ParametriceqDesignFloat(&r, out.floats);
    case Format::kFxp32NoScale: return OVA_ParametriceqDesignFxp32NoScale(&r, out.words32, out.workspace);
    case Format::kFxp32: return OVA_ParametriceqDesignFxp32(&r, out.words32, out.workspace);
    case Format::kFxp24: return OVA_ParametriceqDesignFxp24(&r, out.words32, out.workspace);
    case Format::kFxp16: return OVA_ParametriceqDesignFxp16(&r, out.words16, out.workspace);
    default: return QH_IIR_DESIGN_REJECTED;
  }
}

// ---- Bass enhancement: 52 floats or 63 words ----

int OutputLength(const ThumpxRequest&, Format f) {
  switch (f) {
    case Format::kFloat: return QH_THUMPX_FLOAT_LENGTH;
    case Format::kFxp32: case Format::kFxp24: case Format::kFxp16: return QH_THUMPX_FIXED_LENGTH;
    default: return 0;
  }
}

int WorkspaceBytes(const ThumpxRequest& r, Format f) {
  return f == Format::kFloat || OutputLength(r, f) == 0 ? 0 : QH_THUMPX_WORKSPACE_BYTES;
}

int Run(const ThumpxRequest& r, Format f, const DesignBuffers& out) {
  switch (f) {
    case Format::kFloat:
      return OVA_THUMPX_FilterDesignFloat(r.custom_speaker_size, r.bass_ctrl, r.hp_ratio, r.ext_bass, r.sampling_rate,
                                          out.floats, r.lp_ratio, r.pre_lp_freq, r.harm_hp_freq, r.clip_level,
                                          r.reserved);
    case Format::kFxp32:
      return OVA_THUMPX_FilterDesignFxp32(r.custom_speaker_size, r.bass_ctrl, r.hp_ratio, r.ext_bass, r.sampling_rate,
                                          out.words32, r.lp_ratio, r.pre_lp_freq, r.harm_hp_freq, r.clip_level,
                                          r.reserved, out.workspace);
    case Format::kFxp24:
      return OVA_THUMPX_FilterDesignFxp24(r.custom_speaker_size, r.bass_ctrl, r.hp_ratio, r.ext_bass, r.sampling_rate,
                                          out.words32, r.lp_ratio, r.pre_lp_freq, r.harm_hp_freq, r.clip_level,
                                          r.reserved, out.workspace);
    case Format::kFxp16:
      return OVA_THUMPX_FilterDesignFxp16(r.custom_speaker_size, r.bass_ctrl, r.hp_ratio, r.ext_bass, r.sampling_rate,
                                          out.words16, r.lp_ratio, r.pre_lp_freq, r.harm_hp_freq, r.clip_level,
                                          r.reserved, out.workspace);
    default:
      return QH_IIR_DESIGN_REJECTED;
  }
}

// ---- Crossover: 10 floats or 12 words, no workspace ----

int OutputLength(const CrossoverRequest&, Format f) {
  if (f == Format::kFloat) return QH_MCDYN_FLOAT_LENGTH;
  return f == Format::kFxp32 ? QH_MCDYN_FIXED_LENGTH : 0;
}

int WorkspaceBytes(const CrossoverRequest&, Format) { return 0; }

int Run(const CrossoverRequest& r, Format f, const DesignBuffers& out) {
  if (f == Format::kFloat) return QUILL_McDyn_FilterDesignFloat(r.crossover_freq, r.sample_rate, out.floats);
  if (f == Format::kFxp32) return QUILL_McDyn_FilterDesignFxp32(r.crossover_freq, r.sample_rate, out.words32);
  return QH_IIR_DESIGN_REJECTED;
}

// ---- Distortion prevention ----

int Run(const DistprevRequest& r, quillDistprevDesignHeader* header, quillMBHLDistprevCoeff* records) {
  return quill_distprev_config_designer(header, records, r.blocks, r.count);
}

}  // namespace qh_design
