#include "adapters/files/property_list_preferences.h"

#include <cerrno>
#include <type_traits>
#include <variant>

namespace plemora {

namespace {

namespace fs = std::filesystem;

PreferenceValue fromPropertyList(const PropertyList& list) {
  if (const auto flag = list.asBoolean()) {
    return *flag;
  }
  if (const auto number = list.asInteger()) {
    return *number;
  }
  if (const auto number = list.asReal()) {
    return *number;
  }
  if (auto text = list.asString()) {
    return std::move(*text);
  }
  if (auto data = list.asData()) {
    return PreferenceData{std::move(*data)};
  }
  return OtherPreference{};
}

PropertyList toPropertyList(const PreferenceValue& value) {
  return std::visit(
      [](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, bool>) {
          return PropertyList::boolean(held);
        } else if constexpr (std::is_same_v<Held, std::int64_t>) {
          return PropertyList::integer(held);
        } else if constexpr (std::is_same_v<Held, double>) {
          return PropertyList::real(held);
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return PropertyList::string(held);
        } else if constexpr (std::is_same_v<Held, PreferenceData>) {
          return PropertyList::data(held.bytes);
        } else {
          return PropertyList();  // never waits to be stored
        }
      },
      value);
}

}  // namespace

PropertyListPreferences::PropertyListPreferences(fs::path folder, std::string host,
                                                 std::shared_ptr<FileOperations> operations)
    : folder_(std::move(folder)), host_(std::move(host)), operations_(std::move(operations)) {}

fs::path PropertyListPreferences::fileOf(const std::string& domain, PreferenceHost host) const {
  return host == PreferenceHost::any ? folder_ / (domain + ".plist")
                                     : folder_ / "ByHost" / (domain + "." + host_ + ".plist");
}

std::optional<PropertyList> PropertyListPreferences::load(const fs::path& file) {
  std::string bytes;
  if (const int error = operations_->read(file, bytes); error != 0) {
    return error == ENOENT ? std::optional<PropertyList>(std::in_place) : std::nullopt;
  }
  try {
    PropertyList list = PropertyList::parse(bytes);
    return list.isDictionary() ? std::optional(std::move(list)) : std::nullopt;
  } catch (const PropertyListError&) {
    return std::nullopt;
  }
}

std::optional<PreferenceValue> PropertyListPreferences::value(const std::string& key,
                                                              const std::string& domain,
                                                              PreferenceHost host) {
  const Changes& changes = waiting_[{domain, host}];
  if (const auto changed = changes.find(key); changed != changes.end()) {
    return changed->second;
  }
  const auto list = load(fileOf(domain, host));
  const auto found = list ? list->member(key) : std::nullopt;
  return found ? std::optional(fromPropertyList(*found)) : std::nullopt;
}

void PropertyListPreferences::setValue(const std::string& key,
                                       const std::optional<PreferenceValue>& value,
                                       const std::string& domain, PreferenceHost host) {
  if (!value || !std::holds_alternative<OtherPreference>(*value)) {
    waiting_[{domain, host}][key] = value;
  }
}

bool PropertyListPreferences::synchronize(const std::string& domain, PreferenceHost host) {
  const fs::path file = operations_->target(fileOf(domain, host));
  auto list = load(file);
  Changes& changes = waiting_[{domain, host}];
  if (!list || changes.empty()) {
    return list.has_value();
  }
  try {
    for (const auto& [key, value] : changes) {
      if (value) {
        list->setMember(key, toPropertyList(*value));
      } else {
        list->removeMember(key);
      }
    }
  } catch (const PropertyListError&) {
    return false;
  }
  if (operations_->makeFolder(file.parent_path()) != 0 ||
      replaceFile(*operations_, file, list->binary()).error != 0) {
    return false;
  }
  changes.clear();
  return true;
}

std::optional<PreferenceValue> PropertyListPreferences::appValue(const std::string& key,
                                                                 const std::string& domain) {
  const auto own = value(key, domain, PreferenceHost::current);
  return own ? own : value(key, domain, PreferenceHost::any);
}

bool PropertyListPreferences::appSynchronize(const std::string& domain) {
  const bool own = synchronize(domain, PreferenceHost::current);
  return synchronize(domain, PreferenceHost::any) && own;
}

}  // namespace plemora
