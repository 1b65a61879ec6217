#pragma once

#include <QString>
#include <QtGlobal>
#include <string>
#include <utility>
#include <vector>

namespace plemora {

/// The warnings of Qt and of the QML engine since they were last taken.
class QtWarnings {
 public:
  static void install() {
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
      if (type != QtDebugMsg && type != QtInfoMsg) {
        messages().push_back(message.toStdString());
      }
    });
  }
  static std::vector<std::string> take() { return std::exchange(messages(), {}); }

 private:
  static std::vector<std::string>& messages() {
    static std::vector<std::string> kept;
    return kept;
  }
};

}  // namespace plemora
