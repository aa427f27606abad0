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

// The limits of an answer. A title of more than 4 KB would end the connection to a Wayland compositor.
constexpr std::size_t longestAnswer = 256 * 1024;  ///< in bytes
constexpr std::size_t longestText = 2048;          ///< in bytes
constexpr double largestTile = 1000;               ///< a side in points
constexpr int largestImage = 16384;                ///< a side in pixels

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
  const std::filesystem::path file = watch.at("file").get<std::string>();
  if (!folder.is_absolute()) throw std::runtime_error{"the watched folder's path is not absolute"};
  if (file.empty() || file.has_parent_path()) throw std::runtime_error{"the watched file has no plain name"};
  return folder / file;
}

std::string readText(const json& text) {
  auto result = text.get<std::string>();
  if (result.size() > longestText)
    throw std::runtime_error{"a text is longer than " + std::to_string(longestText) + " bytes"};
  return result;
}

/// Returns whether a picture has the right number of pixels for a side of this many points.
bool isSide(int pixels, double points, double scale) {
  const double more = pixels - points * scale;  // the last pixel may be partly covered
  return 0 < points && points <= largestTile && pixels <= largestImage && -0.01 < more && more < 1.01;
}

/// Returns the reason in an answer without a picture, or an empty text.
std::string reasonIn(const std::string& output) {
  const auto answer = output.size() <= longestAnswer ? json::parse(output, nullptr, false) : json{};
  return answer.contains("error") ? ": " + readText(answer["error"]) : "";
}

}  // namespace

Frame readFrame(const std::string& output, FileDescriptor memory, double scale) {
  if (output.size() > longestAnswer) throw std::runtime_error{"the answer is longer than 256 KB"};
  const auto answer = json::parse(output, nullptr, false);
  if (!answer.is_object()) throw std::runtime_error{"the answer is no JSON object"};
  const PictureLayout layout{answer.at("width"), answer.at("height"), answer.at("stride"), scale};
  const auto& tile = answer.at("tile");
  if (!isSide(layout.width, tile.at("width"), scale) || !isSide(layout.height, tile.at("height"), scale))
    throw std::runtime_error{"the picture has another size than the tile"};
  Frame frame{.picture = std::make_shared<Picture>(std::move(memory), layout),
              .title = readText(answer.at("title")),
              .announcement = readText(answer.at("announcement")),
              .elements = answer.at("accessibility"),
              .reloadDate = readDate(answer.at("reload_after"))};
  for (const auto& element : answer.at("accessibility")) readText(element.at("label"));
  if (const auto& date = answer.at("stale_from"); !date.is_null()) frame.staleDate = readDate(date);
  if (const auto& watch = answer.at("watch"); !watch.is_null()) frame.storeFile = readWatch(watch);
  return frame;
}

FrameProcess::FrameProcess(const FrameRequest& request)
    : scale_(request.scale),
      memory_(makePictureMemory()),
      process_(request.program, arguments(request, memory_.get()), timeLimit, memory_.get()) {}

FrameResult FrameProcess::finish() {
  auto [output, errors, failure] = process_.finish();
  FrameResult result{.errors = std::move(errors)};
  try {
    if (!failure.empty()) throw std::runtime_error{failure + reasonIn(output)};
    result.frame = readFrame(output, std::move(memory_), scale_);
  } catch (const std::exception& error) {
    result.failure = error.what();
  }
  return result;
}

}  // namespace desktop
