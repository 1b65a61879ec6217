#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "adapters/files/property_list_preferences.h"
#include "controlcenter/layout_world.h"
#include "support/temporary_folder.h"

// The program itself, without a display, a sound server, a bus or a home.

namespace plemora {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Result {
  std::string output;  ///< of both streams
  int status = -1;
};

Result run(const std::string& arguments) {
  const std::string command =
      "env -u DISPLAY -u WAYLAND_DISPLAY -u DBUS_SESSION_BUS_ADDRESS -u XDG_RUNTIME_DIR "
      "HOME=/nonexistent " PLEMORA " " +
      arguments + " 2>&1 </dev/null";
  Result result;
  FILE* stream = popen(command.c_str(), "r");
  char buffer[4096];
  while (const std::size_t count = fread(buffer, 1, sizeof buffer, stream)) {
    result.output.append(buffer, count);
  }
  const int status = pclose(stream);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

class ScriptMode : public testing::Test {
 protected:
  ScriptMode() { fill("mac"); }

  void fill(const std::string& host) {
    PropertyListPreferences preferences(folder.path(), host);
    preferences.setValue("unrelated", std::int64_t{5}, "com.apple.controlcenter",
                         PreferenceHost::any);
    storeLayout(preferences, freshStoredLayout());
  }
  StoredLayout stored(const std::string& host = "mac") const {
    PropertyListPreferences preferences(folder.path(), host);
    return readStoredLayout(preferences);
  }
  Result script(const std::string& arguments) const {
    return run(arguments + " --preferences '" + folder.path().string() +
               "' --preferences-host mac");
  }

  void expect(const Result& result, const std::string& line) const {
    EXPECT_EQ(result.output, line + "\n");
    EXPECT_EQ(result.status, 0) << "scripts read the word";
  }

  TemporaryFolder folder;
  std::filesystem::path backup =
      folder.path() / "Application Support/Plemora/ControlCenterLayoutBackup.plist";
};

TEST_F(ScriptMode, ReplacesAndRestoresThePreferencesInAFolder) {
  expect(script("--replace-sound"), "ok");
  const Layout replaced = Layout::decode(stored());
  EXPECT_EQ(replaced.soundElement(), nullptr);
  EXPECT_EQ(replaced.mixerElements().size(), 2U);
  EXPECT_EQ(PropertyList::parse(readFile(folder.path() / "com.apple.controlcenter.plist"))
                .member("unrelated")
                ->asInteger(),
            5);
  EXPECT_TRUE(std::filesystem::exists(backup));
  expect(script("--replace-sound"), "failed: Apple's Sound module isn't in Control Center.");
  EXPECT_EQ(stored(), replaced.encode());

  expect(script("--restore-sound"), "ok");
  EXPECT_EQ(stored(), freshStoredLayout());
  EXPECT_FALSE(std::filesystem::exists(backup));
  expect(script("--restore-sound"), "failed: Control Center's layout couldn't be read.");
}

TEST_F(ScriptMode, ReplacesWhenBothAreAsked) {
  expect(script("--restore-sound --replace-sound"), "ok");
  EXPECT_EQ(Layout::decode(stored()).mixerElements().size(), 2U);
  expect(script("--restore-sound --prime-controls"), "ok");
  EXPECT_EQ(stored(), freshStoredLayout());
}

TEST_F(ScriptMode, GivesEachRunIdentifiersOfItsOwn) {
  expect(script("--replace-sound"), "ok");
  const auto first = elementID(Layout::decode(stored()).mixerElements()[0]);
  EXPECT_THAT(first, testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-"
                                           "[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  expect(script("--restore-sound"), "ok");
  expect(script("--replace-sound"), "ok");
  EXPECT_NE(elementID(Layout::decode(stored()).mixerElements()[0]), first);
}

TEST_F(ScriptMode, TakesTheMachinesIdForItsName) {
  std::string id = readFile("/etc/machine-id");
  id.erase(id.find_last_not_of('\n') + 1);
  if (id.empty()) {
    GTEST_SKIP() << "this machine has no id";
  }
  fill(id);
  expect(run("--replace-sound --preferences '" + folder.path().string() + "'"), "ok");
  EXPECT_EQ(Layout::decode(stored(id)).mixerElements().size(), 2U);
  EXPECT_EQ(stored().boxes, freshStoredLayout().boxes) << "another machine's";
}

TEST_F(ScriptMode, SaysWhatIsInItsWay) {
  const std::string there = " --preferences '" + folder.path().string() + "'";
  const std::pair<std::string, const char*> cases[] = {
      {"--replace-sound", "--preferences DIR"},
      {"--restore-sound", "there is no Control Center on this system"},
      {"--replace-sound --preferences", "--preferences needs a folder"},
      {"--replace-sound --preferences ''", "--preferences needs a folder"},
      {"--replace-sound --preferences-host", "needs this machine's name"},
      {"--replace-sound --preferences-host a/b" + there, "\"a/b\" cannot be a machine's name"},
      {"--replace-sound --nonsense" + there, "unknown option \"--nonsense\""},
      {"--replace-sound --preferences '" + folder.path().string() + "/none'", "cannot be opened"},
      {"--replace-sound --preferences /etc/passwd", "cannot be opened"},
      {"--replace-sound --preferences-host other" + there,
       "Control Center's layout couldn't be read."},
  };
  for (const auto& [arguments, words] : cases) {
    const Result result = run(arguments);
    EXPECT_THAT(result.output, StartsWith("failed: ")) << arguments;
    EXPECT_THAT(result.output, HasSubstr(words)) << arguments;
    EXPECT_EQ(std::ranges::count(result.output, '\n'), 1) << arguments;
    EXPECT_EQ(result.status, 0) << arguments;
  }
  EXPECT_EQ(stored(), freshStoredLayout());
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "none"));
  EXPECT_EQ(run("--preferences /tmp").status, 2) << "no script without its command";
}

TEST_F(ScriptMode, LetsOneRunChangeAFolderAtATime) {
  const int descriptor = open(folder.path().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(flock(descriptor, LOCK_EX), 0);
  EXPECT_THAT(script("--replace-sound").output, HasSubstr("another run is changing"));
  close(descriptor);
  expect(script("--replace-sound"), "ok");
}

TEST_F(ScriptMode, PrimesAtOnce) {
  expect(run("--prime-controls"), "primed");
}

}  // namespace
}  // namespace plemora
