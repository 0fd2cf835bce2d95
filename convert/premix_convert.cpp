// Premix path: the premix control record and the Enhance2 block that the
// premix and postmix records share.
#include <algorithm>
#include <cstddef>

#include "QuillPbConvert_Heron_v1_1.h"
#include "binding_tables.h"
#include "native_io.h"

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Premix;
using quill::pb::hub::RouteConfiguration;
using quill::pb::tech::Enhance2;
using namespace quillheron;

namespace {
constexpr std::size_t kPremixBypassMode = offsetof(_quillHeronPremixApiCtrl, bypass_mode);
constexpr std::size_t kHtest = offsetof(_quillEnhance2ApiCtrl, htest);
constexpr std::size_t kRefHtest = offsetof(_quillEnhance2ApiCtrl, ref_htest);
constexpr int kBypassModes = QUILL_HERON_BYPASS_MODE_COUNT;
constexpr int kHtests = QUILL_ENHANCE2_HTEST_COUNT;
}  // namespace

int QuillHeron_v1_1_Pb::populate(const RouteConfiguration& route,
                                 _quillHeronPremixApiCtrl& record,
                                 bool load_defaults) const {
  const HeronSettings* settings = findHeronSettings(route);
  if (settings == nullptr) return kNoSettings;
  return populate(*settings, record, load_defaults);
}

int QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                 _quillHeronPremixApiCtrl& record,
                                 bool load_defaults) const {
  if (load_defaults) loadDefaults(record);
  if (!settings.has_premix()) return kOk;
  const Premix& premix = settings.premix();

  populateTable(bind::PremixMap, premix, record);
  const int modes = std::min(premix.bypass_mode_size(), kBypassModes);
  for (int i = 0; i < modes; ++i) {
    native::storeI32(&record, kPremixBypassMode + 4 * i, premix.bypass_mode(i));
  }
  // A negative ref_htest does not fail the premix: the result is dropped on
  // purpose (the postmix path reports it).
  (void)populate(premix.enhance2(), record.enhance2);
  populate(settings, record.steady);
  return kOk;
}

bool QuillHeron_v1_1_Pb::convert(const _quillHeronPremixApiCtrl& record,
                                 HeronSettings* settings) const {
  Premix* premix = settings->mutable_premix();  // reused, not cleared
  convertTable(bind::PremixMap, record, premix);
  premix->clear_bypass_mode();
  for (int i = 0; i < kBypassModes; ++i) {
    premix->add_bypass_mode(native::loadI32(&record, kPremixBypassMode + 4 * i));
  }
  convert(premix->mutable_enhance2(), record.enhance2);
  convert(record.steady, settings);
  return true;
}

int QuillHeron_v1_1_Pb::populate(const Enhance2& message,
                                 _quillEnhance2ApiCtrl& block) const {
  populateTable(bind::Enh2Map, message, block);
  const int htests = std::min(message.htest_size(), kHtests);
  for (int i = 0; i < htests; ++i) {
    native::storeI32(&block, kHtest + 4 * i, message.htest(i));
  }
  // The engine rejects a negative reference: the offending value is stored,
  // then copying stops.
  const int refs = std::min(message.ref_htest_size(), kHtests);
  for (int i = 0; i < refs; ++i) {
    const int32_t value = message.ref_htest(i);
    native::storeI32(&block, kRefHtest + 4 * i, value);
    if (value < 0) return kNegativeRefHtest;
  }
  return kOk;
}

// Appends to htest and ref_htest without clearing them (the postmix path
// clears its whole Postmix beforehand; the premix path accumulates).
// Enhance2.limiter has no native slot and is left alone.
void QuillHeron_v1_1_Pb::convert(Enhance2* message,
                                 const _quillEnhance2ApiCtrl& block) const {
  convertTable(bind::Enh2Map, block, message);
  for (int i = 0; i < kHtests; ++i) {
    message->add_htest(native::loadI32(&block, kHtest + 4 * i));
  }
  for (int i = 0; i < kHtests; ++i) {
    message->add_ref_htest(native::loadI32(&block, kRefHtest + 4 * i));
  }
}
