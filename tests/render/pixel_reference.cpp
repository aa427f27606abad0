#include "render/pixel_reference.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "render/pixels.hpp"

namespace {

namespace fs = std::filesystem;

/// Of 255. An edge that moves by a twentieth of a pixel stays below it.
constexpr int smallDifference = 12;

constexpr double shareOfLargerDifferences = 0.0005;

void write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// The largest difference in a channel, each multiplied by alpha: the colour of what is not seen does not
/// count.
int difference(const Pixels::Pixel& a, const Pixels::Pixel& b) {
  int largest = std::abs(a[3] - b[3]);
  for (std::size_t i = 0; i < 3; ++i) largest = std::max(largest, std::abs(a[i] * a[3] - b[i] * b[3]) / 255);
  return largest;
}

}  // namespace

testing::AssertionResult matchesReference(const std::string& png, const std::string& name) {
  const fs::path reference = fs::path(__FILE__).parent_path().parent_path() / "references" / (name + ".png");
  const char* renew = std::getenv("TARNO_RENEW_REFERENCES");
  if (renew && std::string(renew) == "1") {
    write(reference, png);
    return testing::AssertionSuccess();
  }
  const fs::path failures = "reference-failures";
  std::ifstream file(reference, std::ios::binary);
  const std::string expectedBytes{std::istreambuf_iterator<char>(file), {}};
  if (expectedBytes.empty()) {
    write(failures / (name + ".actual.png"), png);
    return testing::AssertionFailure() << "there is no reference " << reference;
  }
  const Pixels expected = Pixels::decode(expectedBytes);
  const Pixels actual = Pixels::decode(png);
  if (expected.width != actual.width || expected.height != actual.height) {
    write(failures / (name + ".actual.png"), png);
    return testing::AssertionFailure() << name << " is " << actual.width << " x " << actual.height
                                       << " and not " << expected.width << " x " << expected.height;
  }

  Pixels differences = actual;
  double large = 0;
  for (std::size_t i = 0; i < actual.rows.size(); ++i) {
    const int found = difference(actual.rows[i], expected.rows[i]);
    if (found > smallDifference) ++large;
    const auto shown = static_cast<std::uint8_t>(std::min(found * 8, 255));
    differences.rows[i] = {shown, shown, shown, 255};
  }
  if (large <= shareOfLargerDifferences * static_cast<double>(actual.rows.size()))
    return testing::AssertionSuccess();
  write(failures / (name + ".actual.png"), png);
  write(failures / (name + ".difference.png"), differences.encode());
  return testing::AssertionFailure() << large << " pixels of " << name << " differ; see "
                                     << fs::absolute(failures);
}
