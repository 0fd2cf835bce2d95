// The designers for Python: sweeps of Butterworth and parametric-EQ designs
// run in parallel with the interpreter lock released, single bass-enhancement,
// crossover and distortion-prevention designs. Every design goes through the
// catalogue's run functions, as `heron design` does.
#include <cstring>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "designer_catalogue.h"
#include "module.h"
#include "parallel.h"

namespace py = pybind11;

namespace qh_python {
namespace {

using qh_design::Format;

template <class T>
using In = py::array_t<T, py::array::c_style | py::array::forcecast>;

Format FormatFor(qh_design::Family family, const std::string& name) {
  const qh_design::DesignerEntry& entry = *qh_design::FindDesigner(family);
  Format format;
  if (qh_design::ParseFormat(name.c_str(), &format) && qh_design::HasFormat(entry, format)) return format;
  std::string names;
  for (Format f : entry.formats) names += std::string(names.empty() ? "" : ", ") + "'" + qh_design::FormatName(f) + "'";
  throw py::value_error(std::string(entry.name) + " takes fmt " + names + ", not '" + name + "'");
}

py::array OutputArray(Format format, std::ptrdiff_t n, int length, void** data) {
  const int width = qh_design::WordWidth(format);
  py::array out = width == 0    ? py::array(py::dtype::of<float>(), {n, static_cast<std::ptrdiff_t>(length)})
                  : width == 16 ? py::array(py::dtype::of<int16_t>(), {n, static_cast<std::ptrdiff_t>(length)})
                                : py::array(py::dtype::of<int32_t>(), {n, static_cast<std::ptrdiff_t>(length)});
  *data = out.mutable_data();
  std::memset(*data, 0, static_cast<size_t>(out.nbytes()));
  return out;
}

// Runs request(i, worker) for i in [0, n) into rows of a zeroed (n, length)
// array, each with a zeroed workspace; returns (results, output, reasons),
// reasons holding the contract check's sentence for each rejected design.
template <class MakeRequest>
py::tuple RunSweep(std::ptrdiff_t n, Format format, int workers, int length, int workspace_bytes,
                   MakeRequest make) {
  void* data = nullptr;
  py::array out = OutputArray(format, n, length, &data);
  py::array_t<int32_t> results(n);
  int32_t* codes = results.mutable_data();
  const int width = qh_design::WordWidth(format);
  const size_t element = width == 0 ? sizeof(float) : width == 16 ? sizeof(int16_t) : sizeof(int32_t);
  const int count = WorkerCount(workers, n);
  {
    py::gil_scoped_release release;
    std::vector<std::vector<unsigned char>> workspaces(count, std::vector<unsigned char>(workspace_bytes + 16));
    ParallelFor(n, count, [&](std::ptrdiff_t i, int worker) {
      std::vector<unsigned char>& ws = workspaces[worker];
      std::memset(ws.data(), 0, ws.size());
      void* row = static_cast<unsigned char*>(data) + static_cast<size_t>(i) * length * element;
      qh_design::DesignBuffers buffers;
      buffers.workspace = ws.data();
      if (width == 0) buffers.floats = static_cast<float*>(row);
      else if (width == 16) buffers.words16 = static_cast<int16_t*>(row);
      else buffers.words32 = static_cast<int32_t*>(row);
      codes[i] = qh_design::Run(make(i, worker), format, buffers);
    });
  }
  py::dict reasons;
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    if (codes[i] == 0) continue;
    const qh_design::Objection o = qh_design::CheckContract(make(i, 0), format);
    reasons[py::int_(i)] = o ? o.reason : std::string("rejected by the designer");
  }
  return py::make_tuple(results, out, reasons);
}

py::tuple Butterworth(In<int32_t> kind, In<float> cutoff, int order, In<int32_t> rate, const std::string& fmt,
                      int workers) {
  const Format format = FormatFor(qh_design::Family::kButterworth, fmt);
  const std::ptrdiff_t n = kind.size();
  if (cutoff.size() != n || rate.size() != n) throw py::value_error("butterworth: parameter arrays differ in size");
  const int32_t* k = kind.data();
  const float* f = cutoff.data();
  const int32_t* r = rate.data();
  auto make = [=](std::ptrdiff_t i, int) {
    qh_design::ButterworthRequest q;
    q.filter_type = k[i];
    q.cutoff_hz = f[i];
    q.order = order;
    q.sample_rate = r[i];
    return q;
  };
  qh_design::ButterworthRequest sizes;  // lengths depend on the order alone
  sizes.order = order;
  return RunSweep(n, format, workers, qh_design::OutputLength(sizes, format), qh_design::WorkspaceBytes(sizes, format),
                  make);
}

// Band fields are (n, bands) arrays.
py::tuple Peq(In<int32_t> type, In<float> freq, In<float> q, In<float> gain, In<int32_t> invert, In<int32_t> rate,
              const std::string& fmt, int workers) {
  const Format format = FormatFor(qh_design::Family::kPeq, fmt);
  const std::ptrdiff_t n = rate.size();
  if (type.ndim() != 2) throw py::value_error("peq: band fields must be (designs, bands) arrays");
  const std::ptrdiff_t bands = type.shape(1);
  for (const py::array* a : {static_cast<py::array*>(&type), static_cast<py::array*>(&freq),
                             static_cast<py::array*>(&q), static_cast<py::array*>(&gain),
                             static_cast<py::array*>(&invert)}) {
    if (a->size() != n * bands) throw py::value_error("peq: band arrays differ in size");
  }
  const int count = WorkerCount(workers, n);
  std::vector<std::vector<OVAParametriceqBandSpec>> storage(count, std::vector<OVAParametriceqBandSpec>(bands));
  const int32_t *t = type.data(), *inv = invert.data(), *r = rate.data();
  const float *f = freq.data(), *qq = q.data(), *g = gain.data();
  auto make = [&, t, inv, r, f, qq, g](std::ptrdiff_t i, int worker) {
    std::vector<OVAParametriceqBandSpec>& b = storage[worker];
    for (std::ptrdiff_t j = 0; j < bands; ++j) {
      const std::ptrdiff_t at = i * bands + j;
      b[j] = OVAParametriceqBandSpec{t[at], f[at], qq[at], g[at], inv[at]};
    }
    return qh_design::PeqRequest{static_cast<int32_t>(bands), b.data(), r[i]};
  };
  const qh_design::PeqRequest sizes{static_cast<int32_t>(bands), storage[0].data(), 48000};  // lengths: the band count
  return RunSweep(n, format, count, qh_design::OutputLength(sizes, format), qh_design::WorkspaceBytes(sizes, format),
                  make);
}

py::tuple Thumpx(int speaker_size, float bass_ctrl, float hp_ratio, float ext_bass, int rate, float lp_ratio,
                 float pre_lp_freq, float harm_hp_freq, float clip_level, int reserved, const std::string& fmt) {
  const Format format = FormatFor(qh_design::Family::kThumpx, fmt);
  qh_design::ThumpxRequest r;
  r.custom_speaker_size = speaker_size;
  r.bass_ctrl = bass_ctrl;
  r.hp_ratio = hp_ratio;
  r.ext_bass = ext_bass;
  r.sampling_rate = rate;
  r.lp_ratio = lp_ratio;
  r.pre_lp_freq = pre_lp_freq;
  r.harm_hp_freq = harm_hp_freq;
  r.clip_level = clip_level;
  r.reserved = reserved;
  return RunSweep(1, format, 1, qh_design::OutputLength(r, format), qh_design::WorkspaceBytes(r, format),
                  [&](std::ptrdiff_t, int) { return r; });
}

py::tuple Crossover(float freq, int rate, const std::string& fmt) {
  const Format format = FormatFor(qh_design::Family::kCrossover, fmt);
  const qh_design::CrossoverRequest r{freq, rate};
  return RunSweep(1, format, 1, qh_design::OutputLength(r, format), qh_design::WorkspaceBytes(r, format),
                  [&](std::ptrdiff_t, int) { return r; });
}

// blocks: a list of 13-tuples in the block's field order.
py::tuple Distprev(const std::vector<std::tuple<int, float, float, float, float, float, int, float, float, float, int,
                                                int, float>>& blocks) {
  std::vector<quillDistprevNotchDesignBlock> b;
  for (const auto& t : blocks) {
    b.push_back(quillDistprevNotchDesignBlock{std::get<0>(t), std::get<1>(t), std::get<2>(t), std::get<3>(t),
                                              std::get<4>(t), std::get<5>(t), std::get<6>(t), std::get<7>(t),
                                              std::get<8>(t), std::get<9>(t), std::get<10>(t), std::get<11>(t),
                                              std::get<12>(t)});
  }
  std::vector<quillMBHLDistprevCoeff> records(b.size());
  if (!records.empty()) std::memset(records.data(), 0, records.size() * sizeof records[0]);
  quillDistprevDesignHeader header;
  std::memset(&header, 0, sizeof header);
  const int result =
      qh_design::Run(qh_design::DistprevRequest{b.data(), static_cast<int>(b.size())}, &header, records.data());
  return py::make_tuple(result, py::bytes(reinterpret_cast<const char*>(&header), sizeof header),
                        py::bytes(reinterpret_cast<const char*>(records.data()), records.size() * sizeof records[0]));
}

}  // namespace

void BindDesigns(py::module_& m) {
  m.attr("LOWPASS") = static_cast<int>(QH_IIR_LOWPASS);
  m.attr("HIGHPASS") = static_cast<int>(QH_IIR_HIGHPASS);
  m.def("design_butterworth", &Butterworth, py::arg("kind"), py::arg("cutoff"), py::arg("order"), py::arg("rate"),
        py::arg("fmt"), py::arg("workers"),
        "Butterworth sweep over equal-length 1-D arrays: (results, output (N, L), reasons).");
  m.def("design_peq", &Peq, py::arg("type"), py::arg("freq"), py::arg("q"), py::arg("gain"), py::arg("invert"),
        py::arg("rate"), py::arg("fmt"), py::arg("workers"),
        "Parametric EQ sweep: band fields (N, B), rate (N): (results, output (N, L), reasons).");
  m.def("design_thumpx", &Thumpx, "One bass-enhancement design: (results, output (1, L), reasons).");
  m.def("design_crossover", &Crossover, "One crossover design: (results, output (1, L), reasons).");
  m.def("design_distprev", &Distprev, "Distortion-prevention designs: (result, header bytes, record bytes).");
  py::list bands;
  for (const qh_design::BandType& t : qh_design::BandTypes()) bands.append(py::make_tuple(t.value, t.name));
  m.attr("BAND_TYPES") = bands;
  m.def("designer_groups", [](const std::string& name) {
    const qh_design::DesignerEntry* e = qh_design::FindDesigner(name.c_str());
    if (e == nullptr) throw py::value_error("no designer '" + name + "'");
    py::list groups, words;
    for (const qh_design::OutputGroup& g : e->groups) groups.append(py::make_tuple(g.name, g.float_first, g.word_first, g.values));
    for (const qh_design::ParameterWord& w : e->parameter_words) {
      words.append(py::make_tuple(w.name, w.float_index, w.word_index, static_cast<int>(w.encoding)));
    }
    return py::make_tuple(groups, words);
  }, "(groups [(name, float_first, word_first, values)], parameter words [(name, float_index, word_index, encoding)])");
  m.def("parameter_value", [](int encoding, int64_t word, int width) {
    return qh_design::ParameterValue(static_cast<qh_design::WordEncoding>(encoding), word, width);
  });
  m.attr("DISTPREV_RECORD_BYTES") = static_cast<int>(sizeof(quillMBHLDistprevCoeff));
}

}  // namespace qh_python
