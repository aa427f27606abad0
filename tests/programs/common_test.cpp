#include <gtest/gtest.h>

#include "common/dates.hpp"
#include "common/failure.hpp"
#include "common/files.hpp"
#include "common/output.hpp"
#include "support/temporary_store.hpp"

namespace {

namespace fs = std::filesystem;

TEST(Program, TextForATerminalCannotSteerIt) {
  const std::pair<std::string, const char*> cases[] = {{"Zoë’s 🖥️", "Zoë’s 🖥️"},
                                                       {"a\nb\tc", "a?b?c"},
                                                       {"\x1b[2J\x7f", "?[2J?"},
                                                       {"\xc2\x9b"
                                                        "31m",
                                                        "?31m"},
                                                       {std::string(1, '\0'), "?"},
                                                       {"\xc2\xa0", "\xc2\xa0"}};
  for (const auto& [text, safe] : cases) EXPECT_EQ(program::printable(text), safe);
}

TEST(Program, DatesShowMillisecondsOnlyWhenThereAreAny) {
  for (const char* const text :
       {"2026-11-16T15:41:35Z", "2026-11-16T15:41:35.250Z", "1969-12-31T23:59:59.999Z"})
    EXPECT_EQ(program::dateText(*program::parseDate(text)), text);
  EXPECT_EQ(program::parseDate("2026-11-16"), std::nullopt);
}

TEST(Program, FilesAreReplacedThroughTheirLinksAndKeepTheirMode) {
  const TemporaryStore temporary;
  const auto file = temporary.folder() / "file", link = temporary.folder() / "link";
  program::writeFile(file, "old");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("file", link);
  program::writeFile(link, "new");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(program::readFile(file, 3), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(std::distance(fs::directory_iterator{temporary.folder()}, fs::directory_iterator{}), 2);
  EXPECT_THROW(program::readFile(file, 2), program::Failure);
  EXPECT_THROW(program::writeFile(temporary.folder() / "none" / "file", "new"), program::Failure);
}

}  // namespace
