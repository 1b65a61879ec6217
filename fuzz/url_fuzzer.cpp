#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "controlcenter/panel_url.h"

// Whatever a desktop hands over as URLs, one a line: the answer depends on each of them by itself,
// and a fragment or a further URL that asks for nothing changes nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using plemora::PanelRequest;
  std::vector<std::string> urls(1);
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n') {
      urls.emplace_back();
    } else {
      urls.back() += static_cast<char>(data[i]);
    }
  }
  const auto request = PanelRequest::of(urls);
  bool hasPanel = false;
  bool isFromControlCenter = false;
  std::vector<std::string> changed;
  for (const std::string& url : urls) {
    const auto alone = PanelRequest::of({&url, 1});
    hasPanel = hasPanel || alone;
    isFromControlCenter = isFromControlCenter || (alone && alone->isFromControlCenter);
    changed.push_back(url + "#//panel?control-center");
  }
  changed.emplace_back("com.quorvane.mixer://elsewhere");
  if (request.has_value() != hasPanel || (isFromControlCenter && !request->isFromControlCenter) ||
      PanelRequest::of(changed) != request) {
    std::abort();
  }
  // Nobody is taken at their word who does not say it.
  const std::string all(reinterpret_cast<const char*>(data), size);
  if ((request && all.find("//") == all.npos) ||
      (request && request->isFromControlCenter && all.find("?") == all.npos)) {
    std::abort();
  }
  for (const std::string& url : plemora::mixerURLs(urls)) {
    if (url.size() <= plemora::mixerURLScheme.size()) {
      std::abort();
    }
  }
  return 0;
}
