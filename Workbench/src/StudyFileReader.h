#pragma once

#include "EmbeddedHost/CsvText.h"
#include "Workbench/StudyExpression.h"
#include "Workbench/StudyFile.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/NodeReader.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Workbench {

// A number with a unit, "" for none.
struct WrittenQuantity {
  double number = 0.0;
  std::string unit;
};

// Takes a text such as "10 kohm" apart; empty when it is none.
std::optional<WrittenQuantity> readQuantity(const std::string &text);

// A text such as "10 kohm" in another unit of the same quantity, such as "10000 ohm"; as it is when it has that unit, no
// number, or no such unit.
std::string quantityIn(const std::string &text, const std::string &unit, bool isDifference);

// Why no group can have the name: the columns of tables have some of their own. "" when one can.
std::string groupTitleProblem(const std::string &name);

// The text of an expression, which knows no other white space than blanks, of the same length.
std::string onOneLine(std::string text);

// Turns the document of a study file into a StudyFile. Everything wrong is reported through the reader of nodes; the result is of use only when nothing was.
class StudyFileReader {
public:
  StudyFileReader(NodeReader &nodes, const UnitSystem &units) : m_nodes(nodes), m_units(units) {}

  void readDocument(const StudyNode &document, StudyFile &file);

private:
  // StudyFileModel.cpp
  void readModel(const StudyNode &node, StudyFile &file);
  void readAttribute(const NodeReader::Entry &entry, const std::string &entity, StudyFile &file);
  void readDeclaration(const StudyNode &node, StudyAttribute &attribute);
  void readKind(const NodeReader::Map &map, StudyAttribute &attribute);
  void readUnit(const NodeReader::Map &map, const StudyNode *value, StudyAttribute &attribute);
  void readLimits(const NodeReader::Map &map, StudyAttribute &attribute);
  void checkName(const NodeReader::Entry &entry, const std::string &what, const std::string &forbidden);
  void checkUnit(const StudyNode &node, const std::string &unit);

  // StudyFileValues.cpp
  std::optional<StudyValue> readValue(const StudyNode &node, const StudyAttribute &attribute);
  std::optional<double> readReal(const StudyNode &node, const StudyAttribute &attribute, bool isDifference);
  bool checkLimits(const StudyNode &node, const StudyAttribute &attribute, double number);

  // StudyFileSolver.cpp
  void readSolver(const StudyNode &node, StudyFile &file);
  void readRunSettings(const NodeReader::Map &map, StudySolver &solver);
  std::vector<StudyInputFile> readInputFiles(const StudyNode &node, const std::string &what);
  void checkPath(const StudyNode &node, const std::string &path, const std::string &what);
  void checkTargets(const StudySolver &solver);
  void readEnvironment(const StudyNode &node, StudySolver &solver);
  void readRetries(const StudyNode &node, StudySolver &solver);
  void readSizeLimit(const NodeReader::Map &map, const std::string &key, std::size_t &limit);

  // StudyFileStages.cpp
  void readStages(const NodeReader::Map &map, StudySolver &solver);
  void readStage(const StudyNode &node, const StudyStage &defaults, StudySolver &solver);
  void readStageName(const StudyNode &node, const StudySolver &solver, StudyStage &stage);
  void readCommand(const StudyNode &node, StudyStage &stage);
  std::optional<StudyArgument> readArgument(const StudyNode &node);
  void readVersionCommand(const StudyNode &node, StudyStage &stage);
  void readTimeLimit(const StudyNode &node, StudyStage &stage);
  void readExitCodes(const StudyNode &node, StudyStage &stage);

  // StudyFileResults.cpp
  void readExtractors(const StudyNode &node, StudyFile &file);
  void readExtractor(const NodeReader::Entry &entry, StudyFile &file);
  const StudyAttribute *readResultName(const NodeReader::Entry &entry, const StudyFile &file);
  void readSource(const NodeReader::Map &map, const std::string &what, const StudySolver &solver,
                  StudyExtractor &extractor);
  void readResultUnit(const NodeReader::Map &map, const StudyAttribute *attribute, StudyExtractor &extractor);
  void readPlausible(const NodeReader::Map &map, const StudyAttribute *attribute,
                     std::optional<double> &minimum, std::optional<double> &maximum);
  std::optional<std::size_t> readStageReference(const StudyNode &node, const StudySolver &solver);
  void readSuccess(const StudyNode &node, StudySolver &solver);
  void checkResults(const StudyFile &file);

  // StudyFileSearches.cpp
  bool readSearch(const std::string &way, const NodeReader::Map &map, EmbeddedHost::ExtractionRule &rule);
  bool readSearchText(const StudyNode &node, const std::string &what, std::string &text);
  bool readCount(const StudyNode &node, const std::string &what, std::size_t least, std::size_t &number);
  bool readPatternSearch(const NodeReader::Map &map, EmbeddedHost::ExtractionRule &rule);
  bool readColumnSearch(const NodeReader::Map &map, EmbeddedHost::ExtractionRule &rule);
  bool readFixedSearch(const NodeReader::Map &map, EmbeddedHost::ExtractionRule &rule);
  bool readWhere(const StudyNode &node, EmbeddedHost::ExtractionRule &rule);
  bool readTableColumn(const StudyNode &node, EmbeddedHost::TableColumn &column);
  std::optional<char> readDelimiter(const StudyNode &node);

  // StudyFileFormulas.cpp
  void readFormulas(const StudyNode &node, StudyFile &file);
  void readFormula(const NodeReader::Entry &entry, StudyFile &file);
  void orderFormulas(StudyFile &file);
  void readRule(const StudyNode &node, StudyFile &file);
  void checkCost(const StudyNode &node, StudyFile &file);
  std::optional<StudyExpression> readExpression(const StudyNode &node, const std::string &what,
                                                const std::vector<std::string> &names,
                                                const std::string &otherwise, StudyFile &file);

  // StudyFileStudy.cpp
  void readStudy(const StudyNode &node, StudyFile &file);
  std::vector<StudyGroup> readGroups(const StudyNode &node, bool isInput, const StudyFile &file);
  std::optional<StudyGroup> readGroup(const StudyNode &node, bool isInput, const StudyFile &file);
  void readGroupAttributes(const NodeReader::Map &map, bool isInput, const StudyFile &file,
                           StudyGroup &group);
  const StudyAttribute *readAttributeName(const StudyNode &node, const StudyFile &file);
  void readGroupLimits(const NodeReader::Map &map, const StudyAttribute &attribute, StudyGroup &group);
  void checkGroupNames(const StudyFile &file);

  // StudyFileRows.cpp
  void readRows(const StudyNode &node, StudyFile &file);
  void readRowList(const StudyNode &node, StudyFile &file);
  void readGrid(const StudyNode &node, StudyFile &file);
  std::vector<StudyValue> readGridAxis(const StudyNode &node, const StudyGroup &group, const StudyFile &file);
  std::vector<StudyValue> stepsOf(const StudyNode &node, const StudyGroup &limits,
                                  const StudyAttribute &attribute);
  bool checkGroupLimits(const StudyNode &node, const StudyGroup &group, const StudyFile &file,
                        const StudyValue &value);
  void appendGridRows(const StudyNode &node, const std::vector<std::vector<StudyValue>> &axes,
                      StudyFile &file);
  static void dropEqualRows(StudyFile &file);
  void checkRowName(const StudyNode &node, const StudyRow &row);

  // StudyFileTable.cpp
  void readTable(const StudyNode &node, StudyFile &file);
  void readTableText(const std::string &path, const std::string &text, char delimiter, StudyFile &file);

  NodeReader &m_nodes;
  const UnitSystem &m_units;
  std::map<std::string, FilePlace> m_rowNames;
};

} // namespace Workbench
