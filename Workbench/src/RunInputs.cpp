#include "Workbench/RunInputs.h"

#include "EmbeddedHost/RunFiles.h"
#include "Workbench/NearestWord.h"
#include "Workbench/UnitSystem.h"

#include <set>
#include <utility>

namespace Workbench {

namespace {

constexpr std::size_t kLargestInput = std::size_t{256} * 1024 * 1024;

// Why the placeholder can never be filled; empty when it can.
std::string problemOf(const EmbeddedHost::TemplatePlaceholder &placeholder, const StudyFile &study,
                      const UnitSystem &units) {
  const StudyAttribute *attribute = study.findAttribute(placeholder.name());
  if (attribute == nullptr) {
    std::vector<std::string> names;
    for (const StudyAttribute &known : study.attributes) {
      names.push_back(known.fullName());
    }
    return "the model has no attribute \"" + placeholder.name() + "\"" +
           didYouMean(placeholder.name(), names);
  }
  if (attribute->isResult) {
    return "\"" + placeholder.name() + "\" is a result: it has no value before the run";
  }
  if (attribute->kind == AttributeKind::Text || attribute->kind == AttributeKind::Choice) {
    return placeholder.unit.empty() && placeholder.formatText.empty()
               ? ""
               : "\"" + placeholder.name() + "\" is no number and takes neither unit nor format";
  }
  if (placeholder.unit.empty()) {
    return "";
  }
  std::string problem = units.problemOf(placeholder.unit);
  if (!problem.empty()) {
    return problem;
  }
  if (attribute->kind != AttributeKind::Real || !units.convert(1.0, attribute->unit, placeholder.unit)) {
    return "\"" + placeholder.name() + "\" is declared " +
           (attribute->unit.empty() ? "without a unit" : "in \"" + attribute->unit + "\"") +
           ", which cannot be converted to \"" + placeholder.unit + "\"" +
           UnitSystem::conversionHint(attribute->unit, placeholder.unit);
  }
  return "";
}

// What only the rule or the cost uses is no mistake: a price, for example.
void findUnused(const StudyFile &study, std::set<std::string> used, std::vector<FileProblem> &doubts) {
  for (const StudyFormula &formula : study.formulas) {
    used.insert(formula.variables.begin(), formula.variables.end());
  }
  used.insert(study.rule.variables.begin(), study.rule.variables.end());
  for (const StudyGroup &group : study.inputs) {
    for (const std::string &attribute : group.attributes) {
      const bool isPriced = study.cost.find("%" + attribute + "%") != std::string::npos;
      if (used.count(attribute) == 0 && !isPriced) {
        doubts.push_back({study.path, group.place.line, group.place.column,
                          study.solver.stages.empty()
                              ? "no formula uses \"" + attribute + "\": this input has no effect"
                              : "no template uses \"" + attribute + "\": the solver never sees this input"});
      }
    }
  }
}

} // namespace

std::optional<RunInputs> RunInputs::load(const StudyFile &study, const UnitSystem &units,
                                         std::vector<FileProblem> &doubts,
                                         std::vector<FileProblem> &problems) {
  RunInputs inputs;
  const std::size_t problemsBefore = problems.size();
  std::set<std::string> used;
  for (const StudyInputFile &entry : study.solver.templates) {
    const std::string path = study.pathOf(entry.from);
    std::string problem;
    const std::optional<std::string> text = EmbeddedHost::readWholeFile(path, kLargestInput, problem);
    if (!text) {
      problems.push_back({study.path, entry.place.line, entry.place.column, problem});
      continue;
    }
    std::optional<EmbeddedHost::TemplateFile> file = EmbeddedHost::TemplateFile::parse(path, *text, problems);
    if (!file) {
      continue;
    }
    if (file->placeholders().empty()) {
      doubts.push_back({study.path, entry.place.line, entry.place.column,
                        entry.from +
                            " holds no placeholder: every run gets the same file; list it under copies, or "
                            "put a placeholder in it"});
    }
    for (const EmbeddedHost::TemplatePlaceholder &placeholder : file->placeholders()) {
      const std::string why = problemOf(placeholder, study, units);
      if (!why.empty()) {
        problems.push_back({path, placeholder.line, placeholder.column, why});
      }
      used.insert(placeholder.name());
    }
    inputs.m_templates.push_back({std::move(*file), entry.to});
  }
  for (const StudyInputFile &entry : study.solver.copies) {
    std::string problem;
    RunFile file;
    file.name = entry.to;
    file.copyOf = study.pathOf(entry.from);
    file.fingerprint = fileFingerprint(file.copyOf, problem);
    if (file.fingerprint.empty()) {
      problems.push_back({study.path, entry.place.line, entry.place.column, problem});
    }
    inputs.m_copies.push_back(std::move(file));
  }
  loadCommands(study, units, used, problems, inputs);
  if (problems.size() != problemsBefore) {
    return std::nullopt;
  }
  findUnused(study, used, doubts);
  return inputs;
}

void RunInputs::loadCommands(const StudyFile &study, const UnitSystem &units, std::set<std::string> &used,
                             std::vector<FileProblem> &problems, RunInputs &inputs) {
  inputs.m_studyFile = study.path;
  for (const StudyStage &stage : study.solver.stages) {
    std::vector<Argument> command;
    for (const StudyArgument &written : stage.command) {
      Argument argument{written.text, std::nullopt, written.place};
      if (written.isPlaceholder) {
        std::vector<FileProblem> ignored; // the study file was read without a problem
        argument.placeholder = EmbeddedHost::TemplateFile::parse(study.path, written.text, ignored);
        const EmbeddedHost::TemplatePlaceholder &placeholder = argument.placeholder->placeholders().front();
        const std::string why = problemOf(placeholder, study, units);
        if (!why.empty()) {
          problems.push_back({study.path, written.place.line, written.place.column, why});
        }
        used.insert(placeholder.name());
      }
      command.push_back(std::move(argument));
    }
    inputs.m_commands.push_back(std::move(command));
  }
}

std::optional<std::vector<RunFile>> RunInputs::render(const EmbeddedHost::TemplateValueSource &source,
                                                      std::vector<FileProblem> &problems,
                                                      std::vector<FileProblem> *warnings) const {
  std::vector<RunFile> files;
  for (const Template &entry : m_templates) {
    std::optional<std::string> content = entry.file.render(source, problems, warnings);
    if (!content) {
      return std::nullopt;
    }
    files.push_back({entry.name, std::move(*content), "", ""});
  }
  files.insert(files.end(), m_copies.begin(), m_copies.end());
  return files;
}

std::optional<std::vector<std::vector<std::string>>>
RunInputs::renderCommands(const EmbeddedHost::TemplateValueSource &source, std::vector<FileProblem> &problems,
                          std::vector<FileProblem> *warnings) const {
  std::vector<std::vector<std::string>> commands;
  for (const std::vector<Argument> &written : m_commands) {
    std::vector<std::string> command;
    for (const Argument &argument : written) {
      if (!argument.placeholder) {
        command.push_back(argument.text);
        continue;
      }
      std::vector<FileProblem> found;
      std::vector<FileProblem> warned;
      const std::optional<std::string> text = argument.placeholder->render(source, found, &warned);
      // Places count within the argument; what helps is its place in the study file.
      for (const FileProblem &problem : found) {
        problems.push_back({m_studyFile, argument.place.line, argument.place.column, problem.message});
      }
      for (const FileProblem &warning : warned) {
        if (warnings != nullptr) {
          warnings->push_back({m_studyFile, argument.place.line, argument.place.column, warning.message});
        }
      }
      if (!text) {
        return std::nullopt;
      }
      command.push_back(*text);
    }
    commands.push_back(std::move(command));
  }
  return commands;
}

} // namespace Workbench
