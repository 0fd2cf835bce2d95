// Binding tables of the notch design block: integer fields (NF32Map) and
// float fields (NFfloatMap), rows in copy order with absolute byte offsets.
#include "notch_design_tables.h"

#include <cstddef>

#include "field_binding.h"
#include "native_io.h"

namespace quillheron {
namespace {

using quill::pb::tech::MbhlNotchDesignParams;
using NotchBlock = quillDistprevNotchDesignBlock;

constexpr FieldBinding<MbhlNotchDesignParams, NotchBlock, NativeWidth::kInt32> NF32Map[] = {
    QH_BIND(MbhlNotchDesignParams, nf_band_ct, 24),
    QH_BIND(MbhlNotchDesignParams, nf_spacing, 40),
    QH_BIND(MbhlNotchDesignParams, nf_width, 44),
};

constexpr FieldBinding<MbhlNotchDesignParams, NotchBlock, NativeWidth::kFloat32> NFfloatMap[] = {
    QH_BIND(MbhlNotchDesignParams, nf_thld, 4),
    QH_BIND(MbhlNotchDesignParams, nf_sense, 8),
    QH_BIND(MbhlNotchDesignParams, nf_attk_thld, 12),
    QH_BIND(MbhlNotchDesignParams, nf_attk_ms, 16),
    QH_BIND(MbhlNotchDesignParams, nf_rel_ms, 20),
    QH_BIND(MbhlNotchDesignParams, nf_base_freq, 28),
    QH_BIND(MbhlNotchDesignParams, nf_base_q, 32),
    QH_BIND(MbhlNotchDesignParams, nf_base_attn_max, 36),
    QH_BIND(MbhlNotchDesignParams, nf_slope, 48),
};

static_assert(rowsFitBlock(NF32Map) && rowsFitBlock(NFfloatMap), "notch rows inside the block");
constexpr std::size_t kNF32Offsets[] = {offsetof(NotchBlock, nf_band_ct), offsetof(NotchBlock, nf_spacing),
                                        offsetof(NotchBlock, nf_width)};
constexpr std::size_t kNFfloatOffsets[] = {
    offsetof(NotchBlock, nf_thld),      offsetof(NotchBlock, nf_sense),
    offsetof(NotchBlock, nf_attk_thld), offsetof(NotchBlock, nf_attk_ms),
    offsetof(NotchBlock, nf_rel_ms),    offsetof(NotchBlock, nf_base_freq),
    offsetof(NotchBlock, nf_base_q),    offsetof(NotchBlock, nf_base_attn_max),
    offsetof(NotchBlock, nf_slope)};
static_assert(rowOffsetsAre(NF32Map, kNF32Offsets), "NF32Map offsets follow the block");
static_assert(rowOffsetsAre(NFfloatMap, kNFfloatOffsets), "NFfloatMap offsets follow the block");

}  // namespace

void fillNotchDesignBlock(const MbhlNotchDesignParams& params, NotchBlock& block) {
  native::storeI32(&block, offsetof(NotchBlock, nf_mode), params.nf_mode());
  populateTable(NF32Map, params, block);
  populateTable(NFfloatMap, params, block);
}

}  // namespace quillheron
