// Technology control blocks: one populate (message to block) and one convert
// (block to message) per technology. Populate follows the message path inside
// HeronSettings and does nothing when a link is absent; convert creates the
// missing links and never clears what it finds.
#include <cstddef>

#include "QuillPbConvert_Heron_v1_1.h"
#include "binding_tables.h"
#include "native_io.h"

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quill::pb::tech::Aeq;
using quill::pb::tech::Brio;
using quill::pb::tech::Geq10b;
using quill::pb::tech::Lyra;
using quill::pb::tech::Mbhl;
using quill::pb::tech::Ova3d;
using quill::pb::tech::Thumpx;
using quill::pb::tech::Vista;
using namespace quillheron;

namespace {

constexpr std::size_t kThumpxInputGain = offsetof(_quillTHUMPxApiCtrl, input_gain);
constexpr std::size_t kGeqEnable = offsetof(_quillGeq10bApiCtrl, enable);
constexpr std::size_t kGeqReserved = offsetof(_quillGeq10bApiCtrl, reserved);
constexpr std::size_t kAeqEnable = offsetof(_quillAeqApiCtrl, enable);
constexpr std::size_t kLyraCoef = offsetof(_quillLyraApiCtrl, super_stereo_coef);
constexpr int kLyraCoefs = QUILL_LYRA_SUPER_STEREO_COEF_COUNT;

// The Brio stage messages, or null when a link of the path is absent.
const Brio* findBrio(const HeronSettings& settings) {
  const Postmix& postmix = settings.postmix();
  return postmix.has_brio() ? &postmix.brio() : nullptr;
}

Brio* mutableBrio(HeronSettings* settings) {
  return settings->mutable_postmix()->mutable_brio();
}

}  // namespace

// ---- Steady (premix) -----------------------------------------------------------
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillSteadyApiCtrl& block) const {
  const auto& premix = settings.premix();
  if (!premix.has_steady()) return;
  populateTable(bind::Steady32Map, premix.steady(), block);
  populateTable(bind::Steady16Map, premix.steady(), block);
}

void QuillHeron_v1_1_Pb::convert(const _quillSteadyApiCtrl& block,
                                 HeronSettings* settings) const {
  auto* steady = settings->mutable_premix()->mutable_steady();
  convertTable(bind::Steady32Map, block, steady);
  convertTable(bind::Steady16Map, block, steady);
}

// ---- Brio and its nested stages ------------------------------------------------
// Nested stages are filled in the order ova3d, thumpx, vista; Brio.thump has
// no native slot.
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillBrioApiCtrl& block) const {
  const Brio* brio = findBrio(settings);
  if (brio == nullptr) return;
  populateTable(bind::BRIO32Map, *brio, block);
  populateTable(bind::BRIO16Map, *brio, block);
  populate(settings, block.ova3d);
  populate(settings, block.thumpx);
  populate(settings, block.vista);
}

// Converts ova3d, vista, thumpx (all three become present), then Brio's own.
void QuillHeron_v1_1_Pb::convert(const _quillBrioApiCtrl& block,
                                 HeronSettings* settings) const {
  Brio* brio = mutableBrio(settings);
  convert(block.ova3d, settings);
  convert(block.vista, settings);
  convert(block.thumpx, settings);
  convertTable(bind::BRIO32Map, block, brio);
  convertTable(bind::BRIO16Map, block, brio);
}

void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillOva3dApiCtrl& block) const {
  const Brio* brio = findBrio(settings);
  if (brio == nullptr || !brio->has_ova3d()) return;
  populateTable(bind::OVA3D16Map, brio->ova3d(), block);
  populateTable(bind::OVA3D32Map, brio->ova3d(), block);
}

void QuillHeron_v1_1_Pb::convert(const _quillOva3dApiCtrl& block,
                                 HeronSettings* settings) const {
  Ova3d* ova3d = mutableBrio(settings)->mutable_ova3d();
  convertTable(bind::OVA3D16Map, block, ova3d);
  convertTable(bind::OVA3D32Map, block, ova3d);
}

void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillVistaApiCtrl& block) const {
  const Brio* brio = findBrio(settings);
  if (brio == nullptr || !brio->has_vista()) return;
  populateTable(bind::Vista32Map, brio->vista(), block);
  populateTable(bind::Vista16Map, brio->vista(), block);
}

// enable and hs_hpf_enable first, then the int16 fields.
void QuillHeron_v1_1_Pb::convert(const _quillVistaApiCtrl& block,
                                 HeronSettings* settings) const {
  Vista* vista = mutableBrio(settings)->mutable_vista();
  convertTable(bind::Vista32Map, block, vista);
  convertTable(bind::Vista16Map, block, vista);
}

// input_gain is the one int16 of the block and is copied by hand, first.
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillTHUMPxApiCtrl& block) const {
  const Brio* brio = findBrio(settings);
  if (brio == nullptr || !brio->has_thumpx()) return;
  const Thumpx& thumpx = brio->thumpx();
  if (thumpx.has_input_gain()) {
    native::storeI16(&block, kThumpxInputGain, thumpx.input_gain());
  }
  populateTable(bind::THUMPX32Map, thumpx, block);
}

void QuillHeron_v1_1_Pb::convert(const _quillTHUMPxApiCtrl& block,
                                 HeronSettings* settings) const {
  Thumpx* thumpx = mutableBrio(settings)->mutable_thumpx();
  convertTable(bind::THUMPX32Map, block, thumpx);
  thumpx->set_input_gain(native::loadI16(&block, kThumpxInputGain));
}

// ---- Geq10b ---------------------------------------------------------------------
// The reserved word is zeroed on every call, with or without geq10b.
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillGeq10bApiCtrl& block) const {
  const Postmix& postmix = settings.postmix();
  if (postmix.has_geq10b()) {
    const Geq10b& geq = postmix.geq10b();
    populateTable(bind::GEQ10B16Map, geq, block);
    if (geq.has_enable()) native::storeI32(&block, kGeqEnable, geq.enable());
  }
  native::storeI16(&block, kGeqReserved, 0);
}

// The reserved word is not converted.
void QuillHeron_v1_1_Pb::convert(const _quillGeq10bApiCtrl& block,
                                 HeronSettings* settings) const {
  Geq10b* geq = settings->mutable_postmix()->mutable_geq10b();
  geq->set_enable(native::loadI32(&block, kGeqEnable));
  convertTable(bind::GEQ10B16Map, block, geq);
}

// ---- Aeq --------------------------------------------------------------------------
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillAeqApiCtrl& block) const {
  const Postmix& postmix = settings.postmix();
  if (!postmix.has_aeq()) return;
  const Aeq& aeq = postmix.aeq();
  populateTable(bind::AEQ16Map, aeq, block);
  if (aeq.has_enable()) native::storeI32(&block, kAeqEnable, aeq.enable());
}

void QuillHeron_v1_1_Pb::convert(const _quillAeqApiCtrl& block,
                                 HeronSettings* settings) const {
  Aeq* aeq = settings->mutable_postmix()->mutable_aeq();
  aeq->set_enable(native::loadI32(&block, kAeqEnable));
  convertTable(bind::AEQ16Map, block, aeq);
}

// ---- Lyra -------------------------------------------------------------------------
// super_stereo_coef is taken only when it holds exactly four values; any
// other count leaves the native coefficients as they were. Lyra.limiter has
// no native slot.
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  _quillLyraApiCtrl& block) const {
  const Postmix& postmix = settings.postmix();
  if (!postmix.has_lyra()) return;
  const Lyra& lyra = postmix.lyra();
  populateTable(bind::LYRA32Map, lyra, block);
  if (lyra.super_stereo_coef_size() == kLyraCoefs) {
    for (int i = 0; i < kLyraCoefs; ++i) {
      native::storeI32(&block, kLyraCoef + 4 * i, lyra.super_stereo_coef(i));
    }
  }
}

// Appends the four coefficients without clearing super_stereo_coef.
void QuillHeron_v1_1_Pb::convert(const _quillLyraApiCtrl& block,
                                 HeronSettings* settings) const {
  Lyra* lyra = settings->mutable_postmix()->mutable_lyra();
  convertTable(bind::LYRA32Map, block, lyra);
  for (int i = 0; i < kLyraCoefs; ++i) {
    lyra->add_super_stereo_coef(native::loadI32(&block, kLyraCoef + 4 * i));
  }
}

// ---- Mbhl -------------------------------------------------------------------------
void QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                  quillMBHLApiCtrls& block) const {
  const Postmix& postmix = settings.postmix();
  if (!postmix.has_mbhl()) return;
  populateTable(bind::MBHL16Map, postmix.mbhl(), block);
  populateTable(bind::MBHL32Map, postmix.mbhl(), block);
}

// output_gain and anti_clip_level (int16, sign-extended) first, then the rest.
void QuillHeron_v1_1_Pb::convert(const quillMBHLApiCtrls& block,
                                 HeronSettings* settings) const {
  Mbhl* mbhl = settings->mutable_postmix()->mutable_mbhl();
  convertTable(bind::MBHL16Map, block, mbhl);
  convertTable(bind::MBHL32Map, block, mbhl);
}
