#include "controlcenter/mixer_control.h"

#include <string>

#include "base/base64.h"

namespace plemora {

bool isMixerControlIdentity(std::string_view identity) {
  const auto archive = decodeBase64(identity);
  return archive && archive->find(mixerExtensionID) != std::string::npos;
}

}  // namespace plemora
