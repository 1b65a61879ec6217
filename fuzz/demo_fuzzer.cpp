#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_workspace.h"
#include "audio/demo_mode.h"

// Whatever is configured: demo mode is off, or every row and device can be shown.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  plemora::MemoryDefaults defaults;
  defaults.setString(plemora::DemoMode::key,
                     std::string(reinterpret_cast<const char*>(data), size));
  plemora::ScriptedWorkspace workspace;
  const plemora::DemoMode demo(defaults, workspace);
  for (const plemora::AppChannel& row : demo.channels()) {
    if (!(row.volume >= 0 && row.volume <= 1) || row.outputSymbol.empty()) {
      std::abort();
    }
  }
  std::set<plemora::AudioObjectID> ids;
  std::set<std::string> uids;
  for (const plemora::OutputDevice& device : demo.extraDevices()) {
    if (!ids.insert(device.id).second || !uids.insert(device.uid).second ||
        !device.uid.starts_with(plemora::demoDeviceUIDPrefix) || device.symbol.empty()) {
      std::abort();
    }
  }
  return 0;
}
