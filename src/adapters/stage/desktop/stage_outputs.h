#pragma once

#include <vector>

#include "platform/audio_types.h"

namespace plemora {

class SimulatedHal;

/// The devices that a user may choose as the output: none that is hidden, has no outputs, or was
/// made by the program.
std::vector<AudioObjectID> stageOutputs(SimulatedHal& hal);

}  // namespace plemora
