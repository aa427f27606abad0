#include "tarno-desktop/signals.hpp"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "foundation/file_descriptor.hpp"

namespace desktop {
namespace {

struct SignalSource final : EventSource {
  Wait prepare() override { return {descriptor.get()}; }

  void dispatch(short events) override {
    signalfd_siginfo info{};
    while (events != 0 && read(descriptor.get(), &info, sizeof info) == sizeof info)
      info.ssi_signo == SIGUSR1 ? ask() : end();
  }

  std::function<void()> end, ask;
  foundation::FileDescriptor descriptor;
};

}  // namespace

std::unique_ptr<EventSource> watchSignals(std::function<void()> end, std::function<void()> ask) {
  sigset_t watched;
  sigemptyset(&watched);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1}) sigaddset(&watched, signal);
  sigprocmask(SIG_BLOCK, &watched, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGCHLD, SIG_DFL);  // a parent that ignores its children hands that on
  auto source = std::make_unique<SignalSource>();
  source->end = std::move(end);
  source->ask = std::move(ask);
  source->descriptor = foundation::FileDescriptor{signalfd(-1, &watched, SFD_NONBLOCK | SFD_CLOEXEC)};
  if (!source->descriptor)
    throw std::system_error{errno, std::generic_category(), "no descriptor for signals"};
  return source;
}

}  // namespace desktop
