#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/date.hpp"

namespace tarno {

/// One document while it is written. Valid only until the JSONEncoder::encode call that made it returns.
///
/// A type takes part in encoding by a member `void encode(Encoder&) const`, which writes one value.
class Encoder {
 public:
  void beginObject();
  void endObject();

  /// Writes `value` under `key` into the open object, or nothing at all when it is absent.
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
  /// Throws EncodingError for a number that is not finite, which JSON cannot write.
  void write(double value);
  /// Throws EncodingError for text that is not UTF-8.
  void write(std::string_view value);
  /// As RFC 3339 in UTC, in whole seconds, the rest cut towards the past. Never fails: a date outside
  /// earliestDate to latestDate, which has no such form, is written as the nearest one that has.
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

/// Writes JSON (RFC 8259): UTF-8, compact, members in the order in which the type writes them, dates in ISO
/// 8601. One caller at a time; cheap to make.
class JSONEncoder {
 public:
  /// Throws EncodingError for a value that has no JSON form; nothing partial is handed on.
  template <class T>
  std::string encode(const T& value) const {
    Encoder encoder;
    encoder.write(value);
    return std::move(encoder).text();
  }
};

}  // namespace tarno
