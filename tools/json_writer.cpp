#include "json_writer.h"

#include <cmath>
#include <cstdio>

namespace heron_tool {

std::string JsonQuote(const std::string& s) {
  std::string out = "\"";
  for (unsigned char c : s) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\t': out += "\\t"; break;
      case '\r': out += "\\r"; break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04x", c);
          out += buf;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out + "\"";
}

void JsonWriter::Separate() {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (!first_.empty()) {
    if (!first_.back()) out_ += ", ";
    first_.back() = false;
  }
}

JsonWriter& JsonWriter::BeginObject() {
  Separate();
  out_ += '{';
  first_.push_back(true);
  return *this;
}

JsonWriter& JsonWriter::EndObject() {
  out_ += '}';
  first_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::BeginArray() {
  Separate();
  out_ += '[';
  first_.push_back(true);
  return *this;
}

JsonWriter& JsonWriter::EndArray() {
  out_ += ']';
  first_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::Key(const std::string& key) {
  Separate();
  out_ += JsonQuote(key) + ": ";
  after_key_ = true;
  return *this;
}

JsonWriter& JsonWriter::String(const std::string& value) {
  Separate();
  out_ += JsonQuote(value);
  return *this;
}

JsonWriter& JsonWriter::Int(int64_t value) {
  Separate();
  out_ += std::to_string(value);
  return *this;
}

// A finite number as JSON readers take it for a float: "1" would read back as
// an integer and "-0" as the integer 0, so both gain a ".0".
static std::string WithDecimalPoint(const char* text) {
  std::string s = text;
  if (s.find_first_of(".e") == std::string::npos) s += ".0";
  return s;
}

// JSON has no NaN or infinity; they are written as strings so the output
// stays parseable and the value is still visible.
static std::string NonFinite(double v) {
  if (std::isnan(v)) return "\"NaN\"";
  return v > 0 ? "\"Infinity\"" : "\"-Infinity\"";
}

JsonWriter& JsonWriter::Float(float value) {
  Separate();
  if (!std::isfinite(value)) {
    out_ += NonFinite(value);
    return *this;
  }
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.9g", static_cast<double>(value));
  out_ += WithDecimalPoint(buf);
  return *this;
}

JsonWriter& JsonWriter::Double(double value) {
  Separate();
  if (!std::isfinite(value)) {
    out_ += NonFinite(value);
    return *this;
  }
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", value);
  out_ += WithDecimalPoint(buf);
  return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
  Separate();
  out_ += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::Null() {
  Separate();
  out_ += "null";
  return *this;
}

}  // namespace heron_tool
