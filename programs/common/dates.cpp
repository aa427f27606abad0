#include "tarno/common/dates.hpp"

#include <algorithm>

#include "tarno/foundation/iso8601.hpp"

namespace program {
namespace {

const std::string forms =
    "an RFC 3339 date-time such as 2026-11-16T15:41:35Z or 2026-11-16T16:41:35.250+01:00";

}  // namespace

CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<tarno::Date>& date,
                           const std::string& description) {
  const auto read = [&date, name](const std::string& text) {
    date = tarno::dateFromRFC3339(text);
    if (!date) throw CLI::ValidationError{name + ": '" + text + "' is not " + forms};
  };
  return app.add_option_function<std::string>(name, read, description + "; " + forms)->type_name("DATE");
}

ClockOption::ClockOption(std::initializer_list<CLI::App*> commands) {
  for (auto* const command : commands)
    addDateOption(*command, "--at", at_, "Use this date instead of the current time");
}

void ClockOption::apply() {
  if (at_) override_.emplace(*at_);
}

std::string dateText(tarno::Date date) {
  using namespace std::chrono;
  using namespace tarno;
  date = std::clamp(date, earliestDate, latestDate);
  const bool isWhole = floor<milliseconds>(date) == floor<seconds>(date);
  return ISO8601DateFormatter{withInternetDateTime | (isWhole ? 0u : withFractionalSeconds)}.string(date);
}

}  // namespace program
