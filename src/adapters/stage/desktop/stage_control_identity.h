#pragma once

#include <optional>
#include <string>

#include "adapters/stage/desktop/stage_extensions.h"
#include "adapters/stage/desktop/stage_tile.h"

namespace plemora {

/// The keyed archive by which Control Center knows a third party's control, in base64. The display
/// name is not in it.
std::optional<StageTileControl> decodeControlIdentity(const std::string& text);
std::string encodeControlIdentity(const StageControlExtension& control);

}  // namespace plemora
