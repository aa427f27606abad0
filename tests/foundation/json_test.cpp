#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "support/temporary_store.hpp"
#include "tarno/foundation/json_decoder.hpp"
#include "tarno/foundation/json_encoder.hpp"

namespace tarno {
namespace {

using namespace std::string_view_literals;

const JSONDecoder decoder{
    [](const Decoder& value) { return Date{std::chrono::seconds{value.as<std::int64_t>()}}; }};
const JSONEncoder encoder;

template <class T>
std::optional<DecodingError> errorOf(std::string_view json) try {
  return decoder.decode<T>(json), std::nullopt;
} catch (const DecodingError& error) {
  return error;
}

TEST(JSONDecoder, TellsWholeNumbersExactly) {
  std::istringstream rows{
      "-3.50e1 -35 1e+2 100 1E2 100 0e99999999999 0 -0.0 0 9007199254740993.0 9007199254740993 "
      "9e18 9000000000000000000 922337203685477580.7e1 9223372036854775807 "
      "9223372036854775807 9223372036854775807 -9223372036854775808 -9223372036854775808"};
  std::string written;
  for (std::int64_t value = 0; rows >> written >> value;)
    EXPECT_EQ(decoder.decode<std::int64_t>(written), value) << written;
  for (const auto json : {"9223372036854775808"sv, "-9223372036854775809"sv, "18446744073709551615"sv,
                          "2.5"sv, "1e-1"sv, "1e19"sv, "1e300"sv, "1e-99999999999"sv})
    EXPECT_EQ(errorOf<std::int64_t>(json)->kind, DecodingError::Kind::dataCorrupted) << json;
}

TEST(JSONDecoder, RefusesWhatIsNotJSON) {
  for (const auto json : {""sv, " "sv, "{"sv, "nul"sv, "01"sv, "1 2"sv, "[1,]"sv, "{\"a\":1,}"sv,
                          "\"\xff\""sv, "\"\\ud800\""sv, "1e400"sv, "\0"sv, "1\0"sv, "1\0 2"sv, "\"a\0\""sv})
    EXPECT_EQ(errorOf<double>(json).value().kind, DecodingError::Kind::dataCorrupted) << json;
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(errorOf<double>(nested(512))->kind, DecodingError::Kind::typeMismatch);
  EXPECT_EQ(errorOf<double>(nested(513))->kind, DecodingError::Kind::dataCorrupted);
  EXPECT_EQ(decoder.decode<std::string>(R"("a\u0000")"), "a\0"sv);
  EXPECT_EQ(decoder.decode<bool>(" true\n"), true);
}

struct Pair {
  std::optional<std::int64_t> number;
  std::optional<std::string> text;

  static Pair decode(const Decoder& value) {
    value.decodeIfPresent<Pair>("inner");
    return {value.decodeIfPresent<std::int64_t>("number"), value.decodeIfPresent<std::string>("text")};
  }
};

TEST(JSONDecoder, ErrorsSayWhere) {
  EXPECT_STREQ(errorOf<Pair>(R"({"inner": {"number": true}})")->what(),
               "inner.number: expected a whole number, found a boolean");
  EXPECT_STREQ(errorOf<Pair>(R"({"number": 1e400})")->what(), "number: a number is too large");
  EXPECT_STREQ(errorOf<Pair>("{")->what(), "not valid JSON near byte 2");
  EXPECT_STREQ(errorOf<Pair>("{}\0 x"sv)->what(), "not valid JSON near byte 3");
  EXPECT_EQ(errorOf<Pair>(R"({"x": {"y": [1, }})")->codingPath, (CodingPath{"x", "y", "1"}));
  EXPECT_EQ(decoder.decode<Pair>(R"({"text": "a", "text": "b"})").text, "b");
}

TEST(JSONEncoder, WritesNumbersExactlyOrNotAtAll) {
  for (const double number : {0.1, 1e300, 5e-324})
    EXPECT_EQ(decoder.decode<double>(encoder.encode(number)), number);
  for (const double number : {std::nan(""), HUGE_VAL, -HUGE_VAL})
    EXPECT_THROW(encoder.encode(number), EncodingError) << number;
}

TEST(JSON, KeepsItsDecimalPointInEveryLocale) {
  const TemporaryStore temporary;
  const auto folder = temporary.path.string();
  std::ofstream{folder + "/source"} << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3\n"
                                       "END LC_NUMERIC\n";  // by default, there is no such locale
  const auto command = "localedef -c --no-archive -i " + folder + "/source " + folder + "/comma 2>/dev/null";
  ASSERT_NE(std::system(command.c_str()), -1);
  setenv("LOCPATH", folder.c_str(), 1);
  std::setlocale(LC_ALL, "comma");
  EXPECT_EQ(decoder.decode<std::int64_t>("3.0"), 3);
  EXPECT_EQ(decoder.decode<double>("2.5"), 2.5);
  EXPECT_STREQ(errorOf<std::int64_t>("2.5")->what(), "2.5 is not a 64-bit integer");
  EXPECT_EQ(encoder.encode(1234567.5), "1234567.5");
  EXPECT_STREQ(std::localeconv()->decimal_point, ",");  // the locale exists, and the coder did not change it
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace tarno
