#include "EmbeddedHost/src/model/UnitSpelling.h"

namespace EmbeddedHost {

namespace {

struct Respelling {
  std::string_view written;
  std::string_view read;
};

// Symbols that stand alone between operators.
constexpr Respelling kSymbols[] = {
    {"Wh", "W.h"},     {"kWh", "kW.h"},   {"MWh", "MW.h"},     {"GWh", "GW.h"},     {"Ws", "W.s"},
    {"kWs", "kW.s"},   {"Nm", "N.m"},     {"kNm", "kN.m"},     {"MNm", "MN.m"},     {"mNm", "mN.m"},
    {"Nmm", "N.mm"},   {"Ncm", "N.cm"},   {"Ns", "N.s"},       {"Ah", "A.h"},       {"mAh", "mA.h"},
    {"As", "A.s"},     {"Vs", "V.s"},     {"Pas", "Pa.s"},     {"mPas", "mPa.s"},   {"VA", "V.A"},
    {"kVA", "kV.A"},   {"MVA", "MV.A"},   {"RPM", "rpm"},      {"rev", "turn"},     {"revs", "turn"},
    {"deg", "degree"}, {"Ohm", "ohm"},    {"kOhm", "kohm"},    {"MOhm", "Mohm"},    {"mOhm", "mohm"},
    {"sec", "s"},      {"hr", "h"},       {"mins", "min"},     {"hrs", "h"},        {"degs", "degree"},
    {"psi", "psi"},    {"\u03a9", "ohm"}, {"k\u03a9", "kohm"}, {"M\u03a9", "Mohm"},
};

struct Refusal {
  std::string_view written;
  std::string_view why;
};

constexpr Refusal kRefusals[] = {
    {"EUR",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"USD",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"GBP",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"CHF",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"JPY",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"\u20ac",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"$", "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"\u00a3",
     "a currency is no unit of measurement; declare a plain number and name the currency in its label"},
    {"dB", "decibels are a logarithmic ratio; declare a plain number and name them in its label"},
    {"dBm", "decibels are a logarithmic ratio; declare a plain number and name them in its label"},
    {"dBV", "decibels are a logarithmic ratio; declare a plain number and name them in its label"},
    {"dBA", "decibels are a logarithmic ratio; declare a plain number and name them in its label"},
    {"delta_degC", "write K for a difference of temperatures"},
    {"delta_degF", "write degR for a difference of temperatures"},
};

bool isOperator(char character) {
  constexpr std::string_view kOperators = " ./*()^-+0123456789";
  return kOperators.find(character) != std::string_view::npos;
}

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// After a division a further factor without brackets may be meant above or below the line.
bool hasProductAfterDivision(std::string_view text) {
  bool isBelowLine = false;
  int depth = 0;
  for (std::size_t position = 0; position < text.size(); ++position) {
    const char character = text[position];
    depth += character == '(' ? 1 : character == ')' ? -1 : 0;
    if (depth > 0) {
      continue;
    }
    if (character == '/') {
      isBelowLine = true;
      continue;
    }
    if (!isBelowLine) {
      continue;
    }
    const char next = position + 1 < text.size() ? text[position + 1] : '\0';
    const char before = text[position - 1];
    const bool isProductSign = character == '.' || character == '*' || (character == '-' && !isDigit(next)) ||
                               (character == ' ' && before != '/' && next != '/');
    const bool isGlued = isDigit(character) && before != '/' && next != '\0' && !isOperator(next);
    if (isProductSign || isGlued) {
      return true;
    }
  }
  return false;
}

std::string bracketed(std::string_view text) {
  const std::size_t line = text.find('/');
  std::string below;
  for (std::size_t position = line + 1; position < text.size(); ++position) {
    const char character = text[position];
    const char next = position + 1 < text.size() ? text[position + 1] : '\0';
    const bool isProductSign = character == '*' || character == ' ' || (character == '-' && !isDigit(next));
    below += isProductSign ? '.' : character;
    if (isDigit(character) && next != '\0' && !isOperator(next)) {
      below += '.';
    }
  }
  return std::string(text.substr(0, line + 1)) + "(" + below + ")";
}

// Superscripts and the raised dot in the plain characters that mean the same.
std::string plainCharacters(std::string_view text) {
  constexpr Respelling kCharacters[] = {{"\u00b9", "1"}, {"\u00b2", "2"}, {"\u00b3", "3"},
                                        {"\u207b", "-"}, {"\u00b7", "."}, {"\u22c5", "."}};
  std::string plain(text);
  for (const Respelling &respelling : kCharacters) {
    for (std::size_t at = plain.find(respelling.written); at != std::string::npos;
         at = plain.find(respelling.written, at)) {
      plain.replace(at, respelling.written.size(), respelling.read);
    }
  }
  return plain;
}

} // namespace

UnitSpelling spellUnit(std::string_view written) {
  const std::string quoted = "\"" + std::string(written) + "\"";
  const std::string text = plainCharacters(written);
  if (text.empty()) {
    return {"", "The unit is empty."};
  }
  // Two divisions, as in J/kg/K, are clear; a product after one is not.
  if (hasProductAfterDivision(text)) {
    const std::size_t line = text.find('/');
    const bool hasOneLine = text.find('/', line + 1) == std::string_view::npos;
    return {"", "The unit " + quoted + " is ambiguous: use brackets" +
                    (hasOneLine ? ", for example " + bracketed(text) + "." : ".")};
  }
  std::string spelled;
  std::size_t position = 0;
  while (position < text.size()) {
    if (isOperator(text[position])) {
      spelled += text[position++];
      continue;
    }
    std::size_t end = position;
    while (end < text.size() && !isOperator(text[end])) {
      ++end;
    }
    std::string_view symbol = std::string_view(text).substr(position, end - position);
    for (const Refusal &refusal : kRefusals) {
      if (symbol == refusal.written) {
        return {"", "The unit " + quoted + " is refused: " + std::string(refusal.why) + "."};
      }
    }
    for (const Respelling &respelling : kSymbols) {
      if (symbol == respelling.written) {
        symbol = respelling.read;
        break;
      }
    }
    // A product that stands for one symbol stays together below a division and under an exponent.
    spelled +=
        symbol.find('.') == std::string_view::npos ? std::string(symbol) : "(" + std::string(symbol) + ")";
    position = end;
  }
  return {spelled, ""};
}

} // namespace EmbeddedHost
