// The parts of the extension module quillheron._core, each binding one area.
#ifndef QUILLHERON_PYTHON_MODULE_H_
#define QUILLHERON_PYTHON_MODULE_H_

#include <pybind11/pybind11.h>

namespace qh_python {

void BindDesigns(pybind11::module_& m);
void BindRecords(pybind11::module_& m);
void BindAnalysis(pybind11::module_& m);

}  // namespace qh_python

#endif  // QUILLHERON_PYTHON_MODULE_H_
