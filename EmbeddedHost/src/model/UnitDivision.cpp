#include "EmbeddedHost/src/model/UnitDivision.h"

#include "EmbeddedHost/src/model/UnitSpellings.h"

#include <utility>

namespace EmbeddedHost {

namespace {

using Kind = UnitToken::Kind;
using Words = std::vector<std::string>;

// What stands for a token in a proposal, which has to work: of an ambiguous one its likeliest reading.
std::string proposal(const UnitToken &token) {
  if (token.row == nullptr || !isAmbiguous(*token.row)) {
    return token.text + token.exponent;
  }
  const std::string reading = readingsOf(*token.row).front();
  const bool isProduct = reading.find_first_of("./ ") != std::string::npos;
  return (isProduct ? "(" + reading + ")" : reading) + token.exponent;
}

std::string product(const Words &factors) {
  std::string text;
  for (const std::string &factor : factors) {
    text += (text.empty() ? "" : ".") + factor;
  }
  return text;
}

std::string below(const Words &factors) {
  return factors.size() == 1 ? "/" + factors.front() : "/(" + product(factors) + ")";
}

// The factors between two brackets, or of the whole.
struct Group {
  Words above;
  Words first;           // directly behind a line
  Words further;         // after them, without a line
  std::size_t begin = 0; // where the group stands in the text
  std::size_t end = 0;
  bool isBelowLine = false;
  bool isBehindLine = false;

  void add(const std::string &factor) {
    (!isBelowLine ? above : isBehindLine ? first : further).push_back(factor);
    isBehindLine = false;
  }
};

Words readings(const std::string &text, const Group &group) {
  Words all = group.first;
  all.insert(all.end(), group.further.begin(), group.further.end());
  Words raised = group.above == Words{"1"} ? Words() : group.above;
  raised.insert(raised.end(), group.further.begin(), group.further.end());
  const std::string before = text.substr(0, group.begin);
  const std::string after = text.substr(group.end);
  return {before + product(group.above) + below(all) + after,
          before + product(raised) + below(group.first) + after};
}

} // namespace

std::vector<std::string> readingsOfDivision(const std::string &text, const std::vector<UnitToken> &tokens) {
  std::vector<Group> groups(1);
  groups.front().end = text.size();
  for (const UnitToken &token : tokens) {
    switch (token.kind) {
    case Kind::Divide:
      groups.back().isBelowLine = groups.back().isBehindLine = true;
      break;
    case Kind::Multiply:
      break;
    case Kind::Open:
      groups.emplace_back();
      groups.back().begin = token.end;
      break;
    case Kind::Close: {
      if (groups.size() == 1) {
        break;
      }
      Group group = std::move(groups.back());
      groups.pop_back();
      group.end = text.rfind(')', token.end - 1);
      if (!group.further.empty()) {
        return readings(text, group);
      }
      groups.back().add(text.substr(group.begin - 1, token.end - group.begin + 1));
      break;
    }
    case Kind::Number:
    case Kind::Name:
      groups.back().add(proposal(token));
      break;
    }
  }
  // Brackets that do not close are the database's to refuse.
  return groups.size() > 1 || groups.front().further.empty() ? Words() : readings(text, groups.front());
}

} // namespace EmbeddedHost
