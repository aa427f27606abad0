#include "tarno/tarno-desktop/frame.hpp"

#include <climits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tarno/common/dates.hpp"
#include "tarno/foundation/iso8601.hpp"

namespace desktop {

using nlohmann::json;
using tarno::FileDescriptor;

namespace {

constexpr std::chrono::seconds timeLimit{10};

// The limits of an answer. A title of more than 4 KB would end the connection to a Wayland compositor.
constexpr std::size_t longestAnswer = 256 * 1024;  ///< in bytes
constexpr std::size_t longestText = 2048;          ///< in bytes
constexpr double largestTile = 1000;               ///< the side of a tile, in points
constexpr int largestImage = 16384;                ///< the side of a picture, in pixels
constexpr int widestGap = 256;                     ///< the unused bytes at the end of a row
constexpr std::size_t mostElements = 64;           ///< the elements for screen readers
constexpr double farthest = 16384;                 ///< the distance of an element from the corner, in points

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
  if (!folder.is_absolute()) throw std::runtime_error{"the path of the watched folder is not absolute"};
  if (file.empty() || file.has_parent_path())
    throw std::runtime_error{"the name of the watched file is empty or has a folder"};
  auto path = folder / file;
  if (path.native().size() >= PATH_MAX || path.native().find('\0') != path.native().npos)
    throw std::runtime_error{"the path of the watched file is too long or contains a NUL"};
  return path;
}

std::string readText(const json& text) {
  auto result = text.get<std::string>();
  if (result.size() > longestText)
    throw std::runtime_error{"a text is longer than " + std::to_string(longestText) + " bytes"};
  return result;
}

/// Reads a number from `smallest` to `largest`.
template <class Number>
Number readNumber(const json& number, double largest, double smallest = 0) {
  const double value = number.get<double>();
  if (!(smallest <= value && value <= largest)) throw std::runtime_error{"a number is out of range"};
  return static_cast<Number>(value);
}

/// Reads the number of pixels of a side of the picture. Throws unless that fits the points of the tile.
int readSide(const json& side, const json& tile, double scale) {
  const int pixels = readNumber<int>(side, largestImage);
  const double points = readNumber<double>(tile, largestTile);
  const double more = pixels - points * scale;  // up to 1, because the last pixel may be partly covered
  if (pixels == 0 || points == 0 || more < -0.01 || more > 1.01)
    throw std::runtime_error{"the size of the picture is not that of the tile"};
  return pixels;
}

PictureLayout readLayout(const json& answer, double scale) {
  const auto& tile = answer.at("tile");
  const int width = readSide(answer.at("width"), tile.at("width"), scale);
  const int height = readSide(answer.at("height"), tile.at("height"), scale);
  return {width, height, readNumber<int>(answer.at("stride"), 4 * width + widestGap), scale};
}

std::vector<AccessibleElement> readElements(const json& elements) {
  if (!elements.is_array() || elements.size() > mostElements)
    throw std::runtime_error{"the elements are not an array, or there are more than " +
                             std::to_string(mostElements)};
  std::vector<AccessibleElement> result;
  for (const auto& each : elements) {
    const auto number = [&](const char* key) {
      return readNumber<double>(each.at(key), farthest, -farthest);
    };
    result.push_back({readText(each.at("role")), readText(each.at("label")), number("x"), number("y"),
                      number("width"), number("height")});
  }
  return result;
}

/// Returns the reason that an answer gives for having no picture; an empty text if it gives none.
std::string reasonIn(const std::string& output) {
  const auto answer = output.size() <= longestAnswer ? json::parse(output, nullptr, false) : json{};
  return answer.contains("error") ? ": " + readText(answer["error"]) : "";
}

}  // namespace

Frame readFrame(const std::string& output, FileDescriptor memory, double scale) {
  if (output.size() > longestAnswer) throw std::runtime_error{"the answer is longer than 256 KB"};
  const auto answer = json::parse(output, nullptr, false);
  if (!answer.is_object()) throw std::runtime_error{"the answer is not a JSON object"};
  Frame frame{.picture = std::make_shared<Picture>(std::move(memory), readLayout(answer, scale)),
              .title = readText(answer.at("title")),
              .announcement = readText(answer.at("announcement")),
              .elements = readElements(answer.at("accessibility")),
              .reloadDate = readDate(answer.at("reload_after"))};
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
