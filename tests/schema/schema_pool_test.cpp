// The generated descriptor pool: every schema file is registered under its
// file name and package, generated for speed; the profile file's imports and
// the channel enumerations keep their documented shape.
#include <gtest/gtest.h>
#include <google/protobuf/descriptor.pb.h>

#include <sstream>
#include <string>

#include "channelMask.pb.h"
#include "quillcsPB.pb.h"

namespace {

using google::protobuf::DescriptorPool;
using google::protobuf::FileOptions;

// Schema files by package, names separated by spaces.
struct PackageCase {
  const char* package;
  const char* files;
};
const PackageCase kPackages[] = {
    {"quill.pb.heron_v1_1", "heron_v1_1"},
    {"quill.pb.heron", "heron2"},
    {"quill.pb.hub",
     "routeconfiguration technologypb audioroute locator quillcsPB profilePB accessorypb specpb "
     "certification geqpreset mediainfo personalization workspacePB"},
    {"quill.pb.tech",
     "techSteady2 techEnhance2_2 techBrio2 techGeq10b2 techAeq2 techLyra2 techMbhl peq2 "
     "designerParams thumpxFilterDesignData"},
    {"quill.pb.coef",
     "coefs coefAeq2 coefHpf2 coefThump2 coefThumpx coefBrioHpf2 coefBrioXover2 coefMbhl "
     "coefMbhlDistPrev"},
    {"quill.pb.model", "listeningmodel headphonesupplementaldata"},
    {"quill.pb.common", "channelMask"},
};

// A statically linked test only pulls in the files it references: the
// container reaches every file by import except the channel enumerations.
void Touch() {
  (void)quill::pb::hub::Quillcs::descriptor();
  (void)quill::pb::common::IecChannelId_descriptor();
}

TEST(SchemaPool, EveryFileRegisteredForSpeed) {
  Touch();
  const DescriptorPool* pool = DescriptorPool::generated_pool();
  int count = 0;
  for (const PackageCase& c : kPackages) {
    std::istringstream names(c.files);
    for (std::string name; names >> name; ++count) {
      SCOPED_TRACE(name);
      const auto* file = pool->FindFileByName(name + ".proto");
      ASSERT_NE(file, nullptr);
      EXPECT_EQ(file->package(), c.package);
      EXPECT_EQ(file->syntax(), google::protobuf::FileDescriptor::SYNTAX_PROTO2);
      EXPECT_EQ(file->options().optimize_for(), FileOptions::SPEED);
    }
  }
  EXPECT_EQ(count, 37);
}

TEST(SchemaPool, ProfileReExportsWorkspaceAndKeepsLegacyImport) {
  Touch();
  const auto* file = DescriptorPool::generated_pool()->FindFileByName("profilePB.proto");
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(file->dependency_count(), 6);
  EXPECT_EQ(file->dependency(0)->name(), "heron2.proto");
  ASSERT_EQ(file->public_dependency_count(), 1);
  EXPECT_EQ(file->public_dependency(0)->name(), "workspacePB.proto");
  EXPECT_EQ(file->options().java_outer_classname(), "profile");
}

// Each mask is one bit: 2^k for the identifier k with the same position
// suffix. Identifier 31 (TpRS) has no mask, since 2^31 is no int32 value.
TEST(SchemaPool, ChannelMaskBitPerIdentifier) {
  const auto* ids = quill::pb::common::IecChannelId_descriptor();
  const auto* masks = quill::pb::common::IecChannelMask_descriptor();
  ASSERT_EQ(ids->value_count(), 33);
  ASSERT_EQ(masks->value_count(), 32);
  EXPECT_EQ(ids->value(0)->number(), -1);
  EXPECT_EQ(masks->value(0)->number(), 0);
  const std::string id_prefix = "IEC_CH_ID_";
  for (int i = 1; i < ids->value_count(); ++i) {
    const auto* id = ids->value(i);
    SCOPED_TRACE(id->name());
    EXPECT_EQ(id->number(), i - 1);  // declared in order from 0
    const std::string suffix = id->name().substr(id_prefix.size());
    const auto* mask = masks->FindValueByName("IEC_CH_MASK_" + suffix);
    if (id->number() == 31) {
      EXPECT_EQ(mask, nullptr);
      continue;
    }
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(mask->index(), i);
    EXPECT_EQ(static_cast<uint32_t>(mask->number()), 1u << id->number());
  }
}

}  // namespace
