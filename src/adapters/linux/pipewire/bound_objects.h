#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "adapters/linux/pipewire/graph_records.h"
#include "adapters/linux/pipewire/remote_object.h"

namespace plemora {

/// A proxy with a listener that writes what the server says into a record. Dropping it ends both.
/// Everything with the loop's lock held.
class BoundObject {
 public:
  explicit BoundObject(void* proxy) : proxy_(proxy) {}
  virtual ~BoundObject() = default;

  template <typename Interface>
  Interface* as() const {
    return proxy_.as<Interface>();
  }
  Hook& hook() { return hook_; }

 private:
  OwnedProxy proxy_;
  Hook hook_;  // destroyed before the proxy
};

/// Called after each change of a record.
using RecordChanged = std::function<void()>;

/// Each binds the object with that global id; null when the server refuses. The record must
/// outlive the result.
std::unique_ptr<BoundObject> bindClient(pw_registry* registry, std::uint32_t id,
                                        ClientRecord& record, RecordChanged changed);
std::unique_ptr<BoundObject> bindNode(pw_registry* registry, std::uint32_t id, NodeRecord& record,
                                      RecordChanged changed);
std::unique_ptr<BoundObject> bindLink(pw_registry* registry, std::uint32_t id, LinkRecord& record,
                                      RecordChanged changed);
std::unique_ptr<BoundObject> bindCard(pw_registry* registry, std::uint32_t id, CardRecord& record,
                                      RecordChanged changed);
/// The record holds what is said of the server as a whole.
std::unique_ptr<BoundObject> bindMetadata(pw_registry* registry, std::uint32_t id,
                                          PropertyMap& record, RecordChanged changed);

/// Adds all entries, replacing those of the same key. Null is an empty dictionary.
void mergeProperties(PropertyMap& into, const spa_dict* properties);

}  // namespace plemora
