#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "adapters/linux/desktop/linux_workspace.h"
#include "fake_desktop.h"

namespace plemora {

namespace {

class WorkspaceTest : public testing::Test {
 protected:
  WorkspaceTest() {
    for (const char* program : {"mpv", "ffplay", "frontend"}) {
      desktop_.addProgram(std::string("@/usr/bin/") + program);
    }
    desktop_.addEntry("mpv", "Name=Player\nName[de]=Spieler\nIcon=mpv-icon\nExec=mpv %U");
    desktop_.addEntry("org.example.Frontend", "Name=Frontend\nExec=frontend\nIcon=@/frontend.svg");
    workspace_ = std::make_unique<LinuxWorkspace>(desktop_.paths(), clients_);
  }

  std::string idOf(std::int32_t pid) {
    const auto application = workspace_->runningApplication(pid);
    return application ? application->bundleID.value_or("no id") : "none";
  }

  FakeDesktop desktop_;
  std::shared_ptr<ClientDirectory> clients_ = std::make_shared<ClientDirectory>();
  std::unique_ptr<LinuxWorkspace> workspace_;
};

TEST_F(WorkspaceTest, TellsNameAndIconOfTheEntryInTheUsersLanguage) {
  desktop_.start({10, 1, "@/usr/bin/mpv"});
  const auto player = workspace_->runningApplication(10);
  ASSERT_TRUE(player);
  EXPECT_EQ(player->localizedName, "Spieler");
  EXPECT_EQ(player->icon.source, "mpv-icon");

  desktop_.start({11, 1, "@/usr/bin/ffplay"});
  const auto plain = workspace_->runningApplication(11);
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->localizedName, "ffplay");
  EXPECT_TRUE(plain->icon.empty());

  EXPECT_EQ(workspace_->installedApplication("org.example.Frontend")->icon.source,
            desktop_.expand("@/frontend.svg"));
  EXPECT_FALSE(workspace_->installedApplication("org.example.Missing"));
}

TEST_F(WorkspaceTest, ANumberUsedAgainIsAnotherProcess) {
  desktop_.start({10, 1, "@/usr/bin/mpv"});
  EXPECT_EQ(idOf(10), "mpv");
  desktop_.end(10);
  EXPECT_EQ(idOf(10), "none");
  EXPECT_FALSE(workspace_->responsiblePid(10));
  desktop_.start({10, 1, "@/usr/bin/ffplay", {}, "/", {}, "", 500});
  EXPECT_EQ(idOf(10), "ffplay");
  // The same start time, another program: the process has executed it.
  desktop_.start({10, 1, "@/usr/bin/mpv", {}, "/", {}, "", 500});
  EXPECT_EQ(idOf(10), "mpv");
}

TEST_F(WorkspaceTest, AHelperStaysWithItsAppUntilTheMainProcessEnds) {
  desktop_.start({10, 1, "@/usr/bin/frontend"});
  desktop_.start({11, 10, "@/usr/bin/mpv"});
  EXPECT_EQ(workspace_->responsiblePid(11), 10);
  // The main process's number may be somebody else's by the next look.
  desktop_.start({10, 1, "@/usr/bin/ffplay", {}, "/", {}, "", 900});
  desktop_.start({11, 1, "@/usr/bin/mpv"});
  EXPECT_EQ(workspace_->responsiblePid(11), 11);
  EXPECT_EQ(idOf(11), "mpv");
}

TEST_F(WorkspaceTest, ListsTheAppsOfAllThatWasAskedForAndLives) {
  desktop_.start({5, 1, "@/usr/bin/ffplay"});
  desktop_.start({10, 5, "@/usr/bin/frontend"});
  desktop_.start({11, 10, "@/usr/bin/mpv"});
  desktop_.start({12, 1, "@/usr/bin/mpv"});
  EXPECT_THAT(workspace_->runningApplications(), testing::IsEmpty());
  workspace_->responsiblePid(12);
  workspace_->responsiblePid(11);
  const auto pids = [this] {
    std::vector<std::int32_t> list;
    for (const auto& application : workspace_->runningApplications()) {
      EXPECT_EQ(application.activationPolicy, ActivationPolicy::regular);
      list.push_back(application.pid);
    }
    return list;
  };
  EXPECT_THAT(pids(), testing::ElementsAre(10, 12));
  desktop_.end(12);
  EXPECT_THAT(pids(), testing::ElementsAre(10));
}

TEST_F(WorkspaceTest, LearnsOfAppsThatAreInstalledOrRemovedLater) {
  desktop_.start({10, 1, "@/usr/bin/ffplay"});
  EXPECT_EQ(idOf(10), "ffplay");
  desktop_.addEntry("org.example.Play", "Name=Play\nExec=ffplay",
                    "@/home/user/.local/share/applications/example");
  EXPECT_TRUE(workspace_->installedApplication("example-org.example.Play"));
  desktop_.start({11, 1, "@/usr/bin/ffplay"});
  EXPECT_EQ(idOf(11), "example-org.example.Play");
  desktop_.removeEntry("mpv");
  EXPECT_FALSE(workspace_->installedApplication("mpv"));
}

TEST_F(WorkspaceTest, AnEntryOfTheUserReplacesOrHidesThatOfTheSystem) {
  const std::string own = "@/home/user/.local/share/applications";
  desktop_.addEntry("mpv", "Name=Mine\nExec=mpv --volume=50", own);
  desktop_.addEntry("org.example.Frontend", "Hidden=true", own);
  desktop_.addEntry("missing", "Name=Missing\nExec=mpv\nTryExec=not-there");
  desktop_.start({10, 1, "@/usr/bin/mpv"});
  desktop_.start({11, 1, "@/usr/bin/frontend"});
  EXPECT_EQ(workspace_->runningApplication(10)->localizedName, "Mine");
  EXPECT_EQ(idOf(11), "frontend");
  EXPECT_FALSE(workspace_->installedApplication("missing"));
}

TEST_F(WorkspaceTest, ClientsWithoutAVisibleProcessAreNamedByWhatTheySay) {
  struct Case {
    ClientHints hints;
    const char* id;
    const char* name;
  };
  const Case cases[] = {
      {{"Frontend", "", "", "", "org.example.Frontend"}, "org.example.Frontend", "Frontend"},
      {{"Tune", "", "", "", "org.example.Tune"}, "org.example.Tune", "Tune"},
      {{"Some Player", "mpv", "", "mpv", ""}, "mpv", "Spieler"},
      {{"mpv", "", "horn-icon", "mpv", ""}, "client:mpv", "mpv"},
      {{"", "", "", "horn", ""}, "client:horn", "horn"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.id);
    for (const std::int32_t pid : {clients_->syntheticPid(test.id), 4000}) {
      clients_->set(pid, test.hints);
      const auto application = workspace_->runningApplication(pid);
      ASSERT_TRUE(application);
      EXPECT_EQ(application->bundleID, test.id);
      EXPECT_EQ(application->localizedName, test.name);
      EXPECT_EQ(application->activationPolicy, ActivationPolicy::regular);
      clients_->erase(pid);
      EXPECT_FALSE(workspace_->runningApplication(pid));
    }
  }
}

TEST_F(WorkspaceTest, AClientThatOutlivesItsProcessStaysWhereItWas) {
  desktop_.start({10, 1, "@/usr/bin/frontend"});
  desktop_.start({11, 10, "@/usr/bin/mpv"});
  clients_->set(11, {"mpv", "", "", "mpv", ""});
  EXPECT_EQ(idOf(11), "org.example.Frontend");
  desktop_.end(11);
  desktop_.end(10);
  EXPECT_EQ(idOf(11), "org.example.Frontend");
  EXPECT_EQ(workspace_->responsiblePid(11), 11);
  clients_->erase(11);
  EXPECT_EQ(idOf(11), "none");
}

TEST_F(WorkspaceTest, AClaimedNumberOfAnotherProgramIsNotBelieved) {
  desktop_.start({10, 1, "@/usr/bin/ffplay"});
  ClientHints hints{"Horn", "", "", "horn", ""};
  clients_->set(10, hints);
  EXPECT_EQ(idOf(10), "ffplay") << "the kernel vouches for it";
  hints.pidIsClaimed = true;
  clients_->set(10, hints);
  EXPECT_EQ(idOf(10), "client:Horn");
  hints.binary = "ffplay";
  clients_->set(10, hints);
  EXPECT_EQ(idOf(10), "ffplay");
}

TEST_F(WorkspaceTest, ThePortalsWordGoesBeforeEverythingElse) {
  desktop_.start({10, 1, "@/usr/bin/mpv"});
  clients_->set(10, {"x", "", "", "", "org.example.Frontend"});
  EXPECT_EQ(idOf(10), "org.example.Frontend");
  clients_->set(10, {"x", "", "", "", "snap.horn.play"});
  EXPECT_EQ(idOf(10), "horn_play");
}

TEST(ClientDirectory, SyntheticNumbersAreTheSameForTheSameKeyAlone) {
  ClientDirectory clients;
  const std::int32_t first = clients.syntheticPid("a");
  const std::int32_t second = clients.syntheticPid("b");
  EXPECT_NE(first, second);
  EXPECT_EQ(clients.syntheticPid("a"), first);
  EXPECT_TRUE(ClientDirectory::isSynthetic(first));
  EXPECT_FALSE(ClientDirectory::isSynthetic(1 << 22));
}

}  // namespace

}  // namespace plemora
