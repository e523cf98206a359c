#include "ExpressionBuilder/tests/property/TokenText.h"

#include <cctype>
#include <iterator>
#include <utility>

namespace LanguageOracle {
namespace {

bool isNameByte(char byte) {
  return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_' || byte == '-';
}

// "pi" and "-" side by side would be one name, two numbers one number.
bool wouldGrowTogether(const std::string &before, const std::string &after) {
  const bool isWordOrNumber = std::isalnum(static_cast<unsigned char>(before.back())) != 0;
  return isWordOrNumber && !after.empty() && (isNameByte(after.front()) || after.front() == '.');
}

Token anyToken(RandomChoice &random) {
  static const std::vector<std::string> kTexts = {
      "+",  "-",  "*",    "/",     "==",   "!=",          ">=",     ">",       "<=",   "<",     "&&",
      "||", "!",  "(",    ")",     ",",    "?",           ":",      "1",       "2.5",  "\"a\"", "%d0%",
      "pi", "e",  "%s",   "(int)", "sin(", "(long long)", "( int)", "(float)", "mod(", "=",     "&",
      "|",  "Pi", "true", "\"",    "%",    "nofunction(", "()",     "sin ("};
  return {random.of(kTexts), false};
}

} // namespace

void append(Tokens &tokens, Tokens more) {
  tokens.insert(tokens.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

void spoilTokens(Tokens &tokens, RandomChoice &random) {
  const std::size_t place = random.below(tokens.size());
  const auto position = tokens.begin() + static_cast<std::ptrdiff_t>(place);
  switch (random.below(5)) {
  case 0:
    tokens.erase(position);
    break;
  case 1:
    tokens.insert(position, Token(*position));
    break;
  case 2:
    std::swap(*position, tokens[(place + 1) % tokens.size()]);
    break;
  case 3:
    *position = anyToken(random);
    break;
  default:
    tokens.insert(position, anyToken(random));
    break;
  }
}

Tokens anyTokens(RandomChoice &random) {
  Tokens tokens(1 + random.below(9));
  for (Token &token : tokens) {
    token = anyToken(random);
  }
  return tokens;
}

std::string joined(const Tokens &tokens, RandomChoice &random) {
  std::string text;
  for (const Token &token : tokens) {
    const bool needsBlank = !text.empty() && wouldGrowTogether(text, token.text) && !random.chance(2);
    if (!token.isAttached && (needsBlank || random.chance(30))) {
      text.append(1 + random.below(3), ' ');
    }
    text += token.text;
  }
  if (random.chance(20)) {
    text.append(1 + random.below(3), ' ');
  }
  return text;
}

void spoilText(std::string &text, RandomChoice &random) {
  using namespace std::string_literals;
  static const std::string kBytes = "\t\n@#=&|~[]{}\\:?,()%\"!.;'$^`<>\0\x80\xff\x7f-+e5"s;
  text.insert(random.below(text.size() + 1), 1, kBytes[random.below(kBytes.size())]);
}

} // namespace LanguageOracle
