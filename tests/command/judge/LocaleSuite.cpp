#include "tests/command/judge/Looks.h"
#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/Report.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <langinfo.h>
#include <locale.h>
#include <set>
#include <wctype.h>

namespace CommandTests {

namespace {

namespace fs = std::filesystem;
using FaultTests::Report;
using FaultTests::WorkFolder;
using FaultTests::writeFile;

// Fractions, units, an "i" for Turkish and letters of other languages.
constexpr const char *kStudy = R"yaml(version: 1
title: "Filter Iıİi ß"
model:
  Box:
    x: {value: 0.5 kohm, minimum: 0.25 kohm, maximum: 2.5 kohm}
    i: {kind: integer, value: 1, minimum: 1, maximum: 3}
    sum: {result: true, unit: km}
    product: {result: true}
    third: {result: true}
solver:
  templates: [{from: in.txt.template, to: in.txt}]
  command: [scripted_solver, "{{Box.x in kohm as %.3f}}", "{{Box.i}}"]
  results:
    Box.sum: {file: result.txt, pattern: '^sum = (.*)$', unit: m}
    Box.product: {pattern: '^product = (.*)$'}
formulas:
  Box.third: "%Box.product% / 3.0 + 1.5e-3"
study:
  target: minimise
  cost: "0.1 * %Box.sum% + 1.25 * %Box.third% + (%Box.x% > 0.75 ? 0.5 : 1.5)"
  inputs: [{name: II, attribute: Box.x, minimum: 0.25 kohm, maximum: 2.5 kohm, step: 0.25 kohm}, Box.i]
  outputs: [Box.sum, Box.product, Box.third]
  variants: {grid: {II: {minimum: 0.5 kohm, maximum: 1.5 kohm, step: 0.25 kohm}, Box.i: [1, 2]}}
)yaml";
constexpr const char *kTemplate = "x = {{Box.x}} {{Box.x in ohm as %.3f}} {{Box.x as %g}} {{Box.i}}\n";

// What prints, in the order in which it is carried out.
const std::vector<Words> &calls() {
  static const std::vector<Words> all{
      {"check", "box.study.yaml"},
      {"run", "box.study.yaml", "-j", "1"},
      {"run", "box.study.yaml", "--allow-failures", "12.5%"},
      {"show", "box.optstudy"},
      {"show", "box.optstudy", "--format", "CSV", "--sort", "II"},
      {"show", "box.optstudy", "--format", "JSON", "--differences", "ABSOLUTE"},
      {"best", "box.optstudy"},
      {"best", "box.optstudy", "--format", "json"},
      {"status", "box.optstudy"},
      {"add", "box.optstudy", "II=1.875", "Box.i=3", "--name", "Iı"},
      {"set", "box.optstudy", "Iı", "II=1875.5 ohm"},
      {"input", "set", "box.optstudy", "II", "--maximum", "2.25 kohm"},
      {"target", "box.optstudy", "MINIMISE"},
      {"cost", "box.optstudy", "0.5 * %Box.sum%"},
      {"group", "list", "box.optstudy"},
      {"export", "box.optstudy"},
      {"export", "box.optstudy", "--format", "json"},
      {"solve", "box.optstudy"},
      {"export", "box.optstudy", "rows.csv"},
      {"import", "box.optstudy", "rows.csv"},
      {"show", "box.optstudy", "--format", "csv"}};
  return all;
}

struct Printed {
  std::string output;
  int exitCode = -1;
};

// What the solvers were given, in an order that does not depend on folders.
std::string inputFilesIn(const std::string &folder) {
  std::multiset<std::string> contents;
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().filename() == "in.txt") {
      contents.insert(FaultTests::readFile(entry.path().string()));
    }
  }
  std::string text;
  for (const std::string &content : contents) {
    text += content;
  }
  return text;
}

std::vector<Printed> printedIn(const Product &product, const std::string &name, const Variables &variables) {
  const Box box = Box::make(product, name);
  writeFile(box.path("box.study.yaml"), kStudy);
  writeFile(box.path("in.txt.template"), kTemplate);
  std::vector<Printed> printed;
  for (const Words &words : calls()) {
    const Call call = box.call(words, variables);
    printed.push_back({call.output, call.exitCode()});
    if (call.exitCode() != 0) {
      printed.back().output += call.messages;
    }
  }
  printed.push_back({inputFilesIn(box.folder()), 0});
  return printed;
}

// A locale that the judge makes itself, because a machine need not have it. "" or why it is not what it should be.
std::string makeLocale(const std::string &folder, const std::string &language) {
  const std::string name = folder + "/" + language + ".UTF-8";
  const FaultTests::Ending made = FaultTests::runCommand({"localedef", "-i", language, "-f", "UTF-8", name},
                                                         name + ".out", name + ".err");
  ::setenv("LOCPATH", folder.c_str(), 1);
  const locale_t locale = ::newlocale(LC_ALL_MASK, (language + ".UTF-8").c_str(), nullptr);
  if (locale == nullptr) {
    return "it cannot be made (" + std::to_string(made.exitCode) +
           "): " + FaultTests::readFile(name + ".err");
  }
  const std::string mark = ::nl_langinfo_l(RADIXCHAR, locale);
  const bool hasTurkishI = ::towupper_l(L'i', locale) == L'\u0130';
  ::freelocale(locale);
  if (mark != ",") {
    return "its decimal mark is \"" + mark + "\"";
  }
  return hasTurkishI == (language == "tr_TR") ? "" : "its letter i is another one";
}

void compare(const std::vector<Printed> &expected, const std::vector<Printed> &found,
             const std::string &language, Report &report) {
  for (std::size_t number = 0; number < expected.size(); ++number) {
    const std::string what = number < calls().size() ? joined(calls()[number]) : "input files";
    std::string problem = difference(expected[number].output, found[number].output);
    if (problem.empty() && expected[number].exitCode != found[number].exitCode) {
      problem = "another exit code";
    }
    report.add(std::string(language).append(": ").append(what), problem);
  }
}

// Something that does depend on the language.
std::string numberPrintedIn(const Product &product, const Variables &variables) {
  const Box box = Box::make(product, "printf-" + std::to_string(variables.size()));
  return box.finish(box.startOther({"/usr/bin/printf", "%.1f"}, "printf", variables), "printf").output;
}

} // namespace

Outcome runLocaleSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  const std::string folder = work.makeFolder("locales");
  Report report("locale");
  const std::vector<Printed> expected = printedIn(product, "C", {{"LC_ALL", "C.UTF-8"}});
  for (std::size_t number = 0; number < calls().size(); ++number) {
    report.add("C: " + joined(calls()[number]),
               expected[number].exitCode == 0 ? "" : expected[number].output);
  }
  report.add("C: input files", expected.back().output.find("x = 0.75 750.000 0.75 2\n") != std::string::npos
                                   ? ""
                                   : expected.back().output);
  Report control("locale control, a program that depends on it");
  for (const std::string &language : std::vector<std::string>{"de_DE", "tr_TR"}) {
    const Variables variables{{"LC_ALL", language + ".UTF-8"}, {"LOCPATH", folder}};
    report.add(language, makeLocale(folder, language));
    compare(expected, printedIn(product, language, variables), language, report);
    control.add(language, difference(numberPrintedIn(product, {{"LC_ALL", "C.UTF-8"}}),
                                     numberPrintedIn(product, variables)));
  }
  report.close();
  control.close();
  return report.violations() == 0 && control.violations() == 2 ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
