#include "tarno/foundation/defaults_document.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "tarno/foundation/coding_error.hpp"

namespace tarno {
namespace {

using namespace std::literals;

TEST(DefaultsDocument, HoldsEveryTypeAsPeopleCanReadIt) {
  const std::string text = R"({
  "": {"type": "string", "value": "a\u0000\n"},
  "bytes": {"type": "data", "base64": "/wA="},
  "data": {"type": "data", "value": "{\"é\": \"🔒\"}"},
  "key": {"type": "number", "value": 0.1},
  "max": {"type": "date", "value": "9999-12-31T23:59:59.999999Z"},
  "min": {"type": "date", "value": "0001-01-01T00:00:00.000000Z"},
  "odd": {"type": "string", "base64": "Yf8h"},
  "past": {"type": "date", "value": "1969-12-31T23:59:59.999999Z"}
}
)";
  const DefaultsValues values{{"", "a\0\n"s},     {"bytes", Data{"\xFF\0"s}}, {"data", Data{R"({"é": "🔒"})"}},
                              {"key", 0.1},       {"max", latestDate},        {"min", earliestDate},
                              {"odd", "a\xFF!"s}, {"past", Date{-1us}}};
  EXPECT_EQ(encodeDefaults(values), text);
  EXPECT_EQ(decodeDefaults(text), values);
  EXPECT_EQ(encodeDefaults({}), "{}\n");
}

TEST(DefaultsDocument, MayComeFromOtherProgramsAndAnyWrongValueIsDamage) {
  const auto read = [](const std::string& member) {
    return decodeDefaults("{\"key\": " + member + "}").at("key");
  };
  EXPECT_EQ(read(R"({"value": 3, "type": "number", "more": 1})"), DefaultsValue{3.0});
  EXPECT_EQ(read(R"({"type": "date", "value": "1970-01-01T01:00:00.5+01:00"})"), DefaultsValue{Date{500ms}});
  EXPECT_EQ(read(R"({"type": "number", "value": 1}, "key": {"type": "string", "value": "last"})"),
            DefaultsValue{"last"});
  for (const auto* const wrong :
       {R"({"type": "data", "base64": "YR=="})", R"({"type": "data", "base64": "Y*=="})",
        R"({"type": "date", "value": 1})", R"({"type": "date", "value": "0000-12-31T23:59:59Z"})",
        R"({"type": "other", "value": "1970-01-01T00:00:01Z"})", R"({"value": "a"})", R"("text")"})
    EXPECT_THROW(read(wrong), DecodingError) << wrong;
}

TEST(DefaultsDocument, HasLimits) {
  const std::string longest(4 << 20, 'x');
  EXPECT_EQ(decodeDefaults(encodeDefaults({{"key", longest}})).at("key"), DefaultsValue{longest});
  const DefaultsValue wrong[] = {longest + 'x', Data{longest + 'x'}, NAN,
                                 -HUGE_VAL,     latestDate + 1us,    earliestDate - 1us};
  for (const auto& value : wrong)
    EXPECT_THROW(encodeDefaults({{"key", value}}), EncodingError) << &value - wrong;
  EXPECT_THROW(encodeDefaults({{"\xFF", 1.0}}), EncodingError);
  // What could not be saved again is not read either.
  EXPECT_THROW(decodeDefaults(R"({"key": {"type": "string", "value": ")" + longest + "x\"}}"), DecodingError);
}

}  // namespace
}  // namespace tarno
