#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "accessibility/accessible_tile.hpp"

/// A tile without a display: shows the frames that its standard input describes, one a line, at the place
/// that a line "place X Y WIDTH HEIGHT SCALE" tells.
class Input final : public program::EventSource {
 public:
  Input() {
    loop_.add(*this);
    loop_.add(tile_);
  }
  int run() { return loop_.run(); }

 private:
  Wait prepare() override { return {STDIN_FILENO, POLLIN, {}}; }

  void dispatch(short events) override {
    char line[4096] = "";
    if (events == 0) return;
    if (!std::fgets(line, sizeof line, stdin)) return loop_.quit(0);
    desktop::Area area;
    double scale = 1;
    if (std::sscanf(line, "place %d %d %d %d %lf", &area.x, &area.y, &area.width, &area.height, &scale) == 5)
      return tile_.place(area, scale);
    foundation::FileDescriptor memory{memfd_create("picture", MFD_ALLOW_SEALING)};
    if (ftruncate(memory.get(), 4) != 0 || fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK) != 0) std::abort();
    tile_.update(desktop::readFrame(line, std::move(memory), 1));
  }

  program::EventLoop loop_;
  desktop::AccessibleTile tile_;
};

int main() {
  std::setvbuf(stdin, nullptr, _IONBF, 0);  // what is not read yet is seen by poll()
  return Input{}.run();
}
