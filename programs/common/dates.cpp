#include "common/dates.hpp"

#include "foundation/iso8601.hpp"

namespace program {
namespace {

constexpr foundation::ISO8601DateFormatter wholeSeconds{foundation::withInternetDateTime};
constexpr foundation::ISO8601DateFormatter fractions{foundation::withInternetDateTime |
                                                     foundation::withFractionalSeconds};

}  // namespace

std::optional<foundation::Date> parseDate(std::string_view text) {
  const auto date = fractions.date(text);
  return date ? date : wholeSeconds.date(text);
}

std::string dateText(foundation::Date date) {
  using namespace std::chrono;
  const bool isWhole = floor<milliseconds>(date) == floor<seconds>(date);
  return (isWhole ? wholeSeconds : fractions).string(date);
}

}  // namespace program
