#pragma once

#include <pipewire/pipewire.h>

#include <utility>

namespace plemora {

/// A listener registration that ends with its owner.
class Hook {
 public:
  Hook() { spa_zero(hook_); }
  ~Hook() { remove(); }
  Hook(const Hook&) = delete;
  Hook& operator=(const Hook&) = delete;

  spa_hook* get() { return &hook_; }
  void remove() {
    // A hook that was never added, or whose list is gone, has no link.
    if (hook_.link.next != nullptr) {
      spa_hook_remove(&hook_);
      spa_zero(hook_);
    }
  }

 private:
  spa_hook hook_;
};

/// Owns a proxy of an object of the server. Destroyed with the lock held.
class OwnedProxy {
 public:
  OwnedProxy() = default;
  explicit OwnedProxy(void* proxy) : proxy_(static_cast<pw_proxy*>(proxy)) {}
  OwnedProxy(OwnedProxy&& other) noexcept : proxy_(std::exchange(other.proxy_, nullptr)) {}
  OwnedProxy& operator=(OwnedProxy&& other) noexcept {
    std::swap(proxy_, other.proxy_);
    return *this;
  }
  ~OwnedProxy() {
    if (proxy_ != nullptr) {
      pw_proxy_destroy(proxy_);
    }
  }

  pw_proxy* get() const { return proxy_; }
  template <typename Interface>
  Interface* as() const {
    return reinterpret_cast<Interface*>(proxy_);
  }
  explicit operator bool() const { return proxy_ != nullptr; }

 private:
  pw_proxy* proxy_ = nullptr;
};

}  // namespace plemora
