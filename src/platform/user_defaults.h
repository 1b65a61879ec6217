#pragma once

#include <optional>
#include <string>

namespace plemora {

/// The program's own settings. Launch arguments ("-key value") lie on top of what is stored and
/// are never written back. Main thread. A value of another type than the one asked for reads as
/// none; only the words that every platform takes for a Bool ("YES", "true", "1" ...) convert.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  virtual std::optional<bool> boolean(const std::string& key) = 0;
  virtual std::optional<std::string> string(const std::string& key) = 0;
  /// Bytes; what setData stored.
  virtual std::optional<std::string> data(const std::string& key) = 0;

  virtual void setBoolean(const std::string& key, bool value) = 0;
  virtual void setString(const std::string& key, const std::string& value) = 0;
  virtual void setData(const std::string& key, const std::string& bytes) = 0;
  virtual void remove(const std::string& key) = 0;
};

}  // namespace plemora
