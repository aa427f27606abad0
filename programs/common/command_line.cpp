#include "tarno/common/command_line.hpp"

#include <errno.h>  // program_invocation_short_name
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdio>

#include "tarno/common/output.hpp"

namespace program {
namespace {

/// Occupies standard descriptors that are closed. Otherwise a file that this program opens could get such a
/// number, and messages would be written into it.
void fillStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/// Makes the help of a program and of its commands say the same in the same words.
void setHelpText(CLI::App& app) {
  app.get_help_ptr()->description("Print a help text and exit");
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->label("Positionals", "Arguments");
  for (auto* const command : app.get_subcommands({})) {
    command->group("Commands");
    setHelpText(*command);
  }
}

}  // namespace

int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command) {
  fillStandardDescriptors();
  // Makes a write beyond the limit on file sizes fail like any other write, so that the clean-up runs.
  std::signal(SIGXFSZ, SIG_IGN);
  const std::string name = program_invocation_short_name;
  app.name(name);
  app.set_version_flag("--version", name + " " + TARNO_VERSION, "Print the version and exit");
  setHelpText(app);
  try {
    try {
      app.parse(argc, argv);
    } catch (const CLI::CallForVersion& version) {
      writeOutput(std::string{version.what()} + "\n");
      return EX_OK;
    } catch (const CLI::Success&) {
      writeOutput(app.help());
      return EX_OK;
    } catch (const CLI::RequiredError& error) {
      const auto extra = app.remaining();
      const bool isUnknown = !app.get_subcommands({}).empty() && !extra.empty() && extra[0][0] != '-';
      throw Failure{EX_USAGE,
                    (isUnknown ? "unknown command '" + extra[0] + "'" : error.what()) + " (see --help)"};
    } catch (const CLI::ParseError& error) {
      throw Failure{EX_USAGE, std::string{error.what()} + " (see --help)"};
    }
    return command();
  } catch (...) {
    const auto failure = currentFailure();
    complain(failure.what());
    return failure.exitCode();
  }
}

std::function<std::string(const std::string&)> numberFrom(double least, double most) {
  // Replaces CLI::Range, which accepts NaN.
  return [=](const std::string& text) -> std::string {
    double number = 0;
    const auto end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec == std::errc{} && read.ptr == end && least <= number && number <= most) return "";
    char limits[64];
    std::snprintf(limits, sizeof limits, "from %g to %g", least, most);
    return "'" + text + "' is not a number " + limits;
  };
}

CLI::Validator oneOf(const std::vector<std::string>& words) {
  const auto joined = [words](const char* between, const char* last) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i)
      list += (i == 0 ? "" : i + 1 < words.size() ? between : last) + words[i];
    return list;
  };
  const auto check = [words, joined](const std::string& word) {
    const bool isOne = std::find(words.begin(), words.end(), word) != words.end();
    return isOne ? std::string{} : "'" + word + "' is not " + joined(", ", " or ");
  };
  return CLI::Validator{check, "{" + joined(",", ",") + "}"};
}

void setExample(CLI::App& app, const std::string& example) { app.footer("Example:\n  " + example); }

}  // namespace program
