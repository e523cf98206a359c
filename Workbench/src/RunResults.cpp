#include "Workbench/src/RunResults.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/UnitSystem.h"

#include <array>
#include <cmath>
#include <map>

namespace Workbench {

namespace {

// In the order of FailureReason.
constexpr std::array<const char *, kFailureReasons> kReasonTexts{
    "exit code: ", "signal: ", "time limit: ", "extraction: ", "not a number: ", "output too large: "};

std::string reasonText(FailureReason reason) {
  return kReasonTexts.at(static_cast<std::size_t>(reason));
}

std::string withUnit(double number, const std::string &unit) {
  return EmbeddedHost::writeSolverNumber(number) + (unit.empty() ? "" : " " + unit);
}

// The file in the run's folder that a log or file is kept in.
std::string fileOf(const StudySolver &solver, ResultSource source, const std::string &file,
                   std::size_t stage) {
  if (source == ResultSource::File) {
    return file;
  }
  return source == ResultSource::StandardError ? solver.stages[stage].errorLog()
                                               : solver.stages[stage].outputLog();
}

bool isLog(ResultSource source) {
  return source == ResultSource::StandardOutput || source == ResultSource::StandardError;
}

double secondsOf(const StudyExtractor &extractor, const EndedRun &run) {
  double seconds = 0.0;
  for (std::size_t index = 0; index < run.stages.size(); ++index) {
    seconds += !extractor.stage || *extractor.stage == index ? run.stages[index].seconds : 0.0;
  }
  return seconds;
}

// Reads one result after the other.
class ResultReader {
public:
  ResultReader(const StudyFile &study, const UnitSystem &units, const EndedRun &run)
      : m_study(study), m_units(units), m_run(run) {}

  std::string checkSuccess() const {
    const std::optional<StudyMarker> &success = m_study.solver.success;
    if (!success) {
      return "";
    }
    const std::string file = fileOf(m_study.solver, success->source, success->file, success->stage);
    std::string problem;
    const std::optional<std::string> text = EmbeddedHost::readWholeFile(
        m_run.folder + "/" + file, EmbeddedHost::ResultExtractor::kLargestFile, problem);
    std::string_view rest = text ? std::string_view(*text) : std::string_view();
    while (!rest.empty()) {
      if (success->pattern.isIn(EmbeddedHost::takeLine(rest))) {
        return "";
      }
    }
    return reasonText(FailureReason::Extraction) + file + ": no line matches " +
           EmbeddedHost::quotedBeginning(success->pattern.pattern()) + ", which a run that succeeds writes";
  }

  // "" with the number, in the unit that it is written in.
  std::string find(const StudyExtractor &extractor, double &number) const {
    if (extractor.source == ResultSource::WallTime) {
      const std::optional<double> time = m_units.convert(secondsOf(extractor, m_run), "s", extractor.unit);
      number = time.value_or(secondsOf(extractor, m_run)); // without a unit it is a number of seconds
      return "";
    }
    if (extractor.source == ResultSource::ExitCode) {
      number = m_run.stages[*extractor.stage].exitCode;
      return "";
    }
    const std::size_t stage = extractor.stage.value_or(0);
    const std::string file = fileOf(m_study.solver, extractor.source, extractor.file, stage);
    if (isLog(extractor.source) && m_run.stages[stage].isOutputTruncated) {
      return reasonText(FailureReason::OutputTooLarge) + file + " is not complete";
    }
    const EmbeddedHost::ExtractedResult found =
        extractor.extractor->extractFromFile(m_run.folder + "/" + file, file);
    if (!found.value) {
      const bool isNoNumber = found.failure == EmbeddedHost::ExtractionFailure::NotANumber;
      return reasonText(isNoNumber ? FailureReason::NotANumber : FailureReason::Extraction) +
             extractor.attribute + ": " + found.reason;
    }
    number = *found.value;
    return "";
  }

  // "" with the number in the attribute's declared unit, if the attribute can have it.
  std::string declare(const StudyExtractor &extractor, double &number) const {
    const StudyAttribute &attribute = *m_study.findAttribute(extractor.attribute);
    const std::optional<double> value = extractor.source == ResultSource::WallTime && attribute.unit.empty()
                                            ? number
                                            : m_units.convert(number, extractor.unit, attribute.unit);
    if (!value || !std::isfinite(*value)) {
      return reasonText(FailureReason::NotANumber) + extractor.attribute + ": " +
             EmbeddedHost::writeSolverNumber(number) + " cannot be converted to the declared unit";
    }
    if (const std::string fault = wholeNumberFault(attribute, *value); !fault.empty()) {
      return reasonText(FailureReason::NotANumber) + extractor.attribute + ": " +
             EmbeddedHost::writeSolverNumber(number) + " is " + fault;
    }
    const bool isBelow = extractor.minimum && *value < *extractor.minimum;
    if (isBelow || (extractor.maximum && *value > *extractor.maximum)) {
      return reasonText(FailureReason::Extraction) + extractor.attribute + ": " +
             withUnit(*value, attribute.unit) + " is not plausible: " + (isBelow ? "below " : "above ") +
             withUnit(isBelow ? *extractor.minimum : *extractor.maximum, attribute.unit);
    }
    number = *value;
    return "";
  }

private:
  const StudyFile &m_study;
  const UnitSystem &m_units;
  const EndedRun &m_run;
};

} // namespace

std::vector<std::string> resultNames(const StudyFile &study) {
  std::vector<std::string> names;
  names.reserve(study.solver.extractors.size() + study.formulas.size());
  for (const StudyExtractor &extractor : study.solver.extractors) {
    names.push_back(extractor.attribute);
  }
  for (const StudyFormula &formula : study.formulas) {
    names.push_back(formula.attribute);
  }
  return names;
}

std::string readResults(const StudyFile &study, const UnitSystem &units, const StudyExpressions &expressions,
                        const EndedRun &run, const AttributeValues &inputs, std::vector<double> &values) {
  const ResultReader reader(study, units, run);
  values.clear();
  std::string problem = reader.checkSuccess();
  std::map<std::string, double> found;
  for (const StudyExtractor &extractor : study.solver.extractors) {
    double number = 0.0;
    if (problem.empty()) {
      problem = reader.find(extractor, number);
    }
    if (problem.empty()) {
      problem = reader.declare(extractor, number);
    }
    values.push_back(number);
    found[extractor.attribute] = number;
  }
  if (!problem.empty()) {
    return problem;
  }
  std::vector<double> computed;
  problem = expressions.compute(
      [&](const std::string &name) {
        const auto result = found.find(name);
        return result == found.end() ? inputs(name) : std::optional<double>(result->second);
      },
      computed);
  values.insert(values.end(), computed.begin(), computed.end());
  return problem;
}

std::vector<std::string> resultFiles(const StudySolver &solver) {
  std::vector<std::string> files;
  for (const StudyStage &stage : solver.stages) {
    files.push_back(stage.outputLog());
    files.push_back(stage.errorLog());
  }
  for (const StudyExtractor &extractor : solver.extractors) {
    if (extractor.source == ResultSource::File) {
      files.push_back(extractor.file);
    }
  }
  if (solver.success && solver.success->source == ResultSource::File) {
    files.push_back(solver.success->file);
  }
  return files;
}

std::optional<FailureReason> failureReason(const std::string &reason) {
  for (std::size_t index = 0; index < kFailureReasons; ++index) {
    const std::string beginning = kReasonTexts.at(index);
    if (reason.compare(0, beginning.size(), beginning) == 0) {
      return static_cast<FailureReason>(index);
    }
  }
  return std::nullopt;
}

} // namespace Workbench
