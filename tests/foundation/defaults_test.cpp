#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <functional>

#include "support/temporary_store.hpp"
#include "tarno/foundation/base_directories.hpp"
#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/defaults_document.hpp"
#include "tarno/foundation/suite_store.hpp"

namespace tarno {
namespace {

using namespace std::literals;
using Value = std::optional<DefaultsValue>;

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
  const std::string longest(4 << 20, 'x');
  const auto read = [](const std::string& member) {
    return decodeDefaults("{\"key\": " + member + "}").at("key");
  };
  EXPECT_EQ(read(R"({"value": 3, "type": "number", "more": 1})"), DefaultsValue{3.0});
  EXPECT_EQ(read(R"({"type": "date", "value": "1970-01-01T01:00:00.5+01:00"})"), DefaultsValue{Date{500ms}});
  EXPECT_EQ(read(R"({"type": "number", "value": 1}, "key": {"type": "string", "value": "last"})"),
            DefaultsValue{"last"});
  for (const auto& wrong :
       {R"({"type": "data", "base64": "YR=="})"s, R"({"type": "data", "base64": "Y*=="})"s,
        R"({"type": "date", "value": 1})"s, R"({"type": "date", "value": "0000-12-31T23:59:59Z"})"s,
        R"({"type": "other", "value": "1970-01-01T00:00:01Z"})"s, R"({"value": "a"})"s, R"("text")"s,
        R"({"type": "string", "value": "x)" + longest + "\"}"})
    EXPECT_THROW(read(wrong), DecodingError) << wrong.substr(0, 100);
  const DefaultsValue unfit[] = {longest + 'x', Data{longest + 'x'}, NAN,
                                 -HUGE_VAL,     latestDate + 1us,    earliestDate - 1us};
  for (const auto& value : unfit)
    EXPECT_THROW(encodeDefaults({{"key", value}}), EncodingError) << &value - unfit;
  EXPECT_THROW(encodeDefaults({{"\xFF", 1.0}}), EncodingError);
  EXPECT_EQ(decodeDefaults(encodeDefaults({{"key", longest}})).at("key"), DefaultsValue{longest});
}

TEST(Suite, IsWhereTheEnvironmentSaysAndHasAPlainName) {
  for (const auto& wrong : {""s, "."s, ".."s, "a/b"s, "/a"s, "a\0"s, std::string(256, 'x')})
    EXPECT_FALSE(suiteLocation(wrong) || openSuite(wrong).store) << wrong;
  const std::string ofUser = getpwuid(geteuid())->pw_dir;
  for (const auto& [data, homeFolder, at] :
       {std::tuple{"/d", "/h", "/d"s}, {"", "/h", "/h"s}, {"d", "h", ofUser}}) {
    setenv("XDG_DATA_HOME", data, 1), setenv("XDG_CONFIG_HOME", data, 1), setenv("HOME", homeFolder, 1);
    EXPECT_EQ(suiteLocation("s")->file, at + (*data == '/' ? "" : "/.local/share") + "/s/defaults.json");
    EXPECT_EQ(configurationHome(), at + (*data == '/' ? "" : "/.config"));
  }
}

TEST(Suite, IsMadeForTheOwnerAloneWhateverTheUmask) {
  for (const mode_t mask : {0u, 0777u}) {
    const TemporaryStore temporary;
    const auto [directory, file] = suiteLocation("suite").value();
    std::filesystem::remove(temporary.path);
    const mode_t before = umask(mask);
    saveToSuite("suite", {{"key", 1.0}});
    umask(before);
    for (const auto& [path, mode] : {std::pair{temporary.path, 0700}, {directory, 0700}, {file, 0600}})
      EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(mode)) << path << mask;
  }
}

TEST(Suite, AnswersFromOneStateUntilItSynchronizes) {
  const TemporaryStore temporary;
  const auto suite = openSuite("suite").store;
  const auto saveTwins = [](double number) { saveToSuite("suite", {{"key", number}, {"twin", number}}); };
  const auto allow = [file = suiteLocation("suite")->file](unsigned mode) {
    std::filesystem::permissions(file, std::filesystem::perms{mode});
  };
  const std::tuple<const char*, std::function<void()>, bool, Value, Value> steps[] = {
      {"others", [&] { saveTwins(1); }, true, 1.0, 1.0},
      {"a change", [&] { saveTwins(2), suite->set("key", 4.0); }, true, 4.0, 2.0},
      {"others after a change", [&] { saveTwins(3); }, true, 3.0, 3.0},
      {"no value", [&] { suite->set("bad", NAN), suite->set("key", 2.0); }, false, 3.0, 3.0},
      {"no value any more", [] {}, true, 3.0, 3.0},
      {"a useless file", [&] { allow(0666), suite->set("key", 5.0); }, false, 5.0, 3.0},
      {"a good one again", [&] { allow(0600); }, true, 5.0, 3.0},
      {"a useless file and no change", [&] { allow(0666); }, false, {}, {}}};
  for (const auto& [name, event, isDone, key, twin] : steps) {
    SCOPED_TRACE(name);
    const auto before = suite->object("twin");
    event();
    EXPECT_EQ(suite->object("twin"), before);
    EXPECT_EQ(suite->synchronize(), isDone);
    EXPECT_EQ(suite->object("key"), key);
    EXPECT_EQ(suite->object("twin"), twin);
    if (isDone) EXPECT_EQ(openSuite("suite").store->object("key"), key);
  }
}

}  // namespace
}  // namespace tarno
