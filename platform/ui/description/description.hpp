#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace ui {

/// A description of a view or a scene that `inspect` prints, as an outline or as JSON.
struct Description {
  using Value = std::variant<double, bool, std::string>;

  std::string name;
  /// The attributes in a fixed order, without absent values and defaults. Numbers are finite and rounded to 3
  /// decimals; infinity is a word.
  std::vector<std::pair<std::string_view, Value>> attributes;
  std::vector<Description> children;
};

/// Returns one line per node, indented by two blanks per level: `HStack spacing=14`.
std::string outline(const Description& description);

/// Formats a number for an outline: in fixed notation, with as many digits as needed.
std::string digits(double value);

}  // namespace ui
