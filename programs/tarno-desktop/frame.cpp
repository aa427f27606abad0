#include "tarno/tarno-desktop/frame.hpp"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tarno/common/dates.hpp"
#include "tarno/foundation/iso8601.hpp"

namespace desktop {

using nlohmann::json;
using tarno::FileDescriptor;

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AccessibleElement, role, label, x, y, width, height)

namespace {

constexpr std::chrono::seconds timeLimit{10};

std::vector<std::string> arguments(const FrameRequest& request, int memory) {
  std::vector<std::string> words{"frame", "--family", request.family};
  words.insert(words.end(), {"--scale", json(request.scale).dump(), "--fd", std::to_string(memory)});
  if (request.at) words.insert(words.end(), {"--at", program::dateText(*request.at)});
  return words;
}

tarno::Date readDate(const json& text) {
  const auto date = tarno::dateFromRFC3339(text.get<std::string>());
  if (!date) throw std::runtime_error{text.dump() + " is not a date"};
  return *date;
}

std::filesystem::path readWatch(const json& watch) {
  const std::filesystem::path folder = watch.at("folder").get<std::string>();
  if (!folder.is_absolute()) throw std::runtime_error{"the watched folder's path is not absolute"};
  return folder / watch.at("file").get<std::string>();
}

Frame readFrame(const json& answer, FileDescriptor memory, double scale) {
  if (!answer.is_object()) throw std::runtime_error{"the answer is no JSON object"};
  const PictureLayout layout{answer.at("width"), answer.at("height"), answer.at("stride"), scale};
  Frame frame{.picture = std::make_shared<Picture>(std::move(memory), layout),
              .title = answer.at("title"),
              .announcement = answer.at("announcement"),
              .elements = answer.at("accessibility"),
              .reloadDate = readDate(answer.at("reload_after"))};
  if (const auto& date = answer.at("stale_from"); !date.is_null()) frame.staleDate = readDate(date);
  if (const auto& watch = answer.at("watch"); !watch.is_null()) frame.storeFile = readWatch(watch);
  return frame;
}

}  // namespace

FrameProcess::FrameProcess(const FrameRequest& request)
    : scale_(request.scale),
      memory_(makePictureMemory()),
      process_(request.program, arguments(request, memory_.get()), timeLimit, memory_.get()) {}

FrameResult FrameProcess::finish() {
  auto [output, errors, failure] = process_.finish();
  FrameResult result{.errors = std::move(errors)};
  try {
    const auto answer = json::parse(output, nullptr, false);
    if (answer.contains("error")) failure += ": " + answer["error"].get<std::string>();
    if (!failure.empty()) throw std::runtime_error{failure};
    result.frame = readFrame(answer, std::move(memory_), scale_);
  } catch (const std::exception& error) {
    result.failure = error.what();
  }
  return result;
}

}  // namespace desktop
