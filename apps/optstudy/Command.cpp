#include "apps/optstudy/Command.h"

#include "Workbench/ExitCode.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace {

// Stands before a word that begins with "-" and is no option, so that it is taken for none. Nobody types it.
constexpr char kMark = '\x01';

const CLI::Option *findOption(const CLI::App *app, const std::string &name) {
  return app == nullptr ? nullptr : app->get_option_no_throw(name);
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

std::optional<int> CommandProgram::parse(std::vector<std::string> words) {
  markExpressions(words);
  std::reverse(words.begin(), words.end());
  try {
    m_app->parse(std::move(words));
  } catch (const CLI::ParseError &error) {
    return m_app->exit(error) == 0 ? Workbench::ExitCode::kDone : Workbench::ExitCode::kUsage;
  }
  return std::nullopt;
}
