#pragma once

#include <functional>

#include "support/temporary_store.hpp"
#include "tarno/common/event_loop.hpp"

/// Writes a program into `folder` that replaces tarno-widget. It appends its arguments to the file `log`,
/// then runs `behaviour`, which is Python. In it, draw(key=value, …) draws a small picture and prints an
/// answer.
inline void writeFakeWidget(const TemporaryFolder& folder, const std::string& behaviour) {
  constexpr auto preamble = R"(#!/usr/bin/python3
import fcntl, json, os, sys, time
folder = os.path.dirname(os.path.abspath(sys.argv[0]))
fd = int(sys.argv[sys.argv.index("--fd") + 1])
with open(folder + "/log", "a") as log:
    log.write(" ".join(sys.argv[1:]).replace(f"--fd {fd}", "--fd N") + "\n")
def date(seconds):
    return time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(time.time() + seconds))
def draw(memory=64, seals=fcntl.F_SEAL_SHRINK, end="\n", **changes):
    os.ftruncate(fd, memory)
    if seals:
        fcntl.fcntl(fd, fcntl.F_ADD_SEALS, seals)
    answer = {"width": 3, "height": 4, "stride": 16, "title": "Tarno", "announcement": "locked", "accessibility": [
        {"role": "staticText", "label": "Locked", "x": 1, "y": 2.5, "width": 3, "height": 4}],
        "reload_after": date(30), "stale_from": None, "watch": {"folder": folder, "file": "store"}, **changes}
    scale = float(sys.argv[sys.argv.index("--scale") + 1])
    answer = {"tile": {side: answer[side] / scale if type(answer[side]) is int else 1 for side in ("width", "height")}, **answer}
    print(json.dumps({key: value for key, value in answer.items() if value != "missing"}), end=end, flush=True)
)";
  folder.write("tarno-widget", preamble + behaviour + "\n");
}

/// An event loop that a test runs until a condition holds.
class TestLoop : public program::EventLoop, program::EventSource {
 public:
  TestLoop() { add(*this); }

  /// Runs for at most a minute. Returns whether `condition` held in the end.
  bool runUntil(std::function<bool()> condition) {
    holds_ = std::move(condition);
    giveUpAt_ = Clock::now() + std::chrono::minutes{1};
    run();
    return holds_();
  }

 private:
  Wait prepare() override {
    const auto now = Clock::now();
    if (holds_() || now > giveUpAt_) quit(0);
    return {.until = now + std::chrono::milliseconds{10}};
  }
  void dispatch(short) override {}

  std::function<bool()> holds_;
  Clock::time_point giveUpAt_;
};
