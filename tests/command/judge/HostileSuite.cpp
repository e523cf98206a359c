#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/Report.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <iostream>

namespace CommandTests {

namespace {

namespace fs = std::filesystem;
using FaultTests::readFile;
using FaultTests::Report;
using FaultTests::WorkFolder;
using FaultTests::writeFile;
using Json = nlohmann::ordered_json;

const std::string kFolder = "it's a \"box\" $(touch canary) `touch canary`; touch canary #%x {{y}} \xC3\xBC";

// Texts that a shell, a template, a cost, a path or a table could take for something else.
const std::vector<std::string> &hostileTexts() {
  static const std::vector<std::string> all{
      "-rf",
      "--help",
      "-",
      "--",
      "; touch canary",
      "$(touch canary)",
      "`touch canary`",
      "& touch canary &",
      "| touch canary",
      "> canary",
      "it's",
      "say \"hi\"",
      "'\"'\"'",
      "\\",
      "\\n",
      "two\nlines",
      "\r\n",
      "tab\there",
      "100%",
      "%s%n%d",
      "%Box.x%",
      "{{Box.x}}",
      "{{",
      "}}",
      "a,b;c",
      "*",
      "?",
      "~",
      "$HOME",
      "..",
      "../../etc/passwd",
      "/etc",
      "a/b",
      " lead",
      "trail ",
      "=1+1",
      "#comment",
      "\x01\x1b[31mred\x7f",
      "\xC3\xBC\xC3\xB1\xC3\xAF \xE6\xBC\xA2\xE5\xAD\x97 \xF0\x9F\x99\x82",
      "e\xCC\x81",
      std::string("\xE2\x80") + "\xAErtl",
      std::string(300, 'x'),
      "nan",
      "1e5",
      "null",
      "ok"};
  return all;
}

// A study with a row for each text, which is the row's name and the value of an input.
std::string studyText(const std::vector<std::string> &command) {
  Json rows = Json::array();
  for (const std::string &text : hostileTexts()) {
    rows.push_back({{"name", text}, {"values", {{"Box.note", text}}}});
  }
  const Json model = {
      {"x", 1}, {"note", {{"kind", "text"}, {"value", "plain"}}}, {"sum", {{"result", true}}}};
  const Json solver = {{"templates", Json::array({{{"from", "in put.txt.template"}, {"to", "in put.txt"}}})},
                       {"command", command},
                       {"results", {{"Box.sum", {{"file", "result.txt"}, {"key", "sum"}}}}}};
  const Json study = {{"target", "minimise"},
                      {"stop-after", 0},
                      {"cost", "%Box.sum%"},
                      {"inputs", Json::array({"Box.note"})},
                      {"outputs", Json::array({"Box.sum"})},
                      {"variants", {{"list", rows}}}};
  const Json document = {{"version", 1},
                         {"title", "$(touch canary)"},
                         {"model", {{"Box", model}}},
                         {"solver", solver},
                         {"study", study}};
  return document.dump(1) + "\n";
}

Box makeBox(const Product &product, const std::string &name, const std::vector<std::string> &command) {
  const std::string folder = product.work().makeFolder(name) + "/" + kFolder;
  fs::create_directory(folder);
  Box box(product, folder);
  box.keepBeside(product.work().path() + "/" + name + ".");
  box.script("");
  writeFile(box.path("in put.txt.template"), "note={{Box.note}}\nx={{Box.x}}\nend\n");
  writeFile(box.path("box.study.json"), studyText(command));
  return box;
}

// Where somebody has carried out what is a value.
std::string canaryBelow(const std::string &folder) {
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().filename() == "canary") {
      return "a value was carried out: " + entry.path().string() + " is there";
    }
  }
  return "";
}

std::string problemOfRow(const Box &box, std::size_t number, const std::string &text) {
  const Call byNumber = box.call({"folder", "box.optstudy", std::to_string(number)});
  const Call byName = box.call({"folder", "box.optstudy", "--", text});
  if (byNumber.exitCode() != 0 || byNumber.output.empty()) {
    return "the row has no folder: " + byNumber.unless(0);
  }
  if (byName.output != byNumber.output) {
    return "it is not found by its name: " + byName.messages;
  }
  const fs::path run = fs::path(box.folder()) / byNumber.output.substr(0, byNumber.output.size() - 1);
  const std::string nul(1, '\0');
  const std::string arguments = readFile((run / "arguments.bin").string());
  if (arguments != "1" + nul + text + nul) {
    return "its arguments were \"" + arguments + "\"";
  }
  const std::string rendered = readFile((run / "in put.txt").string());
  return rendered == "note=" + text + "\nx=1\nend\n" ? "" : "its input file was \"" + rendered + "\"";
}

// What is exported and imported again is the same, under the same names.
std::string problemOfExchange(const Box &box, const std::string &ending) {
  const std::vector<std::string> exporting{"export", "box.optstudy", "--format", ending};
  const Call first = box.call(exporting);
  const std::string file = box.path("exported." + ending);
  writeFile(file, first.output);
  const Call importing = box.call({"import", "box.optstudy", file});
  const Call second = box.call(exporting);
  std::string problem = first.unless(0) + importing.unless(0) + second.unless(0);
  if (!problem.empty()) {
    return problem;
  }
  const std::string wanted = std::to_string(hostileTexts().size() + 1) + " as they were";
  return importing.messages.find(wanted) == std::string::npos ? importing.messages
                                                              : difference(first.output, second.output);
}

std::string problemOfNames(const Box &box) {
  const Call show = box.call({"show", "box.optstudy", "--format", "json"});
  const Json document = Json::parse(show.output, nullptr, false);
  if (document.is_discarded() || !document.contains("rows") ||
      document["rows"].size() != hostileTexts().size() + 1) {
    return "it is no JSON of all rows: " + show.output;
  }
  for (std::size_t number = 0; number < hostileTexts().size(); ++number) {
    const Json &row = document["rows"].at(number + 1);
    if (row.value("name", "") != hostileTexts()[number]) {
      return "row " + std::to_string(number + 1) + " is called " + row.value("name", "");
    }
  }
  return "";
}

} // namespace

Outcome runHostileSuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  const Box box = makeBox(product, "hostile", {"scripted_solver", "{{Box.x}}", "{{Box.note}}"});
  Report report("hostile");
  const Call run = box.call({"run", "box.study.json"});
  report.add("run", run.unless(0));
  for (std::size_t number = 0; number < hostileTexts().size(); ++number) {
    report.add("\"" + hostileTexts()[number] + "\"", problemOfRow(box, number + 1, hostileTexts()[number]));
  }
  report.add("names", problemOfNames(box));
  report.add("CSV", problemOfExchange(box, "csv"));
  report.add("JSON", problemOfExchange(box, "json"));
  report.add("commands in values", canaryBelow(work.path()));
  // A solver that gives its argument to a shell is its own business, and what this suite has to notice.
  const WorkFolder other;
  const Product careless(other, options);
  const Box shell = makeBox(careless, "shell", {"sh", "-c", "{{Box.note}}"});
  Report control("hostile control, through a shell");
  std::cout << "What the control finds is meant to be found:\n";
  shell.call({"run", "box.study.json", "--keep-going"});
  control.add("commands in values", canaryBelow(other.path()));
  report.close();
  control.close();
  return report.violations() == 0 && control.violations() == 1 ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
