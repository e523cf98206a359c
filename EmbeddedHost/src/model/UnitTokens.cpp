#include "EmbeddedHost/src/model/UnitTokens.h"

#include "EmbeddedHost/src/model/NumberText.h"

#include <utility>

namespace EmbeddedHost {

namespace {

using Kind = UnitToken::Kind;

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isSign(char character) {
  return character == '+' || character == '-';
}

bool isNameCharacter(char character) {
  constexpr std::string_view kOthers = " \t./*()^-+0123456789";
  return kOthers.find(character) == std::string_view::npos;
}

// Characters that mean the same as plain ones; those of the database's own are left.
std::string plainCharacters(std::string_view text) {
  constexpr std::pair<std::string_view, std::string_view> kCharacters[] = {
      {"\u2070", "0"},      {"\u00b9", "1"},      {"\u00b2", "2"},      {"\u00b3", "3"},
      {"\u2074", "4"},      {"\u2075", "5"},      {"\u2076", "6"},      {"\u2077", "7"},
      {"\u2078", "8"},      {"\u2079", "9"},      {"\u207b", "-"},      {"\u207a", "+"},
      {"\u2212", "-"},      {"\u00b7", "."},      {"\u22c5", "."},      {"\u2219", "."},
      {"\u2022", "."},      {"\u00d7", "."},      {"\u00f7", "/"},      {"\u2215", "/"},
      {"\u2044", "/"},      {"\u00a0", " "},      {"\u2009", " "},      {"\u202f", " "},
      {"\u03bc", "\u00b5"}, {"\u2126", "\u03a9"}, {"\u00ba", "\u00b0"}, {"\u02da", "\u00b0"},
      {"\u2103", "degC"},   {"\u2109", "degF"},   {"**", "^"},          {"\t", " "}};
  std::string plain(text);
  for (const auto &[written, read] : kCharacters) {
    for (std::size_t at = plain.find(written); at != std::string::npos;
         at = plain.find(written, at + read.size())) {
      plain.replace(at, written.size(), read);
    }
  }
  const std::string_view inside = trimmed(plain);
  const bool isBoxed = inside.size() > 2 && inside.front() == '[' && inside.back() == ']';
  return std::string(isBoxed ? trimmed(inside.substr(1, inside.size() - 2)) : inside);
}

class Cutter {
public:
  explicit Cutter(std::string text) { m_result.text = std::move(text); }

  UnitTokens cut();

private:
  const std::string &text() const { return m_result.text; }
  char at(std::size_t position) const { return position < text().size() ? text()[position] : '\0'; }
  bool followsFactor() const;
  void add(Kind kind, std::size_t end);
  void addFactor(Kind kind, std::size_t end);
  std::size_t endOfNumber() const;
  std::size_t endOfName() const;
  bool readExponent();

  UnitTokens m_result;
  std::size_t m_at = 0;
  bool m_isAfterBlank = false;
};

bool Cutter::followsFactor() const {
  if (m_result.tokens.empty()) {
    return false;
  }
  const Kind kind = m_result.tokens.back().kind;
  return kind == Kind::Name || kind == Kind::Number || kind == Kind::Close;
}

void Cutter::add(Kind kind, std::size_t end) {
  UnitToken token;
  token.kind = kind;
  token.begin = m_at;
  token.end = end;
  token.text = text().substr(m_at, end - m_at);
  m_result.tokens.push_back(std::move(token));
  m_at = end;
}

void Cutter::addFactor(Kind kind, std::size_t end) {
  if (followsFactor()) {
    UnitToken product;
    product.kind = Kind::Multiply;
    product.begin = product.end = m_at;
    product.isBlank = m_isAfterBlank;
    m_result.tokens.push_back(std::move(product));
  }
  add(kind, end);
}

std::size_t Cutter::endOfNumber() const {
  std::size_t end = m_at + (isSign(at(m_at)) ? 1U : 0U);
  while (isDigit(at(end)) || (at(end) == '.' && isDigit(at(end + 1)))) {
    ++end;
  }
  if (at(end) == 'e' || at(end) == 'E') {
    std::size_t power = end + 1 + (isSign(at(end + 1)) ? 1U : 0U);
    if (isDigit(at(power))) {
      while (isDigit(at(power))) {
        ++power;
      }
      return power;
    }
  }
  return end;
}

// Digits are powers, but in names of the database such as "perm_0C" and "H2O".
std::size_t Cutter::endOfName() const {
  std::size_t end = m_at;
  bool hasUnderscore = false;
  while (end < text().size()) {
    const bool isWater = (at(end) == '2') && (at(end + 1) == 'O' || at(end + 1) == 'o') && end > m_at &&
                         (at(end - 1) == 'H' || at(end - 1) == 'h');
    hasUnderscore = hasUnderscore || at(end) == '_';
    if (!isNameCharacter(at(end)) && !isWater && !(hasUnderscore && isDigit(at(end)))) {
      break;
    }
    ++end;
  }
  return end;
}

// The power directly behind a factor, as in "m2", "m-2" and "m^-2".
bool Cutter::readExponent() {
  if (!followsFactor() || m_isAfterBlank) {
    return false;
  }
  UnitToken &factor = m_result.tokens.back();
  const bool hasHat = at(m_at) == '^';
  // "10-3" is a power of ten.
  if (factor.kind == Kind::Number && !hasHat && at(m_at) != '-') {
    return false;
  }
  std::size_t begin = m_at + (hasHat ? 1U : 0U);
  const bool hasSign = isSign(at(begin));
  std::size_t end = begin + (hasSign ? 1U : 0U);
  if (!factor.exponent.empty() || !isDigit(at(end))) {
    return false;
  }
  while (isDigit(at(end))) {
    ++end;
  }
  m_result.hasBrokenPower = m_result.hasBrokenPower || (at(end) == '.' && isDigit(at(end + 1))) ||
                            (hasHat && at(end) == '/' && isDigit(at(end + 1)));
  begin += at(begin) == '+' ? 1U : 0U;
  factor.exponent = text().substr(begin, end - begin);
  factor.end = m_at = end;
  return true;
}

UnitTokens Cutter::cut() {
  while (m_at < text().size()) {
    const char character = at(m_at);
    if (character == ' ') {
      m_isAfterBlank = true;
      ++m_at;
      continue;
    }
    const bool isNumber = isDigit(character) ||
                          (character == '.' && isDigit(at(m_at + 1)) && !followsFactor()) ||
                          (isSign(character) && isDigit(at(m_at + 1)) && !followsFactor());
    if (readExponent()) {
      // Taken by the factor before it.
    } else if (isNumber) {
      addFactor(Kind::Number, endOfNumber());
    } else if (character == '/') {
      add(Kind::Divide, m_at + 1);
    } else if (character == '(') {
      addFactor(Kind::Open, m_at + 1);
    } else if (character == ')') {
      add(Kind::Close, m_at + 1);
    } else if (character == '^' || character == '+') {
      // At a place where it means nothing: a name that no database has.
      addFactor(Kind::Name, m_at + 1);
    } else if (character == '.' || character == '*' || character == '-') {
      add(Kind::Multiply, m_at + 1);
    } else {
      const std::size_t end = endOfName();
      if (text().substr(m_at, end - m_at) == "per" && followsFactor()) {
        add(Kind::Divide, end);
      } else {
        addFactor(Kind::Name, end);
      }
    }
    m_isAfterBlank = false;
  }
  return std::move(m_result);
}

// "K @ 273.15", "s since 1970-01-01" and "lg(re 1 mW)" are notations that nobody writes by mistake.
bool isShifted(std::string_view text) {
  for (const std::string_view sign : {"@", " since ", " after ", " from ", " ref ", "(re "}) {
    if (text.find(sign) != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

} // namespace

UnitTokens tokensOfUnit(std::string_view written) {
  std::string text = plainCharacters(written);
  if (isShifted(text)) {
    UnitTokens whole;
    whole.text = std::move(text);
    whole.isShifted = true;
    return whole;
  }
  return Cutter(std::move(text)).cut();
}

} // namespace EmbeddedHost
