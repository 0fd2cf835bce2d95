// quillheron._core: the thin native layer under the Python package. The
// package's Python modules validate arguments and shape results; this layer
// only calls the designers, the C entry point, the record catalogue and the
// analysis component.
#include "module.h"

PYBIND11_MODULE(_core, m) {
  m.doc() = "Native layer of the quillheron package (use the quillheron module instead).";
  qh_python::BindDesigns(m);
  qh_python::BindRecords(m);
  qh_python::BindAnalysis(m);
}
