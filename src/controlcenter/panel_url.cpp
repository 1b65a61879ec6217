#include "controlcenter/panel_url.h"

#include <algorithm>
#include <iterator>

namespace plemora {

namespace {

struct URLParts {
  std::string_view host;
  std::string_view query;
};

/// scheme://user@host:port/path?query#fragment; what is missing is empty.
URLParts partsOf(std::string_view url) {
  URLParts parts;
  url = url.substr(0, url.find('#'));
  if (const auto mark = url.find('?'); mark != url.npos) {
    parts.query = url.substr(mark + 1);
    url = url.substr(0, mark);
  }
  const auto colon = url.find(':');
  if (colon == url.npos || !url.substr(colon + 1).starts_with("//")) {
    return parts;
  }
  std::string_view authority = url.substr(colon + 3);
  authority = authority.substr(0, authority.find('/'));
  authority.remove_prefix(authority.rfind('@') + 1);  // npos + 1 is 0
  parts.host = authority.substr(0, authority.find(':'));
  return parts;
}

char lowered(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::vector<std::string> mixerURLs(std::span<const std::string> arguments) {
  const std::string start = std::string(mixerURLScheme) + ":";
  std::vector<std::string> urls;
  std::ranges::copy_if(arguments, std::back_inserter(urls), [&start](std::string_view argument) {
    return std::ranges::equal(argument.substr(0, start.size()), start, {}, lowered);
  });
  return urls;
}

std::optional<PanelRequest> PanelRequest::of(std::span<const std::string> urls) {
  PanelRequest request;
  bool hasPanel = false;
  for (const std::string& url : urls) {
    const URLParts parts = partsOf(url);
    hasPanel = hasPanel || parts.host == "panel";
    request.isFromControlCenter =
        request.isFromControlCenter || parts.query.find("control-center") != parts.query.npos;
  }
  return hasPanel ? std::optional(request) : std::nullopt;
}

}  // namespace plemora
