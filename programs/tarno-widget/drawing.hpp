#pragma once

#include "tarno/common/failure.hpp"
#include "tarno/render/image.hpp"

namespace extension {

/// What `draw` returns. Throws program::Failure when there is no picture: EX_USAGE when it cannot have the
/// size asked for, EX_DATAERR when what is stored cannot be drawn. Out of memory passes through.
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
