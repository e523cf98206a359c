#include "Workbench/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>

namespace Workbench {

namespace {

const std::vector<std::string> kStreams{"stdout", "stderr"};

// What says how a result is found; each result has one of them.
const std::vector<std::string> kWays{"pattern", "key",   "column",    "pointer",
                                     "columns", "whole", "exit-code", "wall-time"};

// Keys that only some ways know.
struct WayKey {
  const char *key;
  std::vector<std::string> ways;
};
const std::vector<WayKey> kWayKeys{
    {"group", {"pattern"}},
    {"separators", {"key"}},
    {"delimiter", {"column"}},
    {"skip", {"column"}},
    {"where", {"column"}},
    {"line", {"columns"}},
    {"lines", {"columns"}},
    {"file", {"pattern", "key", "column", "pointer", "columns", "whole"}},
    {"log", {"pattern", "key", "column", "pointer", "columns", "whole"}},
    {"reduce", {"pattern", "key", "column", "pointer", "columns"}},
    {"after", {"pattern", "key", "column", "columns"}},
    {"until", {"pattern", "key", "column", "columns"}},
    {"unit", {"pattern", "key", "column", "pointer", "columns", "whole", "wall-time"}}};

std::vector<std::string> resultKeys() {
  std::vector<std::string> keys = kWays;
  for (const WayKey &wayKey : kWayKeys) {
    keys.emplace_back(wayKey.key);
  }
  keys.insert(keys.end(), {"stage", "minimum", "maximum"});
  return keys;
}

} // namespace

void StudyFileReader::readExtractors(const StudyNode &node, StudyFile &file) {
  for (const NodeReader::Entry &entry : m_nodes.entries(node, "results")) {
    readExtractor(entry, file);
  }
}

void StudyFileReader::readExtractor(const NodeReader::Entry &entry, StudyFile &file) {
  const StudyAttribute *attribute = readResultName(entry, file);
  const std::string what = "the result \"" + entry.key + "\"";
  const auto map = m_nodes.map(entry.value, what, resultKeys());
  if (!map) {
    return;
  }
  std::vector<std::string> ways;
  for (const std::string &way : kWays) {
    if (map->find(way) != nullptr) {
      ways.push_back(way);
    }
  }
  if (ways.size() != 1) {
    m_nodes.report(entry.value,
                   ways.empty() ? what + " needs one of pattern, key, column, pointer, columns, whole, "
                                         "exit-code or wall-time"
                                : what + " is found in one way, not by " + ways[0] + " and by " + ways[1]);
    return;
  }
  for (const WayKey &wayKey : kWayKeys) {
    const StudyNode *value = map->find(wayKey.key);
    if (value != nullptr && std::find(wayKey.ways.begin(), wayKey.ways.end(), ways[0]) == wayKey.ways.end()) {
      m_nodes.report(*value, what + ": \"" + wayKey.key + "\" does not go with \"" + ways[0] + "\"");
    }
  }
  StudyExtractor extractor;
  extractor.attribute = entry.key;
  extractor.place = entry.keyNode.place();
  EmbeddedHost::ExtractionRule rule;
  if (!readSearch(ways[0], *map, rule)) {
    return;
  }
  if (ways[0] == "exit-code" || ways[0] == "wall-time") {
    extractor.source = ways[0] == "exit-code" ? ResultSource::ExitCode : ResultSource::WallTime;
  } else {
    std::string problem;
    extractor.extractor = EmbeddedHost::ResultExtractor::create(std::move(rule), problem);
    if (!extractor.extractor) {
      m_nodes.report(*map->find(ways[0]), problem);
      return;
    }
  }
  readSource(*map, what, file.solver, extractor);
  readResultUnit(*map, attribute, extractor);
  readPlausible(*map, attribute, extractor.minimum, extractor.maximum);
  file.solver.extractors.push_back(std::move(extractor));
}

// The result that a key names; null, and reported, when it is none.
const StudyAttribute *StudyFileReader::readResultName(const NodeReader::Entry &entry, const StudyFile &file) {
  const StudyAttribute *attribute = file.findAttribute(entry.key);
  if (attribute == nullptr) {
    std::vector<std::string> names;
    for (const StudyAttribute &known : file.attributes) {
      if (known.isResult) {
        names.push_back(known.fullName());
      }
    }
    m_nodes.report(entry.keyNode,
                   "the model has no attribute \"" + entry.key + "\"" + didYouMean(entry.key, names));
  } else if (!attribute->isResult) {
    m_nodes.report(entry.keyNode,
                   "\"" + entry.key + "\" is not declared as a result: it needs \"result: true\"");
  }
  return attribute;
}

std::optional<std::size_t> StudyFileReader::readStageReference(const StudyNode &node,
                                                               const StudySolver &solver) {
  const std::optional<std::string> name = m_nodes.word(node, "stage");
  if (!name) {
    return std::nullopt;
  }
  std::vector<std::string> names;
  for (std::size_t index = 0; index < solver.stages.size(); ++index) {
    if (solver.stages[index].name == *name) {
      return index;
    }
    if (!solver.stages[index].name.empty()) {
      names.push_back(solver.stages[index].name);
    }
  }
  m_nodes.report(node, "no command is called \"" + *name + "\"" + didYouMean(*name, names));
  return std::nullopt;
}

void StudyFileReader::readSource(const NodeReader::Map &map, const std::string &what,
                                 const StudySolver &solver, StudyExtractor &extractor) {
  const StudyNode *log = map.find("log");
  const StudyNode *name = map.find("file");
  const StudyNode *stage = map.find("stage");
  if (log != nullptr) {
    const bool isError = m_nodes.choice(*log, "log", kStreams).value_or(0) == 1;
    extractor.source = isError ? ResultSource::StandardError : ResultSource::StandardOutput;
  }
  if (name != nullptr) {
    extractor.source = ResultSource::File;
    extractor.file = m_nodes.word(*name, "file").value_or("");
    checkPath(*name, extractor.file, "a file of a run");
    if (log != nullptr) {
      m_nodes.report(*name, what + " is found in a file or in a log, not in both");
    }
    if (stage != nullptr) {
      m_nodes.report(*stage, what + ": a file belongs to the whole run and not to a stage");
    }
    return;
  }
  if (stage != nullptr) {
    extractor.stage = readStageReference(*stage, solver);
  } else if (extractor.source != ResultSource::WallTime) {
    extractor.stage = solver.stages.size() - 1;
  }
}

void StudyFileReader::readResultUnit(const NodeReader::Map &map, const StudyAttribute *attribute,
                                     StudyExtractor &extractor) {
  const bool isTime = extractor.source == ResultSource::WallTime;
  const StudyNode *unitNode = map.find("unit");
  if (unitNode != nullptr) {
    extractor.unit = m_nodes.text(*unitNode, "unit").value_or("");
    checkUnit(*unitNode, extractor.unit);
  } else if (attribute != nullptr) {
    // The wall time is in seconds; an attribute without a unit takes it as a number of seconds.
    extractor.unit = isTime && !attribute->unit.empty() ? "s" : attribute->unit;
  }
  if (attribute != nullptr && (unitNode != nullptr || isTime) && m_units.isUnit(extractor.unit) &&
      !m_units.convert(1.0, extractor.unit, attribute->unit)) {
    m_nodes.report(unitNode != nullptr ? unitNode->place() : extractor.place,
                   "\"" + extractor.unit + "\" cannot be converted to \"" + attribute->unit +
                       "\", in which \"" + extractor.attribute + "\" is declared" +
                       UnitSystem::conversionHint(extractor.unit, attribute->unit));
  }
}

// The range outside of which a number is taken for a mistake of the solver.
void StudyFileReader::readPlausible(const NodeReader::Map &map, const StudyAttribute *attribute,
                                    std::optional<double> &minimum, std::optional<double> &maximum) {
  if (attribute == nullptr) {
    return;
  }
  for (const char *key : {"minimum", "maximum"}) {
    if (const StudyNode *limit = map.find(key)) {
      (std::string(key) == "minimum" ? minimum : maximum) = readReal(*limit, *attribute, false);
    }
  }
  if (minimum && maximum && *minimum > *maximum) {
    m_nodes.report(*map.find("maximum"), "the maximum is below the minimum");
  }
}

// A pattern alone, or a map that says where to look for it.
void StudyFileReader::readSuccess(const StudyNode &node, StudySolver &solver) {
  const StudyNode *pattern = &node;
  StudyExtractor source;
  source.stage = solver.stages.size() - 1;
  if (!node.isScalar()) {
    const auto map = m_nodes.map(node, "success", {"pattern", "file", "log", "stage"});
    if (!map) {
      return;
    }
    pattern = map->find("pattern");
    if (pattern == nullptr) {
      m_nodes.report(node, "success needs a pattern");
      return;
    }
    readSource(*map, "success", solver, source);
  }
  const std::optional<std::string> text = m_nodes.word(*pattern, "pattern");
  std::string problem;
  auto made = text ? EmbeddedHost::LinePattern::create(*text, problem) : std::nullopt;
  if (!problem.empty()) {
    m_nodes.report(*pattern, problem);
  }
  if (made) {
    solver.success =
        StudyMarker{std::move(*made), source.source, source.file, source.stage.value_or(0), node.place()};
  }
}

// Every result has to come from somewhere, and from one place only.
void StudyFileReader::checkResults(const StudyFile &file) {
  for (const StudyAttribute &attribute : file.attributes) {
    const auto isFor = [&attribute](const auto &source) {
      return source.attribute == attribute.fullName();
    };
    const auto &extractors = file.solver.extractors;
    const bool isExtracted = std::any_of(extractors.begin(), extractors.end(), isFor);
    const auto formula = std::find_if(file.formulas.begin(), file.formulas.end(), isFor);
    if (isExtracted && formula != file.formulas.end()) {
      m_nodes.report(formula->place, "\"" + attribute.fullName() + "\" is found by the solver already");
    } else if (attribute.isResult && !isExtracted && formula == file.formulas.end()) {
      m_nodes.report(attribute.place,
                     file.solver.stages.empty()
                         ? "no formula computes the result \"" + attribute.fullName() + "\""
                         : "nothing under \"results\" of the solver says where the result \"" +
                               attribute.fullName() + "\" is found");
    }
  }
}

} // namespace Workbench
