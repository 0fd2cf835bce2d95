// QuillHeron_v1_1_Pb: converts between heron_v1_1 settings messages and the
// Heron engine's native control and coefficient records, for one sample rate.
// Threading: const methods may be called from several threads at once; a
// destination record or message must not be shared between concurrent calls.
// The library keeps no mutable global state.
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

  // Default loaders. Both do nothing: the caller prepares the record.
  void loadDefaults(_quillHeronPremixApiCtrl& record) const;
  void loadDefaults(_quillHeronPostmixApiCtrlCoeffs& record) const;

  // The HeronSettings of the first tech entry holding heron_v1_1, or null.
  const HeronSettings* findHeronSettings(const RouteConfiguration& route) const;

  // ---- Faders (premix true: premixFader, false: postmixFader) -------------
  int populate(const RouteConfiguration& route, int& shadow, int& out_length,
               int& hold_length, int& in_length, int& state, bool premix) const;
  // REQUIRES: settings != nullptr.
  bool convert(int shadow, int out_length, int hold_length, int in_length,
               int state, bool premix, HeronSettings* settings) const;

  // ---- Premix ---------------------------------------------------------------
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
  // always). Convert creates missing messages on the path, never clears them.
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
