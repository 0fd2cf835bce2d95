// heron dump: every named field of a native record with its offset and value.
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "json_writer.h"
#include "message_io.h"
#include "record_fields.h"

namespace heron_tool {
namespace {

struct DumpOptions {
  std::string file;
  std::string record;
  bool json = false;
};

// Little-endian reads: the records are little-endian whatever the host.
uint32_t ReadLe32(const uint8_t* p) {
  return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
uint16_t ReadLe16(const uint8_t* p) { return uint16_t(p[0] | p[1] << 8); }

struct Value {
  bool is_float = false;
  int64_t i = 0;
  float f = 0;
};

Value ElementAt(const std::vector<uint8_t>& bytes, const RecordField& field, int index) {
  Value v;
  switch (field.type) {
    case FieldType::kI32:
      v.i = static_cast<int32_t>(ReadLe32(&bytes[field.offset + 4 * index]));
      break;
    case FieldType::kU32:
      v.i = ReadLe32(&bytes[field.offset + 4 * index]);
      break;
    case FieldType::kI16:
      v.i = static_cast<int16_t>(ReadLe16(&bytes[field.offset + 2 * index]));
      break;
    case FieldType::kF32: {
      const uint32_t bits = ReadLe32(&bytes[field.offset + 4 * index]);
      std::memcpy(&v.f, &bits, sizeof bits);
      v.is_float = true;
      break;
    }
    case FieldType::kUuid:
      break;
  }
  return v;
}

std::string UuidHex(const std::vector<uint8_t>& bytes, size_t offset) {
  std::string s;
  char buf[4];
  for (int i = 0; i < 16; ++i) {
    std::snprintf(buf, sizeof buf, "%02x", bytes[offset + i]);
    s += buf;
    if (i == 3 || i == 5 || i == 7 || i == 9) s += '-';
  }
  return s;
}

std::string ValueText(const Value& v) {
  char buf[32];
  if (v.is_float) {
    std::snprintf(buf, sizeof buf, "%.9g", static_cast<double>(v.f));
  } else {
    std::snprintf(buf, sizeof buf, "%" PRId64, v.i);
  }
  return buf;
}

// Arrays print compactly: runs of one value as "v x n", and after 24 items
// the rest is summarised.
std::string ArrayText(const std::vector<uint8_t>& bytes, const RecordField& field) {
  std::string out = "[";
  int items = 0;
  for (int i = 0; i < field.count;) {
    const std::string text = ValueText(ElementAt(bytes, field, i));
    int run = 1;
    while (i + run < field.count && ValueText(ElementAt(bytes, field, i + run)) == text) ++run;
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

int RunDump(const DumpOptions& o) {
  const std::string raw = ReadFileBytes(o.file);
  RecordKind kind;
  if (!o.record.empty()) {
    if (!ParseRecordKind(o.record, &kind)) throw ToolError{"", "--record must be premix, postmix or coeffs"};
    if (raw.size() != RecordSize(kind)) {
      throw ToolError{o.file, std::string("a ") + RecordKindName(kind) + " record is " +
                                  std::to_string(RecordSize(kind)) + " bytes, this file has " +
                                  std::to_string(raw.size())};
    }
  } else if (!RecordKindForSize(raw.size(), &kind)) {
    throw ToolError{o.file, "size " + std::to_string(raw.size()) +
                                " bytes matches no record (premix 156, postmix 488, coeffs 66108)"};
  }
  const std::vector<uint8_t> bytes(raw.begin(), raw.end());
  const auto fields = RecordFields(kind);

  if (o.json) {
    JsonWriter j;
    j.BeginObject().Key("record").String(RecordKindName(kind)).Key("size").Int(static_cast<int64_t>(bytes.size()));
    j.Key("fields").BeginArray();
    for (const RecordField& f : fields) {
      j.BeginObject().Key("name").String(f.name).Key("offset").Int(static_cast<int64_t>(f.offset));
      j.Key("value");
      if (f.type == FieldType::kUuid) {
        j.String(UuidHex(bytes, f.offset));
      } else if (f.count == 1) {
        const Value v = ElementAt(bytes, f, 0);
        v.is_float ? j.Float(v.f) : j.Int(v.i);
      } else {
        j.BeginArray();
        for (int i = 0; i < f.count; ++i) {
          const Value v = ElementAt(bytes, f, i);
          v.is_float ? j.Float(v.f) : j.Int(v.i);
        }
        j.EndArray();
      }
      j.EndObject();
    }
    j.EndArray().EndObject();
    std::printf("%s\n", j.str().c_str());
    return kExitOk;
  }
  std::printf("%s record, %zu bytes\n", RecordKindName(kind), bytes.size());
  for (const RecordField& f : fields) {
    std::string value;
    if (f.type == FieldType::kUuid) {
      value = UuidHex(bytes, f.offset);
    } else if (f.count == 1) {
      value = ValueText(ElementAt(bytes, f, 0));
    } else {
      value = ArrayText(bytes, f);
    }
    std::printf("%6zu  %-44s %s\n", f.offset, f.name.c_str(), value.c_str());
  }
  return kExitOk;
}

}  // namespace

void RegisterDump(CLI::App& app, Action& run) {
  auto o = std::make_shared<DumpOptions>();
  CLI::App* sub = app.add_subcommand("dump", "List every named field of a native record with its offset and value");
  sub->add_option("FILE", o->file, "record file")->required();
  sub->add_option("--record", o->record, "premix, postmix or coeffs (default: from the file size)");
  sub->add_flag("--json", o->json, "print one JSON object");
  sub->callback([o, &run] { run = [o] { return RunDump(*o); }; });
}

}  // namespace heron_tool
