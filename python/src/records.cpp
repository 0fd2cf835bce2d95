// Records for Python: the catalogue's field layouts, and populate and
// convert through the library's C entry point.
#include <cstring>
#include <string>
#include <vector>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "module.h"
#include "quillheron_c.h"
#include "record_layout.h"

namespace py = pybind11;

namespace qh_python {
namespace {

// {record name: (size, [(name, offset, width, count, type, slots or None)])}
py::dict RecordLayouts() {
  py::dict records;
  for (const qh_catalogue::RecordLayout* r : qh_catalogue::kRecords) {
    py::list fields;
    for (const qh_catalogue::FieldLayout& f : *r) {
      py::object slots = py::none();
      if (f.slots != nullptr) {
        py::list labels;
        for (std::uint32_t i = 0; i < f.count; ++i) labels.append(f.slots[i]);
        slots = py::tuple(labels);
      }
      fields.append(py::make_tuple(f.name, f.offset, f.width, f.count, qh_catalogue::TypeName(f.type), slots));
    }
    records[r->name] = py::make_tuple(r->size, fields);
  }
  return records;
}

// Records start zeroed, as `heron populate` starts them.
py::tuple PopulatePremix(const py::bytes& route) {
  const std::string r = route;
  std::vector<int32_t> record(QUILLHERON_PREMIX_RECORD_BYTES / 4, 0);
  int code;
  {
    py::gil_scoped_release release;
    code = quillheron_populate_premix(r.data(), r.size(), record.data());
  }
  return py::make_tuple(code, py::bytes(reinterpret_cast<const char*>(record.data()), size_t{QUILLHERON_PREMIX_RECORD_BYTES}));
}

py::tuple PopulatePostmix(const py::bytes& route, const std::vector<py::bytes>& models, int rate, int room_mask) {
  const std::string r = route;
  std::vector<std::string> m(models.begin(), models.end());
  std::vector<quillheron_bytes> list;
  for (const std::string& s : m) list.push_back({s.data(), s.size()});
  std::vector<int32_t> record(QUILLHERON_POSTMIX_RECORD_BYTES / 4, 0);
  int code;
  {
    py::gil_scoped_release release;
    code = quillheron_populate_postmix(r.data(), r.size(), list.empty() ? nullptr : list.data(), list.size(), rate,
                                       room_mask, record.data());
  }
  return py::make_tuple(code,
                        py::bytes(reinterpret_cast<const char*>(record.data()), size_t{QUILLHERON_POSTMIX_RECORD_BYTES}));
}

py::tuple PopulateFader(const py::bytes& route, bool premix) {
  const std::string r = route;
  quillheron_fader f{};
  const int code = quillheron_populate_fader(r.data(), r.size(), premix ? 1 : 0, &f);
  return py::make_tuple(code, py::make_tuple(f.shadow, f.out_length, f.hold_length, f.in_length, f.state));
}

bool ToFader(const py::object& o, quillheron_fader* f) {
  if (o.is_none()) return false;
  const auto v = o.cast<std::vector<int32_t>>();
  if (v.size() != 5) throw py::value_error("a fader is five integers: shadow, out_length, hold_length, in_length, state");
  *f = quillheron_fader{v[0], v[1], v[2], v[3], v[4]};
  return true;
}

py::tuple Convert(int rate, const py::object& premix, const py::object& postmix, bool with_room_models,
                  const py::object& premix_fader, const py::object& postmix_fader) {
  std::string pre, post;
  if (!premix.is_none()) {
    pre = premix.cast<py::bytes>();
    if (pre.size() != QUILLHERON_PREMIX_RECORD_BYTES) throw py::value_error("premix must be 156 bytes");
  }
  if (!postmix.is_none()) {
    post = postmix.cast<py::bytes>();
    if (post.size() != QUILLHERON_POSTMIX_RECORD_BYTES) throw py::value_error("postmix must be 66108 bytes");
  }
  // Aligned copies: the entry point reads records as 32-bit words, and
  // writes rates into the postmix record (the caller's bytes stay as they are).
  std::vector<int32_t> pre_words(pre.size() / 4), post_words(post.size() / 4);
  std::memcpy(pre_words.data(), pre.data(), pre.size());
  std::memcpy(post_words.data(), post.data(), post.size());
  quillheron_fader pf, qf;
  const bool has_pf = ToFader(premix_fader, &pf), has_qf = ToFader(postmix_fader, &qf);
  const void* pre_ptr = premix.is_none() ? nullptr : pre_words.data();
  void* post_ptr = postmix.is_none() ? nullptr : post_words.data();
  size_t size = 0;
  int code = quillheron_convert(rate, pre_ptr, post_ptr, with_room_models, has_pf ? &pf : nullptr,
                                has_qf ? &qf : nullptr, nullptr, 0, &size);
  std::string out(size, '\0');
  if (code == 0) {
    code = quillheron_convert(rate, pre_ptr, post_ptr, with_room_models, has_pf ? &pf : nullptr,
                              has_qf ? &qf : nullptr, out.data(), out.size(), &size);
    out.resize(size);
  }
  return py::make_tuple(code, py::bytes(out));
}

}  // namespace

void BindRecords(py::module_& m) {
  m.def("record_layouts", &RecordLayouts, "{record: (size, [(name, offset, width, count, type, slots)])}");
  m.def("populate_premix", &PopulatePremix, "(code, premix record bytes) from serialized route bytes");
  m.def("populate_postmix", &PopulatePostmix, py::arg("route"), py::arg("models"), py::arg("rate"),
        py::arg("room_mask"), "(code, postmix record bytes)");
  m.def("populate_fader", &PopulateFader, py::arg("route"), py::arg("premix"), "(code, five fader values)");
  m.def("convert", &Convert, py::arg("rate"), py::arg("premix"), py::arg("postmix"), py::arg("with_room_models"),
        py::arg("premix_fader"), py::arg("postmix_fader"), "(code, serialized HeronSettings)");
  m.attr("PREMIX_RECORD_BYTES") = static_cast<int>(QUILLHERON_PREMIX_RECORD_BYTES);
  m.attr("POSTMIX_RECORD_BYTES") = static_cast<int>(QUILLHERON_POSTMIX_RECORD_BYTES);
}

}  // namespace qh_python
