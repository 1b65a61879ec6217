#include "adapters/stage/desktop/stage_control_identity.h"

#include "base/base64.h"
#include "base/property_list.h"

namespace plemora {

namespace {

/// Follows the references of a keyed archive.
class Archive {
 public:
  explicit Archive(const PropertyList& list)
      : top_(list.member("$top").value_or(PropertyList())),
        objects_(list.member("$objects")
                     .value_or(PropertyList())
                     .items()
                     .value_or(PropertyList::Array())) {}

  std::optional<PropertyList> root() const { return follow(top_.member("root")); }
  std::optional<PropertyList> object(const PropertyList& holder, const std::string& key) const {
    return follow(holder.member(key));
  }
  /// Text is kept as an object of its own, as a rule.
  std::optional<std::string> text(const PropertyList& holder, const std::string& key) const {
    const auto value = object(holder, key);
    return value ? value->asString() : std::nullopt;
  }

 private:
  std::optional<PropertyList> follow(const std::optional<PropertyList>& reference) const {
    const auto index = reference ? reference->asUID() : std::nullopt;
    if (!index) {
      return reference;
    }
    return *index < objects_.size() ? std::optional(objects_[*index]) : std::nullopt;
  }

  PropertyList top_;
  PropertyList::Array objects_;
};

PropertyList dictionary(const PropertyList::Members& members) {
  PropertyList result;
  for (const auto& [key, value] : members) {
    result.setMember(key, value);
  }
  return result;
}

PropertyList classNamed(const std::string& name) {
  const auto text = [](const std::string& value) { return PropertyList::string(value); };
  return dictionary({{"$classname", text(name)},
                     {"$classes", PropertyList::array({text(name), text("NSObject")})}});
}

}  // namespace

std::optional<StageTileControl> decodeControlIdentity(const std::string& text) {
  const auto bytes = decodeBase64(text);
  if (!bytes) {
    return std::nullopt;
  }
  try {
    const Archive archive(PropertyList::parse(*bytes));
    const auto root = archive.root();
    const auto extension = root ? archive.object(*root, "extId") : std::nullopt;
    if (!extension) {
      return std::nullopt;
    }
    const auto extensionID = archive.text(*extension, "extensionBundleIdentifier");
    const auto containerID = archive.text(*extension, "containerBundleIdentifier");
    const auto kind = archive.text(*root, "kind");
    if (!extensionID || !kind) {
      return std::nullopt;
    }
    return StageTileControl{*extensionID, containerID.value_or(""), *kind, ""};
  } catch (const PropertyListError&) {
    return std::nullopt;
  }
}

std::string encodeControlIdentity(const StageControlExtension& control) {
  const auto at = [](std::uint32_t index) { return PropertyList::uid(index); };
  const auto text = [](const std::string& value) { return PropertyList::string(value); };
  const auto objects = PropertyList::array({
      text("$null"),
      dictionary({{"$class", at(7)}, {"extId", at(2)}, {"kind", at(5)}, {"intentRef", at(0)}}),
      dictionary({{"$class", at(6)},
                  {"extensionBundleIdentifier", at(3)},
                  {"containerBundleIdentifier", at(4)},
                  {"deviceIdentifier", at(0)}}),
      text(control.extensionID),
      text(control.containerID),
      text(control.kind),
      classNamed("CHSExtensionIdentity"),
      classNamed("CHSControlIdentity"),
  });
  return encodeBase64(dictionary({{"$version", PropertyList::integer(100000)},
                                  {"$archiver", text("NSKeyedArchiver")},
                                  {"$top", dictionary({{"root", at(1)}})},
                                  {"$objects", objects}})
                          .binary());
}

}  // namespace plemora
