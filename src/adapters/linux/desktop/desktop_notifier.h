#pragma once

#include <QDBusConnection>
#include <memory>
#include <string>
#include <utility>

namespace plemora {

/// Messages to the user by the desktop's notification service. They are in the log too, for where
/// there is no such service. Main thread; returns without waiting.
class DesktopNotifier {
 public:
  explicit DesktopNotifier(QDBusConnection bus) : bus_(std::move(bus)) {}

  /// Takes the place of the message that was shown before.
  void show(const std::string& title, const std::string& text);

 private:
  QDBusConnection bus_;
  std::shared_ptr<unsigned> last_ = std::make_shared<unsigned>(0);  // the service's number of it
};

}  // namespace plemora
