// Concurrency: several threads share one const converter, one const route
// and one const list of listening models, and each populates and converts
// into its own records and messages, many times over. Every result must
// equal the single-threaded run byte for byte. Built with ThreadSanitizer in
// the sanitizer lane (make test-san), where any data race fails the run.
#include <gtest/gtest.h>

#include <google/protobuf/text_format.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "quillHeronCoeffRecords.h"
#include "routeconfiguration.pb.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::hub::RouteConfiguration;
using quill::pb::model::listeningModel;

constexpr int kThreads = 6;
constexpr int kIterations = 40;

bool readText(const char* path, google::protobuf::Message* message) {
  std::ifstream f(path);
  std::stringstream text;
  text << f.rdbuf();
  return f.good() && google::protobuf::TextFormat::ParseFromString(text.str(), message);
}

// Everything one populate-and-convert pass produces: both records as bytes,
// the five fader values of each stage, and the rebuilt settings serialised.
struct Outcome {
  std::string premix, postmix, faders, rebuilt;
  int results[4] = {};
  bool operator==(const Outcome& o) const {
    return premix == o.premix && postmix == o.postmix && faders == o.faders && rebuilt == o.rebuilt &&
           std::memcmp(results, o.results, sizeof(results)) == 0;
  }
};

template <class T>
std::string bytesOf(const T& record) {
  return std::string(reinterpret_cast<const char*>(&record), sizeof(record));
}

// One pass, into records and messages of this call only (heap records,
// zeroed as a host would prepare them).
Outcome runOnce(const QuillHeron_v1_1_Pb& converter, const RouteConfiguration& route,
                const QuillHeron_v1_1_Pb::ModelList& models, int room_mask) {
  Outcome out;
  auto premix = std::make_unique<_quillHeronPremixApiCtrl>();
  auto postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();
  std::memset(premix.get(), 0, sizeof(*premix));
  std::memset(postmix.get(), 0, sizeof(*postmix));
  out.results[0] = converter.populate(route, *premix, true);
  out.results[1] = converter.populate(route, *postmix, true, models, room_mask);
  int f[10] = {};
  out.results[2] = converter.populate(route, f[0], f[1], f[2], f[3], f[4], true);
  out.results[3] = converter.populate(route, f[5], f[6], f[7], f[8], f[9], false);
  out.faders.assign(reinterpret_cast<const char*>(f), sizeof(f));

  HeronSettings rebuilt;
  converter.convert(f[0], f[1], f[2], f[3], f[4], true, &rebuilt);
  converter.convert(*premix, &rebuilt);
  converter.convert(*postmix, &rebuilt, true);  // stamps rates into the record: do it last
  out.premix = bytesOf(*premix);
  out.postmix = bytesOf(*postmix);
  out.rebuilt = rebuilt.SerializeAsString();
  return out;
}

class ConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(readText("examples/headphone_route.txtpb", &route_)) << "run from the source tree";
    ASSERT_TRUE(readText("examples/listening_model.txtpb", &model_));
    models_.push_back(&model_);
  }
  RouteConfiguration route_;
  listeningModel model_;
  QuillHeron_v1_1_Pb::ModelList models_;
};

// The work each thread repeats: two rates, every room mask that loads rooms.
struct Job {
  int rate;
  int room_mask;
};
constexpr Job kJobs[] = {{48000, 14}, {44100, 2}, {48000, 0}, {32000, 8}};

TEST_F(ConcurrencyTest, SharedConstInputsGiveTheSingleThreadedResults) {
  // One shared const converter per rate, and the single-threaded references.
  std::vector<std::unique_ptr<const QuillHeron_v1_1_Pb>> converters;
  std::vector<Outcome> expected;
  for (const Job& job : kJobs) {
    converters.push_back(std::make_unique<const QuillHeron_v1_1_Pb>(job.rate));
    expected.push_back(runOnce(*converters.back(), route_, models_, job.room_mask));
  }
  // The scenario reaches the coefficient designers and the room loaders.
  ASSERT_EQ(expected[0].results[1], 0);
  ASSERT_NE(expected[0].postmix, expected[2].postmix);

  const RouteConfiguration& route = route_;
  const QuillHeron_v1_1_Pb::ModelList& models = models_;
  std::atomic<int> ready{0};
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ready.fetch_add(1);
      while (ready.load() < kThreads) std::this_thread::yield();  // start together
      for (int i = 0; i < kIterations; ++i) {
        const std::size_t j = static_cast<std::size_t>(t + i) % (sizeof(kJobs) / sizeof(kJobs[0]));
        if (!(runOnce(*converters[j], route, models, kJobs[j].room_mask) == expected[j])) {
          mismatches.fetch_add(1);
        }
      }
    });
  }
  for (std::thread& th : threads) th.join();
  EXPECT_EQ(mismatches.load(), 0);
}

}  // namespace
