// Fills a distortion-prevention notch design block from MbhlNotchDesignParams
// through the NF32Map and NFfloatMap binding tables. Stateless; thread-safe.
#ifndef QUILLHERON_CONVERT_NOTCH_DESIGN_TABLES_H_
#define QUILLHERON_CONVERT_NOTCH_DESIGN_TABLES_H_

#include "designerParams.pb.h"
#include "quillHeronDistprev.h"

namespace quillheron {

// nf_mode is written always; every other field only when present in
// `params`, so absent fields keep what `block` held.
void fillNotchDesignBlock(const quill::pb::tech::MbhlNotchDesignParams& params,
                          quillDistprevNotchDesignBlock& block);

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_NOTCH_DESIGN_TABLES_H_
