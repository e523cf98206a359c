// A solver that does what a script says: scripted_solver X [MORE]...
//
// Of itself it writes "sum = X + 10" to result.txt and prints "product = 2 X". It notes its begin and its end in the
// file that BOX_LOG names. BOX_SCRIPT names a file of lines "X WHAT [ARGUMENT]", "*" for every X; the first line that
// suits says what it does before the results are written. It is no input of the row, so that the same row behaves in
// one way today and in another tomorrow.

#include "EmbeddedHost/tests/Misbehaviour.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr int kDiskIsFull = 28;
constexpr int kUnknownWord = 99;

std::string variable(const char *name) {
  const char *const text = std::getenv(name);
  return text == nullptr ? "" : text;
}

// In one system call, so that the lines of solvers that run side by side stay whole.
void note(const std::string &file, const std::string &line) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor >= 0) {
    const std::string text = line + "\n";
    static_cast<void>(write(descriptor, text.data(), text.size()) > 0);
    close(descriptor);
  }
}

void pauseFor(const std::string &count) {
  std::this_thread::sleep_for(milliseconds(std::atoi(count.c_str())));
}

void waitUntilThereIs(const std::string &file) {
  while (access(file.c_str(), F_OK) != 0) {
    pauseFor("5");
  }
}

// Says over and over how long it has been alive, in its own measure.
[[noreturn]] void tick(const std::string &file) {
  const auto begin = Clock::now();
  while (true) {
    const auto alive = std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
    note(file, std::to_string(alive.count()));
    pauseFor("10");
  }
}

bool writeBallast(const std::string &size) {
  std::ofstream stream("ballast", std::ios::binary);
  stream << std::string(static_cast<std::size_t>(std::atoi(size.c_str())), 'b') << std::flush;
  return stream.good();
}

void dumpArguments(int count, char **arguments) {
  std::ofstream stream("arguments.bin", std::ios::binary);
  for (int at = 1; at < count; ++at) {
    stream << arguments[at] << '\0';
  }
}

void writeSum(double x) {
  if (std::FILE *file = std::fopen("result.txt", "w")) {
    std::fprintf(file, "sum = %.17g\n", x + 10.0);
    std::fclose(file);
  }
}

void printProduct(double x) {
  std::printf("product = %.17g\n", 2.0 * x);
  std::fflush(stdout);
}

struct Order {
  std::string what = "ok";
  std::string argument;
};

Order orderFor(const std::string &x) {
  std::ifstream script(variable("BOX_SCRIPT"));
  for (std::string line; std::getline(script, line);) {
    std::istringstream words(line);
    std::string whom;
    Order order;
    words >> whom >> order.what;
    std::getline(words >> std::ws, order.argument);
    if (whom == "*" || whom == x) {
      return order;
    }
  }
  return {};
}

// -1: the results are to be written now.
int carryOut(const Order &order, double x) {
  const std::string &what = order.what;
  if (what == "until") {
    waitUntilThereIs(order.argument);
  } else if (what == "tick") {
    tick(order.argument);
  } else if (what == "deaf-tick") {
    static_cast<void>(signal(SIGTERM, SIG_IGN));
    tick(order.argument);
  } else if (what == "ballast") {
    return writeBallast(order.argument) ? -1 : kDiskIsFull;
  } else if (what == "partial") {
    writeSum(x);
    return 0;
  } else if (what == "cut") {
    writeSum(x);
    std::printf("product = ");
    return 0;
  } else if (what == "pieces") {
    writeSum(x);
    std::printf("prod");
    std::fflush(stdout);
    pauseFor(order.argument);
    std::printf("uct = %.17g\n", 2.0 * x);
    return 0;
  } else if (what == "late") {
    if (fork() != 0) {
      return 0;
    }
    pauseFor(order.argument);
  } else if (what == "much") {
    printProduct(x);
    const std::string block(1024, 'x');
    for (int kilobytes = std::atoi(order.argument.c_str()); kilobytes > 0; --kilobytes) {
      std::printf("%s\n", block.c_str());
    }
    writeSum(x);
    return 0;
  } else if (what != "ok") {
    const std::string word = what == "serve-deaf" ? "serve deaf" : what; // a word of a script holds no blank
    const int answer = misbehave(word, order.argument.empty() ? nullptr : order.argument.c_str());
    if (answer != 0 || what == "exit") {
      return answer < 0 ? kUnknownWord : answer;
    }
  }
  return -1;
}

} // namespace

int main(int count, char **arguments) {
  if (count < 2) {
    return kUnknownWord;
  }
  const std::string x = arguments[1];
  const double number = std::strtod(arguments[1], nullptr);
  const std::string log = variable("BOX_LOG");
  note(log, "begin " + x);
  const int answer = carryOut(orderFor(x), number);
  if (answer >= 0) {
    return answer;
  }
  dumpArguments(count, arguments);
  writeSum(number);
  printProduct(number);
  note(log, "end " + x);
  return 0;
}
