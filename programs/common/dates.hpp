#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/date.hpp"

namespace program {

/// An RFC 3339 date-time, with or without a fraction of a second.
std::optional<foundation::Date> parseDate(std::string_view text);

/// RFC 3339 in UTC, with milliseconds unless they are zero.
std::string dateText(foundation::Date date);

}  // namespace program
