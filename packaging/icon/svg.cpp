#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "icon.hpp"

namespace icon {
namespace {

using namespace ui;

/// With at most two decimals, which is a hundredth of a pixel.
std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  std::string shortest{text};
  shortest.erase(shortest.find_last_not_of('0') + 1);
  if (shortest.back() == '.') shortest.pop_back();
  return shortest == "-0" ? "0" : shortest;
}

std::string pair(Point point) { return number(point.x) + " " + number(point.y); }

std::string hex(Color color) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02lx%02lx%02lx", byteOf(color.red), byteOf(color.green),
                byteOf(color.blue));
  return text;
}

/// The commands of a path's data, one element each. A line that leads nowhere is left out.
struct Commands {
  std::string here{};  ///< empty before the outline has begun

  std::string go(const char* command, const std::string& arguments, Point to) {
    here = pair(to);
    return command + arguments + here;
  }
  std::string lineTo(Point to) {
    if (here == pair(to)) return "";
    return go(here.empty() ? "M" : "L", "", to);
  }

  std::string operator()(const Path::Move& move) { return go("M", "", move.to); }
  std::string operator()(const Path::Line& line) { return lineTo(line.to); }
  std::string operator()(const Path::Curve& curve) {
    return go("C", pair(curve.control1) + " " + pair(curve.control2) + " ", curve.to);
  }
  /// A large arc in two halves: an arc command has two ways from one point to another, and none to itself.
  std::string operator()(const Path::Arc& arc) {
    const double start = arc.start.radians;
    const double end = arc.end.radians;
    const auto at = [&](double radians) {
      return Rotation{{radians}, arc.center}.apply({arc.center.x + arc.radius, arc.center.y});
    };
    const auto radius = number(arc.radius);
    const auto shape = radius + " " + radius + (start < end ? " 0 0 1 " : " 0 0 0 ");
    std::string data = lineTo(at(start));
    if (std::abs(end - start) > 3) data += go("A", shape, at((start + end) / 2));
    return data + go("A", shape, at(end));
  }
  std::string operator()(const Path::Close&) { return "Z"; }
};

std::string data(const Path& path) {
  std::string data;
  Commands commands;
  for (const auto& element : path.elements) data += std::visit(commands, element);
  return " d=\"" + data + "\"/>\n";
}

struct Elements {
  std::string operator()(const FillPath& fill) {
    return "  <path fill=\"" + hex(fill.color) + "\"" + data(fill.path);
  }
  std::string operator()(const StrokePath& stroke) {
    return "  <path fill=\"none\" stroke=\"" + hex(stroke.color) + "\" stroke-width=\"" +
           number(stroke.style.lineWidth) + "\"" +
           (stroke.style.lineCap == LineCap::round ? " stroke-linecap=\"round\"" : "") + data(stroke.path);
  }
  std::string operator()(const TextRun&) { return ""; }
};

}  // namespace

std::string svg(const Scene& scene, const std::string& title) {
  const auto width = number(scene.size.width);
  const auto height = number(scene.size.height);
  std::string file = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
                     "\" viewBox=\"0 0 " + width + " " + height + "\">\n  <title>" + title + "</title>\n";
  for (const auto& item : scene.items) file += std::visit(Elements{}, item);
  return file + "</svg>\n";
}

}  // namespace icon
