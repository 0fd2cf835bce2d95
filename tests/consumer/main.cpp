// Builds a route configuration with the installed message classes, serialises
// it, parses it back and checks what a client relies on. Exit code 0 on
// success.
#include <cstdio>
#include <string>

#include "routeconfiguration.pb.h"

namespace {

int Fail(const char* what) {
  std::fprintf(stderr, "consumer: %s\n", what);
  return 1;
}

}  // namespace

int main() {
  quill::pb::hub::RouteConfiguration in;
  in.set_route(quill::pb::hub::AR_OUT_USB);
  auto* settings = in.add_tech()->mutable_heron_v1_1();
  auto* postmix = settings->mutable_postmix();
  postmix->set_postmix_gain(-1536);
  postmix->add_bypass_mode(1);
  postmix->add_bypass_mode(0);
  postmix->mutable_mbhl()->set_enable(0);

  std::string bytes;
  if (!in.SerializeToString(&bytes)) return Fail("serialise failed");

  quill::pb::hub::RouteConfiguration out;
  if (!out.ParseFromString(bytes)) return Fail("parse failed");
  if (out.route() != quill::pb::hub::AR_OUT_USB) return Fail("route");
  if (out.tech_size() != 1 || !out.tech(0).has_heron_v1_1()) return Fail("tech");
  const auto& s = out.tech(0).heron_v1_1();
  if (s.version() != "1.01.00") return Fail("version default");
  if (s.postmix().postmix_gain() != -1536) return Fail("postmix_gain");
  if (s.postmix().bypass_mode_size() != 2) return Fail("bypass_mode");
  if (!s.postmix().mbhl().has_enable() || s.postmix().mbhl().enable() != 0)
    return Fail("mbhl.enable");
  if (s.postmix().mbhl().output_gain() != 32767) return Fail("mbhl default");
  if (out.SerializeAsString() != bytes) return Fail("bytes differ");
  std::puts("consumer: ok");
  return 0;
}
