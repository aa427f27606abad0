#pragma once

#include <gtest/gtest.h>

#include <string>

/// Whether `png` shows what tests/references/<name>.png shows. A few pixels may differ a little: other builds
/// of the drawing libraries round differently. On failure, <name>.actual.png and <name>.difference.png
/// (differences on a black ground, as strong as they can be shown) are written to the folder
/// "reference-failures" in the working directory.
///
/// With TARNO_RENEW_REFERENCES=1 in the environment the reference is written instead, and the answer is yes.
testing::AssertionResult matchesReference(const std::string& png, const std::string& name);
