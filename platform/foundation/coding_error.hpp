#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarno {

/// The path from the top of a document to a value: keys and array indices. Empty for the top itself.
using CodingPath = std::vector<std::string>;

/// Returns the path as text, such as "a.b.0"; an empty text for the top of a document.
std::string description(const CodingPath& path);

/// Thrown for a document that cannot be read. what() is one line: the path, then the text.
class DecodingError : public std::runtime_error {
 public:
  enum class Kind { typeMismatch, dataCorrupted };

  DecodingError(Kind kind, CodingPath codingPath, std::string debugDescription);

  Kind kind;
  CodingPath codingPath;
  std::string debugDescription;
};

/// Thrown for a value that cannot be written into a document. what() is one line: the path, then the text.
class EncodingError : public std::runtime_error {
 public:
  EncodingError(CodingPath codingPath, std::string debugDescription);

  CodingPath codingPath;
  std::string debugDescription;
};

}  // namespace tarno
