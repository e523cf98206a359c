#include "tests/study-fault/Suite.h"

#include "tests/study-fault/Judge.h"

#if defined(OPTSTUDY_ADDRESS_SANITIZER)
#include <sanitizer/lsan_interface.h>
#endif

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace StudyFaults {

using HostTesting::FaultKind;
using HostTesting::FaultyHost;

namespace {

// A flow that never ends is a finding, too.
constexpr unsigned kSecondsPerTrial = 60;
constexpr char kFieldEnd = '\x1f';

std::unique_ptr<Stage> prepare(const Flow &flow) {
  auto stage = std::make_unique<Stage>();
  flow.prepare(*stage);
  return stage;
}

bool leaks() {
#if defined(OPTSTUDY_ADDRESS_SANITIZER)
  return __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

void writeAll(int file, const std::string &text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(file, text.data() + written, text.size() - written);
    if (count < 0 && errno != EINTR) {
      _exit(3);
    }
    written += count > 0 ? static_cast<std::size_t>(count) : 0U;
  }
}

std::string readAll(int file) {
  std::string text;
  char buffer[4096];
  for (;;) {
    const ssize_t count = read(file, buffer, sizeof buffer);
    if (count > 0) {
      text.append(buffer, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return text;
    }
  }
}

std::string describeEnd(int status) {
  if (WIFSIGNALED(status)) {
    return "the process dies of signal " + std::to_string(WTERMSIG(status));
  }
  return "the process ends with code " + std::to_string(WEXITSTATUS(status));
}

// Runs a function in a child, which gets the stage for itself. Returns the fields that it answers; \p problem tells
// of a child that did not end well.
std::vector<std::string> inChild(std::unique_ptr<Stage> &stage,
                                 const std::function<std::vector<std::string>(Stage &)> &run,
                                 std::string &problem) {
  int ends[2];
  if (pipe(ends) != 0) {
    throw std::runtime_error("no pipe");
  }
  const pid_t child = fork();
  if (child < 0) {
    throw std::runtime_error("no child process");
  }
  if (child == 0) {
    close(ends[0]);
    alarm(kSecondsPerTrial);
    std::string text;
    for (const std::string &field : run(*stage)) {
      text += field + kFieldEnd;
    }
    stage.reset();
    writeAll(ends[1], text);
    // Without the end of a process that has made nothing but a trial: what its parent began is the parent's.
    _exit(leaks() ? 4 : 0);
  }
  close(ends[1]);
  const std::string text = readAll(ends[0]);
  close(ends[0]);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == 4) {
    problem = "memory leaks";
  } else if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    problem = describeEnd(status);
  }
  std::vector<std::string> fields;
  std::size_t begin = 0;
  for (std::size_t end = text.find(kFieldEnd); end != std::string::npos; end = text.find(kFieldEnd, begin)) {
    fields.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return fields;
}

const char *kindText(FaultKind kind) {
  switch (kind) {
  case FaultKind::Refused:
    return "refused";
  case FaultKind::Null:
    return "null";
  case FaultKind::Throws:
    break;
  }
  return "throws";
}

std::vector<Fault> allFaults(std::unique_ptr<Stage> &stage, const Flow &flow) {
  std::string problem;
  const std::vector<std::string> counts = inChild(
      stage,
      [&flow](Stage &own) {
        std::vector<std::string> fields;
        for (const auto &[operation, count] : countCalls(own, flow)) {
          fields.push_back(operation);
          fields.push_back(std::to_string(count));
        }
        return fields;
      },
      problem);
  if (!problem.empty()) {
    throw std::runtime_error(flow.name + " without fault: " + problem);
  }
  std::vector<Fault> faults;
  for (std::size_t index = 0; index + 1 < counts.size(); index += 2) {
    const int count = std::stoi(counts[index + 1]);
    for (const FaultKind kind : FaultyHost::kinds(counts[index])) {
      const auto add = [&](int occurrence, const char *where) {
        faults.push_back({counts[index], kind, occurrence, where});
      };
      add(1, "first");
      if (count > 2) {
        add((count + 1) / 2, "middle");
      }
      if (count > 1) {
        add(count, "last");
        add(FaultyHost::kAlways, "every");
      }
    }
  }
  return faults;
}

// The order of the trials stays as it is.
std::vector<Fault> drawn(const std::vector<Fault> &faults, const Selection &selection) {
  const auto wanted = static_cast<std::size_t>(selection.sample);
  if (wanted == 0 || wanted >= faults.size()) {
    return faults;
  }
  std::vector<std::size_t> places(faults.size());
  for (std::size_t index = 0; index < places.size(); ++index) {
    places[index] = index;
  }
  std::mt19937 random(selection.seed);
  for (std::size_t index = places.size() - 1; index > 0; --index) {
    std::swap(places[index], places[random() % (index + 1)]);
  }
  places.resize(wanted);
  std::sort(places.begin(), places.end());
  std::vector<Fault> result;
  result.reserve(wanted);
  for (const std::size_t place : places) {
    result.push_back(faults[place]);
  }
  return result;
}

Result runTrial(std::unique_ptr<Stage> &stage, const Flow &flow, const Fault &fault) {
  constexpr const char *kFindings = "findings:";
  Result result{fault.operation, fault.operation.empty() ? "-" : kindText(fault.kind), fault.where, {}, {}};
  std::string problem;
  const std::vector<std::string> fields = inChild(
      stage,
      [&](Stage &own) {
        const Aftermath seen = carryOut(own, flow, fault);
        std::vector<std::string> texts = describe(seen);
        texts.emplace_back(kFindings);
        for (std::string &finding : judge(flow, fault, seen)) {
          texts.push_back(std::move(finding));
        }
        return texts;
      },
      problem);
  const auto end = std::find(fields.begin(), fields.end(), kFindings);
  result.seen.assign(fields.begin(), end);
  if (end != fields.end()) {
    result.findings.assign(end + 1, fields.end());
  } else if (problem.empty()) {
    problem = "the process says nothing";
  }
  if (!problem.empty()) {
    result.findings.push_back(problem);
  }
  return result;
}

} // namespace

std::vector<Result> runTrials(const Flow &flow, const Selection &selection) {
  std::unique_ptr<Stage> stage = prepare(flow);
  std::vector<Result> results;
  results.push_back(runTrial(stage, flow, Fault()));
  for (const Fault &fault : drawn(allFaults(stage, flow), selection)) {
    results.push_back(runTrial(stage, flow, fault));
  }
  return results;
}

} // namespace StudyFaults
