#include "support/pixel_reference.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "render/png.hpp"
#include "support/pixels.hpp"

namespace {

namespace fs = std::filesystem;

/// Of 255. An edge that moves by a twentieth of a pixel stays below it.
constexpr int smallDifference = 12;

/// Of so many pixels one may differ more.
constexpr std::size_t pixelsPerLargerDifference = 10'000;

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
  if (const char* renew = std::getenv("TARNO_RENEW_REFERENCES"); renew && *renew == '1')
    write(reference, png);
  std::ifstream file(reference, std::ios::binary);
  const std::string referenceBytes{std::istreambuf_iterator<char>(file), {}};
  const Pixels expected = referenceBytes.empty() ? Pixels{} : Pixels::decode(referenceBytes);
  const Pixels actual = Pixels::decode(png);
  const bool sameSize = expected.width == actual.width && expected.height == actual.height;
  std::vector<std::uint32_t> differences;
  std::size_t large = 0;
  for (std::size_t i = 0; sameSize && i < actual.rows.size(); ++i) {
    const int found = difference(actual.rows[i], expected.rows[i]);
    if (found > smallDifference) ++large;
    differences.push_back(0xFF000000u + 0x010101u * static_cast<std::uint32_t>(std::min(found * 8, 255)));
  }
  if (sameSize && large * pixelsPerLargerDifference <= differences.size()) return testing::AssertionSuccess();
  const fs::path failures = "reference-failures";
  write(failures / (name + ".actual.png"), png);
  const auto picture = [&] {
    return render::encodePng(differences.data(), {actual.width, actual.height}, 72);
  };
  if (sameSize) write(failures / (name + ".difference.png"), picture());
  return testing::AssertionFailure() << name << " differs from its reference; see " << fs::absolute(failures);
}
