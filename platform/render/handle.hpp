#pragma once

#include <memory>

namespace render {

/// Owns an object of a C library and gives it back with `release`.
template <class T, auto release>
struct Releaser {
  void operator()(T* object) const { release(object); }
};

template <class T, auto release>
using Handle = std::unique_ptr<T, Releaser<T, release>>;

}  // namespace render
