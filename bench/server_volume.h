#pragma once

#include <cstddef>
#include <memory>

namespace plemora {

/// The sound server's own volume control for planar stereo: its audio converter, driven through
/// the plugin interface as the server drives it in front of a stream, with both channels' volume
/// set and the same format on both sides. For comparison only.
class ServerVolume {
 public:
  /// Throws std::runtime_error that says what failed: no such plugin, or one that does not convert.
  ServerVolume(std::size_t frames, float volume);
  ~ServerVolume();

  /// The samples of input channel 0 or 1.
  float* input(std::size_t channel);
  const float* output(std::size_t channel) const;

  /// One cycle over all frames. Throws when the converter produced nothing.
  void process();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
