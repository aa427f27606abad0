// Measures how much longer a process takes (fork, exit, wait) if it confines itself than if it does nothing.
// The two take turns in one run. The target is at most 0.5 ms.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "tarno/tarno-widget/confinement.hpp"

namespace {

/// Returns how long a child process lives, from its start to its end, in microseconds.
double lifeOfChild(bool isConfined) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const pid_t child = fork();
  if (child == 0) {
    if (isConfined) extension::confine(extension::FileAccess::readOnly);
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  return std::chrono::duration<double, std::micro>{Clock::now() - start}.count();
}

double median(std::vector<double>& values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main() {
  std::vector<double> plain, confined;
  for (int run = 0; run < 1000; ++run) {
    plain.push_back(lifeOfChild(false));
    confined.push_back(lifeOfChild(true));
  }
  const double floor = median(plain), ours = median(confined);
  std::printf("confinement: %.0f us more than the %.0f us of an empty process\n", ours - floor, floor);
}
