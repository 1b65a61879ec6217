#pragma once

#include <cstdint>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/pipewire/graph_records.h"

namespace plemora {

/// Which process a stream belongs to, and what its client says of itself.
struct ClientIdentity {
  std::int32_t pid = -1;  ///< a synthetic one where the real one cannot be known
  ClientHints hints;
};

/// Native clients are named by the kernel (the socket's peer). Clients of the pulse server name
/// their process themselves: inside a sandbox that number is none of ours, so it counts only when
/// a process of that number and of the claimed program exists. The directory gives synthetic PIDs.
ClientIdentity identifyClient(const PropertyMap& client, const PropertyMap& stream,
                              ClientDirectory& directory);

}  // namespace plemora
