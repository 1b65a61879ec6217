// The player, the sink, the session manager and the sound server each go and come back while the
// program runs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdio>

#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/program_under_test.h"
#include "support/pipewire/sink_recorder.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

class Restart : public testing::Test {
 protected:
  Restart() {
    session.createSinks();
    plemora = std::make_unique<ProgramUnderTest>(session);
    tone = std::make_unique<TonePlayer>(session, options);
    EXPECT_TRUE(session.waitForLink("tone", "first"));
    EXPECT_TRUE(plemora->waitForApp("tone"));
    plemora->must({"volume", "tone", "50%"});
    EXPECT_TRUE(hears("first", 0.125f));
  }
  ~Restart() override {
    if (HasFailure()) {
      std::printf("%s", session.logs().c_str());
    }
  }

  /// A recorder of its own: it must not outlive what it records.
  bool hears(const std::string& sink, float value, double seconds = 10) {
    SinkRecorder recorder(session, sink);
    float last = 0;
    const bool heard = eventually(seconds, [&] {
      last = recorder.next(1)[0].back();
      return std::abs(last - value) < 1e-6f;
    });
    if (!heard) {
      std::printf("%s plays %g instead of %g\n", sink.c_str(), static_cast<double>(last),
                  static_cast<double>(value));
    }
    return heard;
  }

  /// A new app is heard, listed, and can be turned down: nothing is stuck.
  void expectNewAppsToWork(const std::string& name, float background) {
    TonePlayer other(session, {.name = name, .signal = Signal::constant(0.25)});
    ASSERT_TRUE(session.waitForLink(name, "first")) << "a new app is not linked any more";
    EXPECT_TRUE(hears("first", background + 0.25f));
    ASSERT_TRUE(plemora->waitForApp(name));
    plemora->must({"mute", name});
    EXPECT_TRUE(hears("first", background));
  }

  ToneOptions options{.name = "tone", .signal = Signal::constant(0.5)};
  PrivateSession session;
  std::unique_ptr<ProgramUnderTest> plemora;
  std::unique_ptr<TonePlayer> tone;
};

TEST_F(Restart, OfThePlayerKeepsItsLevel) {
  for (int round = 0; round < 3; ++round) {
    tone->process().kill();
    EXPECT_TRUE(hears("first", 0));
    tone = std::make_unique<TonePlayer>(session, options);
    ASSERT_TRUE(session.waitForLink("tone", "first"));
    EXPECT_TRUE(hears("first", 0.125f)) << "round " << round;
  }
  EXPECT_EQ(plemora->apps().size(), 1u);
}

TEST_F(Restart, OfTheSinkMovesTheAppAndBack) {
  session.graph().removeSink("first");
  ASSERT_TRUE(session.waitForLink("tone", "second"));
  EXPECT_TRUE(hears("second", 0.125f));
  session.graph().createSink({.name = "first", .description = "First Speakers", .priority = 900});
  session.graph().setDefaultSink("first");
  ASSERT_TRUE(session.waitForLink("tone", "first"));
  EXPECT_TRUE(hears("first", 0.125f));
  EXPECT_TRUE(hears("second", 0));
}

TEST_F(Restart, OfTheSessionManagerStrandsNobody) {
  for (const bool kill : {false, true}) {
    SCOPED_TRACE(kill ? "SIGKILL" : "SIGTERM");
    session.restartSessionManager(kill);
    session.graph().setDefaultSink("first");
    tone = std::make_unique<TonePlayer>(session, options);
    ASSERT_TRUE(session.waitForLink("tone", "first")) << "the player is not linked any more";
    EXPECT_TRUE(hears("first", 0.125f));
    expectNewAppsToWork(kill ? "later" : "sooner", 0.125f);
  }
}

TEST_F(Restart, OfTheSoundServerRebuildsEverything) {
  for (int round = 0; round < 2; ++round) {
    session.restartSoundServer();
    session.createSinks();
    tone = std::make_unique<TonePlayer>(session, options);
    ASSERT_TRUE(session.waitForLink("tone", "first"));
    EXPECT_TRUE(plemora->waitForApp("tone"));
    EXPECT_TRUE(hears("first", 0.125f)) << "round " << round;
    expectNewAppsToWork("other" + std::to_string(round), 0.125f);
  }
  EXPECT_TRUE(plemora->process().running());
}

TEST_F(Restart, OfThePulseServerKeepsItsPlayersLevel) {
  const std::string file = session.directory() + "/tone.wav";
  writeToneFile(file, Signal::constant(0.25), 60);
  tone.reset();
  for (int round = 0; round < 2; ++round) {
    Player player(session, PlayerKind::paplay, file);
    ASSERT_TRUE(session.waitForLink("paplay", "first"));
    ASSERT_TRUE(plemora->waitForApp("paplay"));
    if (round == 0) {
      plemora->must({"volume", "paplay", "50%"});
    }
    EXPECT_TRUE(hears("first", 0.0625f));
    session.restart(Daemon::pulse);
  }
}

TEST_F(Restart, WhileItHangsIsSurvived) {
  plemora->process().signal(SIGSTOP);
  session.restartSoundServer();
  session.createSinks();
  plemora->process().signal(SIGCONT);
  tone = std::make_unique<TonePlayer>(session, options);
  ASSERT_TRUE(session.waitForLink("tone", "first"));
  EXPECT_TRUE(hears("first", 0.125f));
}

}  // namespace
}  // namespace plemora::rig
