// Lays out and draws views of any structure, with any numbers and texts. All coordinates must be finite.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tarno/render/image.hpp"
#include "tarno/ui/description/path_bounds.hpp"
#include "tarno/ui/layout.hpp"

namespace {

/// Reads the bytes of a test case, followed by zeros.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  template <class T>
  T take() {
    T value{};
    const std::size_t count = std::min(sizeof value, size_);
    std::memcpy(&value, data_, count);
    data_ += count;
    size_ -= count;
    return value;
  }
  unsigned below(unsigned limit) { return take<std::uint8_t>() % limit; }
  bool isEmpty() const { return size_ == 0; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

double number(Bytes& bytes) {
  constexpr std::array usual{0.0, 0.1, 0.5, 1.0, 3.0, 12.0, 100.0, -1.0};
  const unsigned kind = bytes.below(10);
  return kind < usual.size() ? usual[kind] : bytes.take<double>();
}

std::optional<double> optionalNumber(Bytes& bytes) {
  return bytes.below(2) == 0 ? std::nullopt : std::optional{number(bytes)};
}

ui::Color color(Bytes& bytes) {
  const double part = number(bytes);
  return {.red = part, .green = number(bytes), .blue = part, .alpha = number(bytes)};
}

std::string word(Bytes& bytes) {
  constexpr std::array words{"",      "Locked",  "a longer text", "two\nlines", "clock", "👩‍👩‍👧",
                             "مرحبا", "no.such", "\xFF\xC3",      "lock.fill"};
  return words[bytes.below(words.size())];
}

ui::View view(Bytes& bytes, int depth);

ui::View stack(Bytes& bytes, int depth) {
  std::vector<ui::View> children;
  for (unsigned count = bytes.below(4); count > 0; --count) children.push_back(view(bytes, depth));
  switch (bytes.below(4)) {
    case 0: return makeHStack({.spacing = number(bytes)}, children);
    case 1: return makeVStack({.spacing = number(bytes)}, children);
    case 2: return makeVStack({.alignment = ui::leading, .spacing = number(bytes)}, children);
    default: return makeZStack(children);
  }
}

ui::View leaf(Bytes& bytes) {
  const auto arc = ui::Circle{}.trim(number(bytes), number(bytes));
  switch (bytes.below(5)) {
    case 0: return ui::Text(word(bytes));
    case 1: return ui::Image(word(bytes));
    case 2: return arc.fill(color(bytes));
    case 3: return arc.stroke(color(bytes), {.lineWidth = number(bytes)});
    default: return ui::Capsule{ui::RoundedCornerStyle::continuous}.fill(color(bytes));
  }
}

ui::View modified(Bytes& bytes, int depth) {
  const ui::View content = view(bytes, depth);
  switch (bytes.below(10)) {
    case 0: return content.font(ui::Font::system(number(bytes)).rounded());
    case 1: return content.foregroundStyle(color(bytes));
    case 2: return content.lineLimit(bytes.take<int>());
    case 3: return content.minimumScaleFactor(number(bytes));
    case 4: return content.padding(ui::EdgeSet{static_cast<int>(bytes.below(2))}, number(bytes));
    case 5: return content.background(view(bytes, depth));
    case 6: return content.rotationEffect({number(bytes)});
    case 7: return content.containerBackground(color(bytes));
    case 8: return content.accessibilityElement(word(bytes));
    default:
      return content.frame({.width = optionalNumber(bytes),
                            .height = optionalNumber(bytes),
                            .maxWidth = optionalNumber(bytes),
                            .maxHeight = optionalNumber(bytes)});
  }
}

ui::View view(Bytes& bytes, int depth) {
  if (depth == 0 || bytes.isEmpty()) return leaf(bytes);
  const unsigned kind = bytes.below(8);
  return kind < 2 ? leaf(bytes) : kind < 4 ? stack(bytes, depth - 1) : modified(bytes, depth - 1);
}

void requireFinite(const ui::Rect& rect) {
  if (!std::isfinite(rect.origin.x + rect.origin.y + rect.size.width + rect.size.height)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static render::TextEngine text;
  Bytes bytes{data, size};
  const ui::ContainerShape container{
      {static_cast<double>(bytes.take<std::uint16_t>() % 400), 170}, number(bytes), number(bytes)};
  const auto scene = layout(view(bytes, 8), container, text);
  const auto copy = scene;
  if (!(copy == scene)) std::abort();  // a NaN is unequal to itself
  for (const auto& item : scene.items) {
    if (const auto* fill = std::get_if<ui::FillPath>(&item)) requireFinite(bounds(fill->path));
    if (const auto* stroke = std::get_if<ui::StrokePath>(&item)) requireFinite(bounds(stroke->path));
    if (const auto* run = std::get_if<ui::TextRun>(&item)) requireFinite(run->box);
  }
  for (const auto& element : scene.accessibility) requireFinite(element.frame);
  encodeImage(scene, text, render::ImageFormat::png, 1);
  return 0;
}
