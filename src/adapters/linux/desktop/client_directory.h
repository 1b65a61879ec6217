#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace plemora {

/// What a client of the sound server says of itself. Empty means "not said". Nothing in here is
/// verified but portalAppId, which the sandbox's portal vouches for.
struct ClientHints {
  std::string applicationName;
  std::string applicationId;
  std::string iconName;
  std::string binary;       ///< base name of the executable
  std::string portalAppId;  ///< id of the sandboxed app
  /// The PID is the client's own word (pulse protocol), not the kernel's: inside a container it
  /// may be the number of somebody else's process out here.
  bool pidIsClaimed = false;

  bool operator==(const ClientHints&) const = default;
};

/// The sound server's clients by PID: the audio back end fills it, the workspace reads it.
/// Any thread but the real-time ones.
class ClientDirectory {
 public:
  /// Stores or replaces what is known of that PID.
  void set(std::int32_t pid, ClientHints hints);
  void erase(std::int32_t pid);
  std::optional<ClientHints> find(std::int32_t pid) const;

  /// A number that stands for a sandboxed client whose real PID is unknown: the same for the same
  /// key as long as this object lives, never equal for two keys, never the PID of a process.
  std::int32_t syntheticPid(const std::string& key);

  static constexpr bool isSynthetic(std::int32_t pid) { return pid >= firstSyntheticPid; }

 private:
  /// Far above the kernel's highest PID (2^22).
  static constexpr std::int32_t firstSyntheticPid = 0x40000000;

  mutable std::mutex mutex_;
  std::map<std::int32_t, ClientHints> hints_;
  std::map<std::string, std::int32_t> synthetic_;
};

}  // namespace plemora
