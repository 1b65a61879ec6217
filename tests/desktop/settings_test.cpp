#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/files/settings_file.h"
#include "adapters/linux/desktop/file_defaults.h"
#include "adapters/linux/desktop/thread_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "base/log.h"
#include "fake_desktop.h"
#include "support/defaults_contract.h"
#include "support/faulty_disk.h"

namespace plemora {

namespace {

namespace fs = std::filesystem;

/// Collects warnings and worse while it lives.
class Warnings {
 public:
  Warnings()
      : before_(setLogHandler([this](const LogRecord& record) {
          if (record.level >= LogLevel::warning) {
            lines.emplace_back(record.message);
          }
        })) {}
  ~Warnings() { setLogHandler(before_); }

  std::vector<std::string> lines;

 private:
  LogHandler before_;
};

INSTANTIATE_TEST_SUITE_P(All, DefaultsContract,
                         testing::Values(DefaultsKind{"Memory",
                                                      [](const auto& arguments) {
                                                        return std::make_unique<MemoryDefaults>(
                                                            arguments);
                                                      }},
                                         DefaultsKind{"File",
                                                      [](const auto& arguments) {
                                                        return std::make_unique<FileDefaults>(
                                                            "/settings.json", arguments, nullptr,
                                                            std::make_shared<FaultyDisk>());
                                                      }}),
                         [](const auto& test) { return test.param.name; });

// The text form.

TEST(SettingsFile, KeepsUnknownMembersAndTheirOrder) {
  std::string error;
  auto file = SettingsFile::parse(
      R"({"zeta":[1,{"b":2,"a":1.5}],"appLevels":"{}","alpha":null,"soundReplaced":true})", error);
  ASSERT_TRUE(file) << error;
  EXPECT_EQ(file->boolean("alpha"), std::nullopt);
  EXPECT_EQ(file->bytes("zeta"), std::nullopt);
  file->setBytes("appLevels", R"({"mpv":1})");
  file->setBoolean("new", true);
  file->remove("soundReplaced");
  EXPECT_EQ(file->serialise(), R"({
  "zeta": [
    1,
    {
      "b": 2,
      "a": 1.5
    }
  ],
  "appLevels": "{\"mpv\":1}",
  "alpha": null,
  "new": true
}
)");
}

TEST(SettingsFile, BytesOfEveryLengthAndValueComeBack) {
  SettingsFile file;
  std::string value = "\xff";
  for (int i = 0; i < 300; ++i) {
    file.setBytes("x", value);
    std::string error;
    const auto again = SettingsFile::parse(file.serialise(), error);
    ASSERT_TRUE(again) << error;
    ASSERT_EQ(again->bytes("x"), value);
    value += static_cast<char>(i * 37);
  }
  std::string error;
  for (const char* broken : {R"({"x":{"base64":"A"}})", R"({"x":{"base64":"A=B="}})",
                             R"({"x":{"base64":7}})", R"({"x":{"base64":"QQ==","more":1}})"}) {
    EXPECT_EQ(SettingsFile::parse(broken, error)->bytes("x"), std::nullopt) << broken;
  }
}

TEST(SettingsFile, RefusesWhatIsNoObject) {
  for (const std::string& text :
       {std::string(), std::string("[]"), std::string("{\"a\":1"), std::string("{\"a\":\"\xff\"}"),
        std::string(200, '\0'), "{\"a\":" + std::string(100000, '[')}) {
    std::string error;
    EXPECT_FALSE(SettingsFile::parse(text, error));
    EXPECT_NE(error, "");
    EXPECT_EQ(error.find('\n'), std::string::npos);
  }
}

// The file.

const std::string name = "/config/plemora/settings.json";

FileDefaults open(const std::shared_ptr<FaultyDisk>& disk) {
  return FileDefaults(name, {}, nullptr, disk);
}

TEST(FileDefaults, EveryFailureAtEveryStepLosesNothing) {
  bool reachedTheEnd = false;
  for (int call = 1; !reachedTheEnd; ++call) {
    for (const bool withCrash : {false, true}) {
      SCOPED_TRACE("call " + std::to_string(call) + (withCrash ? ", then a crash" : ""));
      const auto disk = std::make_shared<FaultyDisk>();
      disk->put(name, R"({"other":"kept","key":"old"})");
      Warnings warnings;
      FileDefaults defaults = open(disk);
      const int before = disk->calls();
      disk->failFrom(call, 1);
      defaults.setString("key", "new");
      reachedTheEnd = disk->calls() - before < call;
      disk->failFrom(1, 0);
      EXPECT_EQ(defaults.string("key"), "new");
      if (withCrash) {
        disk->crash();
        FileDefaults again = open(disk);
        const auto key = again.string("key");
        EXPECT_TRUE(key == "old" || key == "new");
        EXPECT_EQ(again.string("other"), "kept");
      } else {
        defaults.setBoolean("later", true);
        disk->crash();
        FileDefaults again = open(disk);
        EXPECT_EQ(again.string("key"), "new");
        EXPECT_EQ(again.boolean("later"), true);
        // A read that fails sets the file aside: then the rest is in there.
        EXPECT_TRUE(again.string("other") == "kept" ||
                    disk->text(name + ".unreadable-1").find("kept") != std::string::npos);
      }
    }
  }
}

TEST(FileDefaults, WarnsOnceOfARunOfFailuresAndMakesUpForIt) {
  const auto disk = std::make_shared<FaultyDisk>();
  Warnings warnings;
  FileDefaults defaults = open(disk);
  disk->failFrom(1, 1000);
  for (int i = 0; i < 3; ++i) {
    defaults.setString("key" + std::to_string(i), "value");
  }
  ASSERT_THAT(warnings.lines, testing::SizeIs(1));
  EXPECT_THAT(warnings.lines[0], testing::HasSubstr("/config/plemora"));
  disk->failFrom(1, 0);
  defaults.setString("key2", "value");  // nothing new, but the file lags behind
  EXPECT_THAT(disk->text(name), testing::HasSubstr("key0"));
  EXPECT_THAT(disk->text(name), testing::HasSubstr("key2"));
  disk->failFrom(1, 1);
  defaults.setString("key", "again");
  EXPECT_THAT(warnings.lines, testing::SizeIs(2));
}

TEST(FileDefaults, ATornOrCorruptFileIsSetAsideAndNeverOverwritten) {
  const std::string whole = "{\n  \"appLevels\": \"{}\",\n  \"flag\": true\n}\n";
  for (std::size_t length = 0; length + 2 < whole.size(); ++length) {
    const auto disk = std::make_shared<FaultyDisk>();
    const std::string torn = whole.substr(0, length);
    disk->put(name, torn);
    disk->put(name + ".unreadable-1", "an older one");
    Warnings warnings;
    FileDefaults defaults = open(disk);
    EXPECT_EQ(defaults.boolean("flag"), std::nullopt);
    defaults.setBoolean("fresh", true);
    EXPECT_EQ(disk->text(name + ".unreadable-1"), "an older one");
    EXPECT_EQ(disk->text(name + ".unreadable-2"), torn);
    EXPECT_THAT(disk->text(name), testing::HasSubstr("fresh"));
    ASSERT_THAT(warnings.lines, testing::SizeIs(1));
    EXPECT_THAT(warnings.lines[0], testing::HasSubstr(name + ".unreadable-2"));
  }
}

TEST(FileDefaults, AnUnreadableFileThatCannotBeSetAsideIsLeftAlone) {
  const auto disk = std::make_shared<FaultyDisk>();
  disk->put(name, "broken");
  Warnings warnings;
  disk->failFrom(1, 1000);
  FileDefaults defaults = open(disk);
  defaults.setString("key", "value");
  EXPECT_EQ(disk->text(name), "broken");
  EXPECT_EQ(disk->fileCount(), 1U);
  disk->failFrom(1, 0);
  defaults.setString("key", "more");
  EXPECT_EQ(disk->text(name + ".unreadable-1"), "broken");
  EXPECT_EQ(open(disk).string("key"), "more");
}

TEST(FileDefaults, TakesOverWhatOthersChangedInTheFile) {
  const auto disk = std::make_shared<FaultyDisk>();
  FileDefaults defaults = open(disk);
  defaults.setString("mine", "1");
  disk->put(name, R"({"theirs":"2","mine":"0"})");
  disk->failFrom(3, 1);
  defaults.setString("mine", "3");
  defaults.setString("more", "4");
  EXPECT_EQ(defaults.string("theirs"), "2");
  EXPECT_EQ(open(disk).string("theirs"), "2");
  EXPECT_EQ(open(disk).string("mine"), "3");
  EXPECT_EQ(open(disk).string("more"), "4");
}

TEST(FileDefaults, ChangesNothingOnTheDiskWhenTheValueIsTheSame) {
  const auto disk = std::make_shared<FaultyDisk>();
  FileDefaults defaults = open(disk);
  defaults.setString("key", "value");
  const int calls = disk->calls();
  defaults.setString("key", "value");
  defaults.remove("missing");
  EXPECT_EQ(disk->calls(), calls);
}

TEST(FileDefaults, WritesOnAQueueWithoutLosingTheLastChange) {
  TemporaryFolder folder;
  const fs::path file = folder.path() / "a/settings.json";
  {
    FileDefaults defaults(file, {}, ThreadQueueFactory().makeQueue("settings"));
    for (int i = 0; i <= 200; ++i) {
      defaults.setString("volume", std::to_string(i));
      EXPECT_EQ(defaults.string("volume"), std::to_string(i));
    }
  }
  EXPECT_EQ(FileDefaults(file, {}).string("volume"), "200");
}

TEST(FileDefaults, FollowsASymbolicLinkAndKeepsTheFilePrivate) {
  TemporaryFolder folder;
  const fs::path link = folder.path() / "config/settings.json";
  const fs::path real = folder.path() / "dotfiles/plemora.json";
  writeFile(real, R"({"kept": 1})");
  fs::create_directories(link.parent_path());
  fs::create_symlink("../dotfiles/plemora.json", link);
  FileDefaults(link, {}).setBoolean("flag", true);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(readFile(real), "{\n  \"kept\": 1,\n  \"flag\": true\n}\n");
  struct stat status {};
  ASSERT_EQ(stat(real.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  EXPECT_EQ(std::distance(fs::directory_iterator(real.parent_path()), {}), 1);

  const fs::path dangling = folder.path() / "config/other.json";
  fs::create_symlink("new/there.json", dangling);
  FileDefaults(dangling, {}).setBoolean("flag", true);
  EXPECT_TRUE(fs::exists(folder.path() / "config/new/there.json"));
}

TEST(FileDefaults, AFolderInTheWayIsSetAside) {
  TemporaryFolder folder;
  const fs::path file = folder.path() / "settings.json";
  writeFile(file / "inside", "x");
  Warnings warnings;
  FileDefaults(file, {}).setBoolean("flag", true);
  EXPECT_EQ(readFile(file.string() + ".unreadable-1/inside"), "x");
  EXPECT_EQ(FileDefaults(file, {}).boolean("flag"), true);
}

}  // namespace

}  // namespace plemora
