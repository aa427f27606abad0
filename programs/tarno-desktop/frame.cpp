#include "tarno-desktop/frame.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <stdexcept>

#include "foundation/iso8601.hpp"
#include "foundation/json_decoder.hpp"

namespace desktop {

using foundation::Decoder;

template <class T>
static T required(const Decoder& decoder, std::string_view key) {
  auto value = decoder.decodeIfPresent<T>(key);
  if (!value) throw decoder.dataCorrupted("there is no '" + std::string{key} + "'");
  return *std::move(value);
}

static int requiredInt(const Decoder& decoder, std::string_view key, int least) {
  constexpr int most = 1 << 20;
  const auto value = required<std::int64_t>(decoder, key);
  if (value < least || value > most) throw decoder.dataCorrupted("the " + std::string{key} + " cannot be");
  return static_cast<int>(value);
}

static void decode(const Decoder& decoder, AccessibleElement& element) {
  element = {required<std::string>(decoder, "role") == "image" ? "image" : "text",
             required<std::string>(decoder, "label"),
             required<double>(decoder, "x"),
             required<double>(decoder, "y"),
             required<double>(decoder, "width"),
             required<double>(decoder, "height")};
}

namespace {

struct WatchedFile {
  std::filesystem::path path;
};

void decode(const Decoder& decoder, WatchedFile& watched) {
  watched.path = required<std::string>(decoder, "folder");
  if (!watched.path.is_absolute()) throw decoder.dataCorrupted("the folder's path is not absolute");
  watched.path /= required<std::string>(decoder, "file");
}

/// The whole of an answer; the memory is missing.
struct Answer {
  Frame frame;
  Picture picture;
};

void decode(const Decoder& decoder, Answer& answer) {
  if (const auto error = decoder.decodeIfPresent<std::string>("error")) throw std::runtime_error{*error};
  auto& picture = answer.picture;
  picture.width = requiredInt(decoder, "width", 1);
  picture.height = requiredInt(decoder, "height", 1);
  picture.stride = requiredInt(decoder, "stride", 4 * picture.width);
  if (picture.stride % 4 != 0) throw decoder.dataCorrupted("rows do not begin at whole pixels");
  auto& frame = answer.frame;
  frame.title = required<std::string>(decoder, "title");
  frame.announcement = required<std::string>(decoder, "announcement");
  frame.elements = required<std::vector<AccessibleElement>>(decoder, "accessibility");
  frame.reloadDate = required<foundation::Date>(decoder, "reload_after");
  frame.staleDate = decoder.decodeIfPresent<foundation::Date>("stale_from");
  frame.storeFile = decoder.decodeIfPresent<WatchedFile>("watch").value_or(WatchedFile{}).path;
}

foundation::Date readDate(const Decoder& decoder) {
  const auto text = decoder.as<std::string>();
  const auto date = foundation::dateFromRFC3339(text);
  if (!date) throw decoder.dataCorrupted("'" + text + "' is not a date");
  return *date;
}

}  // namespace

Frame readFrame(std::string_view text, foundation::FileDescriptor memory, double scale) {
  auto [frame, picture] = foundation::JSONDecoder{readDate}.decode<Answer>(text);
  struct stat status {};
  if (fstat(memory.get(), &status) != 0 || static_cast<std::size_t>(status.st_size) < picture.size())
    throw std::runtime_error{"the picture is smaller than its answer says"};
  const int seals = fcntl(memory.get(), F_GET_SEALS);
  if (seals < 0 || (seals & F_SEAL_SHRINK) == 0) throw std::runtime_error{"the picture is not sealed"};
  picture.memory = std::move(memory);
  picture.scale = scale;
  frame.picture = std::make_shared<Picture>(std::move(picture));
  return std::move(frame);
}

}  // namespace desktop
