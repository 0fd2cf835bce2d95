// Human-readable meanings of the library's result codes, for the heron tool.
#ifndef QUILLHERON_TOOLS_RESULT_CODES_H_
#define QUILLHERON_TOOLS_RESULT_CODES_H_

namespace heron_tool {

// A short phrase for a converter result code ("ok", "no heron_v1_1 settings ...").
const char* ConverterResultMeaning(int code);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_RESULT_CODES_H_
