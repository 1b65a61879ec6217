#pragma once

#include <functional>

#include "platform/files.h"
#include "platform/preferences.h"

namespace plemora {

/// Asked before each call that reaches a store, with what it is about to do ("synchronize
/// com.apple.controlcenter"): false lets that call fail without any effect. Whatever it throws
/// passes through, as if the program had been killed there. None lets everything pass.
using StoreGate = std::function<bool(const std::string& call)>;

/// Preferences that fail on demand: a read gives none, a value that is set gets lost, synchronize
/// stores nothing and gives false.
class FaultyPreferences : public Preferences {
 public:
  explicit FaultyPreferences(Preferences& inner) : inner_(inner) {}

  std::optional<PreferenceValue> value(const std::string& key, const std::string& domain,
                                       PreferenceHost host) override;
  void setValue(const std::string& key, const std::optional<PreferenceValue>& value,
                const std::string& domain, PreferenceHost host) override;
  bool synchronize(const std::string& domain, PreferenceHost host) override;
  std::optional<PreferenceValue> appValue(const std::string& key,
                                          const std::string& domain) override;
  bool appSynchronize(const std::string& domain) override;

  StoreGate gate;

 private:
  Preferences& inner_;
};

/// Files that fail on demand: nothing is read, written, removed or made.
class FaultyFiles : public Files {
 public:
  explicit FaultyFiles(Files& inner) : inner_(inner) {}

  std::string applicationSupport() override { return inner_.applicationSupport(); }
  bool exists(const std::string& path) override;
  std::optional<std::string> read(const std::string& path) override;
  bool writeAtomically(const std::string& path, const std::string& bytes) override;
  bool remove(const std::string& path) override;
  bool makeFolder(const std::string& path) override;

  StoreGate gate;

 private:
  Files& inner_;
};

}  // namespace plemora
