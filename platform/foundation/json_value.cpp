#include "tarno/foundation/json_value.hpp"

#include <locale.h>

#include <nlohmann/json.hpp>

#include "tarno/foundation/coding_error.hpp"

namespace tarno {
namespace {

/// The maximum depth, which is limited because destroying a JSONValue is recursive.
constexpr std::size_t deepestNesting = 512;

std::string notJSON(std::size_t position) { return "not valid JSON near byte " + std::to_string(position); }

/// Sets the locale of the calling thread to "C" for as long as it lives. The parser uses the decimal point of
/// the locale; JSON always uses '.'.
class CLocaleScope {
 public:
  CLocaleScope() : previous_(uselocale(cLocale())) {}
  ~CLocaleScope() { uselocale(previous_); }
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;

 private:
  static locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }

  locale_t previous_;
};

/// Builds a JSONValue from the events of the parser. Keeps the text of each number, which integers beyond the
/// precision of a double need and the parser's own tree drops.
class TreeBuilder {
 public:
  using number_integer_t = nlohmann::json::number_integer_t;
  using number_unsigned_t = nlohmann::json::number_unsigned_t;
  using number_float_t = nlohmann::json::number_float_t;
  using string_t = nlohmann::json::string_t;
  using binary_t = nlohmann::json::binary_t;

  bool null() { return add({nullptr}); }
  bool boolean(bool value) { return add({value}); }
  bool number_integer(number_integer_t value) {
    return add({JSONValue::Number{std::to_string(value), static_cast<double>(value)}});
  }
  bool number_unsigned(number_unsigned_t value) {
    return add({JSONValue::Number{std::to_string(value), static_cast<double>(value)}});
  }
  bool number_float(number_float_t value, const string_t& text) {
    return add({JSONValue::Number{text, value}});
  }
  bool string(string_t& value) { return add({std::move(value)}); }
  bool binary(binary_t&) { return false; }

  bool start_object(std::size_t) { return open({JSONValue::Object{}}); }
  bool key(string_t& name) {
    key_ = std::move(name);
    return true;
  }
  bool end_object() { return close(); }
  bool start_array(std::size_t) { return open({JSONValue::Array{}}); }
  bool end_array() { return close(); }

  bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception& error) {
    fail(error.id == numberOverflow ? "a number is too large" : notJSON(position));
  }

  JSONValue result() && { return std::move(top_); }

 private:
  static constexpr int numberOverflow = 406;

  /// A value that is not complete yet, and the key of its next member.
  struct Level {
    JSONValue value;
    std::string key;
  };

  bool add(JSONValue value) {
    if (open_.empty()) {
      top_ = std::move(value);
      return true;
    }
    auto& content = open_.back().value.content;
    if (auto* const array = std::get_if<JSONValue::Array>(&content)) {
      array->push_back(std::move(value));
    } else {
      std::get<JSONValue::Object>(content).push_back({std::move(key_), std::move(value)});
    }
    return true;
  }

  bool open(JSONValue value) {
    if (open_.size() == deepestNesting) fail("nested too deeply");
    open_.push_back({std::move(value), std::move(key_)});
    return true;
  }

  bool close() {
    Level done = std::move(open_.back());
    open_.pop_back();
    key_ = std::move(done.key);
    return add(std::move(done.value));
  }

  [[noreturn]] void fail(std::string text) const {
    CodingPath path;
    for (std::size_t level = 0; level < open_.size(); ++level) {
      const auto* const array = std::get_if<JSONValue::Array>(&open_[level].value.content);
      if (array != nullptr) {
        path.push_back(std::to_string(array->size()));
      } else {
        path.push_back(level + 1 < open_.size() ? open_[level + 1].key : key_);
      }
    }
    while (!path.empty() && path.back().empty()) path.pop_back();
    throw DecodingError{DecodingError::Kind::dataCorrupted, std::move(path), std::move(text)};
  }

  JSONValue top_{nullptr};
  std::vector<Level> open_;
  std::string key_;
};

}  // namespace

JSONValue parseJSON(std::string_view text) {
  // The parser takes a NUL for the end of its input, but a NUL is not valid in JSON.
  const auto document = text.substr(0, text.find('\0'));
  const CLocaleScope scope;
  TreeBuilder builder;
  nlohmann::json::sax_parse(document.begin(), document.end(), &builder);
  if (document.size() < text.size())
    throw DecodingError{DecodingError::Kind::dataCorrupted, {}, notJSON(document.size() + 1)};
  return std::move(builder).result();
}

}  // namespace tarno
