#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A temporary folder.
struct TemporaryFolder {
  TemporaryFolder() = default;
  ~TemporaryFolder() { std::filesystem::remove_all(path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// Replaces a file by a rename.
  void write(const std::string& name, const std::string& content) const {
    std::ofstream{path / "new"} << content;
    std::filesystem::permissions(path / "new", std::filesystem::perms::owner_all);
    std::filesystem::rename(path / "new", path / name);
  }

  std::string read(const std::string& name) const {
    std::ifstream file{path / name};
    return {std::istreambuf_iterator<char>{file}, {}};
  }

  std::string pattern = std::filesystem::temp_directory_path() / "tarno-test-XXXXXX";
  std::filesystem::path path = mkdtemp(pattern.data());
};

/// A temporary data folder. While it lives, suites are opened in it.
struct TemporaryStore : TemporaryFolder {
  TemporaryStore() { setenv("XDG_DATA_HOME", path.c_str(), 1); }
  ~TemporaryStore() { unsetenv("XDG_DATA_HOME"); }
};
