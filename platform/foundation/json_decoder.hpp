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

/// How a decoder reads a date from the value that stands for it; throws DecodingError when it cannot.
using DateDecodingStrategy = std::function<Date(const Decoder&)>;

/// One value of a document while it is read: what it is, and the path that leads to it. Valid only until the
/// JSONDecoder::decode call that handed it out returns.
///
/// A type takes part in decoding by a static member `T decode(const Decoder&)`.
class Decoder {
 public:
  Decoder(const JSONValue& value, const Decoder* parent, std::string_view key,
          const DateDecodingStrategy& dates)
      : value_(value), parent_(parent), key_(key), dates_(dates) {}

  CodingPath codingPath() const;

  /// This value as T; throws DecodingError, kind typeMismatch when it is of another JSON kind and
  /// dataCorrupted when it is of the right kind but T cannot hold it.
  template <class T>
  T as() const {
    return T::decode(*this);
  }

  /// Throws DecodingError (typeMismatch) unless this value is an object.
  void requireObject() const;

  /// The keys of this object whose values are not null; throws like requireObject().
  std::set<std::string> presentKeys() const;

  /// The value under `key` of this object as T; nothing when the key is missing or its value is null.
  template <class T>
  std::optional<T> decodeIfPresent(std::string_view key) const {
    const JSONValue* const member = find(key);
    if (member == nullptr) return std::nullopt;
    return Decoder{*member, this, key, dates_}.as<T>();
  }

  /// An error at this value, for a strategy or a type that refuses it.
  DecodingError dataCorrupted(std::string debugDescription) const;

 private:
  const JSONValue* find(std::string_view key) const;
  DecodingError typeMismatch(std::string_view expected) const;

  const JSONValue& value_;
  const Decoder* parent_;
  std::string_view key_;
  const DateDecodingStrategy& dates_;
};

/// Only true and false.
template <>
bool Decoder::as() const;
/// Any number.
template <>
double Decoder::as() const;
/// A number whose value is whole and fits, however it is written: 3, 3.0 and 3e0 are the same number.
template <>
std::int64_t Decoder::as() const;
template <>
std::string Decoder::as() const;
/// By the JSONDecoder's date strategy.
template <>
Date Decoder::as() const;

/// Reads JSON (RFC 8259, UTF-8). Of a key that an object holds twice, the last counts. Nesting deeper than
/// 512 levels and numbers beyond a double's range are refused. One caller at a time; cheap to make.
class JSONDecoder {
 public:
  explicit JSONDecoder(DateDecodingStrategy dates) : dateDecodingStrategy(std::move(dates)) {}

  DateDecodingStrategy dateDecodingStrategy;

  /// The document as a T. Throws DecodingError; text that is not JSON is dataCorrupted with the path where it
  /// broke.
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
