#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/base64.h"
#include "base/property_list.h"
#include "controlcenter/mixer_control.h"

// The identity of anybody's control: ours when it is base64 of bytes that hold our extension's
// name, whatever they are otherwise.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace plemora;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::string text = encodeBase64(bytes);
  const bool isOurs = bytes.find("com.quorvane.mixer.controls") != bytes.npos;
  if (decodeBase64(text) != bytes || isMixerControlIdentity(text) != isOurs ||
      isMixerControlIdentity(text + "\n") || isMixerControlIdentity(text + "=")) {
    std::abort();
  }
  const auto decoded = decodeBase64(bytes);
  if (isMixerControlIdentity(bytes) &&
      (!decoded || decoded->find("com.quorvane.mixer.controls") == decoded->npos)) {
    std::abort();
  }
  if (decoded) {
    try {
      PropertyList::parse(*decoded);
    } catch (const PropertyListError&) {
    }
  }
  return 0;
}
