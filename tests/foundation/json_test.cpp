#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>

#include "foundation/json_decoder.hpp"
#include "foundation/json_encoder.hpp"

namespace foundation {
namespace {

using namespace std::string_view_literals;

const JSONDecoder decoder{
    [](const Decoder& value) { return Date{std::chrono::seconds{value.as<std::int64_t>()}}; }};

template <class T>
std::optional<DecodingError> errorOf(std::string_view json) {
  try {
    decoder.decode<T>(json);
    return std::nullopt;
  } catch (const DecodingError& error) {
    return error;
  }
}

TEST(JSONDecoder, TellsWholeNumbersExactly) {
  const struct {
    const char* json;
    std::optional<std::int64_t> value;
  } cases[] = {
      {"3", 3},
      {"3.0", 3},
      {"3e0", 3},
      {"-3.50e1", -35},
      {"300E-2", 3},
      {"0e99999999999", 0},
      {"-0.0", 0},
      {"9007199254740993.0", 9007199254740993},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"922337203685477580.7e1", std::numeric_limits<std::int64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {"9223372036854775808", {}},
      {"-9223372036854775809", {}},
      {"18446744073709551615", {}},
      {"2.5", {}},
      {"1e-1", {}},
      {"1e18", 1'000'000'000'000'000'000},
      {"1e+2", 100},
      {"1e19", {}},
      {"1e300", {}},
      {"1e-99999999999", {}},
  };
  for (const auto& c : cases) {
    const auto error = errorOf<std::int64_t>(c.json);
    EXPECT_EQ(error.has_value(), !c.value.has_value()) << c.json;
    if (c.value) EXPECT_EQ(decoder.decode<std::int64_t>(c.json), *c.value) << c.json;
    if (error) EXPECT_EQ(error->kind, DecodingError::Kind::dataCorrupted) << c.json;
  }
}

TEST(JSONDecoder, RefusesWhatIsNotJSON) {
  for (const auto json :
       {""sv, " "sv, "{"sv, "nul"sv, "'a'"sv, "01"sv, "1 2"sv, "[1,]"sv, "{\"a\":1,}"sv, "\"\xff\""sv,
        "\"\\ud800\""sv, "1e400"sv, "\xEF\xBB"sv, "\0"sv, "1\0"sv, "1\0 2"sv, "\0001"sv, "\"a\0\""sv}) {
    const auto error = errorOf<double>(json);
    ASSERT_TRUE(error) << json;
    EXPECT_EQ(error->kind, DecodingError::Kind::dataCorrupted) << json;
  }
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(errorOf<double>(nested(512))->kind, DecodingError::Kind::typeMismatch);
  EXPECT_EQ(errorOf<double>(nested(513))->kind, DecodingError::Kind::dataCorrupted);
  EXPECT_EQ(decoder.decode<std::string>(R"("a\u0000")"), "a\0"sv);
  EXPECT_EQ(decoder.decode<bool>(" true\n"), true);
}

struct Pair {
  std::optional<std::int64_t> number;
  std::optional<std::string> text;
};

void decode(const Decoder& value, Pair& pair) {
  value.requireObject();
  pair = {value.decodeIfPresent<std::int64_t>("number"), value.decodeIfPresent<std::string>("text")};
}

void encode(Encoder& encoder, const Pair& pair) {
  encoder.beginObject();
  encoder.encodeIfPresent("number", pair.number);
  encoder.encodeIfPresent("text", pair.text);
  encoder.endObject();
}

TEST(JSONDecoder, ErrorsSayWhere) {
  EXPECT_EQ(errorOf<Pair>(R"({"number": true})")->codingPath, CodingPath{"number"});
  EXPECT_STREQ(errorOf<Pair>(R"({"text": 1})")->what(), "text: expected a string, found a number");
  EXPECT_STREQ(errorOf<Pair>(R"({"number": 1e400})")->what(), "number: a number is too large");
  EXPECT_STREQ(errorOf<Pair>("{}\0 x"sv)->what(), "not valid JSON near byte 3");
  EXPECT_EQ(errorOf<Pair>(R"({"x": {"y": [1, }})")->codingPath, (CodingPath{"x", "y", "1"}));
  EXPECT_TRUE(errorOf<Pair>("[]")->codingPath.empty());
  EXPECT_EQ(decoder.decode<Pair>(R"({"text": "a", "text": "b"})").text, "b");
}

TEST(JSONEncoder, LeavesAbsentFieldsOutAndEscapes) {
  const JSONEncoder encoder{DateEncodingStrategy::iso8601};
  EXPECT_EQ(encoder.encode(Pair{}), "{}");
  EXPECT_EQ(encoder.encode(Pair{3, std::string{"a\"\n\0é", 6}}), R"({"number":3,"text":"a\"\n\u0000é"})");
  EXPECT_EQ(encoder.encode(Date{std::chrono::milliseconds{1500}}), "\"1970-01-01T00:00:01Z\"");
  EXPECT_EQ(JSONEncoder{DateEncodingStrategy::secondsSince1970}.encode(Date{std::chrono::milliseconds{1500}}),
            "1.5");
  for (const double number : {0.1, 42.5, 1e300, 5e-324})
    EXPECT_EQ(decoder.decode<double>(encoder.encode(number)), number);
  EXPECT_THROW(encoder.encode(std::nan("")), EncodingError);
  EXPECT_THROW(encoder.encode(Pair{{}, "\xff"}), EncodingError);
}

/// Makes a locale with a decimal comma that of the process while it lives; Debian installs none by default.
class CommaLocale {
 public:
  CommaLocale() {
    const auto source = folder_ / "source";
    std::ofstream{source}
        << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3\nEND LC_NUMERIC\n";
    const auto compile =
        "localedef -c --no-archive -i " + source.string() + ' ' + (folder_ / "comma").string();
    std::system((compile + " 2>/dev/null").c_str());  // warns about the categories that are missing
    setenv("LOCPATH", folder_.c_str(), 1);
    std::setlocale(LC_ALL, "comma");
  }
  ~CommaLocale() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
    std::filesystem::remove_all(folder_);
  }

 private:
  std::string pattern_ = testing::TempDir() + "tarno-test-XXXXXX";
  std::filesystem::path folder_ = mkdtemp(pattern_.data());
};

TEST(JSON, KeepsItsDecimalPointInEveryLocale) {
  const JSONEncoder encoder{DateEncodingStrategy::secondsSince1970};
  const CommaLocale locale;
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  EXPECT_EQ(decoder.decode<std::int64_t>("3.0"), 3);
  EXPECT_EQ(decoder.decode<double>("2.5"), 2.5);
  EXPECT_STREQ(errorOf<std::int64_t>("2.5")->what(), "2.5 is not a whole number of 64 bits");
  EXPECT_EQ(encoder.encode(1234567.5), "1234567.5");
  EXPECT_STREQ(std::localeconv()->decimal_point, ",");  // the caller's locale is as before
}

}  // namespace
}  // namespace foundation
