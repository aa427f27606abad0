#pragma once

#include <memory>

namespace tarno {

/// Releases an object of a C library by calling `release`, never with a null pointer.
template <auto release>
struct Releaser {
  void operator()(auto* object) const { release(object); }
};

/// Owns an object of a C library; null means none. Everything that must be released is held in one, except
/// file descriptors (see file_descriptor.hpp).
template <class T, auto release>
using Handle = std::unique_ptr<T, Releaser<release>>;

}  // namespace tarno
