#pragma once

#include <algorithm>
#include <string>

#include "ui/text_measurer.hpp"

/// Sets every character half an em wide on lines 1.2 em high, with the baseline at 0.9 em. Breaks at blanks,
/// and inside a word that is too long for a line. A width that is short by the last bit is short.
class FakeMeasurer final : public ui::TextMeasurer {
 public:
  ui::TextMetrics measure(std::string_view text, const ui::Font& font, std::optional<double> width,
                          int maxLines) override {
    const double advance = font.size / 2;
    std::size_t capacity = text.size() + 1;
    while (width && capacity > 0 && static_cast<double>(capacity) * advance > *width) --capacity;

    ui::TextMetrics metrics{.lines = 0};
    std::size_t widest = 0;
    for (std::string rest{text}; metrics.lines == 0 || !rest.empty();) {
      if (maxLines == 1) std::replace(rest.begin(), rest.end(), '\n', ' ');
      std::size_t length = lineLength(rest, capacity);
      ++metrics.lines;
      metrics.truncated = length < rest.size() && (metrics.lines == maxLines || capacity == 0);
      if (metrics.truncated) length = std::min(capacity, paragraphLength(rest) + 1);  // the last an ellipsis
      widest = std::max(widest, length);
      if (metrics.truncated) break;
      rest.erase(0,
                 length < rest.size() && (rest[length] == ' ' || rest[length] == '\n') ? length + 1 : length);
    }
    metrics.size = {static_cast<double>(widest) * advance, 1.2 * font.size * metrics.lines};
    metrics.baseline = 0.9 * font.size;
    return metrics;
  }

 private:
  static std::size_t paragraphLength(const std::string& text) {
    return std::min(text.find('\n'), text.size());
  }

  static std::size_t lineLength(const std::string& text, std::size_t capacity) {
    const std::size_t paragraph = paragraphLength(text);
    if (paragraph <= capacity) return paragraph;
    const std::size_t blank = text.rfind(' ', capacity);
    return blank == std::string::npos ? capacity : blank;
  }
};
