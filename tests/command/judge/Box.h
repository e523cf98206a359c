#pragma once

#include "tests/fault/judge/Command.h"
#include "tests/fault/judge/WorkFolder.h"

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace CommandTests {

/// What a suite is asked for.
struct SuiteOptions {
  std::vector<std::string> files; ///< the command, its supervisor, solvers and libraries
  std::string commandPage;        ///< the page that documents the command
  std::size_t sample = 0;         ///< how many trials; 0 for all
  unsigned long long seed = 0;

  std::size_t trials(std::size_t all, std::size_t fewest = 1) const;
};

/// How programs are started: startCommand(), or startWithoutRights() where the judge may mount.
using Starter = int (*)(const std::vector<std::string> &words, const std::string &outputFile,
                        const std::string &errorFile);

/// The command and what it needs, where a user without rights reaches it, and how it is started.
class Product {
public:
  Product(const FaultTests::WorkFolder &work, const SuiteOptions &options,
          Starter startProgram = FaultTests::startCommand);

  const FaultTests::WorkFolder &work() const { return m_work; }
  /// The copy of a file that the suite was given, by its name.
  std::string file(const std::string &name) const { return m_folder + "/" + name; }
  const std::string &folder() const { return m_folder; }
  Starter starter() const { return m_starter; }

private:
  const FaultTests::WorkFolder &m_work;
  std::string m_folder;
  Starter m_starter;
};

/// One use of the command, and what it said.
struct Call {
  FaultTests::Ending ending;
  std::string output;
  std::string messages;
  bool isInTime = true; ///< false: it had not ended after a minute, and was killed

  int exitCode() const { return ending.exitCode; }
  /// "" when it ended with this code, else what it did instead.
  std::string unless(int exitCode) const;
};

using Variables = std::map<std::string, std::string>;

/// A folder with a study of a scripted solver, and uses of the command there. What the command starts carries a mark
/// in its environment, by which it is found when it is left over.
class Box {
public:
  /// \param folder  must exist; files of the judge are kept beside it, under names that begin with it
  Box(const Product &product, std::string folder);
  /// In a new folder of the work folder.
  static Box make(const Product &product, const std::string &name);

  const std::string &folder() const { return m_folder; }
  std::string path(const std::string &name) const { return m_folder + "/" + name; }
  /// A file of the judge, outside the folder.
  std::string beside(const std::string &name) const { return m_beside + name; }
  /// For a folder on another disk: the judge's files stay on this one.
  void keepBeside(const std::string &begin) { m_beside = begin; }

  /// Rows x = 0 to rows - 1, x = 0 is the baseline; row x is named as the program names it.
  void writeStudy(int rows, const std::string &timeLimit = "60 s") const;
  /// What the solver does from now on; see the scripted solver.
  void script(const std::string &lines) const;

  int start(const std::vector<std::string> &arguments, const std::string &name,
            const Variables &variables = {}) const;
  Call finish(int process, const std::string &name) const;
  Call call(const std::vector<std::string> &arguments, const Variables &variables = {}) const;
  Call run() const { return call({"run", "box.study.yaml", "-j", "2"}); }
  /// A program that is not the command, started in the same way.
  int startOther(const std::vector<std::string> &words, const std::string &name,
                 const Variables &variables = {}) const;

  /// How often the solver has begun each x.
  std::map<std::string, int> begun() const;
  int beginnings() const;
  /// Waits until so many have begun; false when they have not after a minute.
  bool waitForBeginnings(int count) const;
  /// Waits until nothing that carries the mark is left. \return what is after ten seconds, "" for nothing
  std::string survivors() const;
  void killSurvivors() const;

private:
  std::vector<std::string> environment(const Variables &variables) const;

  const Product &m_product;
  std::string m_folder;
  std::string m_beside;
  std::string m_mark;
};

/// What `show --format csv` prints, by the values of x.
struct Table {
  std::string text;
  std::map<std::string, std::string> ok;     ///< lines of rows that are ok
  std::map<std::string, std::string> others; ///< status and reason of those that are not

  static Table of(const std::string &text);
};

/// The first difference of two texts, line by line; "" when they are equal.
std::string difference(const std::string &expected, const std::string &found);

} // namespace CommandTests
