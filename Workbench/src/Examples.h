#pragma once

#include <string_view>
#include <vector>

namespace Workbench {

// A file of an example, as it is in examples/; the program carries them, so that it works where it is installed alone.
struct ExampleFile {
  std::string_view example;
  std::string_view name;
  std::string_view text;
};

// In the order of their names. The build makes the source of this function from the files.
const std::vector<ExampleFile> &exampleFiles();

} // namespace Workbench
