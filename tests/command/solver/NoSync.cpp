// Loaded before the C library, makes of a program one that does not wait for the disk. The suite of power cuts has to
// find out a product like that.

#include <unistd.h>

extern "C" {
int fsync(int descriptor);
int fdatasync(int descriptor);
int syncfs(int descriptor) noexcept;
}

int fsync(int /*descriptor*/) {
  return 0;
}

int fdatasync(int /*descriptor*/) {
  return 0;
}

int syncfs(int /*descriptor*/) noexcept {
  return 0;
}
