#include "tarno/foundation/json_decoder.hpp"

#include <algorithm>
#include <charconv>

#include "tarno/foundation/json_value.hpp"

namespace tarno {
namespace {

std::string_view kindName(const JSONValue& value) {
  static constexpr std::string_view names[] = {"null",     "a boolean", "a number",
                                               "a string", "an array",  "an object"};
  return names[value.content.index()];
}

bool isNull(const JSONValue& value) { return std::holds_alternative<std::nullptr_t>(value.content); }

/// Returns the exact integer that the text of a JSON number names; nothing if it is not an integer or does
/// not fit.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
  const auto exponentAt = std::min(text.find_first_of("eE"), text.size());
  const auto pointAt = std::min(text.find('.'), exponentAt);
  std::string digits{text.substr(0, pointAt)};
  long exponent = 0;
  if (pointAt < exponentAt) {
    const auto fraction = text.substr(pointAt + 1, exponentAt - pointAt - 1);
    digits += fraction;
    exponent -= static_cast<long>(fraction.size());
  }
  const bool isZero = digits.find_first_not_of("-0") == std::string::npos;
  if (isZero) return 0;
  if (exponentAt < text.size()) {
    auto written = text.substr(exponentAt + 1);
    if (written.front() == '+') written.remove_prefix(1);
    int value = 0;
    const auto end = written.data() + written.size();
    if (std::from_chars(written.data(), end, value).ec != std::errc{}) return std::nullopt;
    exponent += value;
  }
  for (; exponent < 0 && digits.back() == '0'; ++exponent) digits.pop_back();
  constexpr long mostDigits = 19;
  if (exponent < 0 || exponent > mostDigits) return std::nullopt;
  digits.append(static_cast<std::size_t>(exponent), '0');

  std::int64_t result = 0;
  const auto end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, result);
  if (read.ec != std::errc{} || read.ptr != end) return std::nullopt;
  return result;
}

}  // namespace

CodingPath Decoder::codingPath() const {
  CodingPath path;
  for (const Decoder* level = this; level->parent_ != nullptr; level = level->parent_)
    path.emplace_back(level->key_);
  std::reverse(path.begin(), path.end());
  return path;
}

DecodingError Decoder::dataCorrupted(std::string debugDescription) const {
  return {DecodingError::Kind::dataCorrupted, codingPath(), std::move(debugDescription)};
}

DecodingError Decoder::typeMismatch(std::string_view expected) const {
  return {DecodingError::Kind::typeMismatch, codingPath(),
          "expected " + std::string{expected} + ", found " + std::string{kindName(value_)}};
}

void Decoder::requireObject() const {
  if (!std::holds_alternative<JSONValue::Object>(value_.content)) throw typeMismatch("an object");
}

std::set<std::string> Decoder::presentKeys() const {
  requireObject();
  std::set<std::string> keys;
  for (const auto& [key, value] : std::get<JSONValue::Object>(value_.content)) {
    if (isNull(value))
      keys.erase(key);
    else
      keys.insert(key);
  }
  return keys;
}

const JSONValue* Decoder::find(std::string_view key) const {
  requireObject();
  const auto& members = std::get<JSONValue::Object>(value_.content);
  const auto found =
      std::find_if(members.rbegin(), members.rend(), [key](const auto& member) { return member.key == key; });
  return found == members.rend() || isNull(found->value) ? nullptr : &found->value;
}

template <>
bool Decoder::as() const {
  const bool* const value = std::get_if<bool>(&value_.content);
  return value != nullptr ? *value : throw typeMismatch("true or false");
}

template <>
double Decoder::as() const {
  const auto* const number = std::get_if<JSONValue::Number>(&value_.content);
  return number != nullptr ? number->value : throw typeMismatch("a number");
}

template <>
std::int64_t Decoder::as() const {
  const auto* const number = std::get_if<JSONValue::Number>(&value_.content);
  if (number == nullptr) throw typeMismatch("a whole number");
  const auto whole = wholeNumber(number->text);
  return whole ? *whole : throw dataCorrupted(number->text + " is not a 64-bit integer");
}

template <>
std::string Decoder::as() const {
  const auto* const text = std::get_if<std::string>(&value_.content);
  return text != nullptr ? *text : throw typeMismatch("a string");
}

template <>
Date Decoder::as() const {
  return dates_(*this);
}

void JSONDecoder::read(std::string_view json, const std::function<void(const Decoder&)>& use) const {
  const JSONValue top = parseJSON(json);
  use(Decoder{top, nullptr, {}, dateDecodingStrategy});
}

}  // namespace tarno
