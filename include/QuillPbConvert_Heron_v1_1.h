// QuillHeron_v1_1_Pb: converts between heron_v1_1 settings messages and the
// Heron engine's native control and coefficient records, for one sample rate.
// Threading: const methods may be called from several threads at once; a
// destination record or message must not be shared between concurrent calls.
// The library keeps no mutable global state.
//
// !! POPULATE NEVER CLEARS A RECORD, AND load_defaults DOES NOTHING !!
// Every populate writes only what the settings hold (present fields, the
// tables found for the rate); every other byte keeps what was there. The
// load_defaults flags call loadDefaults(), which is empty. So a record
// reused for another route keeps the regions that route does not set (rooms,
// headphone EQ, coefficients of an effect it leaves out), and the engine
// plays them. Start every populate from a zeroed record:
//     _quillHeronPremixApiCtrl premix;
//     std::memset(&premix, 0, sizeof premix);
//     auto postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();  // 66108 bytes
//     std::memset(postmix.get(), 0, sizeof *postmix);
// The postmix populate runs its steps in a fixed order and stops at the first
// negative result: the later steps are skipped and what the earlier ones wrote
// stays written. Nothing is rolled back.
//
// Result codes (int): 0 success (kOk); 1 nothing to do (kNothingToDo: a model
// lookup with no identifier); -1000 the route holds no heron_v1_1 settings,
// nothing written (kNoSettings); -999 a room identifier is in no model
// (kRoomNotFound); -998 a coefficient table is missing for the rate, an entry
// is missing, or a designer refused its parameters (kCoefficientFailure);
// -997 a negative Enhance2.ref_htest, or a room or headphone EQ larger than
// its region (kNegativeRefHtest). The bool converts always return true.
//
// The designers this class calls for Thumpx, MBHL crossovers and distortion
// prevention assume the default floating-point environment (see
// quillheron_filterdesign.h): populate from a thread that has not set
// flush-to-zero or another rounding mode.
//
// Records are laid out in quillHeronCtrlRecords.h and quillHeronCoeffRecords.h;
// values cross unchanged: every control field holds exactly the integer of the
// message field, in the engine's own unit, and coefficients are copied, never
// re-quantised.
#ifndef QUILLHERON_PBCONVERT_HERON_V1_1_H_
#define QUILLHERON_PBCONVERT_HERON_V1_1_H_

#include <string>
#include <vector>

#include "heron_v1_1.pb.h"
#include "routeconfiguration.pb.h"
#include "quillHeronCtrlRecords.h"
#include "quillHeronPostmixTrace.h"
#include "quillheron_export.h"

// Coefficient records; laid out in quillHeronCoeffRecords.h.
struct _quillHeronPostmixApiCtrlCoeffs;
struct _quillHeronHpfApiCoeff;
struct _quillAeqApiCoeff;
struct _quillBrioHpfApiCoeff;
struct _quillBrioXoverApiCoeff;
struct _quillTHUMPXApiCoeff;
struct _quillMBHLApiCoeff;
struct quillMBHLDistprevCoeff;
struct _quillHpcLyraRmData;
struct _quillHpcLyraHpeqData;

// The all-zero identifier, braces included:
// "{00000000-0000-0000-0000-000000000000}". Set on rebuilt messages wherever
// no identifier exists.
QH_EXPORT extern const std::string nullGuid;

class QH_EXPORT QuillHeron_v1_1_Pb {
 public:
  using HeronSettings = quill::pb::heron_v1_1::HeronSettings;
  using Postmix = quill::pb::heron_v1_1::Postmix;
  using RouteConfiguration = quill::pb::hub::RouteConfiguration;
  using AudioRoute = quill::pb::hub::AudioRoute;
  using ResourceLocator = quill::pb::hub::ResourceLocator;
  using Enhance2 = quill::pb::tech::Enhance2;
  using MbhlDistPrevCoeff = quill::pb::coef::MbhlDistPrevCoeff;
  using listeningModel = quill::pb::model::listeningModel;
  using ModelList = std::vector<const listeningModel*>;

  // Result codes.
  static constexpr int kOk = 0;
  static constexpr int kNothingToDo = 1;
  static constexpr int kNoSettings = -1000;
  static constexpr int kRoomNotFound = -999;
  static constexpr int kCoefficientFailure = -998;
  static constexpr int kNegativeRefHtest = -997;  // also: region too small

  // The sample rate in Hz; not validated (an unsupported rate shows only as
  // failed coefficient lookups).
  explicit QuillHeron_v1_1_Pb(int sampleRate);

  int sampleRate() const { return sampleRate_; }

  // Default loaders. Both do nothing: the caller prepares the record (zero
  // it; see above). The load_defaults arguments below only call these.
  void loadDefaults(_quillHeronPremixApiCtrl& record) const;
  void loadDefaults(_quillHeronPostmixApiCtrlCoeffs& record) const;

  // The HeronSettings of the first tech entry holding heron_v1_1, or null.
  const HeronSettings* findHeronSettings(const RouteConfiguration& route) const;

  // ---- Faders (premix true: premixFader, false: postmixFader) -------------
  // The five values, in the engine's units and passed through unchanged:
  // shadow; out_length, hold_length, in_length: the lengths of the fade-out,
  // hold and fade-in phases; state. Populate writes all five (an absent fader
  // or field reads as its default: 1, 1, 0, 1, 0) and returns 0, or -1000
  // with the outputs untouched. Convert sets all five, creating the fader
  // message; always true.
  int populate(const RouteConfiguration& route, int& shadow, int& out_length,
               int& hold_length, int& in_length, int& state, bool premix) const;
  // REQUIRES: settings != nullptr.
  bool convert(int shadow, int out_length, int hold_length, int in_length,
               int state, bool premix, HeronSettings* settings) const;

  // ---- Premix ---------------------------------------------------------------
  // Populate: present Premix fields, bypass_mode (first 5), Enhance2 and
  // Steady; 0, or -1000 from a route without settings. A negative
  // Enhance2.ref_htest is stored but does not fail the premix. Never clears.
  // Convert: sets every field; does not clear Premix first, so htest and
  // ref_htest accumulate 7 more values on each call. Always true.
  int populate(const RouteConfiguration& route,
               _quillHeronPremixApiCtrl& record, bool load_defaults) const;
  int populate(const HeronSettings& settings, _quillHeronPremixApiCtrl& record,
               bool load_defaults) const;
  // REQUIRES: settings != nullptr.
  bool convert(const _quillHeronPremixApiCtrl& record,
               HeronSettings* settings) const;

  // ---- Enhance2 (premix and postmix) -----------------------------------------
  // 0, or -997 at the first negative ref_htest value (which stays stored).
  int populate(const Enhance2& message, _quillEnhance2ApiCtrl& block) const;
  void convert(Enhance2* message, const _quillEnhance2ApiCtrl& block) const;

  // ---- Technology blocks ------------------------------------------------------
  // Populate copies present fields only and leaves the block untouched when
  // the path to the message is absent (Geq10b zeroes its reserved word
  // always); no result. Convert creates missing messages on the path, never
  // clears them.
  void populate(const HeronSettings& settings, _quillSteadyApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillBrioApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillOva3dApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillVistaApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillTHUMPxApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillGeq10bApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillAeqApiCtrl& block) const;
  void populate(const HeronSettings& settings, _quillLyraApiCtrl& block) const;
  void populate(const HeronSettings& settings, quillMBHLApiCtrls& block) const;
  void convert(const _quillSteadyApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillBrioApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillOva3dApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillVistaApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillTHUMPxApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillGeq10bApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillAeqApiCtrl& block, HeronSettings* settings) const;
  void convert(const _quillLyraApiCtrl& block, HeronSettings* settings) const;
  void convert(const quillMBHLApiCtrls& block, HeronSettings* settings) const;

  // ---- Postmix ----------------------------------------------------------------
  // Control record only: 0, or -997 from the postmix Enhance2 block (after
  // the whole record has been written).
  int populate(const HeronSettings& settings,
               _quillHeronPostmixApiCtrl& record) const;
  // Control record, then rooms (room_mask bits 2 wide, 4 front, 8
  // multichannel), headphone EQ, output high-pass, AEQ, Brio and Thumpx/MBHL
  // coefficients. 0 or the negative code of the first failing step.
  int populate(AudioRoute route, const HeronSettings& settings,
               _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
               const ModelList& models, int room_mask) const;
  int populate(const RouteConfiguration& route,
               _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
               const ModelList& models, int room_mask) const;
  // The same two, also filling `trace` (when not null) with what each step
  // did: the trace is cleared first and holds at most QUILL_TRACE_CAPACITY
  // entries (trace->dropped counts the rest). With a null trace they behave
  // exactly as the overloads above.
  int populate(AudioRoute route, const HeronSettings& settings,
               _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
               const ModelList& models, int room_mask, QuillPostmixTrace* trace) const;
  int populate(const RouteConfiguration& route,
               _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
               const ModelList& models, int room_mask, QuillPostmixTrace* trace) const;
  // Clears Postmix first. REQUIRES: settings != nullptr.
  void convert(const _quillHeronPostmixApiCtrl& record,
               HeronSettings* settings) const;
  // Writes the converter's rate into the sample_rate fields of the record's
  // headphone-EQ (and, with room models, room) regions before reading them.
  bool convert(_quillHeronPostmixApiCtrlCoeffs& record,
               HeronSettings* settings, bool with_room_models) const;

  // ---- Coefficient loaders: 0 or -998 -------------------------------------------
  // Each copies the table of the converter's rate (or designs from the design
  // parameters) into its region of the record, leaving the rest of the region
  // as it was; a failure leaves what was already copied. LoadHeronHPF has no
  // failure; LoadBrioCrossover always returns 0.
  void LoadHeronHPF(const Postmix& postmix,
                    _quillHeronPostmixApiCtrlCoeffs& record) const;
  int LoadBrioHPF(const Postmix& postmix,
                  _quillHeronPostmixApiCtrlCoeffs& record) const;
  int LoadBrioCrossover(const Postmix& postmix,
                        _quillHeronPostmixApiCtrlCoeffs& record) const;
  int PopulateTHUMPXCoeff(const HeronSettings& settings,
                          _quillHeronPostmixApiCtrlCoeffs& record) const;
  int PopulateMBHLCoeff(const HeronSettings& settings,
                        _quillHeronPostmixApiCtrlCoeffs& record) const;
  int PopulateMbhlDistPrevCoeff(const HeronSettings& settings,
                                _quillHeronPostmixApiCtrlCoeffs& record) const;
  void PopulateSenseConfigCoeff(const MbhlDistPrevCoeff& first,
                                const MbhlDistPrevCoeff& second,
                                _quillHeronPostmixApiCtrlCoeffs& record) const;
  void PopulateNotchConfigCoeff(const MbhlDistPrevCoeff& first,
                                const MbhlDistPrevCoeff& second,
                                _quillHeronPostmixApiCtrlCoeffs& record) const;

  // ---- Coefficient reverse converters ---------------------------------------------
  // Each appends one CoefTable per native array, at the converter's rate,
  // with every capacity element (no trimming); identifiers are nullGuid.
  void convert(const _quillBrioHpfApiCoeff& coeff, HeronSettings* settings) const;
  void convert(const _quillTHUMPXApiCoeff& coeff, HeronSettings* settings) const;
  void convert(const _quillBrioXoverApiCoeff& coeff, HeronSettings* settings) const;
  void convert(const _quillHeronHpfApiCoeff& coeff, HeronSettings* settings) const;
  void convert(const _quillAeqApiCoeff& coeff, HeronSettings* settings) const;
  void convert(const _quillMBHLApiCoeff& coeff, HeronSettings* settings) const;
  // first: the first of the two consecutive records.
  void convert(const quillMBHLDistprevCoeff* first, HeronSettings* settings) const;

  // ---- Listening models ------------------------------------------------------------
  // 1 when no aeqCoef locator has a uuid, else the result of the last lookup.
  int LoadAeq(AudioRoute route, const Postmix& postmix, const ModelList& models,
              _quillHeronPostmixApiCtrlCoeffs& record) const;
  // Writes the converter's rate into the three room records' sample_rate.
  void processRoomModels(_quillHeronPostmixApiCtrlCoeffs& record,
                         HeronSettings* settings) const;
  static void _addRoom(listeningModel* model, const _quillHpcLyraRmData* room,
                       unsigned int size, ResourceLocator* locator);
  static void _addHpeq(listeningModel* model, const _quillHpcLyraHpeqData* hpeq,
                       unsigned int size, ResourceLocator* locator);

 private:
  int sampleRate_;
};

#endif  // QUILLHERON_PBCONVERT_HERON_V1_1_H_
