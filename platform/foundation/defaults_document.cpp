#include "tarno/foundation/defaults_document.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>

#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/iso8601.hpp"
#include "tarno/foundation/json_value.hpp"

namespace tarno {
namespace {

using namespace std::chrono;

constexpr std::string_view dataType = "data";
constexpr std::string_view dateType = "date";
constexpr std::string_view stringType = "string";
constexpr std::string_view numberType = "number";

constexpr std::string_view base64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string toBase64(std::string_view bytes) {
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const auto group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0u);
    for (std::size_t i = 0; i < 4; ++i)
      text += i <= group.size() ? base64Alphabet[bits >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

/// Decodes Base64. Returns nothing unless `text` is exactly what toBase64() writes.
std::optional<std::string> fromBase64(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  for (std::size_t at = 0; at < text.size() && text[at] != '='; ++at) {
    bits = bits << 6 | static_cast<std::uint32_t>(base64Alphabet.find(text[at]) & 63);
    const std::size_t unused = (at * 6 + 6) % 8;
    if (unused < 6) bytes += static_cast<char>(bits >> unused & 0xFF);
  }
  if (toBase64(bytes) != text) return std::nullopt;
  return bytes;
}

/// Returns `text` as a JSON string, or nothing if it is not UTF-8.
std::optional<std::string> quoted(const std::string& text) {
  try {
    return nlohmann::json(text).dump();
  } catch (const nlohmann::json::type_error&) {
    return std::nullopt;
  }
}

std::string dateText(Date date) {
  auto text = ISO8601DateFormatter{withInternetDateTime}.string(date);
  char fraction[16];
  std::snprintf(fraction, sizeof fraction, ".%06dZ", static_cast<int>((date - floor<seconds>(date)).count()));
  return text.replace(text.size() - 1, 1, fraction);
}

/// Visits a value and returns why it cannot be stored in a document; empty if it can.
struct Fault {
  std::string_view operator()(const Data& data) const { return (*this)(data.bytes); }
  std::string_view operator()(const std::string& text) const {
    return text.size() > largestDefaultsValue ? "is larger than 4 MiB" : "";
  }
  std::string_view operator()(Date date) const {
    return earliestDate <= date && date <= latestDate ? "" : "is outside the years 0001 to 9999";
  }
  std::string_view operator()(double number) const {
    return std::isfinite(number) ? "" : "is not a finite number";
  }
};

/// Visits a value and returns its JSON.
struct Writer {
  std::string operator()(const Data& data) const { return bytes(dataType, data.bytes); }
  std::string operator()(const std::string& text) const { return bytes(stringType, text); }
  std::string operator()(Date date) const { return member(dateType, "value", '"' + dateText(date) + '"'); }
  std::string operator()(double number) const {
    return member(numberType, "value", nlohmann::json(number).dump());
  }

  static std::string bytes(std::string_view type, const std::string& bytes) {
    if (const auto text = quoted(bytes)) return member(type, "value", *text);
    return member(type, "base64", '"' + toBase64(bytes) + '"');
  }
  static std::string member(std::string_view type, const std::string& form, const std::string& json) {
    return R"({"type": ")" + std::string{type} + R"(", ")" + form + R"(": )" + json + '}';
  }
};

/// Reads one member of a document. Members throw DecodingError.
struct Reader {
  const std::string& key;
  const JSONValue& json;

  DefaultsValue value() const {
    const auto& type = get<std::string>("type");
    if (type == dataType) return Data{bytes()};
    if (type == stringType) return bytes();
    if (type == numberType) return get<JSONValue::Number>("value").value;
    if (type != dateType) throw damage("has an unknown type");
    const auto date = dateFromRFC3339(get<std::string>("value"));
    return date ? *date : throw damage("is not a date");
  }

  std::string bytes() const {
    const auto* const encoded = find<std::string>("base64");
    if (encoded == nullptr) return get<std::string>("value");
    auto decoded = fromBase64(*encoded);
    return decoded ? *std::move(decoded) : throw damage("is not base64");
  }

  template <class T>
  const T* find(std::string_view name) const {
    const auto* const object = std::get_if<JSONValue::Object>(&json.content);
    if (object == nullptr) return nullptr;
    for (const auto& member : *object)
      if (member.key == name) return std::get_if<T>(&member.value.content);
    return nullptr;
  }

  template <class T>
  const T& get(std::string_view name) const {
    const auto* const found = find<T>(name);
    return found != nullptr ? *found : throw damage("has no " + std::string{name} + " of its type");
  }

  DecodingError damage(std::string_view text) const {
    return {DecodingError::Kind::dataCorrupted, {key}, std::string{text}};
  }
};

}  // namespace

std::string encodeDefaults(const DefaultsValues& values) {
  std::string document;
  for (const auto& [key, value] : values) {
    const auto name = quoted(key);
    const auto fault = name ? std::visit(Fault{}, value) : "is a key that is not UTF-8";
    if (!fault.empty()) throw EncodingError{{key}, std::string{fault}};
    document += (document.empty() ? "{\n  " : ",\n  ") + *name + ": " + std::visit(Writer{}, value);
  }
  return document.empty() ? "{}\n" : document + "\n}\n";
}

DefaultsValues decodeDefaults(std::string_view document) {
  const auto json = parseJSON(document);
  const auto* const members = std::get_if<JSONValue::Object>(&json.content);
  if (members == nullptr) throw DecodingError{DecodingError::Kind::typeMismatch, {}, "not a JSON object"};
  DefaultsValues values;
  for (const auto& [key, content] : *members) {
    const Reader reader{key, content};
    auto value = reader.value();
    if (const auto fault = std::visit(Fault{}, value); !fault.empty()) throw reader.damage(fault);
    values.insert_or_assign(key, std::move(value));
  }
  return values;
}

}  // namespace tarno
