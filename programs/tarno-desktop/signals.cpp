#include "tarno-desktop/signals.hpp"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace desktop {
namespace {

sigset_t setOf(std::initializer_list<int> signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) sigaddset(&set, signal);
  return set;
}

}  // namespace

Signals::Signals(std::function<void()> end, std::function<void()> ask)
    : end_(std::move(end)), ask_(std::move(ask)) {
  const auto watched = setOf({SIGTERM, SIGINT, SIGHUP, SIGUSR1});
  sigprocmask(SIG_BLOCK, &watched, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGCHLD, SIG_DFL);  // a parent that ignores its children hands that on
  descriptor_ = foundation::FileDescriptor{signalfd(-1, &watched, SFD_NONBLOCK | SFD_CLOEXEC)};
  if (!descriptor_) throw std::system_error{errno, std::generic_category(), "no descriptor for signals"};
}

bool Signals::isEndedWithin(std::chrono::milliseconds time) {
  const auto ending = setOf({SIGTERM, SIGINT, SIGHUP});
  const timespec limit{0, std::chrono::nanoseconds{time}.count()};
  return sigtimedwait(&ending, nullptr, &limit) > 0;
}

void Signals::dispatch(short events) {
  signalfd_siginfo info{};
  while (events != 0 && read(descriptor_.get(), &info, sizeof info) == sizeof info)
    info.ssi_signo == SIGUSR1 ? ask_() : end_();
}

}  // namespace desktop
