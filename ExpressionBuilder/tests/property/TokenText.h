#pragma once

#include "ExpressionBuilder/tests/property/RandomChoice.h"

#include <string>
#include <vector>

namespace LanguageOracle {

/// A piece of text that blanks may precede, unless it belongs to the token before it.
struct Token {
  std::string text;
  bool isAttached = false;
};

using Tokens = std::vector<Token>;

void append(Tokens &tokens, Tokens more);

/// Drops, doubles, swaps or replaces a token.
void spoilTokens(Tokens &tokens, RandomChoice &random);

/// A few tokens in any order.
Tokens anyTokens(RandomChoice &random);

/// The tokens one after another, with blanks where they are needed to keep two tokens apart and elsewhere
/// as chance has it.
std::string joined(const Tokens &tokens, RandomChoice &random);

/// Puts a byte where it does not belong.
void spoilText(std::string &text, RandomChoice &random);

} // namespace LanguageOracle
