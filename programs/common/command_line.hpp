#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "tarno/common/failure.hpp"

namespace program {

/// Parses the arguments into `app`, then calls `command`; the program's main ends with what this returns.
/// Help is printed for --help, the program's name and version for --version, and the code is 0; a wrong
/// command line is one line on standard error and EX_USAGE. An exception of `command` is one line on standard
/// error and the code that currentFailure() gives it.
int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command);

/// A check for an option that takes a number from `least` to `most`, written with a decimal point.
std::function<std::string(const std::string&)> numberFrom(double least, double most);

/// Sets an example line that --help ends with.
void setExample(CLI::App& app, const std::string& example);

}  // namespace program
