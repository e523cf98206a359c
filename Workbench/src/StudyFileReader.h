#pragma once

#include "Workbench/StudyFile.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/YamlReader.h"

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

// Turns the YAML document of a study file into a StudyFile. Everything wrong is reported through the YAML
// reader; the result is of use only when nothing was.
class StudyFileReader {
public:
  StudyFileReader(YamlReader &yaml, const UnitSystem &units) : m_yaml(yaml), m_units(units) {}

  void readDocument(const YAML::Node &document, StudyFile &file);

private:
  // StudyFileModel.cpp
  void readModel(const YAML::Node &node, StudyFile &file);
  void readAttribute(const YamlReader::Entry &entry, const std::string &entity, StudyFile &file);
  void readDeclaration(const YAML::Node &node, StudyAttribute &attribute);
  void readKind(const YamlReader::Map &map, StudyAttribute &attribute);
  void readUnit(const YamlReader::Map &map, const YAML::Node *value, StudyAttribute &attribute);
  void readLimits(const YamlReader::Map &map, StudyAttribute &attribute);
  void checkName(const YamlReader::Entry &entry, const std::string &what, const std::string &forbidden);
  void checkUnit(const YAML::Node &node, const std::string &unit);

  // StudyFileValues.cpp
  std::optional<StudyValue> readValue(const YAML::Node &node, const StudyAttribute &attribute);
  std::optional<double> readReal(const YAML::Node &node, const StudyAttribute &attribute, bool isDifference);
  bool checkLimits(const YAML::Node &node, const StudyAttribute &attribute, double number);

  // StudyFileSolver.cpp
  void readSolver(const YAML::Node &node, StudyFile &file);
  std::vector<StudyInputFile> readInputFiles(const YAML::Node &node, const std::string &what);
  void checkPath(const YAML::Node &node, const std::string &path, const std::string &what);
  void checkTargets(const StudySolver &solver);
  void readCommand(const YAML::Node &node, StudySolver &solver);
  void readTimeLimit(const YAML::Node &node, StudySolver &solver);
  void readExitCodes(const YAML::Node &node, StudySolver &solver);
  void readEnvironment(const YAML::Node &node, StudySolver &solver);
  void readExtractors(const YAML::Node &node, StudyFile &file);
  void readExtractor(const YamlReader::Entry &entry, StudyFile &file);

  // StudyFileStudy.cpp
  void readStudy(const YAML::Node &node, StudyFile &file);
  std::vector<StudyGroup> readGroups(const YAML::Node &node, bool isInput, const StudyFile &file);
  std::optional<StudyGroup> readGroup(const YAML::Node &node, bool isInput, const StudyFile &file);
  void readGroupAttributes(const YamlReader::Map &map, bool isInput, const StudyFile &file,
                           StudyGroup &group);
  const StudyAttribute *readAttributeName(const YAML::Node &node, const StudyFile &file);
  void readGroupLimits(const YamlReader::Map &map, const StudyAttribute &attribute, StudyGroup &group);
  void checkGroupNames(const StudyFile &file);

  // StudyFileRows.cpp
  void readRows(const YAML::Node &node, StudyFile &file);
  void readRowList(const YAML::Node &node, StudyFile &file);
  void readGrid(const YAML::Node &node, StudyFile &file);
  std::vector<StudyValue> readGridAxis(const YAML::Node &node, const StudyGroup &group,
                                       const StudyFile &file);
  std::vector<StudyValue> stepsOf(const YAML::Node &node, const StudyGroup &limits,
                                  const StudyAttribute &attribute);
  bool checkGroupLimits(const YAML::Node &node, const StudyGroup &group, const StudyFile &file,
                        const StudyValue &value);
  void appendGridRows(const YAML::Node &node, const std::vector<std::vector<StudyValue>> &axes,
                      StudyFile &file);
  static void dropEqualRows(StudyFile &file);

  YamlReader &m_yaml;
  const UnitSystem &m_units;
};

} // namespace Workbench
