// What loading a status costs, its opening of the store included, against the same reads made with bare
// SQLite calls. Both take turns in one run, so that whatever else the machine does meets both alike. Wanted:
// a ratio of at most 1.3.

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "foundation/suite_store.hpp"
#include "shared/persistence/mac_defaults.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// A data directory of our own with one saved status in it.
class SavedStatus {
 public:
  SavedStatus() {
    std::string pattern = (fs::temp_directory_path() / "load_bench.XXXXXX").string();
    home_ = mkdtemp(pattern.data());
    setenv("XDG_DATA_HOME", home_.c_str(), 1);
    const TarnoMacStatusSnapshot snapshot{.schema = "tarno.remote.v1",
                                          .app = "Tarno",
                                          .event = "status",
                                          .deviceID = "3F0C2A52-7A4B-4C7B-9E44-0B8E7F6C2D11",
                                          .deviceName = "Ada's laptop",
                                          .seenAt = now_,
                                          .status = TarnoMacStatus::locked,
                                          .confidence = 97,
                                          .facePresent = false,
                                          .inputIdleSeconds = 12.5,
                                          .message = "Locked: nobody in front of the screen."};
    TarnoMacDefaults::persistStatus(snapshot, now_, "mirror", *TarnoMacDefaults::store());
  }
  ~SavedStatus() { fs::remove_all(home_); }
  SavedStatus(const SavedStatus&) = delete;
  SavedStatus& operator=(const SavedStatus&) = delete;

  foundation::Date now() const { return now_; }
  fs::path file() const { return foundation::suiteLocation(TarnoMacDefaults::appGroupIdentifier)->file; }

 private:
  foundation::Date now_ = foundation::now();
  fs::path home_;
};

bool load(foundation::Date now) {
  return TarnoMacDefaults::loadStatus(*TarnoMacDefaults::store(), now).has_value();
}

bool readKey(sqlite3* database, std::string_view key) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, "SELECT value FROM defaults WHERE key = ?1", -1, &statement, nullptr);
  sqlite3_bind_text(statement, 1, key.data(), static_cast<int>(key.size()), nullptr);
  const bool isFound = sqlite3_step(statement) == SQLITE_ROW;
  benchmark::DoNotOptimize(sqlite3_column_blob(statement, 0));
  sqlite3_finalize(statement);
  return isFound;
}

/// The floor: no checks of the directory and the file, no lock of the directory, no decoding.
bool readWithBareCalls(const std::string& file) {
  sqlite3* database = nullptr;
  sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr);
  const bool isFound = readKey(database, TarnoMacDefaults::lastStatusAt) &&
                       readKey(database, TarnoMacDefaults::lastStatus) &&
                       readKey(database, TarnoMacDefaults::lastStatusValue);
  sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
  sqlite3_close(database);
  return isFound;
}

class Samples {
 public:
  template <class Work>
  bool time(Work work) {
    const auto start = Clock::now();
    const bool succeeded = work();
    microseconds_.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    return succeeded;
  }
  double median() {
    const auto middle = microseconds_.begin() + static_cast<std::ptrdiff_t>(microseconds_.size() / 2);
    std::nth_element(microseconds_.begin(), middle, microseconds_.end());
    return *middle;
  }

 private:
  std::vector<double> microseconds_;
};

void loadAgainstBareCalls(benchmark::State& state) {
  const SavedStatus saved;
  const std::string file = saved.file().string();
  Samples ours;
  Samples floor;
  for (auto _ : state) {
    if (!ours.time([&] { return load(saved.now()); })) state.SkipWithError("there is no status to load");
    if (!floor.time([&] { return readWithBareCalls(file); })) state.SkipWithError("the keys are not there");
  }
  state.counters["ours_us"] = ours.median();
  state.counters["floor_us"] = floor.median();
  state.counters["ours/floor"] = ours.median() / floor.median();
}
BENCHMARK(loadAgainstBareCalls)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
