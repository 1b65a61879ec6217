// The real program in a real session, told what to do by plemoractl, heard at the sinks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <string>

#include "pipewire/gain_track.h"
#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/program_under_test.h"
#include "support/pipewire/sink_recorder.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

class Program : public testing::Test {
 protected:
  explicit Program(int quantum = 1024) {
    session.createSinks(quantum);
    plemora = std::make_unique<ProgramUnderTest>(session);
  }
  ~Program() override {
    if (HasFailure()) {
      std::printf("%s", session.logs().c_str());
    }
  }

  std::unique_ptr<TonePlayer> play(const ToneOptions& options) {
    auto player = std::make_unique<TonePlayer>(session, options);
    EXPECT_TRUE(player->waitUntilStreaming());
    EXPECT_TRUE(session.waitForLink(options.name, "first"));
    EXPECT_TRUE(plemora->waitForApp(options.name)) << options.name << " is not listed";
    return player;
  }

  static bool hears(SinkRecorder& recorder, float value, double seconds = 10) {
    return eventually(seconds, [&] { return recorder.next(1)[0].back() == value; });
  }

  /// Whether the app's last samples come at the gain (identity signal).
  static bool hearsGain(SinkRecorder& recorder, double gain, double seconds = 10) {
    return eventually(seconds, [&] {
      const auto heard = recorder.next(512);
      const auto first = identityFrame(heard[0][0], 0, gain);
      return first >= 0 && identityFrame(heard[0][511], 0, gain) == first + 511;
    });
  }

  /// The machine was too busy to keep up, which says nothing of the program.
  static bool isDisturbed(const Recording& heard, const Recording& sent) {
    if (heard.gaps + sent.gaps > 0) {
      std::printf("disturbed: %d and %d cycles missed\n", heard.gaps, sent.gaps);
    }
    return heard.gaps + sent.gaps > 0;
  }

  PrivateSession session;
  std::unique_ptr<ProgramUnderTest> plemora;
};

class Players : public Program, public testing::WithParamInterface<PlayerKind> {};

TEST_P(Players, AreHeardAtAQuarterMutedAndElsewhere) {
  const std::string file = session.directory() + "/tone.wav";
  writeToneFile(file, Signal::sine(440, 0.5), 60);
  SinkRecorder first(session, "first");
  SinkRecorder second(session, "second");
  Player player(session, GetParam(), file);
  const auto app = programOf(GetParam());
  ASSERT_TRUE(plemora->waitForApp(app)) << plemora->must({"list"});
  const auto amplitude = [](SinkRecorder& recorder) {
    return amplitudeAt(recorder.next(9600)[0], 440, 48000);
  };
  ASSERT_TRUE(eventually(5, [&] { return std::abs(amplitude(first) - 0.5) < 0.001; }));

  plemora->must({"volume", app, "50%"});
  EXPECT_TRUE(eventually(5, [&] { return std::abs(amplitude(first) - 0.125) < 0.00125; }))
      << amplitude(first);

  plemora->must({"mute", app});
  EXPECT_TRUE(eventually(5, [&] { return peak(first.next(9600)[0]) == 0; }));
  plemora->must({"unmute", app});
  EXPECT_TRUE(eventually(5, [&] { return std::abs(amplitude(first) - 0.125) < 0.00125; }));

  plemora->must({"output", app, "Second Speakers"});
  EXPECT_TRUE(eventually(5, [&] { return std::abs(amplitude(second) - 0.125) < 0.00125; }))
      << amplitude(second);
  EXPECT_TRUE(eventually(5, [&] { return peak(first.next(9600)[0]) == 0; }));
  plemora->must({"output", app, "default"});
  EXPECT_TRUE(eventually(5, [&] { return std::abs(amplitude(first) - 0.125) < 0.00125; }));
  EXPECT_TRUE(eventually(5, [&] { return peak(second.next(9600)[0]) == 0; }));

  plemora->must({"volume", app, "100%"});
  EXPECT_TRUE(eventually(5, [&] { return std::abs(amplitude(first) - 0.5) < 0.001; }));
}

std::string caseName(const testing::TestParamInfo<PlayerKind>& kind) {
  constexpr const char* names[] = {"PwPlay", "Paplay", "MpvPipeWire", "MpvPulse"};
  return names[static_cast<int>(kind.param)];
}

INSTANTIATE_TEST_SUITE_P(, Players,
                         testing::Values(PlayerKind::pwPlay, PlayerKind::paplay,
                                         PlayerKind::mpvPipeWire, PlayerKind::mpvPulse),
                         caseName);

class KilledProgram : public Program {
 protected:
  KilledProgram() : Program(256) {}

  /// Three times, as the machine keeps up: an app is heard at a quarter, the misfortune comes, and
  /// no frame is at another gain than that or the app's own. It ends at the gain.
  template <typename Misfortune>
  void forThreeRounds(const char* what, double endsAt, const Misfortune& misfortune) {
    const auto tone = play({.signal = Signal::identity()});
    SinkRecorder source(session, "tone");
    SinkRecorder sink(session, "first");
    plemora->must({"volume", "tone", "50%"});
    std::string faults;
    int rounds = 0;
    for (int attempt = 0; attempt < 40 && rounds < 3; ++attempt) {
      ASSERT_TRUE(hearsGain(sink, 0.25)) << "the level did not survive";
      source.clear();
      sink.clear();
      ASSERT_TRUE(sink.record(2400));
      misfortune(sink);
      const auto heard = sink.take();
      const auto sent = source.take();
      if (!plemora->process().running()) {
        plemora->start();
        ASSERT_TRUE(plemora->waitForApp("tone"));
      }
      if (isDisturbed(heard, sent)) {
        continue;
      }
      const auto track = gainTrack(heard, sent, 0, 0.25);
      std::printf("%s: %s\n", what, track.text().c_str());
      if (std::abs(track.last() - endsAt) < 1e-9 && track.framesOff({0.25, 1}) == 0) {
        ++rounds;
      } else {
        faults += "\na frame was lost: " + track.text();
      }
    }
    EXPECT_EQ(rounds, 3) << faults;
    EXPECT_TRUE(hearsGain(sink, 0.25));
  }
};

TEST_F(KilledProgram, LeavesTheDirectPathWithoutLosingASample) {
  forThreeRounds("kill -9", 1, [this](SinkRecorder& sink) {
    plemora->process().kill();
    EXPECT_TRUE(sink.record(9600));
  });
}

TEST_F(KilledProgram, BringsARoutedAppBackToItsOwnSink) {
  const auto tone = play({.signal = Signal::identity()});
  SinkRecorder first(session, "first");
  SinkRecorder second(session, "second");
  plemora->must({"output", "tone", "Second Speakers"});
  // A busy machine makes players miss cycles, too: what is lost must be lost every time.
  std::string faults;
  bool isRight = false;
  for (int attempt = 0; attempt < 12 && !isRight; ++attempt) {
    ASSERT_TRUE(hearsGain(second, 1));
    ASSERT_TRUE(eventually(5, [&] { return peak(first.next(512)[0]) == 0; }));
    first.clear();
    ASSERT_TRUE(first.record(4800));
    plemora->process().kill();
    ASSERT_TRUE(first.record(24000));
    EXPECT_TRUE(hearsGain(first, 1));
    EXPECT_TRUE(eventually(5, [&] { return peak(second.next(4800)[0]) == 0; }));
    const auto heard = first.take();
    const auto start = firstAbove(heard[0], 0);
    std::size_t holes = 0;
    for (std::size_t i = start; i < heard.frames; ++i) {
      holes += heard[0][i] == 0 ? 1u : 0u;
    }
    const auto wrong = gainTrack(first.next(4800), 0).framesOff({1});
    isRight = holes == 0 && wrong == 0;
    faults += "\nmissed cycles: " + std::to_string(heard.gaps) +
              ", silent frames after its return: " + std::to_string(holes) +
              ", wrong ones: " + std::to_string(wrong);
    plemora->start();
    ASSERT_TRUE(plemora->waitForApp("tone"));
  }
  EXPECT_TRUE(isRight) << faults;
}

TEST_F(KilledProgram, StoppedByASignalItDoesNotStopTheSound) {
  forThreeRounds("SIGSTOP, SIGCONT", 0.25, [this](SinkRecorder& sink) {
    plemora->process().signal(SIGSTOP);
    EXPECT_TRUE(sink.record(9600));
    plemora->process().signal(SIGCONT);
    EXPECT_TRUE(sink.record(9600));
  });
}

TEST_F(Program, EndingRestoresTheDirectPathSampleExactly) {
  const auto tone = play({.signal = Signal::identity()});
  SinkRecorder source(session, "tone");
  SinkRecorder recorder(session, "first");
  plemora->must({"volume", "tone", "50%"});
  std::string faults;
  bool isRight = false;
  for (int attempt = 0; attempt < 12 && !isRight; ++attempt) {
    if (!plemora->process().running()) {
      plemora->start();
    }
    ASSERT_TRUE(hearsGain(recorder, 0.25));
    source.clear();
    recorder.clear();
    ASSERT_TRUE(recorder.record(4800));
    plemora->process().signal(SIGTERM);
    EXPECT_EQ(plemora->process().wait(10), 0);
    ASSERT_TRUE(recorder.record(9600));
    const auto heard = recorder.take();
    const auto track = gainTrack(heard, source.take(), 0, 0.25);
    isRight = track.framesOff({0.25, 1}) <= 1024u && std::abs(track.last() - 1) < 1e-9;
    faults += "\n" + track.text();
  }
  EXPECT_TRUE(isRight) << faults;
}

TEST_F(Program, KeepsLevelsOverARestartOfItself) {
  const auto tone = play({.signal = Signal::constant(0.5)});
  SinkRecorder recorder(session, "first");
  plemora->must({"volume", "tone", "50%"});
  ASSERT_TRUE(hears(recorder, 0.125f));
  plemora->must({"mute", "tone"});
  ASSERT_TRUE(hears(recorder, 0));
  plemora->process().stop();
  ASSERT_TRUE(hears(recorder, 0.5f));
  plemora->start();
  EXPECT_TRUE(hears(recorder, 0));
  const auto row = plemora->waitForApp("tone");
  ASSERT_TRUE(row);
  EXPECT_TRUE(row->muted);
  EXPECT_NEAR(row->volume, 0.5, 1e-6);
}

TEST_F(Program, LeavesTheSessionManagersStateAlone) {
  {
    // What it writes down of a sink may wait until the sink is first used.
    TonePlayer other(session, {.name = "other", .target = "second"});
    ASSERT_TRUE(session.waitForLink("other", "second"));
    ASSERT_TRUE(other.waitUntilStreaming());
  }
  const auto tone = play({.signal = Signal::constant(0.5)});
  SinkRecorder recorder(session, "first");
  plemora->must({"volume", "tone", "50%"});
  ASSERT_TRUE(hears(recorder, 0.125f));
  // The session manager writes a second after what it had to write down last.
  ASSERT_TRUE(recorder.record(3 * 48000));
  const auto before = session.storedState();
  session.graph().sync();
  const auto metadata = session.graph().metadata("default");
  for (int change = 0; change < 10; ++change) {
    plemora->must({"volume", "tone", change % 2 == 0 ? "25%" : "75%"});
  }
  plemora->must({"output", "tone", "Second Speakers"});
  plemora->must({"output", "tone", "default"});
  plemora->must({"volume", "tone", "50%"});
  ASSERT_TRUE(hears(recorder, 0.125f));
  ASSERT_TRUE(recorder.record(3 * 48000));
  EXPECT_EQ(session.storedState(), before);
  session.graph().sync();
  EXPECT_EQ(session.graph().metadata("default"), metadata);
  EXPECT_TRUE(session.graph().isLinked("tone", "first"));
}

TEST_F(Program, FollowsTheDefaultAndARoutedAppsSinkThatGoesAndComes) {
  const auto tone = play({.signal = Signal::constant(0.5)});
  SinkRecorder first(session, "first");
  plemora->must({"volume", "tone", "50%"});
  plemora->must({"output", "tone", "Second Speakers"});
  {
    SinkRecorder second(session, "second");
    ASSERT_TRUE(hears(second, 0.125f));
    ASSERT_TRUE(hears(first, 0));
  }
  session.graph().removeSink("second");
  EXPECT_TRUE(hears(first, 0.125f)) << first.next(1)[0].back();
  session.graph().createSink({.name = "second", .description = "Second Speakers", .priority = 800});
  {
    SinkRecorder second(session, "second");
    EXPECT_TRUE(hears(second, 0.125f)) << second.next(1)[0].back();
    EXPECT_TRUE(hears(first, 0));
  }
  plemora->must({"output", "tone", "default"});
  EXPECT_TRUE(hears(first, 0.125f));
  SinkRecorder second(session, "second");
  int moved = 0;
  for (int round = 0; round < 24 && moved < 6; ++round) {
    const bool toSecond = round % 2 == 0;
    first.clear();
    second.clear();
    plemora->must({"default-output", toSecond ? "Second Speakers" : "First Speakers"});
    ASSERT_TRUE(first.record(48000));
    std::size_t now = 0;
    for (const auto& recording : {first.take(), second.take()}) {
      now += static_cast<std::size_t>(
          std::count_if(recording[0].begin(), recording[0].end(),
                        [](float sample) { return sample > 0.125f + 1e-6f; }));
    }
    std::printf("change of the default: %zu frames at the wrong gain\n", now);
    // When a link moves, a cycle may pass at the wrong gain and another one until it is faded.
    moved += now <= 3 * 1024u ? 1 : 0;
    EXPECT_TRUE(hears(toSecond ? second : first, 0.125f));
    EXPECT_TRUE(hears(toSecond ? first : second, 0));
  }
  EXPECT_EQ(moved, 6) << "the wrong gain lasts";
  const auto row = plemora->waitForApp("tone");
  ASSERT_TRUE(row);
  EXPECT_FALSE(row->routed);
}

TEST_F(Program, SetsTheMasterVolumeOnTheCubicScale) {
  const auto tone = play({.signal = Signal::constant(0.5)});
  SinkRecorder recorder(session, "first");
  plemora->must({"master", "50%"});
  EXPECT_THAT(plemora->must({"master"}), testing::HasSubstr("50"));
  // A null sink's monitor is taken after its volume.
  EXPECT_TRUE(eventually(5, [&] { return std::abs(recorder.next(1)[0].back() - 0.0625f) < 1e-4; }))
      << recorder.next(1)[0].back();
  plemora->must({"master", "mute"});
  EXPECT_TRUE(hears(recorder, 0));
  plemora->must({"master", "unmute"});
  plemora->must({"master", "100%"});
  EXPECT_TRUE(hears(recorder, 0.5f));
}

TEST_F(Program, AnAppIsListedSoonAfterItsFirstSoundAndDoesNotSplit) {
  for (int round = 0; round < 5; ++round) {
    const std::string name = "late" + std::to_string(round);
    TonePlayer tone(session, {.name = name, .signal = Signal::constant(0.1), .streams = 3});
    ASSERT_TRUE(session.waitForState(name, "running"));
    const auto started = std::chrono::steady_clock::now();
    ASSERT_TRUE(plemora->waitForApp(name));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    std::printf("listed %.0f ms after its first sound\n", took.count() * 1000);
    std::size_t rows = 0;
    for (const auto& row : plemora->apps()) {
      rows += row.name == name ? 1u : 0u;
    }
    EXPECT_EQ(rows, 1u);
  }
}

}  // namespace
}  // namespace plemora::rig
