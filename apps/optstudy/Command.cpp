#include "apps/optstudy/Command.h"

#include "Workbench/ExitCode.h"
#include "Workbench/NearestWord.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>

namespace {

// Stands before a word that begins with "-" and is no option, so that it is taken for none. Nobody types it.
constexpr char kMark = '\x01';

using Workbench::didYouMean;

const CLI::Option *findOption(const CLI::App *app, const std::string &name) {
  return app == nullptr ? nullptr : app->get_option_no_throw(name);
}

std::vector<const CLI::App *> commandsOf(const CLI::App &app) {
  return app.get_subcommands([](const CLI::App *) { return true; });
}

std::vector<std::string> namesOf(const std::vector<const CLI::App *> &commands) {
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (const CLI::App *command : commands) {
    names.push_back(command->get_name());
  }
  return names;
}

std::vector<std::string> optionNames(const std::vector<const CLI::App *> &apps) {
  std::vector<std::string> names;
  for (const CLI::App *app : apps) {
    for (const CLI::Option *option : app->get_options()) {
      for (const std::string &name : option->get_lnames()) {
        names.push_back("--" + name);
      }
    }
  }
  return names;
}

} // namespace

Argument &Argument::required() {
  m_option->required();
  return *this;
}

Argument &Argument::withDefault() {
  m_option->capture_default_str();
  return *this;
}

Argument &Argument::separatedBy(char separator) {
  m_option->delimiter(separator);
  return *this;
}

Argument &Argument::oneAtATime() {
  m_option->allow_extra_args(false);
  return *this;
}

Argument &Argument::between(std::size_t least, std::size_t most) {
  m_option->check(CLI::Range(least, most));
  return *this;
}

Argument &Argument::checkedBy(const std::function<std::string(const std::string &)> &problem) {
  m_option->check(CLI::Validator([problem](const std::string &text) { return problem(text); }, ""));
  return *this;
}

Command Command::command(const std::string &name, const std::string &what, const std::string &example,
                         Action action) const {
  CLI::App &added = *m_app->add_subcommand(name, what);
  added.fallthrough();
  added.footer("\nExample:\n  optstudy " + example + "\n");
  added.callback([shared = m_shared, action = std::move(action)] { shared->action = action; });
  return {added, *m_shared};
}

Command Command::family(const std::string &name, const std::string &what) const {
  CLI::App &added = *m_app->add_subcommand(name, what);
  added.fallthrough();
  added.require_subcommand(1);
  return {added, *m_shared};
}

Argument Command::option(const std::string &names, std::string &value, const std::string &help) const {
  return Argument(*m_app->add_option(names, value, help));
}

Argument Command::option(const std::string &names, std::vector<std::string> &value,
                         const std::string &help) const {
  return Argument(*m_app->add_option(names, value, help));
}

Argument Command::option(const std::string &names, std::optional<std::string> &value,
                         const std::string &help) const {
  return Argument(*m_app->add_option(names, value, help));
}

Argument Command::option(const std::string &names, std::size_t &value, const std::string &help) const {
  return Argument(*m_app->add_option(names, value, help));
}

Argument Command::optionalValue(const std::string &names, bool &isGiven, std::string &value,
                                const std::string &help) const {
  const auto take = [&isGiven, &value](const std::string &word) {
    isGiven = true;
    value = word;
  };
  CLI::Option *const option = m_app->add_option_function<std::string>(names, take, help);
  option->expected(0, 1);
  return Argument(*option);
}

Argument Command::flag(const std::string &names, bool &value, const std::string &help) const {
  return Argument(*m_app->add_flag(names, value, help));
}

Argument Command::wordOf(const std::string &names, const std::vector<std::string> &words,
                         const std::function<void(std::size_t)> &store, const std::string &help) const {
  const auto take = [words, store](const std::string &word) {
    store(static_cast<std::size_t>(std::find(words.begin(), words.end(), word) - words.begin()));
  };
  CLI::Option *const option = m_app->add_option_function<std::string>(names, take, help);
  option->transform(CLI::IsMember(words, CLI::ignore_case).description(""));
  return Argument(*option);
}

void Command::takesExpression(const Argument &argument) const {
  m_shared->ofExpressions.insert(m_app);
  argument.m_option->transform(
      [](const std::string &word) { return !word.empty() && word.front() == kMark ? word.substr(1) : word; });
}

void Command::endHelpWith(const std::string &text) const {
  m_app->footer(text);
}

CommandProgram::CommandProgram(const std::string &name, const std::string &what, const std::string &version)
    : m_app(std::make_unique<CLI::App>(what, name)) {
  m_app->set_version_flag("--version", name + " " + version);
  m_app->require_subcommand(1);
  m_app->fallthrough();
}

CommandProgram::~CommandProgram() = default;

Command CommandProgram::root() {
  return {*m_app, m_shared};
}

// What begins with "-" behind such a command and is no option of it is an expression: "-1 + 2", "-%x%", "--5".
void CommandProgram::markExpressions(std::vector<std::string> &words) const {
  const CLI::App *command = nullptr;
  for (std::size_t index = 0; index < words.size() && words[index] != "--"; ++index) {
    std::string &word = words[index];
    if (word.empty() || word.front() != '-') {
      if (command == nullptr) {
        const auto isNamed = [&word](const CLI::App *app) {
          return app->get_name() == word;
        };
        const auto found =
            std::find_if(m_shared.ofExpressions.begin(), m_shared.ofExpressions.end(), isNamed);
        if (found == m_shared.ofExpressions.end()) {
          return;
        }
        command = *found;
      }
      continue;
    }
    const std::string name = word.substr(0, word.find('='));
    const CLI::Option *option = findOption(command, name);
    option = option == nullptr ? findOption(m_app.get(), name) : option;
    if (option == nullptr && command != nullptr) {
      word.insert(0, 1, kMark);
    } else if (option != nullptr && name == word && option->get_items_expected_max() > 0) {
      ++index; // its value
    }
  }
}

// The first word that is neither command nor option, with what it may be meant to be; "" when every word is known.
// Which words are arguments is known only behind a command that is no family.
std::string CommandProgram::unknownWord(const std::vector<std::string> &words) const {
  const CLI::App *app = m_app.get();
  for (std::size_t index = 0; index < words.size() && words[index] != "--"; ++index) {
    const std::string &word = words[index];
    const std::vector<const CLI::App *> commands = commandsOf(*app);
    if (word.size() > 1 && word.front() == '-') {
      const std::string name = word.substr(0, word.find('='));
      const CLI::Option *option = findOption(app, name);
      option = option == nullptr ? findOption(m_app.get(), name) : option;
      if (option == nullptr && word.rfind("--", 0) == 0) {
        return "There is no option \"" + name + "\"" + didYouMean(name, optionNames({m_app.get(), app}));
      }
      const bool hasValue = option != nullptr && name == word && option->get_items_expected_min() > 0;
      index += hasValue ? 1 : 0;
    } else if (!commands.empty()) {
      const auto found = std::find_if(commands.begin(), commands.end(),
                                      [&word](const CLI::App *known) { return known->get_name() == word; });
      if (found == commands.end()) {
        const std::string family = app == m_app.get() ? "" : app->get_name() + " ";
        const std::string nearest = Workbench::nearestWord(word, namesOf(commands));
        std::string problem = "There is no command \"";
        problem.append(family).append(word).append("\"");
        if (!nearest.empty()) {
          problem.append(", did you mean \"").append(family).append(nearest).append("\"?");
        }
        return problem;
      }
      app = *found;
    }
  }
  return "";
}

std::optional<int> CommandProgram::parse(std::vector<std::string> words) {
  markExpressions(words);
  const std::vector<std::string> typed = words;
  std::reverse(words.begin(), words.end());
  try {
    m_app->parse(std::move(words));
  } catch (const CLI::ParseError &error) {
    if (const std::string unknown = error.get_exit_code() == 0 ? "" : unknownWord(typed); !unknown.empty()) {
      std::cerr << unknown << "\nRun with --help for more information.\n";
      return Workbench::ExitCode::kUsage;
    }
    return m_app->exit(error) == 0 ? Workbench::ExitCode::kDone : Workbench::ExitCode::kUsage;
  }
  return std::nullopt;
}
