#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/date.hpp"

namespace tarno {

/// How an encoder writes a date.
enum class DateEncodingStrategy {
  secondsSince1970,  ///< a number
  iso8601,           ///< a string: RFC 3339, UTC, whole seconds, the sub-second part cut towards the past
};

/// One document while it is written. Lives no longer than the JSONEncoder::encode call that handed it out.
///
/// A type takes part in encoding by a function `encode(Encoder&, const T&)` beside it, which writes one
/// value.
class Encoder {
 public:
  explicit Encoder(DateEncodingStrategy dates) : dates_(dates) {}

  void beginObject();
  void endObject();

  /// Writes `value` under `key` into the open object, or nothing at all when it is absent.
  template <class T>
  void encodeIfPresent(std::string_view key, const std::optional<T>& value) {
    if (!value) return;
    beginMember(key);
    encodeValue(*value);
    endMember();
  }

  template <class T>
  void encodeValue(const T& value) {
    encode(*this, value);
  }

  /// Throws EncodingError for a number that is not finite, which JSON cannot write.
  void write(double value);
  /// Throws EncodingError for text that is not UTF-8.
  void write(std::string_view value);
  /// Never fails. With the strategy iso8601, a date outside earliestDate to latestDate, which has no RFC 3339
  /// form, is written as the nearest one that has.
  void write(Date value);
  void write(bool value);
  void write(std::int64_t value);

  std::string text() && { return std::move(text_); }

 private:
  void beginMember(std::string_view key);
  void endMember();

  DateEncodingStrategy dates_;
  std::string text_;
  CodingPath path_;
};

inline void encode(Encoder& encoder, bool value) { encoder.write(value); }
inline void encode(Encoder& encoder, double value) { encoder.write(value); }
inline void encode(Encoder& encoder, std::int64_t value) { encoder.write(value); }
inline void encode(Encoder& encoder, const std::string& value) { encoder.write(std::string_view{value}); }
inline void encode(Encoder& encoder, Date value) { encoder.write(value); }

/// Writes JSON (RFC 8259): UTF-8, compact, members in the order in which the type writes them. One caller at
/// a time; cheap to make.
class JSONEncoder {
 public:
  explicit JSONEncoder(DateEncodingStrategy dates) : dateEncodingStrategy(dates) {}

  DateEncodingStrategy dateEncodingStrategy;

  /// Throws EncodingError for a value that has no JSON form; nothing partial is handed on.
  template <class T>
  std::string encode(const T& value) const {
    Encoder encoder{dateEncodingStrategy};
    encoder.encodeValue(value);
    return std::move(encoder).text();
  }
};

}  // namespace tarno
