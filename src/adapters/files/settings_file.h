#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace plemora {

/// The text form of the settings: one JSON object, a member per key. Members that this version
/// does not know stay as they are, in their order. Values are Bool (true, false), text (a string)
/// or bytes (a string too when they are valid UTF-8, else {"base64": "..."}).
class SettingsFile {
 public:
  SettingsFile();

  /// None when the text is no JSON object; the reason, one line, goes to error. Empty text counts
  /// as unreadable: a file that lost its content must not pass for one without settings.
  static std::optional<SettingsFile> parse(std::string_view text, std::string& error);

  /// Indented, one member a line, with a newline at the end.
  std::string serialise() const;

  std::optional<bool> boolean(const std::string& key) const;
  /// Text and bytes read alike: the form does not tell them apart.
  std::optional<std::string> bytes(const std::string& key) const;

  /// Each returns whether the stored value changed.
  bool setBoolean(const std::string& key, bool value);
  bool setBytes(const std::string& key, std::string_view value);
  bool remove(const std::string& key);

  /// Takes over what another one holds for that key, or that it holds nothing.
  void copyMember(const std::string& key, const SettingsFile& from);

 private:
  bool store(const std::string& key, nlohmann::ordered_json value);

  nlohmann::ordered_json members_;
};

/// What every platform takes for a Bool, in any case: yes, y, true, t, 1; no, n, false, f, 0.
std::optional<bool> booleanFromText(std::string_view text);

}  // namespace plemora
