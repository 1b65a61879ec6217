#include "adapters/linux/desktop/url_opener.h"

#include <QProcess>
#include <QString>

namespace plemora {

bool openWithDesktop(const std::string& url) {
  return QProcess::startDetached("xdg-open", {QString::fromStdString(url)});
}

}  // namespace plemora
