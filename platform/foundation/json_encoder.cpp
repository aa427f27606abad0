#include "tarno/foundation/json_encoder.hpp"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tarno/foundation/iso8601.hpp"

namespace tarno {

void Encoder::beginObject() { text_ += '{'; }

void Encoder::endObject() { text_ += '}'; }

void Encoder::beginMember(std::string_view key) {
  path_.emplace_back(key);
  if (text_.back() != '{') text_ += ',';
  write(key);
  text_ += ':';
}

void Encoder::endMember() { path_.pop_back(); }

void Encoder::write(bool value) { text_ += value ? "true" : "false"; }

void Encoder::write(std::int64_t value) { text_ += std::to_string(value); }

void Encoder::write(double value) {
  if (!std::isfinite(value))
    throw EncodingError{path_, "a number that is not finite cannot be written as JSON"};
  text_ += nlohmann::json(value).dump();
}

void Encoder::write(std::string_view value) {
  try {
    text_ += nlohmann::json(value).dump();
  } catch (const nlohmann::json::type_error&) {
    throw EncodingError{path_, "text that is not UTF-8 cannot be written as JSON"};
  }
}

void Encoder::write(Date value) {
  const auto date = std::clamp(value, earliestDate, latestDate);
  write(std::string_view{ISO8601DateFormatter{withInternetDateTime}.string(date)});
}

}  // namespace tarno
