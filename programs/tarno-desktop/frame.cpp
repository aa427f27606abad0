#include "tarno-desktop/frame.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "foundation/iso8601.hpp"

namespace desktop {

using nlohmann::json;

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AccessibleElement, role, label, x, y, width, height)

namespace {

foundation::Date readDate(const json& text) {
  const auto date = foundation::dateFromRFC3339(text.get<std::string>());
  if (!date) throw std::runtime_error{text.dump() + " is not a date"};
  return *date;
}

std::filesystem::path readWatch(const json& watch) {
  const std::filesystem::path folder = watch.at("folder").get<std::string>();
  if (!folder.is_absolute()) throw std::runtime_error{"the watched folder's path is not absolute"};
  return folder / watch.at("file").get<std::string>();
}

/// Whether all of the picture can be mapped, and nobody can take its memory away.
bool isSafe(const Picture& picture) {
  struct stat file {};
  const int seals = fcntl(picture.memory.get(), F_GET_SEALS);
  return picture.width > 0 && picture.height > 0 && picture.stride % 4 == 0 &&
         picture.stride / 4 >= picture.width && fstat(picture.memory.get(), &file) == 0 &&
         picture.size() <= static_cast<std::size_t>(file.st_size) && seals >= 0 &&
         (seals & F_SEAL_SHRINK) != 0;
}

}  // namespace

Frame readFrame(std::string_view text, foundation::FileDescriptor memory, double scale) {
  const auto answer = json::parse(text, nullptr, false);
  if (!answer.is_object()) throw std::runtime_error{"the answer is no JSON object"};
  if (answer.contains("error")) throw std::runtime_error{answer["error"].get<std::string>()};
  Picture picture{std::move(memory), answer.at("width"), answer.at("height"), answer.at("stride"), scale};
  if (!isSafe(picture))
    throw std::runtime_error{"the picture is not as large as its answer says, or not sealed"};
  Frame frame{std::make_shared<Picture>(std::move(picture)),
              answer.at("title"),
              answer.at("announcement"),
              answer.at("accessibility"),
              readDate(answer.at("reload_after")),
              {},
              {}};
  if (const auto& date = answer.at("stale_from"); !date.is_null()) frame.staleDate = readDate(date);
  if (const auto& watch = answer.at("watch"); !watch.is_null()) frame.storeFile = readWatch(watch);
  return frame;
}

}  // namespace desktop
