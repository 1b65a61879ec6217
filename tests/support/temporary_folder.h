#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

namespace plemora {

/// A folder of its own that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    namespace fs = std::filesystem;
    std::string pattern = (fs::canonical(fs::temp_directory_path()) / "plemora-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
      throw std::runtime_error("no temporary folder " + pattern);
    }
    path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Replaces the file, with the folders above it.
inline void writeFile(const std::filesystem::path& file, const std::string& content) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

inline std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace plemora
