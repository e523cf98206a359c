/* A solver that needs fifty milliseconds of processor time. */
#include <time.h>
#include <unistd.h>

int main(void) {
  static const char result[] = "y = 1\n";
  struct timespec used = {0, 0};
  while (used.tv_sec == 0 && used.tv_nsec < 50000000L) {
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  }
  return write(1, result, sizeof(result) - 1) == (ssize_t)(sizeof(result) - 1) ? 0 : 1;
}
