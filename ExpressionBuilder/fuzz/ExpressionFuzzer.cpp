#include "ExpressionBuilder/fuzz/ExpressionCase.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  // Making the builders takes longer than trying a case.
  static ExpressionBuilder::Fuzzing::Examiner examiner;
  const std::string found = examiner.contradictionIn(ExpressionBuilder::Fuzzing::caseOf(bytes, size));
  if (!found.empty()) {
    std::fprintf(stderr, "Contradiction: %s\n", found.c_str());
    std::abort();
  }
  return 0;
}
