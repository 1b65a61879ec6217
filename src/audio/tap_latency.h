#pragma once

#include <string>

#include "platform/audio_properties.h"

namespace plemora {

/// One line about the rates, buffer sizes and latencies along a tap's way, for the log. A value
/// that cannot be read is shown as "?". Any thread but a real-time one.
std::string tapLatencyLine(AudioProperties& properties, AudioObjectID tap, AudioObjectID aggregate,
                           AudioObjectID outputDevice);

}  // namespace plemora
