// Touches every generated message type through the installed headers: a
// default instance, one on the stack, one in an arena, a serialise-parse
// round trip, and every sub-message accessor (mutable_x, add_x). Its project
// asks for C++14; the exported target raises that to C++17, where the
// constexpr members of QuillHeron_v1_1_Pb need no out-of-line definition.
#include <cstdio>
#include <string>

#include <google/protobuf/arena.h>

#include "every_message_headers.inc"
#include <quillheron/QuillPbConvert_Heron_v1_1.h>

static_assert(__cplusplus >= 201703L, "quillheron::quillheron carries cxx_std_17");

namespace {

int g_messages = 0, g_accessors = 0, g_failures = 0;

template <typename T>
void TouchMessage() {
  google::protobuf::Arena arena;
  T* in_arena = google::protobuf::Arena::CreateMessage<T>(&arena);
  T on_stack(T::default_instance());
  const std::string bytes = on_stack.SerializeAsString();
  if (!in_arena->ParseFromString(bytes) || in_arena->GetDescriptor() != T::descriptor()) ++g_failures;
  ++g_messages;
}

}  // namespace

#define QH_MESSAGE(T) TouchMessage<T>();
#define QH_MUTABLE(T, field) \
  {                          \
    T m;                     \
    m.mutable_##field();     \
    ++g_accessors;           \
  }
#define QH_ADD(T, field)                               \
  {                                                    \
    T m;                                               \
    m.add_##field();                                   \
    if (m.field##_size() != 1) ++g_failures;           \
    ++g_accessors;                                     \
  }

int main() {
#include "every_message.inc"
  // An odr-use: binds a reference to the member.
  const int& ok = QuillHeron_v1_1_Pb::kOk;
  std::printf("every_message: %d message types, %d sub-message accessors, %d failures\n", g_messages,
              g_accessors, g_failures);
  return g_failures == 0 && g_messages > 0 && ok == 0 ? 0 : 1;
}
