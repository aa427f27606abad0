#include "common/command_line.hpp"

#include <errno.h>  // program_invocation_short_name

#include <csignal>

#include "common/output.hpp"

namespace program {
int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command) {
  // A write beyond the limit on file sizes then fails like any other, and what was begun is cleaned up.
  std::signal(SIGXFSZ, SIG_IGN);
  app.set_version_flag("--version", std::string{program_invocation_short_name} + " " + TARNO_VERSION);
  try {
    try {
      app.parse(argc, argv);
    } catch (const CLI::CallForVersion& version) {
      writeOutput(std::string{version.what()} + "\n");
      return EX_OK;
    } catch (const CLI::Success&) {
      writeOutput(app.help());
      return EX_OK;
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

void setExample(CLI::App& app, const std::string& example) { app.footer("Example:\n  " + example); }

}  // namespace program
