#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <sstream>

#include "foundation/suite_store.hpp"
#include "support/temporary_store.hpp"

/// Tests of a suite of their own, which begins with the number 1 under "key".
class SuiteTest : public testing::Test {
 protected:
  SuiteTest() { startOver(); }

  void startOver() const {
    std::filesystem::remove_all(home);
    save({{"key", 1.0}});
  }
  static void save(const foundation::DefaultsValues& values) { foundation::saveToSuite(name, values); }

  /// The sentence with which `work` fails; empty when it does not.
  static std::string failureOf(const std::function<void()>& work) try {
    work();
    return "";
  } catch (const foundation::SuiteError& error) {
    return error.what();
  }

  static auto load(std::string_view key) {
    const auto store = foundation::openSuite(name).store;
    return store ? store->object(key) : std::nullopt;
  }

  static std::string readBytes(const std::filesystem::path& at) {
    return (std::stringstream{} << std::ifstream{at}.rdbuf()).str();
  }
  static void writeBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream{path} << bytes;
  }

  static pid_t startProcess(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) work(), _exit(0);
    return child;
  }

  /// How many files there are whose name begins with `start`.
  long count(const std::string& start) const {
    const auto matches = [&](const auto& entry) {
      return entry.path().filename().string().starts_with(start);
    };
    return std::count_if(std::filesystem::directory_iterator{directory}, {}, matches);
  }

  static constexpr const char* name = "suite.of.test";
  const TemporaryStore temporary{};
  const std::filesystem::path home = temporary.folder(), directory = home / name,
                              file = directory / "defaults.json", leftover = directory / ".defaults.json.new";
};
