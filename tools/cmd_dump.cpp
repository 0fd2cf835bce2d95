// heron dump: every named field of a native record with its offset and value.
#include <cstdio>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "json_writer.h"
#include "message_io.h"
#include "record_layout.h"
#include "record_values.h"

namespace heron_tool {
namespace {

using qh_catalogue::FieldLayout;
using qh_catalogue::RecordLayout;
using qh_catalogue::ValueType;

struct DumpOptions {
  std::string file;
  std::string record;
  bool json = false;
  bool full = false;
};

using Bytes = std::vector<uint8_t>;

std::string ValueText(const Bytes& bytes, const FieldLayout& field, uint32_t index) {
  return qh_catalogue::ElementText(bytes.data(), field, index);
}

void WriteValue(JsonWriter& j, const Bytes& bytes, const FieldLayout& field, uint32_t index) {
  if (field.type == ValueType::kUuid) {
    j.String(ValueText(bytes, field, index));
    return;
  }
  const qh_catalogue::ElementValue v = qh_catalogue::ReadElement(bytes.data(), field, index);
  v.is_float ? j.Float(v.f) : j.Int(v.i);
}

// Arrays print compactly: runs of one value as "v x n", and after 24 items
// the rest is summarised; with `full`, every element. Slot-labelled arrays
// print each slot as label=value.
std::string ArrayText(const Bytes& bytes, const FieldLayout& field, bool full) {
  std::string out = "[";
  if (field.slots != nullptr || full) {
    for (uint32_t i = 0; i < field.count; ++i) {
      if (i > 0) out += ", ";
      if (field.slots != nullptr) out += std::string(field.slots[i]) + "=";
      out += ValueText(bytes, field, i);
    }
    return out + "]";
  }
  int items = 0;
  for (uint32_t i = 0; i < field.count;) {
    const std::string text = ValueText(bytes, field, i);
    uint32_t run = 1;
    while (i + run < field.count && ValueText(bytes, field, i + run) == text) ++run;
    if (items == 24) {
      out += ", ... " + std::to_string(field.count - i) + " more";
      break;
    }
    if (items > 0) out += ", ";
    out += run > 2 ? text + " x" + std::to_string(run) : text;
    if (run == 2) out += ", " + text;
    ++items;
    i += run;
  }
  return out + "]";
}

// The record named by --record, or the one whose size the file has.
const RecordLayout& ChooseRecord(const DumpOptions& o, size_t size) {
  if (!o.record.empty()) {
    const RecordLayout* r = qh_catalogue::FindRecord(o.record);
    if (r == nullptr) throw ToolError{"--record", std::string("must be ") + qh_catalogue::kRecordNames};
    if (size != r->size) {
      throw ToolError{o.file, std::string("a ") + r->name + " record is " + std::to_string(r->size) +
                                  " bytes, this file has " + std::to_string(size)};
    }
    return *r;
  }
  const RecordLayout* r = qh_catalogue::RecordForSize(size);
  if (r == nullptr) {
    std::string known;
    for (const RecordLayout* k : qh_catalogue::kRecords) {
      known += (known.empty() ? "" : ", ") + std::string(k->name) + " " + std::to_string(k->size);
    }
    throw ToolError{o.file, "size " + std::to_string(size) + " bytes matches no record (" + known + ")"};
  }
  return *r;
}

int RunDump(const DumpOptions& o) {
  const std::string raw = ReadFileBytes(o.file);
  const RecordLayout& record = ChooseRecord(o, raw.size());
  const std::vector<uint8_t> bytes(raw.begin(), raw.end());

  if (o.json) {
    JsonWriter j;
    j.BeginObject().Key("record").String(record.name).Key("size").Int(static_cast<int64_t>(bytes.size()));
    j.Key("fields").BeginArray();
    for (const FieldLayout& f : record) {
      j.BeginObject().Key("name").String(f.name).Key("offset").Int(f.offset);
      j.Key("value");
      if (f.count == 1) {
        WriteValue(j, bytes, f, 0);
      } else {
        j.BeginArray();
        for (uint32_t i = 0; i < f.count; ++i) WriteValue(j, bytes, f, i);
        j.EndArray();
      }
      if (f.slots != nullptr) {
        j.Key("slots").BeginArray();
        for (uint32_t i = 0; i < f.count; ++i) j.String(f.slots[i]);
        j.EndArray();
      }
      j.EndObject();
    }
    j.EndArray().EndObject();
    std::printf("%s\n", j.str().c_str());
    return kExitOk;
  }
  std::printf("%s record, %zu bytes\n", record.name, bytes.size());
  for (const FieldLayout& f : record) {
    std::string value;
    if (f.count == 1) {
      value = ValueText(bytes, f, 0);
    } else {
      value = ArrayText(bytes, f, o.full);
    }
    std::printf("%6u  %-44s %s\n", f.offset, f.name, value.c_str());
  }
  return kExitOk;
}

}  // namespace

void RegisterDump(CLI::App& app, Action& run) {
  auto o = std::make_shared<DumpOptions>();
  CLI::App* sub = app.add_subcommand("dump", "List every named field of a native record with its offset and value");
  sub->add_option("FILE", o->file, "record file")->required();
  sub->add_option("--record", o->record,
                  std::string(qh_catalogue::kRecordNames) + " (coeffs: old name of postmix; default: from the file size)");
  sub->add_flag("--json", o->json, "print one JSON object");
  sub->add_flag("--full", o->full, "print every element of long arrays");
  sub->callback([o, &run] { run = [o] { return RunDump(*o); }; });
}

}  // namespace heron_tool
