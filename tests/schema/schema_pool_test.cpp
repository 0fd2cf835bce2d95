// The generated descriptor pool: every schema file is registered under its
// file name and package, generated for speed; the profile file's imports and
// the channel enumerations keep their documented shape.
#include <gtest/gtest.h>
#include <google/protobuf/descriptor.pb.h>

#include <string>

#include "channelMask.pb.h"
#include "quillcsPB.pb.h"

namespace {

using google::protobuf::DescriptorPool;
using google::protobuf::FileOptions;

struct FileCase {
  const char* file;
  const char* package;
};
const FileCase kFiles[] = {
    {"heron_v1_1.proto", "quill.pb.heron_v1_1"},
    {"heron2.proto", "quill.pb.heron"},
    {"routeconfiguration.proto", "quill.pb.hub"},
    {"technologypb.proto", "quill.pb.hub"},
    {"audioroute.proto", "quill.pb.hub"},
    {"locator.proto", "quill.pb.hub"},
    {"techSteady2.proto", "quill.pb.tech"},
    {"techEnhance2_2.proto", "quill.pb.tech"},
    {"techBrio2.proto", "quill.pb.tech"},
    {"techGeq10b2.proto", "quill.pb.tech"},
    {"techAeq2.proto", "quill.pb.tech"},
    {"techLyra2.proto", "quill.pb.tech"},
    {"techMbhl.proto", "quill.pb.tech"},
    {"peq2.proto", "quill.pb.tech"},
    {"designerParams.proto", "quill.pb.tech"},
    {"thumpxFilterDesignData.proto", "quill.pb.tech"},
    {"coefs.proto", "quill.pb.coef"},
    {"coefAeq2.proto", "quill.pb.coef"},
    {"coefHpf2.proto", "quill.pb.coef"},
    {"coefThump2.proto", "quill.pb.coef"},
    {"coefThumpx.proto", "quill.pb.coef"},
    {"coefBrioHpf2.proto", "quill.pb.coef"},
    {"coefBrioXover2.proto", "quill.pb.coef"},
    {"coefMbhl.proto", "quill.pb.coef"},
    {"coefMbhlDistPrev.proto", "quill.pb.coef"},
    {"listeningmodel.proto", "quill.pb.model"},
    {"headphonesupplementaldata.proto", "quill.pb.model"},
    {"channelMask.proto", "quill.pb.common"},
    {"quillcsPB.proto", "quill.pb.hub"},
    {"profilePB.proto", "quill.pb.hub"},
    {"accessorypb.proto", "quill.pb.hub"},
    {"specpb.proto", "quill.pb.hub"},
    {"certification.proto", "quill.pb.hub"},
    {"geqpreset.proto", "quill.pb.hub"},
    {"mediainfo.proto", "quill.pb.hub"},
    {"personalization.proto", "quill.pb.hub"},
    {"workspacePB.proto", "quill.pb.hub"},
};
static_assert(sizeof kFiles / sizeof kFiles[0] == 37, "one row per schema file");

// A statically linked test only pulls in the files it references: the
// container reaches every file by import except the channel enumerations.
void Touch() {
  (void)quill::pb::hub::Quillcs::descriptor();
  (void)quill::pb::common::IecChannelId_descriptor();
}

TEST(SchemaPool, EveryFileRegisteredForSpeed) {
  Touch();
  const DescriptorPool* pool = DescriptorPool::generated_pool();
  for (const FileCase& c : kFiles) {
    SCOPED_TRACE(c.file);
    const auto* file = pool->FindFileByName(c.file);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->package(), c.package);
    EXPECT_EQ(file->syntax(), google::protobuf::FileDescriptor::SYNTAX_PROTO2);
    EXPECT_EQ(file->options().optimize_for(), FileOptions::SPEED);
  }
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
