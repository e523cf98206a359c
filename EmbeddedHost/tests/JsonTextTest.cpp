#include "EmbeddedHost/JsonText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <random>

namespace EmbeddedHost {
namespace {

// Writes down what it receives, with places.
class Recorder final : public JsonHandler {
public:
  void beginObject(TextPlace place) override { add("{", place); }
  void endObject() override { m_text += "} "; }
  void beginArray(TextPlace place) override { add("[", place); }
  void endArray() override { m_text += "] "; }
  void key(std::string name, TextPlace place) override { add(name + "=", place); }
  void value(JsonKind kind, std::string text, TextPlace place) override {
    const char *const kinds[] = {"null ", "truth ", "number ", "text "};
    add(kinds[static_cast<int>(kind)] + text, place);
  }
  std::string m_text;

private:
  void add(const std::string &what, TextPlace place) {
    m_text += what + "@" + std::to_string(place.line) + ":" + std::to_string(place.column) + " ";
  }
};

std::string problemOf(const std::string &text) {
  Recorder recorder;
  JsonProblem problem;
  if (parseJson(text, recorder, problem)) {
    return "";
  }
  return std::to_string(problem.place.line) + ":" + std::to_string(problem.place.column) + ": " +
         problem.message;
}

// The judgement of another parser; none when it stops at a number that is too large for it, which is no question of
// grammar.
std::optional<bool> isJsonForAnother(const std::string &text) {
  try {
    return !nlohmann::json::parse(text).is_discarded();
  } catch (const nlohmann::json::out_of_range &) {
    return std::nullopt;
  } catch (const nlohmann::json::parse_error &) {
    return false;
  }
}

TEST(JsonTextTest, Parts_ArriveInOrderWithTheirPlaces) {
  Recorder recorder;
  JsonProblem problem;
  ASSERT_TRUE(parseJson("{\"a\": [1, -2.50e+3,\n true, null], \"a\":\t{\"\": \"x\"}, \"e\": []}\r\n",
                        recorder, problem));
  EXPECT_EQ(recorder.m_text,
            "{@1:1 a=@1:2 [@1:7 number 1@1:8 number -2.50e+3@1:11 truth true@2:2 null null@2:8 ] "
            "a=@2:15 {@2:20 =@2:21 text x@2:25 } e=@2:31 [@2:36 ] } ");
}

TEST(JsonTextTest, Escapes_AreUndone) {
  Recorder recorder;
  JsonProblem problem;
  ASSERT_TRUE(parseJson(R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\ud83d\ude00")", recorder, problem));
  EXPECT_EQ(recorder.m_text, "text \"\\/\b\f\n\r\tA\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80@1:1 ");
}

TEST(JsonTextTest, Mistakes_AreReportedWithTheirPlace) {
  const struct {
    const char *text;
    const char *problem;
  } rows[] = {
      {"", "1:1: the text ends too early"},
      {"{\"a\": 1", "1:8: the text ends too early"},
      {"[1,\n2", "2:2: the text ends too early"},
      {"\"abc", "1:5: the text ends too early"},
      {"[1,]", "1:4: a value is expected here"},
      {"{\"a\": 1,}", "1:9: a name in double quotes is expected here"},
      {"{a: 1}", "1:2: a name in double quotes is expected here"},
      {"{\"a\" 1}", "1:6: \":\" is expected here"},
      {"{\"a\": 1 \"b\": 2}", "1:9: \",\" or \"}\" is expected here"},
      {"[1 2]", "1:4: \",\" or \"]\" is expected here"},
      {"[010]", "1:3: a number does not begin with 0"},
      {"[1.]", "1:4: a digit is expected here"},
      {"[-]", "1:3: a digit is expected here"},
      {"nothing", "1:1: a value is expected here; a text stands in double quotes"},
      {"'a'", "1:1: a value is expected here"},
      {"1 2", "1:3: nothing may follow the end of the JSON text"},
      {"\"a\nb\"",
       "1:3: a line feed or another control character in a text is written as an escape, such as \\n"},
      {R"("\x")", "1:3: this is no escape that JSON knows"},
      {R"("\u12g4")", "1:6: \\u is followed by four hexadecimal digits"},
      {R"("\ud800")", "1:8: half a character: this escape needs a second one beside it"},
      {R"("\udc00")", "1:8: half a character: this escape needs a second one beside it"}};
  for (const auto &row : rows) {
    EXPECT_EQ(problemOf(row.text), row.problem) << row.text;
  }
}

TEST(JsonTextTest, Nesting_EndsAtItsLimit) {
  EXPECT_EQ(problemOf(std::string(kDeepestJson, '[') + std::string(kDeepestJson, ']')), "");
  EXPECT_EQ(problemOf(std::string(kDeepestJson + 1, '[')), "1:1001: more than 1000 levels of nesting");
}

// Another parser is the judge of what is JSON.
TEST(JsonTextTest, MutatedTexts_AreJudgedAsByAnotherParser) {
  const std::string seeds[] = {
      R"({"a": [1, -2.5e3, true, null], "b": {"c": "x\n\u00e9\ud83d\ude00"}, "d": "", "e": [], "f": {}})",
      "[0, -0, 0.5, 1E5, 12e-3]", "\"text\"", "  7\n"};
  const std::string letters = "{}[]:,\"\\ \n\t0123456789.eE+-truefalsn/bud8";
  std::mt19937 random(1);
  std::size_t accepted = 0;
  std::size_t unjudged = 0;
  constexpr std::size_t kTrials = 20000;
  for (std::size_t trial = 0; trial < kTrials; ++trial) {
    std::string text = seeds[random() % 4];
    for (std::size_t change = random() % 3; change-- > 0 && !text.empty();) {
      const std::size_t at = random() % text.size();
      const char letter = letters[random() % letters.size()];
      switch (random() % 3) {
      case 0:
        text[at] = letter;
        break;
      case 1:
        text.insert(at, 1, letter);
        break;
      default:
        text.erase(at, 1 + random() % 3);
      }
    }
    const std::optional<bool> isJson = isJsonForAnother(text);
    if (!isJson) {
      ++unjudged;
      continue;
    }
    const std::string problem = problemOf(text);
    ASSERT_EQ(problem.empty(), *isJson) << text << "\n" << problem;
    accepted += *isJson ? 1 : 0;
  }
  EXPECT_LT(unjudged, kTrials / 100);
  EXPECT_GT(accepted, kTrials / 10);
  EXPECT_LT(accepted, kTrials * 9 / 10);
}

} // namespace
} // namespace EmbeddedHost
