#include "tests/study-property/Session.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/Lookup.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <stdexcept>

// The project, and how a step is carried out on both sides.

namespace StudyProperty {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EntityModel::AttributePath;

namespace {

MemberType member(const std::string &label, MemberKind kind, const std::string &text) {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.defaultText = text;
  type.isResult = isResult(label);
  return type;
}

EmbeddedHost::ModelSchema schemaOfParts() {
  std::vector<MemberType> members;
  for (const std::string &path : paths()) {
    const Value value = defaultValue(path);
    MemberType type =
        member(path, value.kind == Kind::Integer ? MemberKind::Integer : MemberKind::Real, value.text());
    type.standardUnit = value.kind == Kind::Length ? "m" : "";
    type.displayUnit = value.unit;
    members.push_back(type);
  }
  MemberType parts = member("Parts", MemberKind::EntityList, "");
  parts.targetType = "Part";
  EmbeddedHost::ModelSchema schema;
  const std::string problem = schema.declareType("Part", members) + schema.declareRootMembers({parts});
  if (!problem.empty()) {
    throw std::logic_error(problem);
  }
  return schema;
}

// What the library throws with its type, and what the host throws.
std::string resultOf(const std::function<std::string()> &work) {
  const auto isLibrarys = [](const std::string &text) {
    return text.rfind("OptimizationData::", 0) == 0 || text == "Variable does not exist" ||
           text.find(" provided to setVariantValues") != std::string::npos;
  };
  try {
    return work();
  } catch (const Refusal &refusal) {
    return std::string("throws ") + refusal.what();
  } catch (const std::exception &error) {
    const char *type = dynamic_cast<const std::out_of_range *>(&error) != nullptr  ? "out_of_range: "
                       : dynamic_cast<const std::logic_error *>(&error) != nullptr ? "logic_error: "
                                                                                   : "another: ";
    return std::string("throws ") +
           (isLibrarys(error.what()) ? std::string(type) + error.what() : kHostRefusal);
  }
}

} // namespace

Session::Session(Mistake mistake, Tally &tally)
    : m_folder(std::make_unique<QTemporaryDir>()), m_project(EmbeddedHost::Project::create(schemaOfParts())),
      m_reference(mistake), m_tally(tally) {
  for (const ReferenceModel::Part &each : m_reference.model.parts) {
    m_project->createEntity("Part", m_project->rootEntity(), "Parts", each.name);
  }
  show();
}

Session::~Session() {
  if (m_project != nullptr) {
    close();
  }
}

// The manager hears of what happens from its first use on, which comes after the host is installed.
void Session::show() {
  m_installation = std::make_unique<HostModel::HostInstallation>(*m_project);
  manager();
  m_commands = std::make_unique<EmbeddedHost::Commands>(*m_project);
  m_commands->announceOpened();
}

void Session::close() {
  m_problem += m_commands->close().problem;
  m_commands.reset();
  m_installation.reset();
  m_project.reset();
}

std::string Session::run(const std::vector<Step> &steps) {
  for (std::size_t number = 0; number < steps.size(); ++number) {
    m_log.emplace_back(textOf(steps[number]) + ":");
    m_operation = nameOf(steps[number].operation);
    act(steps[number]);
    if (m_problem.empty()) {
      compare();
    }
    if (!m_problem.empty()) {
      return "step " + std::to_string(number) + ", " + m_log.back() + "\n" + m_problem;
    }
  }
  return "";
}

void Session::act(const Step &step) {
  Draws draws(step);
  const bool isOnStudy = m_reference.held.has_value();
  if (isOnStudy && (actOnGroups(step, draws) || actOnRows(step, draws) || actOnCosts(step, draws) ||
                    actOnVersions(step, draws))) {
    return;
  }
  actOnHost(step, draws);
}

void Session::both(const std::string &what, const Work &referenceWork, const Work &libraryWork) {
  m_log.back() += " " + what;
  ++m_tally[m_operation];
  const std::string expected = resultOf(referenceWork);
  const std::string actual = resultOf(libraryWork);
  m_log.back() += " -> " + (expected.find('\n') == std::string::npos ? expected : "");
  if (expected != actual) {
    m_problem = what + "\n  reference: " + expected + "\n  library:   " + actual;
  }
  if (expected.rfind("throws ", 0) == 0 || expected == "refused") {
    ++m_tally[expected == "refused" ? what.substr(0, what.find('(')) + " refused" : expected];
  }
}

void Session::bothDo(const std::string &what, const std::function<void()> &referenceWork,
                     const std::function<void()> &libraryWork) {
  const auto done = [](const std::function<void()> &work) {
    return [work] {
      work();
      return std::string("done");
    };
  };
  both(what, done(referenceWork), done(libraryWork));
}

EntityModel::Entity *Session::part(int number) const {
  std::size_t place = 0;
  for (int each = 0; each < number; ++each) {
    place += m_reference.model.parts[static_cast<std::size_t>(each)].isThere ? 1U : 0U;
  }
  return EntityModel::getLinkedEntities(m_project->rootEntity(), AttributePath("Parts")).at(place);
}

EntityModel::Attribute *Session::attribute(const Place &place) const {
  return m_project->attribute(part(place.part), place.path);
}

// Both sides have made the same versions in the same order.
EntityModel::ModelVersion *Session::version(int number) const {
  const auto &versions = m_reference.model.versions;
  return m_project->versions().at(
      static_cast<std::size_t>(std::distance(versions.begin(), versions.find(number))));
}

Session::Place Session::anyPlace(Draws &draws, bool isInput) const {
  const Texts inputs = {"A", "A", "B", "N", "L"};
  const Texts outputs = {"X", "X", "Y", "A"};
  const Texts &all = isInput ? inputs : outputs;
  int number = draws.below(ReferenceModel::kParts);
  number = m_reference.model.parts[static_cast<std::size_t>(number)].isThere ? number : 0;
  return {number, all[static_cast<std::size_t>(draws.below(all.size()))]};
}

// Mostly an index of a group, now and then one before the first or up to so many behind the last.
int Session::anyGroup(Draws &draws, bool isInput, int beyond) const {
  const int count = m_reference.numGroups(isInput);
  if (draws.oneIn(6)) {
    return draws.oneIn(3) ? -1 : count + draws.below(static_cast<std::size_t>(beyond) + 1);
  }
  return draws.below(static_cast<std::size_t>(count));
}

std::string Session::anyValue(Draws &draws, std::size_t group) const {
  const Texts bad = {"junk", "2.5", "3 mm", ""};
  const Texts lengths = {"50 mm", "2 m", "7", "120 mm"};
  const Texts integers = {"4", "5", "9"};
  const Texts reals = {"1.5", "4", "6", "-3"};
  const auto &groups = m_reference.groups(true);
  const bool hasFirst = group < groups.size() && !groups[group].variables.empty();
  const std::string path = hasFirst ? groups[group].variables.front().path : "A";
  const Texts &good = path == "L" ? lengths : path == "N" ? integers : reals;
  const Texts &texts = draws.oneIn(16) ? bad : good;
  return texts[static_cast<std::size_t>(draws.below(texts.size()))];
}

Texts Session::anyValues(Draws &draws) const {
  std::size_t count = m_reference.groups(true).size();
  if (draws.oneIn(12)) {
    count = draws.oneIn(2) || count == 0 ? count + 1 : count - 1;
  }
  Texts values;
  for (std::size_t group = 0; group < count; ++group) {
    values.push_back(anyValue(draws, group));
  }
  return values;
}

std::string Session::anyCost(Draws &draws) const {
  const Texts fixed = {"",
                       " \t ",
                       "7",
                       "\t3",
                       "%P0.A%",
                       "2 * %P0.A% + %P1.X%",
                       "%P0.X% + 3 * %P1.X%",
                       "3 + %P0.L%",
                       "%P1.B% + 10 * %P0.N%",
                       "%P0.A% +",
                       "%Q0.A%"};
  Texts macros;
  for (const bool isInput : {true, false}) {
    for (const ReferenceStudy::Group &group : m_reference.groups(isInput)) {
      if (!group.variables.empty()) {
        macros.push_back(m_reference.macro(group));
      }
    }
  }
  if (macros.empty() || draws.oneIn(3)) {
    return fixed[static_cast<std::size_t>(draws.below(fixed.size()))];
  }
  const auto any = [&] {
    return "%" + macros[static_cast<std::size_t>(draws.below(macros.size()))] + "%";
  };
  return std::to_string(1 + draws.below(5)) + " * " + any() + (draws.oneIn(2) ? " + " + any() : "");
}

int Session::anyVersion(Draws &draws) const {
  auto found = m_reference.model.versions.begin();
  std::advance(found, draws.below(m_reference.model.versions.size()));
  return found->first;
}

} // namespace StudyProperty
