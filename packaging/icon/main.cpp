#include <cstdlib>

#include "icon.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/common/files.hpp"
#include "tarno/render/image.hpp"

/// Draws the icon: `draw_icon FILE SIDE`. The suffix of the file decides between SVG and PNG.
int main(int argc, char** argv) try {
  if (argc != 3) throw program::Failure{EX_USAGE, "usage: draw_icon FILE SIDE"};
  const std::filesystem::path file{argv[1]};
  const auto scene = icon::scene(std::atoi(argv[2]));
  render::TextEngine text;
  const auto format = file.extension() == ".svg" ? render::ImageFormat::svg : render::ImageFormat::png;
  program::writeFile(file, encodeImage(scene, text, format, 1, "Tarno"));
  return EX_OK;
} catch (...) {
  const auto failure = program::currentFailure();
  program::complain(failure.what());
  return failure.exitCode();
}
