#include <gtest/gtest.h>

#if defined(OPTSTUDY_ADDRESS_SANITIZER)
#include <sanitizer/lsan_interface.h>
#endif

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <string>

namespace {

// The run under a German locale proves nothing unless the locale really is there.
bool decimalMarkIsAsExpected() {
  const char *expected = std::getenv("OPTSTUDY_EXPECT_DECIMAL_MARK");
  if (expected == nullptr) {
    return true;
  }
  char text[8] = {};
  std::snprintf(text, sizeof text, "%.1f", 1.5);
  return std::string(text) == "1" + std::string(expected) + "5";
}

// The C library leaks its search path each time a locale is made while LOCPATH is set.
void useLocaleOfTheEnvironment() {
#if defined(OPTSTUDY_ADDRESS_SANITIZER)
  const __lsan::ScopedDisabler unwatched;
#endif
  std::locale::global(std::locale(""));
}

} // namespace

int main(int argc, char **argv) {
  if (std::setlocale(LC_ALL, "") == nullptr) {
    std::fputs("The locale named by the environment does not exist.\n", stderr);
    return EXIT_FAILURE;
  }
  if (!decimalMarkIsAsExpected()) {
    std::fputs("The process locale does not have the expected decimal mark.\n", stderr);
    return EXIT_FAILURE;
  }
  useLocaleOfTheEnvironment();
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
