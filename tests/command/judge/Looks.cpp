#include "tests/command/judge/Looks.h"

namespace CommandTests {

namespace {

constexpr int kHeld = 6;

} // namespace

std::string joined(const Words &words) {
  std::string text;
  for (const std::string &word : words) {
    text.append(text.empty() ? "" : " ").append(word);
  }
  return text;
}

const std::vector<Look> &looks() {
  static const std::vector<Look> all{
      {{"show", "box.optstudy"}, "Variant 1"},
      {{"show", "box.optstudy", "--format", "csv"}, "1,Variant 1,ok,,1,11,2,13"},
      {{"best", "box.optstudy"}, "Best: row "},
      {{"status", "box.optstudy"}, " ok"},
      {{"versions", "box.optstudy"}, "Variant 1"},
      {{"log", "box.optstudy", "1"}, "product = 2"},
      {{"folder", "box.optstudy", "1"}, "/run"},
      {{"export", "box.optstudy"}, "1,Variant 1,ok,,1,11,2,13"},
      {{"cost", "box.optstudy"}, "%Box.sum% + %Box.product%"},
      {{"target", "box.optstudy"}, "maximise"},
      {{"group", "list", "box.optstudy"}, "Box.x"}};
  return all;
}

const std::vector<Words> &changes() {
  static const std::vector<Words> all{{"run", "box.study.yaml"},
                                      {"solve", "box.optstudy"},
                                      {"extract", "box.optstudy"},
                                      {"cost", "box.optstudy", "%Box.sum%"},
                                      {"target", "box.optstudy", "none"},
                                      {"add", "box.optstudy", "Box.x=77"},
                                      {"set", "box.optstudy", "1", "Box.x=7"},
                                      {"rename", "box.optstudy", "1", "other"},
                                      {"remove", "box.optstudy", "1"},
                                      {"input", "set", "box.optstudy", "Box.x", "--maximum", "9"},
                                      {"output", "remove", "box.optstudy", "Box.sum"},
                                      {"group", "rename", "box.optstudy", "Box.x", "other"},
                                      {"group", "move", "box.optstudy", "Box.product", "0"},
                                      {"begin", "box.optstudy"},
                                      {"end", "box.optstudy", "--yes"}};
  return all;
}

std::string problemOfLook(const Box &box, const Look &look) {
  const Call call = box.call(look.words);
  std::string problem = call.unless(0);
  if (!problem.empty()) {
    return problem;
  }
  return call.output.find(look.prints) != std::string::npos
             ? ""
             : "it does not print \"" + look.prints + "\": " + call.output;
}

std::string problemOfRefusal(const Box &box, const Words &words, const std::string &why) {
  const Call call = box.call(words);
  std::string problem = call.unless(kHeld);
  if (!problem.empty()) {
    return problem;
  }
  return call.messages.find(why) != std::string::npos ? ""
                                                      : "it does not say \"" + why + "\": " + call.messages;
}

} // namespace CommandTests
