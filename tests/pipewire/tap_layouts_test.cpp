// Taps of streams and sinks of every layout and rate, and of many apps at once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "pipewire/gain_track.h"
#include "pipewire/tap_rig.h"

namespace plemora::rig {
namespace {

constexpr float quarter = 0.25f;

struct Layout {
  const char* what;
  int streamChannels;
  int streamRate;
  int sinkChannels;
};

TEST(Tap, ServesEveryLayoutAndRate) {
  const Layout layouts[] = {
      {"mono stream", 1, 48000, 2},          {"5.1 stream", 6, 48000, 2},
      {"44.1 kHz stream", 2, 44100, 2},      {"stereo on a 5.1 sink", 2, 48000, 6},
      {"5.1 on a 5.1 sink", 6, 48000, 6},    {"mono on a 5.1 sink", 1, 48000, 6},
      {"stereo on a mono sink", 2, 48000, 1}};
  TapRig rig;
  rig.session.graph().createSink({.name = "wide", .channels = 6, .priority = 700});
  rig.session.graph().createSink({.name = "narrow", .channels = 1, .priority = 600});
  ASSERT_TRUE(rig.eventually(5, [&] { return rig.deviceOf("wide") && rig.deviceOf("narrow"); }));
  for (const auto& layout : layouts) {
    SCOPED_TRACE(layout.what);
    const std::string sink = layout.sinkChannels == 6   ? "wide"
                             : layout.sinkChannels == 1 ? "narrow"
                                                        : "first";
    rig.session.graph().setDefaultSink(sink);
    const auto tone = rig.play({.name = "tone",
                                .signal = Signal::constant(0.0625),
                                .channels = layout.streamChannels,
                                .rate = layout.streamRate},
                               sink);
    SinkRecorder recorder(rig.session, sink);
    ASSERT_TRUE(recorder.record(9600));
    const auto direct = recorder.next(1);
    ASSERT_GT(peak(direct[0]), 0.03);
    auto tap = rig.tap(*tone, quarter, sink, sink);
    ASSERT_TRUE(tap);
    ASSERT_TRUE(rig.eventually(5, [&] {
      return std::abs(recorder.next(1)[0].back() - direct[0].back() * quarter) < 1e-6;
    }));
    const auto farthest = [&](const Recording& piece, std::size_t channel) {
      float most = 0;
      for (const float sample : piece[channel]) {
        most = std::max(most, std::abs(sample - direct[channel].back() * quarter));
      }
      return most;
    };
    const auto heard = recorder.nextThat(4800, [&](const Recording& piece) {
      bool all = true;
      for (std::size_t channel = 0; channel < piece.channels.size(); ++channel) {
        all = all && farthest(piece, channel) < 1e-6f;
      }
      return all;
    });
    for (std::size_t channel = 0; channel < heard.channels.size(); ++channel) {
      EXPECT_LT(farthest(heard, channel), 1e-6f) << "channel " << channel;
    }
    tap.reset();
    // After a change of the default a tap that ends lingers for a moment for its successor.
    EXPECT_TRUE(rig.eventually(5, [&] {
      return std::abs(recorder.next(1)[0].back() - direct[0].back()) < 1e-6;
    })) << recorder.next(1)[0].back();
  }
}

TEST(Tap, KeepsTheChannelsOfASurroundSinkApart) {
  TapRig rig;
  rig.session.graph().createSink({.name = "wide", .channels = 6, .priority = 700});
  ASSERT_TRUE(rig.eventually(5, [&] { return rig.deviceOf("wide") != 0; }));
  rig.session.graph().setDefaultSink("wide");
  const auto tone = rig.play({.signal = Signal::identity(), .channels = 6}, "wide");
  SinkRecorder recorder(rig.session, "wide");
  auto tap = rig.tap(*tone, 0.5f, "wide", "wide");
  ASSERT_TRUE(tap);
  const auto isHalf = [](const Recording& piece, unsigned channel) {
    const auto track = gainTrack(piece, channel, 0.5);
    return track.firstFrame >= 0 && track.framesOff({0.5}) == 0;
  };
  const auto heard = recorder.nextThat(4800, [&](const Recording& piece) {
    bool all = true;
    for (unsigned channel = 0; channel < 6; ++channel) {
      all = all && isHalf(piece, channel);
    }
    return all;
  });
  for (unsigned channel = 0; channel < 6; ++channel) {
    EXPECT_TRUE(isHalf(heard, channel)) << channel << ": " << gainTrack(heard, channel, 0.5).text();
  }
}

TEST(Tap, GathersTheAppsOfASinkOnOneFilter) {
  TapRig rig;
  const auto filters = [&] {
    rig.session.graph().sync();
    const auto nodes = rig.session.graph().nodes();
    return std::count_if(nodes.begin(), nodes.end(), [](const NodeView& node) {
      return node.name() == "com.quorvane.mixer.correction";
    });
  };
  // One more than the first filter has room for.
  std::vector<std::unique_ptr<TonePlayer>> players;
  std::vector<std::unique_ptr<AppTap>> taps;
  for (int i = 0; i < 9; ++i) {
    players.push_back(
        rig.play({.name = "app" + std::to_string(i), .signal = Signal::constant(0.0625)}));
    ASSERT_TRUE(taps.emplace_back(rig.tap(*players.back(), quarter)));
  }
  SinkRecorder recorder(rig.session, "first");
  EXPECT_TRUE(rig.eventually(5, [&] { return filters() == 2; }));
  EXPECT_TRUE(rig.eventually(10, [&] { return filters() == 1; }));
  EXPECT_TRUE(rig.hears(recorder, 9 * 0.0625f * quarter)) << recorder.next(1)[0].back();
}

TEST(Tap, SixtyFourAppsAreAllRight) {
  TapRig rig;
  std::vector<std::unique_ptr<TonePlayer>> players;
  std::vector<std::unique_ptr<AppTap>> taps;
  constexpr float each = 1.0f / 256;
  constexpr int count = 64;
  for (int i = 0; i < count; ++i) {
    players.push_back(
        rig.play({.name = "app" + std::to_string(i), .signal = Signal::constant(each)}));
  }
  SinkRecorder recorder(rig.session, "first");
  ASSERT_TRUE(rig.hears(recorder, each * count));
  for (const auto& player : players) {
    taps.push_back(rig.tap(*player, 0.5f));
    ASSERT_TRUE(taps.back());
  }
  EXPECT_TRUE(rig.hears(recorder, each * count * 0.5f)) << recorder.next(1)[0].back();
  const auto all = recorder.nextThat(
      4800, [&](const Recording& piece) { return isConstant(piece[0], each * count * 0.5f); });
  EXPECT_THAT(all[0], testing::Each(each * count * 0.5f));
  // Each of them is a tap of its own: silence them one after the other.
  for (int i = 0; i < count; i += 9) {
    taps[static_cast<std::size_t>(i)]->state().targetGain = 0;
    taps[static_cast<std::size_t>(i)]->state().peak = 0;
    const float rest = each * 0.5f * static_cast<float>(count - i / 9 - 1);
    EXPECT_TRUE(rig.hears(recorder, rest)) << i << ": " << recorder.next(1)[0].back();
  }
  taps.clear();
  EXPECT_TRUE(rig.hears(recorder, each * count));
}

}  // namespace
}  // namespace plemora::rig
