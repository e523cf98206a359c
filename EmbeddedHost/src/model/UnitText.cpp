#include "EmbeddedHost/src/model/UnitText.h"

#include "EmbeddedHost/src/model/UnitDivision.h"
#include "EmbeddedHost/src/model/UnitSpellings.h"
#include "EmbeddedHost/src/model/UnitTokens.h"

#include <vector>

namespace EmbeddedHost {

namespace {

using Kind = UnitToken::Kind;

bool hasAny(std::string_view text, std::string_view characters) {
  return text.find_first_of(characters) != std::string_view::npos;
}

// A unit on its way from what was written to what is read.
class Reader {
public:
  Reader(std::string_view written, UnitTokens tokens)
      : m_written(written), m_text(std::move(tokens.text)), m_tokens(std::move(tokens.tokens)) {}

  UnitText read();

private:
  std::string inPlace(std::size_t begin, std::size_t end, const std::string &spelling) const;
  std::string enclosed(const std::string &spelling) const;
  std::string enclosedAt(const UnitToken &token, const std::string &spelling) const;
  void joinWords();
  void findRows();
  void splitProducts();
  void findPlaces();
  bool isRefused();
  bool hasSeveralReadings();
  bool hasProductAfterDivision();
  bool hasRemark();
  bool refuseAsAmbiguous(const std::vector<std::string> &readings);
  std::string spelled() const;

  std::string_view m_written;
  std::string m_text;
  std::vector<UnitToken> m_tokens;
  bool m_isCompound = false;
  std::string m_problem;
};

std::string Reader::enclosed(const std::string &spelling) const {
  return m_isCompound && hasAny(spelling, "./ ") ? "(" + spelling + ")" : spelling;
}

std::string Reader::enclosedAt(const UnitToken &token, const std::string &spelling) const {
  const bool hasBrackets = token.begin > 0 && m_text[token.begin - 1] == '(' && token.end < m_text.size() &&
                           m_text[token.end] == ')';
  return hasBrackets ? spelling : enclosed(spelling);
}

std::string Reader::inPlace(std::size_t begin, std::size_t end, const std::string &spelling) const {
  return m_text.substr(0, begin) + spelling + m_text.substr(end);
}

bool Reader::refuseAsAmbiguous(const std::vector<std::string> &readings) {
  m_problem = "The unit \"" + std::string(m_written) + "\" is ambiguous: ";
  for (std::size_t index = 0; index < readings.size(); ++index) {
    m_problem += (index == 0 ? "" : " or ") + readings[index];
  }
  m_problem += "; write the one that is meant.";
  return true;
}

// Two words that the table knows together, such as "deg C", are one.
void Reader::joinWords() {
  for (std::size_t first = 0; first + 2 < m_tokens.size(); ++first) {
    UnitToken &token = m_tokens[first];
    const UnitToken &last = m_tokens[first + 2];
    if (token.kind != Kind::Name || !token.exponent.empty() || m_tokens[first + 1].kind != Kind::Multiply ||
        last.kind != Kind::Name) {
      continue;
    }
    const UnitSpellingRow *row = UnitSpellings::find(token.text + " " + last.text);
    // The power of the second word is one of both only where both are one unit, as in "sq in".
    if (row == nullptr || (!last.exponent.empty() && row->treatment != UnitTreatment::Means)) {
      continue;
    }
    token.text += " " + last.text;
    token.exponent = last.exponent;
    token.end = last.end;
    m_tokens.erase(m_tokens.begin() + static_cast<std::ptrdiff_t>(first) + 1,
                   m_tokens.begin() + static_cast<std::ptrdiff_t>(first) + 3);
  }
}

void Reader::findRows() {
  for (UnitToken &token : m_tokens) {
    if (token.kind != Kind::Name) {
      continue;
    }
    token.row = UnitSpellings::find(token.text + token.exponent);
    if (token.row != nullptr && !token.exponent.empty()) {
      token.text += token.exponent;
      token.exponent.clear();
    } else if (token.row == nullptr) {
      token.row = UnitSpellings::find(token.text);
    }
  }
}

void Reader::splitProducts() {
  std::vector<UnitToken> split;
  for (UnitToken &token : m_tokens) {
    if (token.row == nullptr || token.row->treatment != UnitTreatment::Product) {
      split.push_back(std::move(token));
      continue;
    }
    std::vector<UnitToken> factors = tokensOfUnit(token.row->meant).tokens;
    factors.back().exponent += token.exponent;
    for (UnitToken &factor : factors) {
      factor.begin = token.begin;
      factor.end = token.end;
      split.push_back(std::move(factor));
    }
  }
  m_tokens = std::move(split);
}

// Which names stand below a line, and whether there is more than one.
void Reader::findPlaces() {
  std::vector<bool> outer;
  bool isBelow = false;
  std::size_t names = 0;
  for (UnitToken &token : m_tokens) {
    switch (token.kind) {
    case Kind::Divide:
      isBelow = true;
      m_isCompound = true;
      break;
    case Kind::Open:
      outer.push_back(isBelow);
      break;
    case Kind::Close:
      if (!outer.empty()) {
        isBelow = outer.back();
        outer.pop_back();
      }
      break;
    case Kind::Name:
      token.isBelowLine = isBelow || token.exponent.substr(0, 1) == "-";
      m_isCompound = m_isCompound || ++names > 1 || token.isBelowLine;
      break;
    case Kind::Number:
    case Kind::Multiply:
      break;
    }
  }
}

bool Reader::isRefused() {
  for (const UnitToken &token : m_tokens) {
    if (token.row != nullptr && token.row->treatment == UnitTreatment::Refused) {
      m_problem =
          "The unit \"" + std::string(m_written) + "\" is refused: " + std::string(token.row->why) +
          (token.row->meant.empty()
               ? "."
               : "; write " +
                     inPlace(token.begin, token.end, enclosedAt(token, std::string(token.row->meant))) + ".");
      return true;
    }
  }
  return false;
}

bool Reader::hasSeveralReadings() {
  for (const UnitToken &token : m_tokens) {
    if (token.row == nullptr) {
      continue;
    }
    const UnitTreatment treatment = token.row->treatment;
    std::vector<std::string> readings;
    if (treatment == UnitTreatment::Ambiguous ||
        (treatment == UnitTreatment::AmbiguousInCompound && m_isCompound) ||
        (treatment == UnitTreatment::AmbiguousBelowLine && token.isBelowLine)) {
      for (const std::string &reading : readingsOf(*token.row)) {
        const bool staysTogether = token.exponent.empty() || !hasAny(reading, "./ 0123456789");
        const std::string whole = staysTogether ? enclosedAt(token, reading) : "(" + reading + ")";
        readings.push_back(inPlace(token.begin, token.end, whole + token.exponent));
      }
    } else if (treatment == UnitTreatment::Means && hasAny(token.row->meant, ".") &&
               !token.exponent.empty() && token.exponent != "1" && token.exponent != "-1") {
      // The power of "Nm2" may be one of the metre alone.
      const std::string meant(token.row->meant);
      readings.push_back(inPlace(token.begin, token.end, "(" + meant + ")" + token.exponent));
      readings.push_back(inPlace(token.begin, token.end, enclosedAt(token, meant + token.exponent)));
    }
    if (!readings.empty()) {
      return refuseAsAmbiguous(readings);
    }
  }
  return false;
}

bool Reader::hasProductAfterDivision() {
  const std::vector<std::string> readings = readingsOfDivision(m_text, m_tokens);
  return !readings.empty() && refuseAsAmbiguous(readings);
}

// "K (kelvin)" would be a product.
bool Reader::hasRemark() {
  for (std::size_t index = 1; index + 1 < m_tokens.size(); ++index) {
    const UnitToken &blank = m_tokens[index];
    if (blank.kind == Kind::Multiply && blank.isBlank && m_tokens[index + 1].kind == Kind::Open &&
        m_tokens[index - 1].kind == Kind::Name) {
      const std::string factor = m_text.substr(0, m_tokens[index - 1].end);
      return refuseAsAmbiguous({factor, factor + "." + m_text.substr(m_tokens[index + 1].begin)});
    }
  }
  return false;
}

std::string Reader::spelled() const {
  std::string text;
  for (const UnitToken &token : m_tokens) {
    switch (token.kind) {
    case Kind::Divide:
      text += "/";
      break;
    case Kind::Multiply:
      // A full stop beside a number would be one of its own.
      text += " ";
      break;
    case Kind::Open:
      text += "(";
      break;
    case Kind::Name:
      if (token.row != nullptr && token.row->treatment == UnitTreatment::Means) {
        const std::string meant(token.row->meant);
        text += token.exponent.empty() && !m_isCompound ? meant : "(" + meant + ")";
        break;
      }
      [[fallthrough]];
    case Kind::Number:
    case Kind::Close:
      text += token.text;
      break;
    }
    text += token.exponent.empty() ? "" : "^" + token.exponent;
  }
  return text;
}

UnitText Reader::read() {
  joinWords();
  findRows();
  splitProducts();
  findPlaces();
  if (isRefused() || hasProductAfterDivision() || hasSeveralReadings() || hasRemark()) {
    return {"", m_problem};
  }
  return {spelled(), ""};
}

// A text that the table knows as a whole; the signs of its products and powers do not matter.
const UnitSpellingRow *rowOfWhole(std::string_view written, const std::vector<UnitToken> &tokens) {
  std::string whole;
  for (const UnitToken &token : tokens) {
    whole += token.kind == Kind::Divide     ? "/"
             : token.kind == Kind::Multiply ? "."
                                            : token.text + token.exponent;
  }
  const UnitSpellingRow *row = UnitSpellings::find(written);
  return row != nullptr ? row : UnitSpellings::find(whole);
}

} // namespace

UnitText readUnitText(std::string_view written) {
  constexpr std::size_t kLongest = 200;
  if (written.size() > kLongest || written.find('\0') != std::string_view::npos) {
    return {"", "The unit \"" + std::string(written.substr(0, 40)) + "\" is too long or holds a zero byte."};
  }
  UnitTokens tokens = tokensOfUnit(written);
  if (tokens.text.empty()) {
    return {"", "The unit is empty."};
  }
  if (tokens.isShifted) {
    return {std::string(written), ""};
  }
  if (tokens.hasBrokenPower) {
    return {"", "The unit \"" + std::string(written) +
                    "\" is refused: powers are whole numbers; declare the square of the value."};
  }
  if (const UnitSpellingRow *row = rowOfWhole(tokens.text, tokens.tokens)) {
    UnitToken whole;
    whole.text = tokens.text;
    whole.end = tokens.text.size();
    whole.row = row;
    tokens.tokens = {whole};
  }
  return Reader(written, std::move(tokens)).read();
}

} // namespace EmbeddedHost
