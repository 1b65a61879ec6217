#include "main/module_loader.h"

#include <QLibrary>
#include <QString>
#include <filesystem>
#include <system_error>

namespace plemora {

namespace fs = std::filesystem;

void* loadModule(const std::string& name, const char* entry, std::string& problem) {
  const std::string fileName = name + ".so";
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const fs::path& place : {folder, folder.parent_path() / PLEMORA_MODULE_FOLDER}) {
    const fs::path file = place / fileName;
    if (!fs::exists(file, error)) {
      continue;
    }
    QLibrary library(QString::fromStdString(file.string()));
    if (const auto function = library.resolve(entry)) {
      return reinterpret_cast<void*>(function);
    }
    problem = library.errorString().toStdString();
    return nullptr;
  }
  problem = fileName + " is neither beside the program nor in " +
            (folder.parent_path() / PLEMORA_MODULE_FOLDER).string() + "; install the program anew";
  return nullptr;
}

}  // namespace plemora
