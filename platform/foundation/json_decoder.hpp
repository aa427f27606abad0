#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/date.hpp"

namespace tarno {

struct JSONValue;
class Decoder;

/// Reads a date from a JSON value. Throws DecodingError if it cannot.
using DateDecodingStrategy = std::function<Date(const Decoder&)>;

/// A value of the document that is being decoded, with its path. Valid only until the JSONDecoder::decode
/// call that created it returns.
///
/// To be decodable, a type has a static member `T decode(const Decoder&)`.
class Decoder {
 public:
  Decoder(const JSONValue& value, const Decoder* parent, std::string_view key,
          const DateDecodingStrategy& dates)
      : value_(value), parent_(parent), key_(key), dates_(dates) {}

  CodingPath codingPath() const;

  /// Returns this value as a T. Throws DecodingError: typeMismatch if it is of another JSON type,
  /// dataCorrupted if T cannot hold it.
  template <class T>
  T as() const {
    return T::decode(*this);
  }

  /// Throws DecodingError (typeMismatch) unless this value is an object.
  void requireObject() const;

  /// Returns the keys of this object whose values are not null. Throws like requireObject().
  std::set<std::string> presentKeys() const;

  /// Returns the value of `key` as a T; nothing if the key is missing or its value is null.
  template <class T>
  std::optional<T> decodeIfPresent(std::string_view key) const {
    const JSONValue* const member = find(key);
    if (member == nullptr) return std::nullopt;
    return Decoder{*member, this, key, dates_}.as<T>();
  }

  /// Returns an error with the path of this value.
  DecodingError dataCorrupted(std::string debugDescription) const;

 private:
  const JSONValue* find(std::string_view key) const;
  DecodingError typeMismatch(std::string_view expected) const;

  const JSONValue& value_;
  const Decoder* parent_;
  std::string_view key_;
  const DateDecodingStrategy& dates_;
};

/// Decodes true and false.
template <>
bool Decoder::as() const;
/// Decodes any number.
template <>
double Decoder::as() const;
/// Decodes an integer that fits, in any notation: 3, 3.0 and 3e0 are the same.
template <>
std::int64_t Decoder::as() const;
template <>
std::string Decoder::as() const;
/// Decodes a date by the date strategy of the JSONDecoder.
template <>
Date Decoder::as() const;

/// Reads JSON (RFC 8259, UTF-8). If an object has a key twice, the last value counts. Nesting deeper than 512
/// levels and numbers outside the range of a double are refused. For one thread at a time; cheap to create.
class JSONDecoder {
 public:
  explicit JSONDecoder(DateDecodingStrategy dates) : dateDecodingStrategy(std::move(dates)) {}

  DateDecodingStrategy dateDecodingStrategy;

  /// Returns the document as a T. Throws DecodingError. Invalid JSON is dataCorrupted with the path of the
  /// error.
  template <class T>
  T decode(std::string_view json) const {
    T result{};
    read(json, [&result](const Decoder& top) { result = top.as<T>(); });
    return result;
  }

 private:
  void read(std::string_view json, const std::function<void(const Decoder&)>& use) const;
};

}  // namespace tarno
