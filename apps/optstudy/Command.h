#pragma once

#include "Workbench/Console.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// CLI11 takes long to compile: only Command.cpp sees it, not the files that list commands and options.
namespace CLI {
class App;
class Option;
} // namespace CLI

// An option of a command, or an argument that is known by its place. Each function answers the option itself.
class Argument {
public:
  explicit Argument(CLI::Option &option) : m_option(&option) {}

  Argument &required();
  // Its help shows the value that it has when it is left out.
  Argument &withDefault();
  // Of several values: they may also be written as one word with this character between.
  Argument &separatedBy(char separator);
  // Of several values: the option is written before each of them.
  Argument &oneAtATime();
  Argument &between(std::size_t least, std::size_t most);
  // \param problem  "" or what is wrong with a value
  Argument &checkedBy(const std::function<std::string(const std::string &)> &problem);

private:
  friend class Command;

  CLI::Option *m_option;
};

// A command of the program, a family of commands, or the program as a whole, whose options are those of every command.
// What options are stored in is kept by reference.
class Command {
public:
  using Action = std::function<int(const Workbench::Console &)>;

  // A command below this one. \param example  a call of it, without the program's name
  Command command(const std::string &name, const std::string &what, const std::string &example,
                  Action action) const;
  // A family, of which one command has to be named.
  Command family(const std::string &name, const std::string &what) const;

  // `names` is "-j,--jobs" for an option and "PROJECT" for an argument.
  Argument option(const std::string &names, std::string &value, const std::string &help) const;
  Argument option(const std::string &names, std::vector<std::string> &value, const std::string &help) const;
  Argument option(const std::string &names, std::optional<std::string> &value, const std::string &help) const;
  Argument option(const std::string &names, std::size_t &value, const std::string &help) const;
  // An option that may be written without a value: "--failed" and "--failed=signal".
  Argument optionalValue(const std::string &names, bool &isGiven, std::string &value,
                         const std::string &help) const;
  // "!--no-run" makes the value false.
  Argument flag(const std::string &names, bool &value, const std::string &help) const;
  // One of some words, each with what it stands for.
  template <class Value, class Meaning>
  Argument choice(const std::string &names, Value &value,
                  const std::vector<std::pair<std::string, Meaning>> &words, const std::string &help) const {
    std::vector<std::string> texts;
    texts.reserve(words.size());
    for (const auto &[word, meaning] : words) {
      texts.push_back(word);
    }
    const auto store = [&value, words](std::size_t which) {
      value = words[which].second;
    };
    return wordOf(names, texts, store, help);
  }

  // The argument is a text of the cost language, which may begin with "-" as options do.
  void takesExpression(const Argument &argument) const;
  // What the help of the command ends with.
  void endHelpWith(const std::string &text) const;

private:
  friend class CommandProgram;

  struct Shared {
    Action action;                            // of the command that was named
    std::set<const CLI::App *> ofExpressions; // those that take an expression
  };

  Command(CLI::App &app, Shared &shared) : m_app(&app), m_shared(&shared) {}
  Argument wordOf(const std::string &names, const std::vector<std::string> &words,
                  const std::function<void(std::size_t)> &store, const std::string &help) const;

  CLI::App *m_app;
  Shared *m_shared;
};

// The command line of a program that consists of commands.
class CommandProgram {
public:
  CommandProgram(const std::string &name, const std::string &what, const std::string &version);
  CommandProgram(const CommandProgram &) = delete;
  CommandProgram &operator=(const CommandProgram &) = delete;
  ~CommandProgram();

  Command root();

  // Takes the words apart and stores what they say. \return an exit code when there is nothing to carry out: help was
  // asked for and printed, or the words are wrong and that was said
  std::optional<int> parse(std::vector<std::string> words);
  int carryOut(const Workbench::Console &console) const { return m_shared.action(console); }

private:
  void markExpressions(std::vector<std::string> &words) const;
  std::string unknownWord(const std::vector<std::string> &words) const;

  std::unique_ptr<CLI::App> m_app;
  Command::Shared m_shared;
};
