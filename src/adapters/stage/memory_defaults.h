#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/user_defaults.h"

namespace plemora {

/// The words that count as a Bool wherever one is asked for: "YES", "true", "1" ...
std::optional<bool> booleanWord(std::string_view text);

/// Settings in memory, with a launch-argument domain on top. Main thread.
class MemoryDefaults : public UserDefaults {
 public:
  /// Arguments without the program's name. "-key value" pairs count; anything else is passed
  /// over, also options that begin with two hyphens.
  explicit MemoryDefaults(const std::vector<std::string>& arguments = {});

  std::optional<bool> boolean(const std::string& key) override;
  std::optional<std::string> string(const std::string& key) override;
  std::optional<std::string> data(const std::string& key) override;

  void setBoolean(const std::string& key, bool value) override;
  void setString(const std::string& key, const std::string& value) override;
  void setData(const std::string& key, const std::string& bytes) override;
  void remove(const std::string& key) override;

  /// How often something was stored or removed.
  int writes() const { return writes_; }

 private:
  struct Data {
    std::string bytes;
  };
  using Value = std::variant<bool, std::string, Data>;

  const Value* find(const std::string& key) const;
  void store(const std::string& key, Value value);

  std::map<std::string, Value> arguments_;
  std::map<std::string, Value> stored_;
  int writes_ = 0;
};

}  // namespace plemora
