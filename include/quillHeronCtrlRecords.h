// Native control records of the Heron engine: the premix and postmix control
// records and the per-technology control blocks they embed. Plain data, no
// functions. These bytes are the engine's wire format: every multi-byte field
// is little-endian and naturally aligned, with no packing; the layout is the
// same on 32-bit Arm and x86-64. The converter never writes padding bytes.
//
// Units: every field holds exactly the integer of the settings message field
// of the same name, in the engine's own unit; the converter never scales.
// Where the settings fix a scale it is noted at the field (Q15: 32767 is
// unity; 2^k: the value 1.0 with k fraction bits). int16 fields receive the
// low 16 bits of the message value (70000 is stored as 4464) and read back
// sign-extended.
// Populate writes present fields only and never clears: zero a record before
// populating it (see QuillPbConvert_Heron_v1_1.h).
#ifndef QUILLHERON_CTRL_RECORDS_H_
#define QUILLHERON_CTRL_RECORDS_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define QH_LAYOUT_ASSERT(cond, what) static_assert(cond, what)
#else
#define QH_LAYOUT_ASSERT(cond, what) _Static_assert(cond, what)
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Number of per-mode values in the postmix control record, and the engine's
// slot order for them (the settings messages order them by HeronModeOrder).
enum {
  QUILL_HERON_MODE_COUNT = 6,
  QUILL_HERON_SLOT_STEREO = 0,
  QUILL_HERON_SLOT_FRONT = 1,
  QUILL_HERON_SLOT_WIDE = 2,
  QUILL_HERON_SLOT_BYPASS = 3,
  QUILL_HERON_SLOT_MULTICHANNEL = 4,
  QUILL_HERON_SLOT_DOWNMIX = 5,
  QUILL_HERON_BYPASS_MODE_COUNT = 5,
  QUILL_ENHANCE2_HTEST_COUNT = 7,
  QUILL_LYRA_SUPER_STEREO_COEF_COUNT = 4
};

// Volume levelling (20 bytes).
typedef struct _quillSteadyApiCtrl {
  int32_t enable;           //  0
  int32_t intensity_level;  //  4
  int32_t mode;             //  8
  int16_t input_gain;       // 12
  int16_t output_gain;      // 14
  int16_t lkfs_gain;        // 16
  // 18: 2 bytes padding
} _quillSteadyApiCtrl;

// Loudness compensation (96 bytes); used in both premix and postmix.
typedef struct _quillEnhance2ApiCtrl {
  int32_t mode;                  //  0
  int32_t mv_downstream;         //  4
  int32_t master_volume;         //  8
  int32_t target_spl;            // 12
  int32_t system_spl;            // 16
  int32_t system_calib_level;    // 20
  int32_t hi_freq_compensation;  // 24
  int32_t lo_freq_compensation;  // 28
  int32_t htest[7];              // 32
  int32_t ref_htest[7];          // 60
  int32_t content_dr;            // 88
  int32_t max_lf_boost;          // 92
} _quillEnhance2ApiCtrl;

// Premix control record (156 bytes).
typedef struct _quillHeronPremixApiCtrl {
  _quillSteadyApiCtrl steady;      //   0
  _quillEnhance2ApiCtrl enhance2;  //  20
  int32_t output_device;           // 116
  int32_t stream_gain;             // 120
  int32_t bypass_mode[5];          // 124  message order
  int32_t stream_gain_downstream;  // 144
  int32_t headroom_limit;          // 148
  int32_t headroom_ratio;          // 152
} _quillHeronPremixApiCtrl;

// 3D stereo stage inside Brio (28 bytes).
typedef struct _quillOva3dApiCtrl {
  int32_t enable;        //  0
  int32_t mode;          //  4
  int32_t hp_enable;     //  8
  int32_t hi_bit_rate;   // 12
  int16_t input_gain;    // 16
  int16_t output_gain;   // 18
  int16_t bypass_gain;   // 20
  int16_t space_level;   // 22
  int16_t center_level;  // 24
  // 26: 2 bytes padding
} _quillOva3dApiCtrl;

// Wide-surround stage inside Brio (16 bytes).
typedef struct _quillVistaApiCtrl {
  int32_t enable;                    //  0
  int32_t hs_hpf_enable;             //  4
  int16_t input_gain;                //  8
  int16_t bypass_gain;               // 10
  int16_t center_boost_level;        // 12
  int16_t speaker_separation_level;  // 14
} _quillVistaApiCtrl;

// Bass-enhancement stage inside Brio (24 bytes).
typedef struct _quillTHUMPxApiCtrl {
  int32_t enable;        //  0
  int32_t mode;          //  4
  int32_t bass_level;    //  8
  int32_t speaker_size;  // 12
  int32_t dynamics;      // 16
  int16_t input_gain;    // 20
  // 22: 2 bytes padding
} _quillTHUMPxApiCtrl;

// Stereo enhancement with its nested stages (104 bytes).
typedef struct _quillBrioApiCtrl {
  _quillOva3dApiCtrl ova3d;    //   0
  _quillVistaApiCtrl vista;    //  28
  _quillTHUMPxApiCtrl thumpx;  //  44
  int32_t enable;              //  68
  int32_t enhance_mode;        //  72
  int32_t crossover_enable;    //  76
  int32_t hpf_enable;          //  80
  int32_t def_enable;          //  84
  int32_t focus_enable;        //  88
  int16_t input_gain;          //  92
  int16_t output_gain;         //  94
  int16_t bypass_gain;         //  96
  int16_t def_level;           //  98
  int16_t focus_level;         // 100
  // 102: 2 bytes padding
} _quillBrioApiCtrl;

// Ten-band graphic equaliser (28 bytes); band k gain at 6 + 2k.
typedef struct _quillGeq10bApiCtrl {
  int32_t enable;         //  0
  int16_t input_gain;     //  4
  int16_t band_gain[10];  //  6 .. 24
  int16_t reserved;       // 26  always written 0 by populate
} _quillGeq10bApiCtrl;

// Adaptive equaliser gains (12 bytes).
typedef struct _quillAeqApiCtrl {
  int32_t enable;       //  0
  int16_t input_gain;   //  4
  int16_t output_gain;  //  6
  int16_t bypass_gain;  //  8
  // 10: 2 bytes padding
} _quillAeqApiCtrl;

// Headphone virtualiser (40 bytes).
typedef struct _quillLyraApiCtrl {
  int32_t downmix;               //  0
  int32_t super_stereo;          //  4
  int32_t input_gain;            //  8
  int32_t bypass_reverb;         // 12
  int32_t bypass_conv;           // 16
  int32_t bypass_hpeq;           // 20
  int32_t super_stereo_coef[4];  // 24
} _quillLyraApiCtrl;

// Multi-band limiter (80 bytes). The "neutral" values are the settings
// schema's defaults, the engine's neutral tuning; populate copies them only
// when the message field is present.
typedef struct quillMBHLApiCtrls {
  int32_t enable;            //  0
  int16_t output_gain;       //  4  Q15 (neutral 32767, unity)
  int16_t anti_clip_level;   //  6  Q15 (neutral 6554, 0.2)
  int32_t com_attack;        //  8
  int32_t low_decay;         // 12
  int32_t mid_decay;         // 16
  int32_t high_decay;        // 20
  int32_t low_ratio;         // 24  2^28 = 1.0 (neutral)
  int32_t mid_ratio;         // 28  2^28 = 1.0
  int32_t high_ratio;        // 32  2^28 = 1.0
  int32_t mode;              // 36
  int32_t boost;             // 40  2^20 = 1.0 (neutral)
  int32_t low_cross;         // 44  Hz (neutral 300)
  int32_t mid_cross;         // 48  Hz (neutral 2000)
  int32_t low_thresh;        // 52  ratio scale: 2^27 = 0.5 (neutral)
  int32_t mid_thresh;        // 56  2^27 = 0.5
  int32_t high_thresh;       // 60  2^27 = 0.5
  int32_t low_makeup;        // 64  2^23 = 1.0 (neutral)
  int32_t mid_makeup;        // 68  2^23 = 1.0
  int32_t high_makeup;       // 72  2^23 = 1.0
  int32_t dist_prev_enable;  // 76
} quillMBHLApiCtrls;

// Postmix control record (488 bytes). The three per-mode arrays are in the
// engine's slot order (QUILL_HERON_SLOT_*); bypass_mode is in message order.
typedef struct _quillHeronPostmixApiCtrl {
  int32_t output_device;           //   0
  int32_t postmix_gain;            //   4
  int32_t hpf_enable;              //   8
  int32_t limiter;                 //  12
  int32_t lyra_stereo_mode;        //  16
  int32_t lyra_multi_ch;           //  20  -1 is written as 0
  int32_t lyra_input_gain[6];      //  24
  int32_t bypass_hpeq[6];          //  48
  int32_t aeq_enable[6];           //  72
  int32_t dc_cut_enable;           //  96
  int32_t bypass_mode[5];          // 100
  int32_t limiter_master_vol;      // 120
  int32_t bypass_gain;             // 124
  _quillBrioApiCtrl brio;          // 128
  _quillGeq10bApiCtrl geq10b;      // 232
  _quillAeqApiCtrl aeq;            // 260
  _quillEnhance2ApiCtrl enhance2;  // 272
  _quillLyraApiCtrl lyra;          // 368
  quillMBHLApiCtrls mbhl;          // 408
} _quillHeronPostmixApiCtrl;

#ifdef __cplusplus
}  // extern "C"
#endif

// Layout checks: offsets and sizes are part of the engine contract.
QH_LAYOUT_ASSERT(sizeof(_quillSteadyApiCtrl) == 20, "steady size");
QH_LAYOUT_ASSERT(offsetof(_quillSteadyApiCtrl, enable) == 0, "steady");
QH_LAYOUT_ASSERT(offsetof(_quillSteadyApiCtrl, intensity_level) == 4, "steady");
QH_LAYOUT_ASSERT(offsetof(_quillSteadyApiCtrl, mode) == 8, "steady");
QH_LAYOUT_ASSERT(offsetof(_quillSteadyApiCtrl, input_gain) == 12, "steady");
QH_LAYOUT_ASSERT(offsetof(_quillSteadyApiCtrl, output_gain) == 14, "steady");
QH_LAYOUT_ASSERT(offsetof(_quillSteadyApiCtrl, lkfs_gain) == 16, "steady");

QH_LAYOUT_ASSERT(sizeof(_quillEnhance2ApiCtrl) == 96, "enhance2 size");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, mode) == 0, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, mv_downstream) == 4, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, master_volume) == 8, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, target_spl) == 12, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, system_spl) == 16, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, system_calib_level) == 20, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, hi_freq_compensation) == 24, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, lo_freq_compensation) == 28, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, htest) == 32, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, ref_htest) == 60, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, content_dr) == 88, "enhance2");
QH_LAYOUT_ASSERT(offsetof(_quillEnhance2ApiCtrl, max_lf_boost) == 92, "enhance2");

QH_LAYOUT_ASSERT(sizeof(_quillHeronPremixApiCtrl) == 156, "premix size");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, steady) == 0, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, enhance2) == 20, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, output_device) == 116, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, stream_gain) == 120, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, bypass_mode) == 124, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, stream_gain_downstream) == 144, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, headroom_limit) == 148, "premix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPremixApiCtrl, headroom_ratio) == 152, "premix");

QH_LAYOUT_ASSERT(sizeof(_quillOva3dApiCtrl) == 28, "ova3d size");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, enable) == 0, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, mode) == 4, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, hp_enable) == 8, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, hi_bit_rate) == 12, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, input_gain) == 16, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, output_gain) == 18, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, bypass_gain) == 20, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, space_level) == 22, "ova3d");
QH_LAYOUT_ASSERT(offsetof(_quillOva3dApiCtrl, center_level) == 24, "ova3d");

QH_LAYOUT_ASSERT(sizeof(_quillVistaApiCtrl) == 16, "vista size");
QH_LAYOUT_ASSERT(offsetof(_quillVistaApiCtrl, enable) == 0, "vista");
QH_LAYOUT_ASSERT(offsetof(_quillVistaApiCtrl, hs_hpf_enable) == 4, "vista");
QH_LAYOUT_ASSERT(offsetof(_quillVistaApiCtrl, input_gain) == 8, "vista");
QH_LAYOUT_ASSERT(offsetof(_quillVistaApiCtrl, bypass_gain) == 10, "vista");
QH_LAYOUT_ASSERT(offsetof(_quillVistaApiCtrl, center_boost_level) == 12, "vista");
QH_LAYOUT_ASSERT(offsetof(_quillVistaApiCtrl, speaker_separation_level) == 14, "vista");

QH_LAYOUT_ASSERT(sizeof(_quillTHUMPxApiCtrl) == 24, "thumpx size");
QH_LAYOUT_ASSERT(offsetof(_quillTHUMPxApiCtrl, enable) == 0, "thumpx");
QH_LAYOUT_ASSERT(offsetof(_quillTHUMPxApiCtrl, mode) == 4, "thumpx");
QH_LAYOUT_ASSERT(offsetof(_quillTHUMPxApiCtrl, bass_level) == 8, "thumpx");
QH_LAYOUT_ASSERT(offsetof(_quillTHUMPxApiCtrl, speaker_size) == 12, "thumpx");
QH_LAYOUT_ASSERT(offsetof(_quillTHUMPxApiCtrl, dynamics) == 16, "thumpx");
QH_LAYOUT_ASSERT(offsetof(_quillTHUMPxApiCtrl, input_gain) == 20, "thumpx");

QH_LAYOUT_ASSERT(sizeof(_quillBrioApiCtrl) == 104, "brio size");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, ova3d) == 0, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, vista) == 28, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, thumpx) == 44, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, enable) == 68, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, enhance_mode) == 72, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, crossover_enable) == 76, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, hpf_enable) == 80, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, def_enable) == 84, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, focus_enable) == 88, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, input_gain) == 92, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, output_gain) == 94, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, bypass_gain) == 96, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, def_level) == 98, "brio");
QH_LAYOUT_ASSERT(offsetof(_quillBrioApiCtrl, focus_level) == 100, "brio");

QH_LAYOUT_ASSERT(sizeof(_quillGeq10bApiCtrl) == 28, "geq10b size");
QH_LAYOUT_ASSERT(offsetof(_quillGeq10bApiCtrl, enable) == 0, "geq10b");
QH_LAYOUT_ASSERT(offsetof(_quillGeq10bApiCtrl, input_gain) == 4, "geq10b");
QH_LAYOUT_ASSERT(offsetof(_quillGeq10bApiCtrl, band_gain) == 6, "geq10b");
QH_LAYOUT_ASSERT(offsetof(_quillGeq10bApiCtrl, reserved) == 26, "geq10b");

QH_LAYOUT_ASSERT(sizeof(_quillAeqApiCtrl) == 12, "aeq size");
QH_LAYOUT_ASSERT(offsetof(_quillAeqApiCtrl, enable) == 0, "aeq");
QH_LAYOUT_ASSERT(offsetof(_quillAeqApiCtrl, input_gain) == 4, "aeq");
QH_LAYOUT_ASSERT(offsetof(_quillAeqApiCtrl, output_gain) == 6, "aeq");
QH_LAYOUT_ASSERT(offsetof(_quillAeqApiCtrl, bypass_gain) == 8, "aeq");

QH_LAYOUT_ASSERT(sizeof(_quillLyraApiCtrl) == 40, "lyra size");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, downmix) == 0, "lyra");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, super_stereo) == 4, "lyra");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, input_gain) == 8, "lyra");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, bypass_reverb) == 12, "lyra");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, bypass_conv) == 16, "lyra");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, bypass_hpeq) == 20, "lyra");
QH_LAYOUT_ASSERT(offsetof(_quillLyraApiCtrl, super_stereo_coef) == 24, "lyra");

QH_LAYOUT_ASSERT(sizeof(quillMBHLApiCtrls) == 80, "mbhl size");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, enable) == 0, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, output_gain) == 4, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, anti_clip_level) == 6, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, com_attack) == 8, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, low_decay) == 12, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, mid_decay) == 16, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, high_decay) == 20, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, low_ratio) == 24, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, mid_ratio) == 28, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, high_ratio) == 32, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, mode) == 36, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, boost) == 40, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, low_cross) == 44, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, mid_cross) == 48, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, low_thresh) == 52, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, mid_thresh) == 56, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, high_thresh) == 60, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, low_makeup) == 64, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, mid_makeup) == 68, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, high_makeup) == 72, "mbhl");
QH_LAYOUT_ASSERT(offsetof(quillMBHLApiCtrls, dist_prev_enable) == 76, "mbhl");

QH_LAYOUT_ASSERT(sizeof(_quillHeronPostmixApiCtrl) == 488, "postmix size");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, output_device) == 0, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, postmix_gain) == 4, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, hpf_enable) == 8, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, limiter) == 12, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, lyra_stereo_mode) == 16, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, lyra_multi_ch) == 20, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, lyra_input_gain) == 24, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, bypass_hpeq) == 48, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, aeq_enable) == 72, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, dc_cut_enable) == 96, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, bypass_mode) == 100, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, limiter_master_vol) == 120, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, bypass_gain) == 124, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, brio) == 128, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, geq10b) == 232, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, aeq) == 260, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, enhance2) == 272, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, lyra) == 368, "postmix");
QH_LAYOUT_ASSERT(offsetof(_quillHeronPostmixApiCtrl, mbhl) == 408, "postmix");

#endif  // QUILLHERON_CTRL_RECORDS_H_
