#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace ui {

/// A view or a scene in words and numbers: what inspection prints, as an outline or as JSON.
struct Description {
  using Value = std::variant<double, bool, std::string>;

  std::string name;
  /// In a fixed order. Absent values and choices at their default are left out. Numbers are finite and
  /// rounded to 3 decimals; infinity is a word.
  std::vector<std::pair<std::string_view, Value>> attributes;
  std::vector<Description> children;
};

/// One line per node, indented by two blanks per level: `HStack spacing=14`.
std::string outline(const Description& description);

/// A number as an outline writes it: in fixed notation, with as many digits as it takes.
std::string digits(double value);

}  // namespace ui
