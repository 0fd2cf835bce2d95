// The analysis component for Python: responses, roots and quantisation
// reports of cascades given as (S, 5) arrays of b0 b1 b2 A1 A2 (A negated,
// the library's convention) and a gain.
#include <complex>
#include <vector>

#include <pybind11/complex.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "module.h"
#include "poles.h"
#include "quantisation.h"
#include "response.h"

namespace py = pybind11;
namespace qa = quillheron::analysis;

namespace qh_python {
namespace {

using Sections = py::array_t<double, py::array::c_style | py::array::forcecast>;

qa::Cascade ToCascade(const Sections& sections, double gain) {
  if (sections.ndim() != 2 || sections.shape(1) != 5) throw py::value_error("sections must be an (S, 5) array");
  qa::Cascade c;
  c.gain = gain;
  const double* v = sections.data();
  for (py::ssize_t s = 0; s < sections.shape(0); ++s, v += 5) c.sections.push_back({v[0], v[1], v[2], v[3], v[4]});
  return c;
}

py::dict RootsDict(const qa::SectionRoots& r) {
  py::dict d;
  d["poles"] = py::array_t<std::complex<double>>(r.poles.size(), r.poles.data());
  d["zeros"] = py::array_t<std::complex<double>>(r.zeros.size(), r.zeros.data());
  d["pole_radius"] = r.pole_radius;
  d["stability"] = qa::StabilityName(r.stability);
  return d;
}

py::tuple Response(const Sections& sections, double gain, double rate,
                   const py::array_t<double, py::array::c_style | py::array::forcecast>& hz) {
  const qa::Cascade c = ToCascade(sections, gain);
  const std::vector<double> f(hz.data(), hz.data() + hz.size());
  py::array_t<std::complex<double>> h(f.size());
  py::array_t<double> db(f.size()), phase(f.size()), delay(f.size());
  for (size_t i = 0; i < f.size(); ++i) h.mutable_data()[i] = qa::Evaluate(c, f[i], rate);
  const std::vector<qa::ResponsePoint> points = qa::Response(c, rate, f);
  for (size_t i = 0; i < points.size(); ++i) {
    db.mutable_data()[i] = points[i].magnitude_db;
    phase.mutable_data()[i] = points[i].phase;
    delay.mutable_data()[i] = points[i].group_delay;
  }
  return py::make_tuple(h, db, phase, delay);
}

py::list Roots(const Sections& sections) {
  py::list out;
  for (const qa::SectionRoots& r : qa::Roots(ToCascade(sections, 1.0))) out.append(RootsDict(r));
  return out;
}

py::dict Quantisation(const Sections& reference, double reference_gain, const Sections& quantised,
                      double quantised_gain, double rate, const std::vector<int64_t>& coefficient_words,
                      const std::vector<int64_t>& numerator_words, int width) {
  const qa::QuantisationReport q = qa::Quantisation(ToCascade(reference, reference_gain),
                                                    ToCascade(quantised, quantised_gain), rate, coefficient_words,
                                                    numerator_words, width);
  py::dict d;
  d["max_error_db"] = q.max_error_db ? py::cast(*q.max_error_db) : py::none();
  d["at_hz"] = q.at_hz;
  d["silent"] = q.silent;
  d["saturated"] = q.saturated;
  py::list sections;
  for (const qa::SectionRoots& r : q.sections) sections.append(RootsDict(r));
  d["sections"] = sections;
  d["stability_changed"] = q.stability_changed;
  return d;
}

}  // namespace

void BindAnalysis(py::module_& m) {
  m.def("response", &Response, py::arg("sections"), py::arg("gain"), py::arg("rate"), py::arg("hz"),
        "(complex H, magnitude dB, phase rad, group delay samples) at hz");
  m.def("roots", &Roots, py::arg("sections"), "per section: {poles, zeros, pole_radius, stability}");
  m.def("quantisation", &Quantisation, "the quantisation report of a fixed-point cascade against its reference");
}

}  // namespace qh_python
