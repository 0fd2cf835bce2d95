// An audio service loads effect code with dlopen and may unload it again
// while its own libprotobuf stays loaded. This host links libprotobuf (never
// libquillheron) and runs: dlopen, a call, dlclose, a descriptor lookup,
// dlopen again, a call and the lookup once more. Without -z nodelete the
// library's descriptors stay registered in libprotobuf after dlclose with
// their data unmapped, so the lookup crashes and the second dlopen aborts
// ("File already exists in database").
// usage: reload_test <path of libquillheron.so>
#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include <google/protobuf/descriptor.h>

namespace {

using VersionFn = const char* (*)();
using PremixFn = int (*)(const void*, size_t, void*);

// route { tech { heron_v1_1 { premix { output_device: 3 } } } }, by hand:
// RouteConfiguration.tech (3), Technology.heron_v1_1 (2), HeronSettings.premix
// (2), Premix.output_device (3, sint32: 3 -> 6).
const unsigned char kRoute[] = {0x1A, 0x06, 0x12, 0x04, 0x12, 0x02, 0x18, 0x06};

bool UseLibrary(void* handle) {
  auto version = reinterpret_cast<VersionFn>(dlsym(handle, "quillheron_version"));
  auto premix = reinterpret_cast<PremixFn>(dlsym(handle, "quillheron_populate_premix"));
  if (version == nullptr || premix == nullptr) return false;
  int record[39] = {};  // 156 bytes
  return premix(kRoute, sizeof kRoute, record) == 0 && record[116 / 4] == 3 && std::strlen(version()) > 0;
}

bool LookUp() {
  const auto* pool = google::protobuf::DescriptorPool::generated_pool();
  const auto* route = pool->FindMessageTypeByName("quill.pb.hub.RouteConfiguration");
  return route != nullptr && route->FindFieldByName("tech") != nullptr &&
         route->FindFieldByName("tech")->message_type()->full_name() == "quill.pb.hub.Technology";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: reload_test <libquillheron.so>\n");
    return 2;
  }
  const char* steps[] = {"first dlopen", "lookup after dlclose", "second dlopen", "lookup while loaded again"};
  for (int round = 0; round < 2; ++round) {
    void* handle = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr || !UseLibrary(handle)) {
      std::fprintf(stderr, "reload: %s failed: %s\n", steps[2 * round], handle ? "call" : dlerror());
      return 1;
    }
    if (round == 1 && !LookUp()) {
      std::fprintf(stderr, "reload: %s failed\n", steps[3]);
      return 1;
    }
    dlclose(handle);
    if (!LookUp()) {
      std::fprintf(stderr, "reload: %s failed\n", steps[1]);
      return 1;
    }
  }
  std::printf("reload: dlopen, dlclose, dlopen and descriptor lookups passed\n");
  return 0;
}
