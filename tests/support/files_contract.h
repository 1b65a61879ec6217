#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files.h"

namespace plemora {

/// What every adapter of Files must do. A world has a member files whose folder for what programs
/// keep does not exist yet.
template <class World>
class FilesContract : public testing::Test {
 protected:
  World world;
  Files& files = world.files;
  std::string folder = files.applicationSupport() + "/Some Folder/inner";
  std::string path = folder + "/a file.plist";
};

TYPED_TEST_SUITE_P(FilesContract);

TYPED_TEST_P(FilesContract, MakesFoldersAndReplacesFilesInThem) {
  EXPECT_TRUE(this->folder.starts_with("/"));
  EXPECT_FALSE(this->files.exists(this->folder));
  EXPECT_FALSE(this->files.writeAtomically(this->path, "without a folder"));
  EXPECT_TRUE(this->files.makeFolder(this->folder));
  EXPECT_TRUE(this->files.makeFolder(this->folder)) << "it is there";
  EXPECT_TRUE(this->files.exists(this->folder));
  EXPECT_FALSE(this->files.exists(this->path));
  EXPECT_EQ(this->files.read(this->path), std::nullopt);
  for (const std::string& content : {std::string("first"), std::string(),
                                     std::string("\0\xff\n", 3), std::string(200'000, 'x')}) {
    EXPECT_TRUE(this->files.writeAtomically(this->path, content));
    EXPECT_TRUE(this->files.exists(this->path));
    EXPECT_EQ(this->files.read(this->path), content);
  }
}

TYPED_TEST_P(FilesContract, RemovesAFileAndLeavesFolders) {
  ASSERT_TRUE(this->files.makeFolder(this->folder));
  ASSERT_TRUE(this->files.writeAtomically(this->path, "content"));
  EXPECT_TRUE(this->files.remove(this->path));
  EXPECT_FALSE(this->files.exists(this->path));
  EXPECT_TRUE(this->files.remove(this->path)) << "it is gone";
  EXPECT_TRUE(this->files.remove(this->folder + "/no/such/folder/file"));
  EXPECT_FALSE(this->files.remove(this->folder));
  EXPECT_TRUE(this->files.exists(this->folder));
}

TYPED_TEST_P(FilesContract, DoesNotMixUpFilesAndFolders) {
  ASSERT_TRUE(this->files.makeFolder(this->folder));
  ASSERT_TRUE(this->files.writeAtomically(this->path, "content"));
  EXPECT_FALSE(this->files.makeFolder(this->path));
  EXPECT_FALSE(this->files.makeFolder(this->path + "/below"));
  EXPECT_FALSE(this->files.writeAtomically(this->folder, "content"));
  EXPECT_EQ(this->files.read(this->folder), std::nullopt);
  EXPECT_EQ(this->files.read(this->path), "content");
}

REGISTER_TYPED_TEST_SUITE_P(FilesContract, MakesFoldersAndReplacesFilesInThem,
                            RemovesAFileAndLeavesFolders, DoesNotMixUpFilesAndFolders);

}  // namespace plemora
