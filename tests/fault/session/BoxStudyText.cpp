#include "tests/fault/session/BoxStudyText.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace FaultTests {

namespace {

constexpr const char *kHead = R"yaml(version: 1
title: Box
model:
  Box:
    x: {value: 1, minimum: 0, maximum: 100000}
    y: 10 m
    z: 5
    note: {kind: text, value: hello}
    sum: {result: true}
    product: {result: true, unit: m}
solver:
  templates: [{from: in.txt.template, to: in.txt}]
  command: [./solve.sh]
  timeout: 50 s
  results:
    Box.sum: {file: result.txt, pattern: '^sum = (.*)$'}
    Box.product: {pattern: '^product = (.*)$', unit: mm}
study:
  target: maximise
  cost: "%Box.sum% + %Box.product%"
  inputs: [{name: width, attribute: Box.x, minimum: 0, maximum: 100000, step: 1}, Box.y]
  outputs: [{name: total, attribute: Box.sum}, Box.product]
)yaml";

// The hook is there when somebody wants to look at the project while a solver runs.
constexpr const char *kSolver = R"sh(#!/bin/sh
read x y z < in.txt
if [ -e ../../../hook.sh ]; then . ../../../hook.sh; fi
mkdir detail
echo "$x $y $z" > detail/inputs.txt
echo "sum = $((x + y + z))" > result.txt
echo "product = $((x * y))"
)sh";

} // namespace

std::string boxStudyText(int rows) {
  std::string text = kHead;
  text += rows == 0 ? "" : "  variants:\n";
  for (int row = 1; row <= rows; ++row) {
    text +=
        "    - {name: Row " + std::to_string(row) + ", values: {width: " + std::to_string(row + 1) + "}}\n";
  }
  return text;
}

std::string writeBoxFiles(const std::string &folder) {
  namespace fs = std::filesystem;
  std::ofstream(folder + "/in.txt.template") << "{{Box.x}} {{Box.y in mm}} {{Box.z}}\n";
  std::ofstream(folder + "/solve.sh") << kSolver;
  std::error_code error;
  fs::permissions(folder + "/solve.sh", fs::perms::owner_all, error);
  return error ? folder + "/solve.sh: " + error.message() : "";
}

} // namespace FaultTests
