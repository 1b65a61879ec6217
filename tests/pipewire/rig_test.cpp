// The rig itself, without the program: what the other tests conclude from a recording holds only
// if these do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "pipewire/gain_track.h"
#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/sink_recorder.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

/// Where a recording of the identity signal is not that, frame by frame; empty: nowhere.
std::string faultOf(const Recording& heard) {
  const auto first = identityFrame(heard[0][0], 0);
  if (first < 0) {
    return "no frame of the signal: " + std::to_string(heard[0][0]);
  }
  for (std::size_t i = 0; i < heard.frames; ++i) {
    for (unsigned channel = 0; channel < 2; ++channel) {
      if (identityFrame(heard[channel][i], channel) != first + static_cast<int>(i)) {
        return "frame " + std::to_string(i) + " of channel " + std::to_string(channel);
      }
    }
  }
  return "";
}

TEST(Rig, RecordsAnAppSampleBySampleOnItsSinkAndNothingOnTheOther) {
  PrivateSession session;
  session.createSinks(256);
  SinkRecorder first(session, "first");
  SinkRecorder second(session, "second");
  TonePlayer tone(session, {.signal = Signal::identity()});
  ASSERT_TRUE(tone.waitUntilStreaming()) << session.logs();
  // A busy machine makes clients miss cycles; one recording in which none did is enough.
  std::string fault = "never recorded";
  for (int attempt = 0; attempt < 20 && !fault.empty(); ++attempt) {
    const auto heard = first.next(24000);
    fault = heard.gaps > 0 ? "cycles were missed" : faultOf(heard);
  }
  EXPECT_EQ(fault, "");
  const auto elsewhere = second.take();
  ASSERT_GT(elsewhere.frames, 20000u);
  EXPECT_EQ(peak(elsewhere[0]), 0);
}

TEST(Rig, HearsAtTheSinkACycleLaterWhatLeavesTheApp) {
  PrivateSession session;
  session.createSinks(256);
  TonePlayer tone(session, {.signal = Signal::identity()});
  ASSERT_TRUE(session.waitForLink("tone", "first"));
  SinkRecorder source(session, "tone");
  SinkRecorder sink(session, "first");
  ASSERT_TRUE(sink.record(9600));
  const auto heard = sink.take();
  const auto track = gainTrack(heard, source.take(), 1);
  EXPECT_GT(track.gains.size(), 9000u);
  EXPECT_EQ(track.framesOff({1}), 0u) << track.text();
  EXPECT_EQ(track.delay, 256);
}

TEST(Rig, RecordsEachPlayerAtFullAmplitude) {
  PrivateSession session;
  session.createSinks();
  const std::string file = session.directory() + "/tone.wav";
  writeToneFile(file, Signal::sine(440, 0.5), 30);
  for (const auto kind :
       {PlayerKind::pwPlay, PlayerKind::paplay, PlayerKind::mpvPipeWire, PlayerKind::mpvPulse}) {
    SCOPED_TRACE(programOf(kind));
    SinkRecorder recorder(session, "first");
    Player player(session, kind, file);
    ASSERT_TRUE(eventually(5, [&] {
      const auto recent = recorder.next(4800);
      return peak(recent[0]) > 0.4;
    })) << session.logs();
    const auto heard = recorder.next(48000);
    EXPECT_NEAR(amplitudeAt(heard[0], 440, 48000), 0.5, 0.0005);
  }
}

TEST(Rig, PausesAndResumesAndOpensStreams) {
  PrivateSession session;
  session.createSinks();
  TonePlayer tone(session, {.signal = Signal::constant(0.125)});
  ASSERT_TRUE(tone.waitUntilStreaming());
  SinkRecorder recorder(session, "first");
  ASSERT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0.125f; }));
  const int second = tone.open();
  ASSERT_TRUE(tone.waitFor(second, "streaming"));
  EXPECT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0.25f; }));
  tone.pause(0);
  ASSERT_TRUE(tone.waitFor(0, "paused"));
  EXPECT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0.125f; }));
  tone.close(second);
  EXPECT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0; }));
  tone.resume(0);
  EXPECT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0.125f; }));
}

TEST(Rig, DaemonsComeBack) {
  PrivateSession session;
  session.createSinks();
  {
    TonePlayer tone(session, {.signal = Signal::constant(0.125)});
    ASSERT_TRUE(tone.waitUntilStreaming());
    session.restartSessionManager();
  }
  {
    TonePlayer tone(session, {.name = "other", .signal = Signal::constant(0.25)});
    ASSERT_TRUE(session.waitForLink("other", "first")) << session.logs();
    SinkRecorder recorder(session, "first");
    EXPECT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0.25f; }));
  }
  session.restartSoundServer();
  session.createSinks();
  TonePlayer tone(session, {.signal = Signal::constant(0.125)});
  ASSERT_TRUE(tone.waitUntilStreaming()) << session.logs();
  SinkRecorder recorder(session, "first");
  EXPECT_TRUE(eventually(5, [&] { return recorder.next(1024)[0].back() == 0.125f; }));
}

TEST(Rig, AnIdleSinkSuspends) {
  PrivateSession session;
  session.createSinks();
  {
    TonePlayer tone(session, {.signal = Signal::constant(0.125)});
    ASSERT_TRUE(tone.waitUntilStreaming());
    EXPECT_TRUE(session.waitForState("first", "running"));
  }
  EXPECT_TRUE(session.waitForState("first", "suspended", 15));
}

}  // namespace
}  // namespace plemora::rig
