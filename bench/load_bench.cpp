// Measures how long it takes to open the store and load a status, and compares it with plain calls that read
// the same file and decode the record. The two take turns in one run, so that other load on the machine
// affects both alike. The target is a ratio of at most 1.5. Also compares a save with the calls that it
// cannot avoid.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tarno/foundation/suite_store.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// A temporary data folder that holds one saved status.
class SavedStatus {
 public:
  SavedStatus() {
    std::string pattern = (fs::temp_directory_path() / "load_bench.XXXXXX").string();
    home_ = mkdtemp(pattern.data());
    setenv("XDG_DATA_HOME", home_.c_str(), 1);
    TarnoMacDefaults::saveStatus(snapshot(), now_, "mirror");
  }
  ~SavedStatus() { fs::remove_all(home_); }
  SavedStatus(const SavedStatus&) = delete;
  SavedStatus& operator=(const SavedStatus&) = delete;

  TarnoMacStatusSnapshot snapshot() const {
    return {.schema = "tarno.remote.v1",
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
  }
  tarno::Date now() const { return now_; }
  fs::path file() const { return tarno::suiteLocation(TarnoMacDefaults::appGroupIdentifier)->file; }

 private:
  tarno::Date now_ = tarno::now();
  fs::path home_;
};

bool load(tarno::Date now) {
  return TarnoMacDefaults::loadStatus(*TarnoMacDefaults::store(), now).has_value();
}

std::string readFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat found {};
  if (file < 0 || fstat(file, &found) != 0) return {};
  std::string text(static_cast<std::size_t>(found.st_size), '\0');
  const ssize_t count = read(file, text.data(), text.size());
  close(file);
  return count == found.st_size ? text : std::string{};
}

/// The floor of a load: does not check the folder or the owners, and uses the parser's own tree.
bool loadWithPlainCalls(const std::string& file) {
  const auto document = nlohmann::json::parse(readFile(file));
  const auto& record = document.at(TarnoMacDefaults::lastStatus).at("value").get_ref<const std::string&>();
  return TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(record).status.has_value();
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

void report(benchmark::State& state, Samples& ours, Samples& floor) {
  state.counters["ours_us"] = ours.median();
  state.counters["floor_us"] = floor.median();
  state.counters["ours/floor"] = ours.median() / floor.median();
}

void loadAgainstPlainCalls(benchmark::State& state) {
  const SavedStatus saved;
  const std::string file = saved.file().string();
  Samples ours;
  Samples floor;
  for (auto _ : state) {
    if (!ours.time([&] { return load(saved.now()); })) state.SkipWithError("there is no status to load");
    if (!floor.time([&] { return loadWithPlainCalls(file); })) state.SkipWithError("the record is not there");
  }
  report(state, ours, floor);
}
BENCHMARK(loadAgainstPlainCalls)->MinTime(2.0);

/// The floor of a save: replaces `file` in the shortest way that survives a power cut.
bool replaceWithPlainCalls(const std::string& file, const std::string& folder, const std::string& text) {
  const std::string fresh = file + ".floor";
  const int descriptor = open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  const int directory = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool isWritten = write(descriptor, text.data(), text.size()) > 0 && fsync(descriptor) == 0 &&
                         rename(fresh.c_str(), file.c_str()) == 0 && fsync(directory) == 0;
  close(descriptor);
  close(directory);
  return isWritten;
}

void saveAgainstPlainCalls(benchmark::State& state) {
  const SavedStatus saved;
  const std::string file = saved.file().string();
  const std::string folder = saved.file().parent_path().string();
  const std::string text = readFile(file);
  Samples ours;
  Samples floor;
  for (auto _ : state) {
    ours.time([&] { return TarnoMacDefaults::saveStatus(saved.snapshot(), saved.now()), true; });
    if (!floor.time([&] { return replaceWithPlainCalls(file, folder, text); }))
      state.SkipWithError("the file could not be replaced");
  }
  report(state, ours, floor);
}
BENCHMARK(saveAgainstPlainCalls)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
