#pragma once

#include <cstdint>
#include <span>

#include "base/four_char_code.h"

// The vocabulary of the audio hardware layer (HAL). Names, layouts and codes are those of the
// public Core Audio interface (CoreAudio/AudioHardwareBase.h, AudioHardware.h,
// CoreAudioBaseTypes.h), so that the macOS adapter passes them through; the other adapters speak
// them too.

namespace plemora {

/// 0 (noErr) or a four-character error code.
using OSStatus = std::int32_t;
using AudioObjectID = std::uint32_t;

using AudioObjectPropertySelector = FourCharCode;
using AudioObjectPropertyScope = FourCharCode;
using AudioObjectPropertyElement = std::uint32_t;

struct AudioObjectPropertyAddress {
  AudioObjectPropertySelector mSelector = 0;
  AudioObjectPropertyScope mScope = 0;
  AudioObjectPropertyElement mElement = 0;

  bool operator==(const AudioObjectPropertyAddress&) const = default;
  auto operator<=>(const AudioObjectPropertyAddress&) const = default;
};

struct AudioValueRange {
  double mMinimum = 0;
  double mMaximum = 0;
};

struct AudioStreamBasicDescription {
  double mSampleRate = 0;  ///< frames per second
  std::uint32_t mFormatID = 0;
  std::uint32_t mFormatFlags = 0;
  std::uint32_t mBytesPerPacket = 0;
  std::uint32_t mFramesPerPacket = 0;
  std::uint32_t mBytesPerFrame = 0;
  std::uint32_t mChannelsPerFrame = 0;
  std::uint32_t mBitsPerChannel = 0;
  std::uint32_t mReserved = 0;
};

/// One buffer of 32-bit float samples: mNumberChannels interleaved channels (0 counts as 1),
/// mDataByteSize bytes. mData is null when the stream has nothing to give or is switched off.
struct AudioBuffer {
  std::uint32_t mNumberChannels = 0;
  std::uint32_t mDataByteSize = 0;
  void* mData = nullptr;
};

/// The buffers of one direction of one IO cycle. The samples of an output list are written
/// through mData; the list itself is never changed.
using AudioBufferList = std::span<const AudioBuffer>;

/// Identifies one IO proc on one device; null = none. Opaque.
using AudioDeviceIOProcID = void*;

/// Head of the value of kAudioDevicePropertyIOProcStreamUsage; mNumberStreams words of
/// mStreamIsOn follow it directly (1 = the stream runs for this IO proc).
struct AudioHardwareIOProcStreamUsage {
  AudioDeviceIOProcID mIOProc = nullptr;
  std::uint32_t mNumberStreams = 0;
  std::uint32_t mStreamIsOn[1] = {0};
};

}  // namespace plemora
