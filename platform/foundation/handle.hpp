#pragma once

#include <memory>

namespace tarno {

/// Releases with `release` what a C library handed out. `release` is never called with a null pointer.
template <auto release>
struct Releaser {
  void operator()(auto* object) const { release(object); }
};

/// Owns an object of a C library; null stands for none. The way to hold whatever must be released, apart from
/// file descriptors (see file_descriptor.hpp).
template <class T, auto release>
using Handle = std::unique_ptr<T, Releaser<release>>;

}  // namespace tarno
