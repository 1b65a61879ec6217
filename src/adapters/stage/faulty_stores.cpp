#include "adapters/stage/faulty_stores.h"

namespace plemora {

namespace {

bool passes(const StoreGate& gate, const char* operation, const std::string& what) {
  return !gate || gate(std::string(operation) + " " + what);
}

}  // namespace

std::optional<PreferenceValue> FaultyPreferences::value(const std::string& key,
                                                        const std::string& domain,
                                                        PreferenceHost host) {
  return passes(gate, "value", key) ? inner_.value(key, domain, host) : std::nullopt;
}

void FaultyPreferences::setValue(const std::string& key,
                                 const std::optional<PreferenceValue>& value,
                                 const std::string& domain, PreferenceHost host) {
  if (passes(gate, "setValue", key)) {
    inner_.setValue(key, value, domain, host);
  }
}

bool FaultyPreferences::synchronize(const std::string& domain, PreferenceHost host) {
  return passes(gate, "synchronize", domain) && inner_.synchronize(domain, host);
}

std::optional<PreferenceValue> FaultyPreferences::appValue(const std::string& key,
                                                           const std::string& domain) {
  return passes(gate, "appValue", key) ? inner_.appValue(key, domain) : std::nullopt;
}

bool FaultyPreferences::appSynchronize(const std::string& domain) {
  return passes(gate, "appSynchronize", domain) && inner_.appSynchronize(domain);
}

bool FaultyFiles::exists(const std::string& path) {
  return passes(gate, "exists", path) && inner_.exists(path);
}

std::optional<std::string> FaultyFiles::read(const std::string& path) {
  return passes(gate, "read", path) ? inner_.read(path) : std::nullopt;
}

bool FaultyFiles::writeAtomically(const std::string& path, const std::string& bytes) {
  return passes(gate, "writeAtomically", path) && inner_.writeAtomically(path, bytes);
}

bool FaultyFiles::remove(const std::string& path) {
  return passes(gate, "remove", path) && inner_.remove(path);
}

bool FaultyFiles::makeFolder(const std::string& path) {
  return passes(gate, "makeFolder", path) && inner_.makeFolder(path);
}

}  // namespace plemora
