#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace Workbench {

// What a person is told of a solve while it runs.
struct ProgressState {
  std::size_t total = 0;
  std::size_t done = 0;
  std::map<std::string, std::size_t> failures; // by what reasons begin with
  std::size_t running = 0;
  bool isStopping = false;
  double seconds = 0.0; // that the solve has been at work
  std::optional<double> bestCost;

  std::size_t failed() const;
};

// "12/50, 2 failed (1 exit code, 1 time limit), 2 running, 3.1/s, 13 s left, best 21.5". Rate and time left are there
// once a row has been finished, the time left only while more rows are begun.
std::string progressText(const ProgressState &state);

// The same behind a bar, in at most `width` - 1 characters, so that the cursor stays in the line. What is of least use
// is left out first.
std::string progressBar(const ProgressState &state, std::size_t width);

} // namespace Workbench
