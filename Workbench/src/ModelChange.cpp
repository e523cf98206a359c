#include "Workbench/src/ModelChange.h"

#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/SolverNumber.h"
#include "HostModel/Lookup.h"
#include "HostModel/Type.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ModelDeclaration.h"
#include "Workbench/ProjectSession.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/EntityDeclaration.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <set>

namespace Workbench {

namespace {

using EmbeddedHost::MemberType;

constexpr std::size_t kMostRowsNamed = 5;

std::string quoted(const std::string &text) {
  return "\"" + text + "\"";
}

std::string unitText(const std::string &unit) {
  return unit.empty() ? "none" : quoted(unit);
}

std::string limitsText(const std::optional<double> &minimum, const std::optional<double> &maximum,
                       const std::string &unit) {
  const auto text = [&unit](double number) {
    return EmbeddedHost::writeSolverNumber(number) + (unit.empty() ? "" : " " + unit);
  };
  if (minimum && maximum) {
    return text(*minimum) + " to " + text(*maximum);
  }
  return minimum ? "at least " + text(*minimum) : maximum ? "at most " + text(*maximum) : "none";
}

std::string listText(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) {
    text.append(text.empty() ? "" : ", ").append(word);
  }
  return text;
}

std::optional<double> convertedLimit(const std::optional<double> &limit, const std::string &from,
                                     const std::string &to) {
  const HostUnits units;
  return limit ? units.convert(*limit, from, to) : std::nullopt;
}

bool isOutside(double number, const std::optional<double> &minimum, const std::optional<double> &maximum) {
  return (minimum && number < *minimum) || (maximum && number > *maximum);
}

} // namespace

void ModelChange::refuse(const std::string &what, const std::string &mend) {
  if (m_refusal.empty()) {
    m_refusal = what + ". " + mend + ", or give the study file another name, which makes a new project";
  }
}

ModelChange ModelChange::of(const StudyFile &study, const EmbeddedHost::Project &project) {
  ModelChange change;
  std::map<std::string, std::string> types; // of the project's entities, by their names
  for (const EntityModel::Entity *entity : EntityModel::getLinkedEntities(
           project.rootEntity(), EntityModel::AttributePath(ProjectModel::kEntityList))) {
    types.emplace(entity->getName(true), entity->getType().getReference().getLabel());
  }
  std::size_t number = project.schema().declaredTypes().size();
  for (const EntityDeclaration &declared : entitiesOf(study)) {
    const auto known = types.find(declared.name);
    if (known != types.end()) {
      change.compareEntity(known->second, declared.attributes, declared.name,
                           project.schema().declaration(known->second));
      types.erase(known);
      continue;
    }
    while (project.schema().findType(typeLabel(number)) != nullptr) {
      ++number;
    }
    change.m_entities.push_back({declared.name, typeLabel(number++), membersOf(declared)});
    change.m_sentences.push_back("the entity " + quoted(declared.name) + " was added");
  }
  for (const auto &[name, type] : types) {
    change.refuse("the study file does not declare the entity " + quoted(name) +
                      ", whose values its rows have",
                  "Put it back");
  }
  return change;
}

void ModelChange::compareEntity(const std::string &type, const std::vector<const StudyAttribute *> &declared,
                                const std::string &name, const Members &members) {
  Members changed = members;
  std::set<std::string> missing;
  for (const MemberType &member : members) {
    missing.insert(member.label);
  }
  bool isChanged = false;
  for (const StudyAttribute *attribute : declared) {
    if (missing.erase(attribute->name) == 0) {
      changed.push_back(memberOf(*attribute));
      m_sentences.push_back("the attribute " + quoted(attribute->fullName()) + " was added");
      isChanged = true;
      continue;
    }
    const auto member = std::find_if(changed.begin(), changed.end(), [attribute](const MemberType &other) {
      return other.label == attribute->name;
    });
    isChanged = compareMember(*attribute, *member) || isChanged;
  }
  for (const std::string &label : missing) {
    std::string fullName = name;
    fullName.append(".").append(label);
    refuse("the study file does not declare the attribute " + quoted(fullName) +
               ", whose values its rows have",
           "Put it back");
  }
  if (isChanged) {
    m_types[type] = std::move(changed);
  }
}

// \return whether the member has changed
bool ModelChange::compareMember(const StudyAttribute &declared, MemberType &member) {
  const MemberType wanted = memberOf(declared);
  const std::string what = "the attribute " + quoted(declared.fullName()) + " ";
  if (member.kind != wanted.kind) {
    refuse(what + "is of another kind there", "Give the attribute another name");
    return false;
  }
  if (member.isResult != wanted.isResult) {
    refuse(what + "is a result in one of the two only", "Give the attribute another name");
    return false;
  }
  const bool hasOtherUnit = compareUnit(declared, member);
  const bool hasOtherOptions = compareOptions(declared, member);
  return compareLimits(declared, member) || hasOtherUnit || hasOtherOptions;
}

bool ModelChange::compareUnit(const StudyAttribute &declared, MemberType &member) {
  const std::string before = member.standardUnit;
  if (before == declared.unit) {
    return false;
  }
  const HostUnits units;
  if (before.empty() || declared.unit.empty() || !units.convert(1.0, before, declared.unit)) {
    refuse("the attribute " + quoted(declared.fullName()) + " is declared in " + quoted(before) +
               " there, which cannot be converted to " + quoted(declared.unit),
           "Declare it in a unit of the same quantity");
    return false;
  }
  m_sentences.push_back("the unit of " + declared.fullName() + " is now " + unitText(declared.unit) +
                        ", it was " + unitText(before) + "; its values were converted");
  member.standardUnit = declared.unit;
  member.displayUnit = declared.unit;
  member.minimum = convertedLimit(member.minimum, before, declared.unit);
  member.maximum = convertedLimit(member.maximum, before, declared.unit);
  member.defaultText = quantityIn(member.defaultText, declared.unit, false);
  return true;
}

// Rows keep the number of the option that they choose.
bool ModelChange::compareOptions(const StudyAttribute &declared, MemberType &member) {
  if (member.options == declared.options) {
    return false;
  }
  const bool isLonger = declared.options.size() > member.options.size() &&
                        std::equal(member.options.begin(), member.options.end(), declared.options.begin());
  if (!isLonger) {
    refuse("the attribute " + quoted(declared.fullName()) + " has other options there, " +
               listText(member.options),
           "Keep them in their order and add new ones behind them");
    return false;
  }
  m_sentences.push_back("the options of " + declared.fullName() + " are now " + listText(declared.options));
  member.options = declared.options;
  return true;
}

bool ModelChange::compareLimits(const StudyAttribute &declared, MemberType &member) {
  if (member.minimum == declared.minimum && member.maximum == declared.maximum) {
    return false;
  }
  m_sentences.push_back("the limits of " + declared.fullName() + " are now " +
                        limitsText(declared.minimum, declared.maximum, declared.unit) + ", they were " +
                        limitsText(member.minimum, member.maximum, declared.unit));
  m_changesLimits = true;
  member.minimum = declared.minimum;
  member.maximum = declared.maximum;
  const std::optional<WrittenQuantity> standard = readQuantity(member.defaultText);
  if (standard && isOutside(standard->number, declared.minimum, declared.maximum)) {
    const std::string text = hostText(declared, declared.value);
    m_sentences.push_back(declared.fullName() + " is now " + text + " where nothing else was set; it was " +
                          member.defaultText);
    member.defaultText = text;
  }
  return true;
}

std::string ModelChange::applyTo(EmbeddedHost::ModelSchema &schema) const {
  EmbeddedHost::ModelSchema changed;
  for (const auto &type : schema.declaredTypes()) {
    const auto other = m_types.find(type->label());
    const std::string problem = changed.declareType(
        type->label(), other == m_types.end() ? schema.declaration(type->label()) : other->second);
    if (!problem.empty()) {
      return "The model cannot be changed: " + problem;
    }
  }
  for (const NewEntity &entity : m_entities) {
    const std::string problem = changed.declareType(entity.type, entity.members);
    if (!problem.empty()) {
      return "The entity " + quoted(entity.name) + " cannot be added: " + problem;
    }
  }
  schema = std::move(changed);
  return "";
}

std::string ModelChange::createEntities(EmbeddedHost::Project &project) const {
  for (const NewEntity &entity : m_entities) {
    if (project.createEntity(entity.type, project.rootEntity(), ProjectModel::kEntityList, entity.name) ==
        nullptr) {
      return "the entity " + quoted(entity.name) + " could not be created";
    }
  }
  return "";
}

std::string compareModel(const StudyFile &study, const EmbeddedHost::Project &project) {
  const ModelChange change = ModelChange::of(study, project);
  if (!change.refusal().empty()) {
    return change.refusal();
  }
  return change.isNeeded() ? change.sentences().front() +
                                 ". \"optstudy run\" brings the project in line with the study file"
                           : "";
}

std::vector<std::string> rowsOutsideLimits(const ProjectSession &session) {
  std::vector<std::string> sentences;
  std::size_t found = 0;
  for (std::size_t row = 1; row < session.rowCount(); ++row) {
    for (std::size_t group = 0; group < session.groupCount(true); ++group) {
      const ModelAttribute *declared = session.groupAttribute(true, group);
      const EntityModel::Attribute *cell = session.data().getVariantGroup(true, row, group);
      const bool isKnown = declared != nullptr && cell != nullptr && cell->hasValue();
      if (!isKnown || !isOutside(cell->getStandardValue(), declared->minimum, declared->maximum)) {
        continue;
      }
      if (++found <= kMostRowsNamed) {
        sentences.push_back("the row " + quoted(session.rowName(row)) + " is outside the limits of " +
                            declared->fullName() + " and keeps its results");
      }
    }
  }
  if (found > kMostRowsNamed) {
    sentences.push_back(numbered(found - kMostRowsNamed, "more value is", "more values are") +
                        " outside the limits");
  }
  return sentences;
}

} // namespace Workbench
