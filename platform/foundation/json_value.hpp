#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarno {

/// A parsed JSON value that keeps the text of its numbers. Used by the decoders only.
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

/// Returns the value in `text`. Throws DecodingError (dataCorrupted) with the path of the first syntax error.
JSONValue parseJSON(std::string_view text);

}  // namespace tarno
