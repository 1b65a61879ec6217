#pragma once

#include <optional>

#include "adapters/linux/pipewire/graph_records.h"
#include "platform/audio_constants.h"

namespace plemora {

/// How a sink is connected, as a transport code of the audio hardware layer. The card may be null.
/// Sources of the property names: PipeWire's key list (pipewire/keys.h, spa/utils/keys.h) and what
/// its ALSA, BlueZ and RAOP back ends set.
FourCharCode transportOf(const PropertyMap& sink, const CardRecord* card, const RouteRecord* route);

/// Internal speaker or headphones, where the active route of a card says so.
std::optional<FourCharCode> dataSourceOf(const RouteRecord* route);

/// A sink that its maker does not want in lists.
bool isHiddenSink(const PropertyMap& sink);

/// The route of the card that a sink plays through; null when it has none.
const RouteRecord* routeOf(const PropertyMap& sink, const CardRecord* card);

/// Position on the desktop's volume slider, 0...1: the loudest channel on the cubic scale.
float sliderOf(const VolumeState& volume);

/// The volume whose slider is at that position, with the balance between the channels kept.
VolumeState withSlider(VolumeState volume, float slider);

}  // namespace plemora
