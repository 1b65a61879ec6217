#include "adapters/files/settings_file.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "base/base64.h"
#include "base/text.h"

namespace plemora {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* encodedMember = "base64";
constexpr int deepestNesting = 100;  // writing goes down recursively

bool isUtf8(std::string_view text) {
  // nlohmann's strict writer refuses exactly what is no UTF-8.
  try {
    static_cast<void>(Json(std::string(text)).dump());
    return true;
  } catch (const Json::type_error&) {
    return false;
  }
}

/// The parser's words without its own name, fit for a log whatever the file holds.
std::string reasonOf(const std::exception& failure) {
  std::string reason = failure.what();
  if (const std::size_t end = reason.find("] "); reason.starts_with('[') && end != reason.npos) {
    reason.erase(0, end + 2);
  }
  std::replace_if(
      reason.begin(), reason.end(), [](char c) { return c < 0x20 || c > 0x7e; }, '?');
  return reason;
}

Json encode(std::string_view bytes) {
  if (isUtf8(bytes)) {
    return std::string(bytes);
  }
  return Json{{encodedMember, encodeBase64(bytes)}};
}

std::optional<std::string> decode(const Json& value) {
  if (value.is_string()) {
    return value.get<std::string>();
  }
  if (value.is_object() && value.size() == 1) {
    const auto encoded = value.find(encodedMember);
    if (encoded != value.end() && encoded->is_string()) {
      return decodeBase64(encoded->get_ref<const std::string&>());
    }
  }
  return std::nullopt;
}

}  // namespace

SettingsFile::SettingsFile() : members_(Json::object()) {}

std::optional<SettingsFile> SettingsFile::parse(std::string_view text, std::string& error) {
  SettingsFile file;
  try {
    file.members_ = Json::parse(text, [](int depth, Json::parse_event_t, Json&) {
      if (depth > deepestNesting) {
        throw std::length_error("nested deeper than " + std::to_string(deepestNesting) + " levels");
      }
      return true;
    });
  } catch (const std::exception& failure) {
    error = reasonOf(failure);
    return std::nullopt;
  }
  if (!file.members_.is_object()) {
    error = "the file holds no JSON object but a value of type " +
            std::string(file.members_.type_name());
    return std::nullopt;
  }
  return file;
}

std::string SettingsFile::serialise() const {
  return members_.dump(2) + "\n";
}

std::optional<bool> SettingsFile::boolean(const std::string& key) const {
  const auto member = members_.find(key);
  if (member == members_.end()) {
    return std::nullopt;
  }
  if (member->is_string()) {
    return booleanFromText(member->get_ref<const std::string&>());
  }
  return member->is_boolean() ? std::optional(member->get<bool>()) : std::nullopt;
}

std::optional<std::string> SettingsFile::bytes(const std::string& key) const {
  const auto member = members_.find(key);
  return member == members_.end() ? std::nullopt : decode(*member);
}

bool SettingsFile::setBoolean(const std::string& key, bool value) {
  return store(key, value);
}

bool SettingsFile::setBytes(const std::string& key, std::string_view value) {
  return store(key, encode(value));
}

bool SettingsFile::remove(const std::string& key) {
  return members_.erase(key) > 0;
}

void SettingsFile::copyMember(const std::string& key, const SettingsFile& from) {
  const auto member = from.members_.find(key);
  if (member == from.members_.end()) {
    members_.erase(key);
  } else {
    members_[key] = *member;
  }
}

bool SettingsFile::store(const std::string& key, Json value) {
  const auto member = members_.find(key);
  if (member != members_.end() && *member == value) {
    return false;
  }
  members_[key] = std::move(value);
  return true;
}

std::optional<bool> booleanFromText(std::string_view text) {
  const std::string word = lowercased(text);
  if (word == "yes" || word == "y" || word == "true" || word == "t" || word == "1") {
    return true;
  }
  if (word == "no" || word == "n" || word == "false" || word == "f" || word == "0") {
    return false;
  }
  return std::nullopt;
}

}  // namespace plemora
