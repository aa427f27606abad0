#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <set>
#include <thread>
#include <vector>

#include "common/command_line.hpp"
#include "common/dates.hpp"
#include "common/failure.hpp"
#include "common/files.hpp"
#include "common/output.hpp"
#include "foundation/file_descriptor.hpp"
#include "foundation/iso8601.hpp"
#include "support/temporary_store.hpp"

namespace {

namespace fs = std::filesystem;
using foundation::FileDescriptor;

std::set<std::string> entries(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator{folder}) names.insert(entry.path().filename());
  return names;
}

/// The exit code that `action` fails with; 0 when it does not.
int codeOf(const std::function<void()>& action) {
  try {
    action();
    return 0;
  } catch (const program::Failure& failure) {
    return failure.exitCode();
  }
}

TEST(Program, TextForATerminalCannotSteerIt) {
  const std::pair<std::string, const char*> cases[] = {
      {"Zoë’s 🖥️ \u200Eעברית", "Zoë’s 🖥️ \u200Eעברית"},
      {"a\nb\tc", "a?b?c"},
      {std::string("\0\x1b[2J\x1f\x7f ~", 9), "??[2J?? ~"},
      {"\u0080\u009b31m\u009f\u00a0", "??31m?\u00a0"},
      {"\u2027\u2028\u202a\u202e\u202f", "\u2027???\u202f"},
      {"\u2065\u2066\u2069\u206a", "\u2065??\u206a"},
      {"\x80 \xc2 \xc3\xc3\xa9 \xe2\x82", "? ? ?é ??"},                     // a character that is cut short
      {"\xc1\xbf \xe0\x9f\xbf \xf0\x8f\xbf\xbf", "?? ??? ????"},            // longer than it need be
      {"\xed\xa0\x80 \xf4\x90\x80\x80 \xf9\x90\x80\x80", "??? ???? ????"},  // no character
      {"\xed\x9f\xbf\xee\x80\x80\xf4\x8f\xbf\xbf", "\xed\x9f\xbf\xee\x80\x80\xf4\x8f\xbf\xbf"}};
  for (const auto& [text, safe] : cases) EXPECT_EQ(program::printable(text), safe);
  EXPECT_EQ(program::printableLines("a\tb\n\n\xffz\n"), "a?b\n\n?z\n");
}

TEST(Program, ErrorLinesAreWholeOrLoseTheirMiddle) {
  EXPECT_STREQ(program::Failure(64, std::string("a\0b", 3)).what(), "a?b");
  EXPECT_EQ(program::errorLine(std::string(1000, 'x')), std::string(1000, 'x'));
  EXPECT_EQ(program::errorLine("<" + std::string(1 << 20, 'x') + ">"),
            "<" + std::string(694, 'x') + " … " + std::string(299, 'x') + ">");
  std::string letters;
  while (letters.size() < 2000) letters += "é";
  const auto half = letters.substr(0, 694), end = letters.substr(0, 300);  // no letter is cut
  EXPECT_EQ(program::errorLine(letters), half + " … " + end);
  EXPECT_EQ(program::errorLine(letters + "."), half + " … " + end.substr(2) + ".");
}

/// The code that a program ends with, and what it says.
std::pair<int, std::string> runWith(std::vector<const char*> arguments, const std::function<int()>& command) {
  CLI::App app;
  program::ClockOption clock{app};
  arguments.insert(arguments.begin(), "program");
  testing::internal::CaptureStderr();
  const int code =
      program::run(app, static_cast<int>(arguments.size()), const_cast<char**>(arguments.data()), [&] {
        clock.apply();
        return command();
      });
  return {code, testing::internal::GetCapturedStderr()};
}

TEST(Program, EndsWithTheCodeOfWhatHappened) {
  const auto name = std::string{program_invocation_short_name} + ": ";
  const auto failing = [](const auto& exception) { return [exception]() -> int { throw exception; }; };
  using Result = std::pair<int, std::string>;
  EXPECT_EQ(runWith({}, [] { return 3; }), (Result{3, ""}));
  EXPECT_EQ(runWith({}, failing(program::Failure{EX_NOINPUT, "a\033b"})),
            (Result{EX_NOINPUT, name + "a?b\n"}));
  EXPECT_EQ(runWith({}, failing(std::bad_alloc{})), (Result{EX_OSERR, name + "out of memory\n"}));
  EXPECT_EQ(runWith({}, failing(std::logic_error{"odd"})), (Result{EX_SOFTWARE, name + "odd\n"}));
  EXPECT_EQ(runWith({"--at", "2026-11-16"}, [] { return 0; }).first, EX_USAGE);
  EXPECT_EQ(
      runWith({"--at", "2026-11-16T15:41:35.25+01:00"},
              [] {
                return foundation::now() == *foundation::dateFromRFC3339("2026-11-16T14:41:35.250Z") ? 0 : 1;
              }),
      (Result{0, ""}));
}

TEST(Program, DatesShowMillisecondsOnlyWhenThereAreAny) {
  for (const char* const text :
       {"2026-11-16T15:41:35Z", "2026-11-16T15:41:35.250Z", "1969-12-31T23:59:59.999Z"})
    EXPECT_EQ(program::dateText(*foundation::dateFromRFC3339(text)), text);
  EXPECT_EQ(program::dateText(foundation::Date{std::chrono::microseconds{999}}), "1970-01-01T00:00:00Z");
}

TEST(Program, FilesAreReplacedOrMadeWhereLinksLead) {
  const TemporaryStore temporary;
  const auto at = [&](const char* name) { return temporary.folder() / name; };
  fs::create_directory(at("inner"));
  fs::create_symlink("inner/second", at("first"));
  fs::create_symlink("../file", at("inner/second"));
  const auto before = umask(027);
  program::writeFile(at("first"), "made");
  EXPECT_EQ(umask(before), 027);
  EXPECT_EQ(program::readFile(at("file"), 4), "made");
  EXPECT_EQ(fs::status(at("file")).permissions(), fs::perms{0640});
  fs::permissions(at("file"), fs::perms{0604});
  program::writeFile(at("first"), "replaced");
  EXPECT_EQ(program::readFile(at("file"), 8), "replaced");
  EXPECT_EQ(fs::status(at("file")).permissions(), fs::perms{0604});
  EXPECT_TRUE(fs::is_symlink(at("inner/second")));
  EXPECT_EQ(entries(temporary.folder()), (std::set<std::string>{"file", "first", "inner"}));
}

TEST(Program, PipesAreWrittenAndReadWholeAndSurviveSignals) {
  struct sigaction action {
  }, before{};
  action.sa_handler = [](int) {};  // without SA_RESTART
  sigaction(SIGUSR1, &action, &before);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const FileDescriptor output{ends[0]};
  FileDescriptor input{ends[1]};
  const auto name = [](const FileDescriptor& end) { return "/proc/self/fd/" + std::to_string(end.get()); };
  const auto disturb = [](std::thread& thread) {
    for (int i = 0; i < 20; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds{1});
      pthread_kill(thread.native_handle(), SIGUSR1);
    }
  };
  const std::string sent(300000, 'x');  // more than a pipe holds
  std::string received;
  std::thread writer{[&] { program::writeFile(name(input), sent); }};
  disturb(writer);
  std::thread reader{[&] { received = program::readFile(name(output), sent.size()); }};
  writer.join();
  disturb(reader);
  input = FileDescriptor{};
  reader.join();
  EXPECT_EQ(received.size(), sent.size());
  sigaction(SIGUSR1, &before, nullptr);
}

TEST(Program, FileFailuresNameTheirCause) {
  const TemporaryStore temporary;
  const auto at = [&](const char* name) { return temporary.folder() / name; };
  program::writeFile(at("file"), "old");
  fs::create_symlink("loop", at("loop"));
  const std::pair<int, std::function<void()>> cases[] = {
      {EX_DATAERR, [&] { program::readFile(at("file"), 2); }},
      {EX_NOINPUT, [&] { program::readFile(at(""), 2); }},
      {EX_NOINPUT, [&] { program::readFile(at("none"), 2); }},
      {EX_CANTCREAT, [&] { program::writeFile(at(""), "new"); }},
      {EX_CANTCREAT, [&] { program::writeFile(at("none/file"), "new"); }},
      {EX_CANTCREAT, [&] { program::writeFile(at("loop"), "new"); }}};
  for (const auto& [code, action] : cases) EXPECT_EQ(codeOf(action), code);
  EXPECT_EQ(entries(temporary.folder()), (std::set<std::string>{"file", "loop"}));
}

}  // namespace
