#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/property_list.h"

namespace plemora {

/// Name of the system's Sound module.
inline constexpr const char* soundModule = "Sound";

/// What a module entry says: which element it belongs to, and the name of the module that is shown
/// there. None when it lacks either.
struct ModuleEntry {
  std::string identifier;
  std::string name;
};
std::optional<ModuleEntry> readModuleEntry(const PropertyList& entry);

/// Gives the element with that identifier the Sound module. An entry for Sound that no element uses
/// any more is taken over, so that the list does not grow with every replacement.
void addSoundModule(PropertyList::Array& modules, const std::string& identifier,
                    const std::function<bool(const std::string& identifier)>& isUsed);

}  // namespace plemora
