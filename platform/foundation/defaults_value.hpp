#pragma once

#include <functional>
#include <map>
#include <string>
#include <variant>

#include "tarno/foundation/date.hpp"

namespace tarno {

/// Raw bytes, as opposed to text, which is a std::string in UTF-8.
struct Data {
  std::string bytes;

  friend bool operator==(const Data&, const Data&) = default;
};

/// The value of a key in a defaults store: data, a date, text or a number.
using DefaultsValue = std::variant<Data, Date, std::string, double>;

/// Values by their keys.
using DefaultsValues = std::map<std::string, DefaultsValue, std::less<>>;

}  // namespace tarno
