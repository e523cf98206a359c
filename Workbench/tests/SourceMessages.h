#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace Workbench {

// A statement of a C++ source, as far as texts are concerned: its literals in their order, those that stand side by
// side joined, and the rest of it with a quote for every literal.
struct SourceStatement {
  std::string file;
  std::size_t line = 0;
  std::string code;
  std::vector<std::string> literals;
};

// The statements with literals; comments and preprocessor lines are none.
std::vector<SourceStatement> statementsOf(const std::string &file, const std::string &source);

// The messages that a page tells of: what stands in backticks in an item of a list, in front of the dash.
std::vector<std::string> messagesOf(const std::string &page);

// Whether the statement can make the message, "..." in which stands for anything: the pieces between are found one
// after the other in its literals, and a piece may go on from the end of one literal to the beginning of a later one.
// \return the literals that take part; none when it cannot
std::set<std::size_t> literalsOf(const std::string &message, const SourceStatement &statement);

} // namespace Workbench
