#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarno {

/// A parsed JSON document that keeps the text of its numbers. Only for the decoder.
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

/// Throws DecodingError (dataCorrupted) with the path of the first syntax error.
JSONValue parseJSON(std::string_view text);

}  // namespace tarno
