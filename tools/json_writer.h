// A small streaming JSON writer for the heron tool's machine-readable output.
// Floats are printed with nine significant digits, so each reads back to the
// same single-precision value, and always with a decimal point or an
// exponent ("1.0", "-0.0"), so a reader takes them as floats.
#ifndef QUILLHERON_TOOLS_JSON_WRITER_H_
#define QUILLHERON_TOOLS_JSON_WRITER_H_

#include <cstdint>
#include <string>
#include <vector>

namespace heron_tool {

class JsonWriter {
 public:
  JsonWriter& BeginObject();
  JsonWriter& EndObject();
  JsonWriter& BeginArray();
  JsonWriter& EndArray();
  JsonWriter& Key(const std::string& key);
  JsonWriter& String(const std::string& value);
  JsonWriter& Int(int64_t value);
  JsonWriter& Float(float value);    // nine significant digits
  JsonWriter& Double(double value);  // seventeen significant digits
  JsonWriter& Bool(bool value);
  JsonWriter& Null();

  const std::string& str() const { return out_; }

 private:
  void Separate();
  std::string out_;
  std::vector<bool> first_;  // per open container: nothing written yet
  bool after_key_ = false;
};

// Quotes and escapes `s` as a JSON string.
std::string JsonQuote(const std::string& s);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_JSON_WRITER_H_
