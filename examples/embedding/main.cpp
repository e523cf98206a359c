// The shortest honest embedding: a host with a model, a study with two inputs and one output, three rows besides the
// baseline, results by formula, and the matrix with its costs.

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/Project.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

namespace {

constexpr std::uint64_t kAtTheEnd = std::numeric_limits<std::uint64_t>::max();

EmbeddedHost::ModelSchema beamModel() {
  EmbeddedHost::MemberType width;
  width.label = "Width";
  width.kind = EmbeddedHost::MemberKind::Real;
  width.standardUnit = "m";
  width.displayUnit = "mm";
  width.defaultText = "50";
  EmbeddedHost::MemberType height = width;
  height.label = "Height";
  height.defaultText = "100";
  EmbeddedHost::MemberType deflection = width;
  deflection.label = "Deflection";
  deflection.defaultText = "";
  deflection.isResult = true;
  EmbeddedHost::MemberType beams;
  beams.label = "Beams";
  beams.kind = EmbeddedHost::MemberKind::EntityList;
  beams.targetType = "Beam";

  EmbeddedHost::ModelSchema schema;
  schema.declareType("Beam", {width, height, deflection});
  schema.declareRootMembers({beams});
  return schema;
}

// A steel cantilever, 2 m long with 1 kN at its end: F L^3 / (3 E b h^3 / 12).
std::string deflectionText(double width, double height) {
  const double deflection = 1000.0 * 8.0 / (3.0 * 210e9 * width * height * height * height / 12.0);
  return std::to_string(1000.0 * deflection) + " mm";
}

// Solves the version of every row. The guard keeps the study in place while versions are switched under it.
bool solve(EmbeddedHost::Project &project, EmbeddedHost::Commands &commands, EntityModel::Entity *beam,
           OptimizationTool::OptimizationData &study) {
  const OptimizationTool::OptimizationDataSolvingGuard guard(study);
  for (std::size_t row = 0; row < study.getNumVariants(); ++row) {
    if (!commands.switchVersion(study.getVariantName(row))) {
      return false;
    }
    const double width = project.attribute(beam, "Width")->getStandardValue();
    const double height = project.attribute(beam, "Height")->getStandardValue();
    project.setValue(beam, "Deflection", deflectionText(width, height));
  }
  return static_cast<bool>(commands.switchVersion(study.getVariantName(0)));
}

void print(OptimizationTool::OptimizationData &study) {
  std::printf("%-10s %-8s %-8s %-14s %s\n", "row", "width", "height", "deflection", "cost");
  for (std::size_t row = 0; row < study.getNumVariants(); ++row) {
    const std::optional<double> cost = study.getVariantCost(row);
    std::printf("%-10s %-8s %-8s %-14s %s\n", study.getVariantName(row).c_str(),
                study.getVariantGroup(true, row, 0)->getValueAsString().c_str(),
                study.getVariantGroup(true, row, 1)->getValueAsString().c_str(),
                study.getVariantGroup(false, row, 0)->getValueAsString().c_str(),
                cost ? std::to_string(*cost).c_str() : "-");
  }
}

} // namespace

int main() {
  const auto project = EmbeddedHost::Project::create(beamModel());
  const HostModel::HostInstallation installed(*project);
  EmbeddedHost::Commands commands(*project);
  commands.announceOpened();
  EntityModel::Entity *beam = project->createEntity("Beam", project->rootEntity(), "Beams", "Beam");

  OptimizationTool::OptimizationManager &manager = OptimizationTool::OptimizationManager::instance();
  manager.beginStudy(EntityModel::ModelVersionStudyType::Parametric);
  manager.addInputAttribute(project->attribute(beam, "Width"));
  manager.addInputAttribute(project->attribute(beam, "Height"));
  manager.addOutputAttribute(project->attribute(beam, "Deflection"));

  OptimizationTool::OptimizationData &study = *manager.getData();
  study.setOptimisationTarget(MathematicalUtilities::OptimisationStrategy::Minimise);
  // The section in mm2, and a penalty for every millimetre beyond 3.
  study.setCostFunction("%Beam.Width% * %Beam.Height% + 1000.0 * max(%Beam.Deflection% - 3.0, 0.0)");
  study.addVariant({"40 mm", "120 mm"}, "slender", kAtTheEnd);
  study.addVariant({"60 mm", "90 mm"}, "stocky", kAtTheEnd);
  study.addVariant({"30 mm", "130 mm"}, "blade", kAtTheEnd);

  const bool isSolved = solve(*project, commands, beam, study);
  study.updateAlternates(OptimizationTool::OptimizationData::ReadFromModel, nullptr);
  print(study);
  return isSolved && commands.close() ? 0 : 1;
}
