#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/// A data directory of the test's own, in which suites are opened while it lives.
class TemporaryStore {
 public:
  TemporaryStore() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarno-test-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    setenv("XDG_DATA_HOME", folder_.c_str(), 1);
  }
  ~TemporaryStore() {
    unsetenv("XDG_DATA_HOME");
    std::filesystem::remove_all(folder_);
  }
  TemporaryStore(const TemporaryStore&) = delete;
  TemporaryStore& operator=(const TemporaryStore&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};
