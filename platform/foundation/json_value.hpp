#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarno {

/// A JSON document as it was read, numbers with their own text. For the decoder's use only.
struct JSONValue {
  struct Number {
    std::string text;
    double value;
  };
  struct Member;
  using Array = std::vector<JSONValue>;
  using Object = std::vector<Member>;

  std::variant<std::nullptr_t, bool, Number, std::string, Array, Object> content;
};

struct JSONValue::Member {
  std::string key;
  JSONValue value;
};

/// Throws DecodingError (dataCorrupted) with the path where the text stops being JSON.
JSONValue parseJSON(std::string_view text);

}  // namespace tarno
