#pragma once

#include <string>
#include <vector>

#include "adapters/stage/memory_defaults.h"

namespace plemora {

/// The settings of one run of the program: its launch arguments ("-key value") on top of what is
/// stored for all runs. Main thread; the stored ones outlive it.
class LaunchDefaults : public UserDefaults {
 public:
  LaunchDefaults(const std::vector<std::string>& arguments, UserDefaults& stored)
      : arguments_(arguments), stored_(stored) {}

  std::optional<bool> boolean(const std::string& key) override {
    return isArgument(key) ? arguments_.boolean(key) : stored_.boolean(key);
  }
  std::optional<std::string> string(const std::string& key) override {
    return isArgument(key) ? arguments_.string(key) : stored_.string(key);
  }
  std::optional<std::string> data(const std::string& key) override {
    return isArgument(key) ? arguments_.data(key) : stored_.data(key);
  }
  void setBoolean(const std::string& key, bool value) override { stored_.setBoolean(key, value); }
  void setString(const std::string& key, const std::string& value) override {
    stored_.setString(key, value);
  }
  void setData(const std::string& key, const std::string& bytes) override {
    stored_.setData(key, bytes);
  }
  void remove(const std::string& key) override { stored_.remove(key); }

 private:
  bool isArgument(const std::string& key) { return arguments_.string(key).has_value(); }

  MemoryDefaults arguments_;
  UserDefaults& stored_;
};

}  // namespace plemora
