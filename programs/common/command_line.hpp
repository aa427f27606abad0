#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "tarno/common/failure.hpp"

namespace program {

/// Parses the arguments into `app`, then calls `command` and returns its exit code for main. Handles the
/// options --help and --version, and returns 0 for them. For a wrong command line, prints one line on
/// standard error and returns EX_USAGE. If `command` throws, prints one line on standard error and returns
/// the code of currentFailure().
int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command);

/// Returns a check for an option that takes a decimal number from `least` to `most`.
std::function<std::string(const std::string&)> numberFrom(double least, double most);

/// Returns a check for an option that takes one of `words`, which --help then lists.
CLI::Validator oneOf(const std::vector<std::string>& words);

/// Sets the example at the end of --help.
void setExample(CLI::App& app, const std::string& example);

}  // namespace program
