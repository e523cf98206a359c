#include "HostModel/Attribute.h"
#include "HostModel/AttributePath.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/EntityManager.h"
#include "OptimizationTool/OptimizationDataSolvingGuard.h"
#include "tests/study-fault/Flow.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace StudyFaults {

using EntityModel::ModelVersionStudyType;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationDataSolvingGuard;

namespace {

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();
constexpr OptimizationData::UpdateType kWrite = OptimizationData::WriteToModel;
constexpr OptimizationData::UpdateType kRead = OptimizationData::ReadFromModel;

using Run = std::function<void(Stage &)>;

void begin(Stage &stage) {
  stage.beginStudy();
  stage.addGroups();
  stage.addRows();
}

// As begin(), with a fourth row's worth of groups to move about: Pump.Angle alone, and a name.
void beginWithSpareGroup(Stage &stage) {
  begin(stage);
  Stage::data().addGroup(true, stage.attribute("Pump", "Angle"));
  Stage::data().setCostFunction(Stage::kCost);
}

// The other version is shown without the manager's knowledge, whose study data stay.
void beginAndShowA(Stage &stage) {
  begin(stage);
  stage.show("A");
}

std::function<std::string(Stage &)> silent(Run run) {
  return [run = std::move(run)](Stage &stage) {
    run(stage);
    return std::string();
  };
}

std::string indexText(std::size_t index) {
  return std::to_string(index);
}

FlowRules rules(void (*set)(FlowRules &)) {
  FlowRules result;
  set(result);
  return result;
}

void studyLife(std::vector<Flow> &all) {
  const FlowRules beginning =
      rules([](FlowRules &r) { r.switches = r.builds = r.loads = r.makesCopy = r.beginsOrEnds = true; });
  all.push_back({"beginStudy", [](Stage &) {},
                 silent([](Stage &) { Stage::manager().beginStudy(ModelVersionStudyType::Parametric); }),
                 beginning});
  all.push_back({"beginStudy with a configuration", [](Stage &) {},
                 silent([](Stage &) { Stage::manager().beginStudy(ModelVersionStudyType::Optimality); }),
                 beginning});
  FlowRules ending = rules([](FlowRules &r) { r.beginsOrEnds = true; });
  ending.mayGo = {"A", "B", Stage::kCopy};
  all.push_back({"endStudy, versions destroyed", begin,
                 silent([](Stage &) { Stage::manager().endStudy(true); }), ending});
  ending.mayGo.clear();
  all.push_back(
      {"endStudy, versions kept", begin, silent([](Stage &) { Stage::manager().endStudy(false); }), ending});
  const FlowRules loading = rules([](FlowRules &r) { r.prices = r.builds = r.loads = true; });
  all.push_back(
      {"initializeVersion", begin, silent([](Stage &) { Stage::manager().initializeVersion(); }), loading});
  FlowRules elsewhere = loading;
  elsewhere.loads = false;
  elsewhere.appendsRows = elsewhere.switches = true;
  elsewhere.ends = "Base";
  all.push_back({"initializeVariants, another version current", beginAndShowA,
                 silent([](Stage &) { Stage::data().initializeVariants(nullptr); }), elsewhere});
}

void versions(std::vector<Flow> &all) {
  const FlowRules adding = rules([](FlowRules &r) { r.switches = true; });
  all.push_back({"addVariant", begin,
                 [](Stage &) {
                   return indexText(Stage::data().addVariant({"13 m/s", "23"}, "C", kAtEnd));
                 },
                 adding});
  all.push_back({"addVariant without a name", begin,
                 [](Stage &) {
                   return indexText(Stage::data().addVariant({"13 m/s", "23"}, "", 0));
                 },
                 adding});
  all.push_back({"addVariant from a row", begin,
                 [](Stage &) { return indexText(Stage::data().addVariant(1, "C", kAtEnd)); }, adding});
  const FlowRules copying = rules([](FlowRules &r) { r.switches = r.makesCopy = true; });
  all.push_back({"createCopyVersion, a new one", begin,
                 silent([](Stage &) { Stage::data().createCopyVersion(true); }), copying});
  all.push_back({"createCopyVersion, an adopted one",
                 [](Stage &stage) {
                   begin(stage);
                   Stage::data().setCopyVersionName("");
                 },
                 silent([](Stage &) { Stage::data().createCopyVersion(false); }), copying});
  all.push_back({"createMissingVersions",
                 [](Stage &stage) {
                   begin(stage);
                   stage.destroy("A");
                   stage.destroy("B");
                 },
                 silent([](Stage &) { Stage::data().createMissingVersions(); }), copying});
  all.push_back({"createMissingVersions and the copy",
                 [](Stage &stage) {
                   begin(stage);
                   stage.destroy("A");
                   stage.destroy("B");
                   stage.destroy(Stage::kCopy);
                   Stage::data().setCopyVersionName("");
                 },
                 silent([](Stage &) { Stage::data().createMissingVersions(); }), copying});
  // One row without its version, so that what follows its creation is all that happens.
  all.push_back({"processNewVersion",
                 [](Stage &stage) {
                   begin(stage);
                   stage.destroy("B");
                 },
                 silent([](Stage &) { Stage::data().createMissingVersions(); }), copying});
}

void updates(std::vector<Flow> &all) {
  const FlowRules writing = rules([](FlowRules &r) { r.switches = true; });
  FlowRules reading = writing;
  reading.prices = true;
  const std::vector<std::pair<std::string, OptimizationData::UpdateTypes>> types = {
      {"1", kWrite}, {"2", kRead}, {"3", kWrite | kRead}};
  for (const auto &[text, flags] : types) {
    const OptimizationData::UpdateTypes type = flags;
    const FlowRules &updating = text == "1" ? writing : reading;
    all.push_back({"updateAlternate " + text, begin,
                   silent([type](Stage &) { Stage::data().updateAlternate(type, 1); }), updating});
    all.push_back({"updateAlternates " + text, begin,
                   silent([type](Stage &) { Stage::data().updateAlternates(type, nullptr); }), updating});
  }
  all.push_back({"updateAlternates 2 while solving", begin, silent([](Stage &) {
                   const OptimizationDataSolvingGuard guard(Stage::data());
                   Stage::data().updateAlternates(kRead, nullptr);
                 }),
                 reading});
  all.push_back({"setVariantValue", begin, silent([](Stage &) { Stage::data().setVariantValue(1, 1, "25"); }),
                 reading});
  all.push_back({"setVariantValues", begin, silent([](Stage &) {
                   Stage::data().setVariantValues("B", {"15 m/s", "25"});
                 }),
                 reading});
  all.push_back({"an edit of the baseline", begin, silent([](Stage &stage) {
                   EntityGUI::EntityManager::setValue(stage.part("Fan"), EntityModel::AttributePath("Angle"),
                                                      "24", true);
                 }),
                 reading});
}

void costs(std::vector<Flow> &all) {
  const FlowRules building = rules([](FlowRules &r) { r.prices = r.builds = true; });
  all.push_back({"setCostFunction", begin,
                 silent([](Stage &) { Stage::data().setCostFunction("%Fan.Angle% + %Fan.Noise%"); }),
                 building});
  const FlowRules pricing = rules([](FlowRules &r) { r.prices = true; });
  all.push_back(
      {"recalculateCosts", begin, silent([](Stage &) { Stage::data().recalculateCosts(); }), pricing});
}

void groups(std::vector<Flow> &all) {
  const FlowRules editing;
  const FlowRules adding = rules([](FlowRules &r) { r.addsGroup = true; });
  const FlowRules removing = rules([](FlowRules &r) { r.removesCells = true; });
  all.push_back({"addGroup, an input", begin,
                 [](Stage &stage) {
                   return std::to_string(Stage::data().addGroup(true, stage.attribute("Pump", "Angle")));
                 },
                 adding});
  all.push_back({"addGroup, an output", begin,
                 [](Stage &stage) {
                   return std::to_string(Stage::data().addGroup(false, stage.attribute("Pump", "Power")));
                 },
                 adding});
  all.push_back({"addGroupFromGroup", begin,
                 [](Stage &) { return std::to_string(Stage::data().addGroupFromGroup(true, 0)); }, adding});
  all.push_back({"addInputAttribute", begin, silent([](Stage &stage) {
                   Stage::manager().addInputAttribute(stage.attribute("Pump", "Angle"));
                 }),
                 adding});
  all.push_back({"appendVariable", begin, silent([](Stage &stage) {
                   Stage::data().getGroup(true, 1).appendVariable(stage.attribute("Pump", "Angle"));
                 }),
                 adding});
  all.push_back(
      {"removeGroup", begin, silent([](Stage &) { Stage::data().removeGroup(true, 0); }), removing});
  all.push_back({"removeFromGroup", begin, silent([](Stage &stage) {
                   Stage::data().removeFromGroup(false, stage.attribute("Fan", "Power"));
                 }),
                 removing});
  all.push_back({"removeAttributeFromGroup", begin,
                 silent([](Stage &) { Stage::data().removeAttributeFromGroup(true, 2); }), removing});
  all.push_back({"moveAttribute", begin, silent([](Stage &) { Stage::data().moveAttribute(true, 0, 1, 1); }),
                 removing});
  all.push_back({"moveAttribute, the last of its group", beginWithSpareGroup,
                 silent([](Stage &) { Stage::data().moveAttribute(true, 1, 0, 2); }), removing});
  all.push_back({"moveGroup", begin, silent([](Stage &) { Stage::data().moveGroup(true, 0, 2); }), editing});
  all.push_back(
      {"setGroupName", begin, silent([](Stage &) { Stage::data().setGroupName(true, 1, "tilt"); }), editing});
}

void rows(std::vector<Flow> &all) {
  FlowRules removing;
  removing.mayGo = {"A"};
  all.push_back({"removeVariant, version destroyed", begin,
                 silent([](Stage &) { Stage::data().removeVariant(1, true); }), removing});
  all.push_back({"removeVariant, version kept", begin,
                 silent([](Stage &) { Stage::data().removeVariant(1, false); }), removing});
  all.push_back({"setVariantName",
                 [](Stage &stage) {
                   begin(stage);
                   stage.adjusted().folderAnswers = {"first", "second", "third"};
                 },
                 silent([](Stage &) { Stage::data().setVariantName(1, "C"); }), removing});
}

} // namespace

const std::vector<Flow> &flows() {
  static const std::vector<Flow> all = [] {
    std::vector<Flow> list;
    studyLife(list);
    versions(list);
    updates(list);
    costs(list);
    groups(list);
    rows(list);
    return list;
  }();
  return all;
}

} // namespace StudyFaults
