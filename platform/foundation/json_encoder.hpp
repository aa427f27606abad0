#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/date.hpp"

namespace tarno {

/// The document that is being written. Valid only until the JSONEncoder::encode call that created it returns.
///
/// To be encodable, a type has a member `void encode(Encoder&) const`, which writes one value.
class Encoder {
 public:
  void beginObject();
  void endObject();

  /// Writes `key` and `value` into the current object, or nothing if `value` is absent.
  template <class T>
  void encodeIfPresent(std::string_view key, const std::optional<T>& value) {
    if (!value) return;
    beginMember(key);
    write(*value);
    endMember();
  }

  template <class T>
  requires requires(Encoder& encoder, const T& value) { value.encode(encoder); }
  void write(const T& value) { value.encode(*this); }
  /// Throws EncodingError for a number that is not finite, because JSON has none.
  void write(double value);
  /// Throws EncodingError for text that is not UTF-8.
  void write(std::string_view value);
  /// Writes RFC 3339 in UTC, in whole seconds, rounded towards the past. A date outside earliestDate to
  /// latestDate is written as the nearest date inside. Never fails.
  void write(Date value);
  void write(bool value);
  void write(std::int64_t value);

  std::string text() && { return std::move(text_); }

 private:
  void beginMember(std::string_view key);
  void endMember();

  std::string text_;
  CodingPath path_;
};

/// Writes JSON (RFC 8259): compact UTF-8, members in the order in which the type writes them, dates in ISO
/// 8601. For one thread at a time; cheap to create.
class JSONEncoder {
 public:
  /// Returns the JSON of a value. Throws EncodingError if it has none.
  template <class T>
  std::string encode(const T& value) const {
    Encoder encoder;
    encoder.write(value);
    return std::move(encoder).text();
  }
};

}  // namespace tarno
