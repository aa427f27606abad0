#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "support/temporary_store.hpp"
#include "tarno/common/command_line.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/common/files.hpp"
#include "tarno/common/output.hpp"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

TEST(Program, TextForATerminalCannotControlIt) {
  const std::pair<std::string, const char*> cases[] = {
      {"Zoë’s 🖥️ \u200Eעברית", "Zoë’s 🖥️ \u200Eעברית"},
      {"a\nb\tc", "a?b?c"},
      {std::string("\0\x1b[2J\x1f\x7f ~", 9), "??[2J?? ~"},
      {"\u0080\u009b31m\u009f\u00a0", "??31m?\u00a0"},
      {"\u2027\u2028\u202a\u202e\u202f", "\u2027???\u202f"},
      {"\u2065\u2066\u2069\u206a", "\u2065??\u206a"},
      {"\x80 \xc2 \xc3\xc3\xa9 \xe2\x82", "? ? ?é ??"},                     // incomplete characters
      {"\xc1\xbf \xe0\x9f\xbf \xf0\x8f\xbf\xbf", "?? ??? ????"},            // overlong forms
      {"\xed\xa0\x80 \xf4\x90\x80\x80 \xf9\x90\x80\x80", "??? ???? ????"},  // surrogates, too large numbers
      {"\u0800\U00010000\ud7ff\ue000\U0010ffff", "\u0800\U00010000\ud7ff\ue000\U0010ffff"}};
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
  EXPECT_EQ(program::errorLine(letters + "."),  // each letter has two bytes, which stay together
            letters.substr(0, 694) + " … " + letters.substr(0, 298) + ".");
}

TEST(Program, EndsWithTheCodeOfWhatHappened) {
  const auto failing = [](const auto& exception) { return [exception]() -> int { throw exception; }; };
  const std::tuple<std::function<int()>, int, const char*> rows[] = {
      {failing(program::Failure{EX_NOINPUT, "a\033b"}), EX_NOINPUT, "a?b\n"},
      {failing(std::bad_alloc{}), EX_OSERR, "out of memory\n"},
      {failing(std::logic_error{"odd"}), EX_SOFTWARE, "odd\n"}};
  for (const auto& [command, code, said] : rows) {
    SCOPED_TRACE(said);
    CLI::App app;
    char* arguments[] = {program_invocation_short_name, nullptr};
    testing::internal::CaptureStderr();
    EXPECT_EQ(program::run(app, 1, arguments, command), code);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string{program_invocation_short_name} + ": " + said);
  }
}

TEST(Program, FilesAreReplacedOrMadeWhereLinksLead) {
  const TemporaryStore temporary;
  const auto at = [&](const char* name) { return temporary.path / name; };
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
  fs::permissions(at("file"), fs::perms{06757});
  const pid_t killed = fork();
  if (killed == 0) {
    const rlimit limit{1, 1};
    std::signal(SIGXFSZ, SIG_DFL), setrlimit(RLIMIT_FSIZE, &limit);
    program::writeFile(at("first"), "cut short");
    _exit(0);
  }
  int status = 0;
  waitpid(killed, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(std::distance(fs::directory_iterator{at("")}, {}), 3);
  program::writeFile(at("file"), "ours");
  EXPECT_EQ(fs::status(at("file")).permissions(), fs::perms{0757});
  fs::create_symlink("loop", at("loop"));
  if (geteuid() == 0) {  // only root can give a file to another user
    fs::create_symlink("../inner", at("inner/link"));
    fs::permissions(at("inner"), fs::perms{01755});
    ASSERT_EQ(lchown(at("inner/link").c_str(), 12345, 0), 0);
    EXPECT_THROW(program::writeFile(at("inner/link/new"), "led astray"), program::Failure);
    EXPECT_FALSE(fs::exists(at("inner/new")));
    for (const auto& [user, group, mode] : {std::tuple{-1, 12345, 0755u}, {12345, -1, 0666 & ~before}}) {
      ASSERT_EQ(chown(at("file").c_str(), static_cast<uid_t>(user), static_cast<gid_t>(group)), 0);
      fs::permissions(at("file"), fs::perms{06735});
      program::writeFile(at("file"), "in place of another's");
      EXPECT_EQ(fs::status(at("file")).permissions(), fs::perms{mode});
    }
  }
  for (const auto& [path, code, reason] :
       {std::tuple{at("loop"), EX_CANTCREAT, "Too many levels of symbolic links"},
        {at("none/file"), EX_CANTCREAT, "No such file or directory"},
        {"/dev/full", EX_IOERR, "No space left on device"}})
    try {
      program::writeFile(path, "bytes");
      ADD_FAILURE() << path;
    } catch (const program::Failure& failure) {
      EXPECT_EQ(failure.exitCode(), code) << path;
      EXPECT_TRUE(std::string_view{failure.what()}.ends_with(reason)) << failure.what();
    }
}

}  // namespace
