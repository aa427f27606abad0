#pragma once

#include <algorithm>
#include <string>

#include "tarno/ui/text_measurer.hpp"

/// Measures every character as half an em wide, on lines 1.2 em high with the baseline at 0.9 em. Breaks
/// lines at spaces, and inside a word that is too long for a line. Compares widths exactly.
class FakeMeasurer final : public ui::TextMeasurer {
 public:
  ui::TextMetrics measure(std::string_view text, const ui::Font& font, std::optional<double> width,
                          int maxLines) override {
    const double advance = font.size / 2;
    std::size_t capacity = text.size() + 1, widest = 0;
    while (width && capacity > 0 && static_cast<double>(capacity) * advance > *width) --capacity;

    std::string rest{text};
    if (maxLines == 1) std::replace(rest.begin(), rest.end(), '\n', ' ');
    ui::TextMetrics metrics{.baseline = 0.9 * font.size};
    int lines = 0;
    do {
      const std::size_t paragraph = std::min(rest.find('\n'), rest.size());
      std::size_t length = paragraph <= capacity ? paragraph : std::min(rest.rfind(' ', capacity), capacity);
      ++lines;
      metrics.truncated = length < rest.size() && (lines == maxLines || capacity == 0);
      if (metrics.truncated) length = std::min(capacity, paragraph + 1);  // the last one is an ellipsis
      widest = std::max(widest, length);
      rest.erase(0, rest.find_first_of(" \n", length) == length ? length + 1 : length);
    } while (!rest.empty() && !metrics.truncated);
    metrics.size = {static_cast<double>(widest) * advance, 1.2 * font.size * lines};
    return metrics;
  }
};
