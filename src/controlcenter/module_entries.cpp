#include "controlcenter/module_entries.h"

#include <algorithm>

namespace plemora {

namespace {

constexpr const char* nameMember = "moduleId";
constexpr const char* rawValue = "rawValue";

/// Where an entry has its identifier: in "rawValue" of the member with that name, or in its own
/// when the name is empty.
std::optional<std::string> identifierMember(const PropertyList& entry) {
  const auto hasText = [](const PropertyList& holder) {
    const auto value = holder.member(rawValue);
    return value && value->asString();
  };
  if (hasText(entry)) {
    return "";
  }
  for (const auto& [key, value] : entry.members()) {
    if (hasText(value)) {
      return key;
    }
  }
  return std::nullopt;
}

void setIdentifier(PropertyList& entry, const std::string& memberName,
                   const std::string& identifier) {
  if (memberName.empty()) {
    entry.setMember(rawValue, PropertyList::string(identifier));
    return;
  }
  PropertyList holder = entry.member(memberName).value_or(PropertyList());
  holder.setMember(rawValue, PropertyList::string(identifier));
  entry.setMember(memberName, holder);
}

}  // namespace

std::optional<ModuleEntry> readModuleEntry(const PropertyList& entry) {
  const auto memberName = identifierMember(entry);
  const auto name = entry.member(nameMember);
  const auto text = name ? name->asString() : std::nullopt;
  if (!memberName || !text) {
    return std::nullopt;
  }
  const PropertyList holder = memberName->empty() ? entry : *entry.member(*memberName);
  return ModuleEntry{*holder.member(rawValue)->asString(), *text};
}

void addSoundModule(PropertyList::Array& modules, const std::string& identifier,
                    const std::function<bool(const std::string& identifier)>& isUsed) {
  PropertyList size;
  size.setMember("large", PropertyList());
  const auto left = std::ranges::find_if(modules, [&](const PropertyList& entry) {
    const auto read = readModuleEntry(entry);
    return read && read->name == soundModule && !isUsed(read->identifier);
  });
  if (left != modules.end()) {
    setIdentifier(*left, *identifierMember(*left), identifier);
    left->setMember("size", size);
    return;
  }
  // As the other entries do it; on an empty list, as the elements do.
  std::string memberName = "id";
  for (const PropertyList& entry : modules) {
    if (const auto found = identifierMember(entry)) {
      memberName = *found;
      break;
    }
  }
  PropertyList entry;
  setIdentifier(entry, memberName, identifier);
  entry.setMember("size", size);
  entry.setMember(nameMember, PropertyList::string(soundModule));
  modules.push_back(entry);
}

}  // namespace plemora
