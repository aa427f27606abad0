#pragma once

#include "tarno/common/failure.hpp"
#include "tarno/render/image.hpp"

namespace extension {

/// Returns what `draw` returns. Throws program::Failure if there is no picture: EX_USAGE if the requested
/// size is impossible, EX_DATAERR if the stored status cannot be drawn. Out-of-memory errors pass through.
template <class Draw>
auto drawn(const Draw& draw) {
  try {
    return draw();
  } catch (const render::ImageError& error) {
    throw program::Failure{EX_USAGE, error.what()};
  } catch (const std::runtime_error& error) {
    throw program::Failure{EX_DATAERR, error.what()};
  }
}

}  // namespace extension
