#include <sys/stat.h>

#include "adapters/files/disk_files.h"
#include "adapters/stage/memory_files.h"
#include "support/faulty_disk.h"
#include "support/files_contract.h"
#include "support/temporary_folder.h"

namespace plemora {
namespace {

struct MemoryWorld {
  MemoryFiles files;
};

struct DiskWorld {
  TemporaryFolder folder;
  DiskFiles files{(folder.path() / "Application Support").string()};
};

using Worlds = testing::Types<MemoryWorld, DiskWorld>;
INSTANTIATE_TYPED_TEST_SUITE_P(Of, FilesContract, Worlds);

TEST(DiskFilesTest, KeepsFilesForTheirOwner) {
  DiskWorld world;
  ASSERT_TRUE(world.files.makeFolder(world.files.applicationSupport()));
  const std::string path = world.files.applicationSupport() + "/file";
  ASSERT_TRUE(world.files.writeAtomically(path, "content"));
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST(DiskFilesTest, GivesUpWhereTheSystemMakesNoFolders) {
  DiskFiles files("/proc/none");
  EXPECT_FALSE(files.makeFolder("/proc/none"));
  EXPECT_FALSE(files.makeFolder("/proc/none/below"));
}

TEST(DiskFilesTest, HasTheOldOrTheNewContentAfterAnyFailureOrCrash) {
  for (const bool crashes : {false, true}) {
    for (int call = 1; call < 8; ++call) {
      const auto disk = std::make_shared<FaultyDisk>();
      DiskFiles files("/s", disk);
      ASSERT_TRUE(files.writeAtomically("/s/file", "old"));
      disk->failFrom(call, crashes ? 1000 : 1);
      const bool isStored = files.writeAtomically("/s/file", "new");
      disk->failFrom(1, 0);
      if (crashes) {
        disk->crash();
      }
      const auto content = files.read("/s/file");
      EXPECT_TRUE(content == "new" || (!isStored && content == "old")) << "call " << call;
    }
  }
}

}  // namespace
}  // namespace plemora
