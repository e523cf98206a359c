// A study of a square plate over the minimal host: one input, one output, a cost, and three rows besides the baseline.

#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/ModelVersion.h"
#include "MinimalHost.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <QString>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using EntityModel::TypeRef;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationManager;

namespace {

constexpr std::uint64_t kAtTheEnd = std::numeric_limits<std::uint64_t>::max();

const TypeRef kPlate = TypeRef::fromLabel("Plate");
const TypeRef kPlates = TypeRef::fromLabel("Plates");
const TypeRef kSide = TypeRef::fromLabel("Side");
const TypeRef kWeight = TypeRef::fromLabel("Weight");

void showVersion(const std::string &label) {
  EntityModel::ChangeManager &versions = *EntityEditor::getChangeManager();
  versions.setCurrentVersion(versions.findVersion(label, nullptr), nullptr, false, nullptr, true);
}

// A square metre weighs 2.5 kg. The guard keeps the study in place while versions are switched under it.
void solve(EntityModel::Entity *plate, OptimizationData &study) {
  const OptimizationTool::OptimizationDataSolvingGuard guard(study);
  for (std::size_t row = 0; row < study.getNumVariants(); ++row) {
    showVersion(study.getVariantName(row));
    const double side = plate->findAttribute(AttributePath(kSide))->getStandardValue();
    const std::string weight = QString::number(2.5 * side * side, 'g', 17).toStdString();
    EntityEditor::setValue(plate, AttributePath(kWeight), weight, false, nullptr, true, true);
  }
  showVersion(study.getBaseVersionName());
}

void print(OptimizationData &study) {
  std::printf("%-8s %-6s %-8s %s\n", "row", "side", "weight", "cost");
  for (std::size_t row = 0; row < study.getNumVariants(); ++row) {
    std::printf("%-8s %-6s %-8s %.2f\n", study.getVariantName(row).c_str(),
                study.getVariantGroup(true, row, 0)->getValueAsString().c_str(),
                study.getVariantGroup(false, row, 0)->getValueAsString().c_str(),
                study.getVariantCost(row).value());
  }
}

} // namespace

int main() {
  using MinimalHost::Kind;
  MinimalHost::Host host({{kPlates, Kind::List}},
                         {{"Plate", {{kSide, Kind::Real, "4"}, {kWeight, Kind::Real, "", true}}}});
  const HostModel::HostInstallation installed(host);
  host.open();
  EntityModel::Entity *plate = EntityEditor::createEntity(
      kPlate, EntityEditor::getRootEntity(), AttributePath(kPlates), nullptr, true, true, false, "Plate", -1);

  OptimizationManager &manager = OptimizationManager::instance();
  manager.beginStudy(EntityModel::ModelVersionStudyType::Parametric);
  manager.addInputAttribute(plate, AttributePath(kSide));
  manager.addOutputAttribute(plate, AttributePath(kWeight));
  OptimizationData &study = *manager.getData();
  study.setCostFunction("%Plate.Weight% + 100.0 / %Plate.Side%");
  study.addVariant({"2"}, "small", kAtTheEnd);
  study.addVariant({"5"}, "medium", kAtTheEnd);
  study.addVariant({"10"}, "large", kAtTheEnd);

  solve(plate, study);
  study.updateAlternates(OptimizationData::ReadFromModel, nullptr);
  print(study);

  manager.endStudy(true);
  const EntityModel::ModelVersion &base = *EntityEditor::getChangeManager()->getRootVersion(false);
  std::printf("%s has %d followers, and %s\n", base.getLabel().c_str(),
              static_cast<int>(base.endNext() - base.beginNext()),
              manager.getData() == nullptr ? "no study" : "a study");
  host.close();
  return 0;
}
