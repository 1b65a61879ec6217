#include "main/desktop_ui.h"

#include <QFile>
#include <QLibrary>
#include <QStringList>
#include <filesystem>
#include <system_error>

namespace plemora {

namespace fs = std::filesystem;

DesktopUi* loadDesktopUi(std::string& problem) {
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const fs::path& place : {folder, folder.parent_path() / PLEMORA_MODULE_FOLDER}) {
    const fs::path file = place / "plemora-ui.so";
    if (!fs::exists(file, error)) {
      continue;
    }
    QLibrary library(QString::fromStdString(file.string()));
    using Entry = DesktopUi* (*)();
    if (const auto entry = reinterpret_cast<Entry>(library.resolve("plemoraDesktopUi"))) {
      return entry();
    }
    problem = library.errorString().toStdString();
    return nullptr;
  }
  problem = "plemora-ui.so is neither beside the program nor in " +
            (folder.parent_path() / PLEMORA_MODULE_FOLDER).string() + "; install the program anew";
  return nullptr;
}

}  // namespace plemora
