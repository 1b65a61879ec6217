#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/audio_types.h"

namespace plemora {

/// A buffer list with its memory. Extra bytes after the last whole frame may be asked for.
class Buffers {
 public:
  struct Shape {
    std::uint32_t channels = 1;  ///< as reported; 0 has the room of 1
    std::size_t frames = 0;
    bool hasData = true;
    std::uint32_t extraBytes = 0;
  };

  explicit Buffers(const std::vector<Shape>& shapes, float filling = 0.0f) {
    for (const Shape& shape : shapes) {
      const std::size_t samples = std::max<std::size_t>(shape.channels, 1) * shape.frames;
      samples_.emplace_back(samples + shape.extraBytes / sizeof(float) + 1, filling);
      const auto bytes = static_cast<std::uint32_t>(samples * sizeof(float)) + shape.extraBytes;
      list_.push_back({shape.channels, bytes, shape.hasData ? samples_.back().data() : nullptr});
    }
  }

  Buffers(Buffers&&) = default;
  Buffers& operator=(Buffers&&) = default;

  /// Buffers of these samples, planar: one channel each.
  static Buffers planar(const std::vector<std::vector<float>>& channels) {
    std::vector<Shape> shapes;
    for (const auto& channel : channels) {
      shapes.push_back({1, channel.size()});
    }
    Buffers buffers(shapes);
    for (std::size_t i = 0; i < channels.size(); ++i) {
      std::copy(channels[i].begin(), channels[i].end(), buffers.samples_[i].begin());
    }
    return buffers;
  }

  AudioBufferList list() const { return list_; }
  std::size_t count() const { return list_.size(); }

  /// All samples of a buffer, the ones after the last whole frame and one more behind included.
  std::vector<float>& samples(std::size_t buffer) { return samples_[buffer]; }
  const std::vector<float>& samples(std::size_t buffer) const { return samples_[buffer]; }

  /// The samples of the buffer's whole extent.
  std::vector<float> rendered(std::size_t buffer) const {
    const auto count = static_cast<std::ptrdiff_t>(list_[buffer].mDataByteSize / sizeof(float));
    return {samples_[buffer].begin(), samples_[buffer].begin() + count};
  }

 private:
  // A vector's memory stays where it is when the vector is moved, so the list stays right.
  std::vector<std::vector<float>> samples_;
  std::vector<AudioBuffer> list_;
};

}  // namespace plemora
