#include "HostModel/AttributePath.h"
#include "HostModel/EntityEditor.h"
#include "tests/study-property/Session.h"

#include <QDir>
#include <QTemporaryDir>

// Steps of the manager and of the host's user.

namespace StudyProperty {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;

namespace {

std::string doneOrRefused(bool isDone) {
  return isDone ? "done" : "refused";
}

} // namespace

void Session::actOnHost(const Step &step, Draws &draws) {
  switch (step.operation) {
  case Operation::BeginStudy: {
    const int type = draws.oneIn(4) ? 3 : 1;
    const bool isFree = m_reference.model.versions.at(m_reference.model.current).studyType == 0;
    ++m_tally[isFree ? "beginStudy where none is" : "beginStudy where one is"];
    return bothDo(
        "beginStudy(" + std::to_string(type) + ")", [&] { m_reference.beginStudy(type); },
        [&] { manager().beginStudy(static_cast<ModelVersionStudyType>(type)); });
  }
  case Operation::EndStudy: {
    const bool deletes = draws.oneIn(2);
    return bothDo(
        deletes ? "endStudy(true)" : "endStudy(false)", [&] { m_reference.endStudy(deletes); },
        [&] { manager().endStudy(deletes); });
  }
  case Operation::InitializeVersion:
    return bothDo(
        "initializeVersion()", [&] { m_reference.initializeVersion(); },
        [&] { manager().initializeVersion(); });
  case Operation::Solve:
    return m_reference.held.has_value() ? solve(draws) : void();
  case Operation::EditModel:
    return edit(draws);
  case Operation::Save:
  case Operation::Reopen:
    return saveAndReopen(step);
  default:
    return changeVersions(step, draws);
  }
}

// Every row's version has results afterwards: X is twice A, Y is one more than B.
void Session::solve(Draws &draws) {
  const bool edits = draws.oneIn(3);
  const bool reads = !draws.oneIn(4);
  const std::string what =
      std::string("solver run") + (edits ? " with an edit" : "") + (reads ? ", read back" : "");
  bothDo(
      what,
      [&] {
        m_reference.isSolving = true;
        solveVersions(edits);
        m_reference.isSolving = false;
        if (reads) {
          m_reference.updateAlternates(2, m_reference.allRows());
        }
      },
      [&] {
        {
          const EmbeddedHost::Commands::SolverRun run(*m_commands);
          const OptimizationTool::OptimizationDataSolvingGuard guard(data());
          const auto solvedText = [&](EntityModel::Entity *each, const char *input, double factor,
                                      double more) {
            const EntityModel::Attribute *value = m_project->attribute(each, input);
            const Value result = {Kind::Real, factor * value->getStandardValue() + more, ""};
            return value->hasValue() ? result.text() : std::string();
          };
          for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
            if (!m_commands->switchVersion(data().getVariantName(row))) {
              continue;
            }
            for (int number = 0; number < ReferenceModel::kParts; ++number) {
              if (m_reference.model.parts[static_cast<std::size_t>(number)].isThere) {
                EntityModel::Entity *each = part(number);
                m_project->setValue(each, "X", solvedText(each, "A", 2.0, 0.0));
                m_project->setValue(each, "Y", solvedText(each, "B", 1.0, 1.0));
              }
            }
          }
          const bool isBack = static_cast<bool>(m_commands->switchVersion(data().getBaseVersionName()));
          if (edits && isBack) {
            m_tally["edit during a solver run"] +=
                m_commands->edit(part(0), AttributePath("A"), "8.5").problem.empty() ? 1 : 0;
          }
        }
        if (reads) {
          data().updateAlternates(OptimizationTool::OptimizationData::ReadFromModel, nullptr);
        }
      });
}

void Session::solveVersions(bool edits) {
  ReferenceModel &model = m_reference.model;
  for (const ReferenceStudy::Row &row : m_reference.held->rows) {
    const int found = model.find(row.name);
    if (found == ReferenceModel::kNone) {
      continue;
    }
    m_reference.makeCurrent(found);
    for (int number = 0; number < ReferenceModel::kParts; ++number) {
      if (model.parts[static_cast<std::size_t>(number)].isThere) {
        const Value &a = model.value(found, number, "A");
        const Value &b = model.value(found, number, "B");
        const Value x = {Kind::Real, 2.0 * a.standard(), ""};
        const Value y = {Kind::Real, b.standard() + 1.0, ""};
        model.setText(number, "X", a.number.has_value() ? x.text() : "");
        model.setText(number, "Y", b.number.has_value() ? y.text() : "");
      }
    }
  }
  const int base = model.find(m_reference.study().base);
  if (base != ReferenceModel::kNone) {
    m_reference.makeCurrent(base);
    if (edits) {
      m_reference.edit(0, "A", "8.5");
    }
  }
}

void Session::edit(Draws &draws) {
  const Place place = anyPlace(draws, true);
  const Place edited = {place.part, draws.oneIn(10) ? "X" : place.path};
  const Texts values = {"1", "5", "7", "12", "3.5", "", "junk", "4 m"};
  const std::string &value = values[static_cast<std::size_t>(draws.below(values.size()))];
  both(
      "edit(P" + std::to_string(edited.part) + "." + edited.path + ", \"" + value + "\")",
      [&] { return doneOrRefused(m_reference.edit(edited.part, edited.path, value)); },
      [&] {
        return doneOrRefused(
            m_commands->edit(part(edited.part), AttributePath(edited.path), value).problem.empty());
      });
}

void Session::changeVersions(const Step &step, Draws &draws) {
  ReferenceModel &model = m_reference.model;
  const int number = anyVersion(draws);
  const std::string label = model.label(number);
  const std::string newLabel = "U" + std::to_string(draws.below(4));
  switch (step.operation) {
  case Operation::SwitchVersion:
  case Operation::SwitchToBaseline: {
    int target = number;
    for (const auto &[each, version] : model.versions) {
      const bool isWanted = version.studyType != 0 && (target == number || draws.oneIn(2));
      target = step.operation == Operation::SwitchToBaseline && isWanted ? each : target;
    }
    // A load makes the oldest version with the baseline's label current, which then is not the one that was meant.
    return both(
        "switch(\"" + model.label(target) + "\")",
        [&] {
          m_reference.makeCurrent(target);
          return doneOrRefused(model.current == target);
        },
        [&] { return doneOrRefused(m_commands->switchVersion(version(target)).problem.empty()); });
  }
  case Operation::AddVersion:
    if (model.find(newLabel) == ReferenceModel::kNone && model.versions.size() < 16) {
      bothDo(
          "new version \"" + newLabel + "\" after \"" + label + "\"",
          [&] { model.addFollower(number, newLabel); },
          [&, origin = version(number)] {
            m_project->changeManager().startNewVersion(newLabel, "", "", "", nullptr, origin, false);
          });
    }
    return;
  case Operation::RenameVersion: {
    const bool isOrdinary = !model.versions.at(number).isReadOnly && model.type(number) == 0;
    const bool may =
        number != 0 && (newLabel == label || (isOrdinary && model.find(newLabel) == ReferenceModel::kNone));
    if (number == 0 && isOrdinary) {
      return; // what is recorded in the root version is nobody else's business
    }
    return both(
        "version renamed(\"" + label + "\", \"" + newLabel + "\")",
        [&] {
          model.versions.at(number).label = may ? newLabel : label;
          return doneOrRefused(may);
        },
        [&] { return doneOrRefused(m_commands->renameVersion(version(number), newLabel).problem.empty()); });
  }
  case Operation::DeleteVersion: {
    bool may = number != 0;
    for (const int each : model.withFollowers({number})) {
      may = may && !model.versions.at(each).isReadOnly && model.type(each) == 0;
    }
    ModelVersion *doomed = version(number);
    return both(
        "version deleted(\"" + label + "\")",
        [&] {
          if (may) {
            const std::vector<int> all = model.withFollowers({number});
            int next = model.current;
            while (std::find(all.begin(), all.end(), next) != all.end()) {
              next = model.versions.at(next).previous;
            }
            m_reference.makeCurrent(next);
            model.destroy({number});
          }
          return doneOrRefused(may);
        },
        [&] { return doneOrRefused(m_commands->deleteVersion(doomed).problem.empty()); });
  }
  case Operation::LoseVersion:
    if (number != 0 && model.isCase(number)) {
      bothDo(
          "version \"" + label + "\" lost", [&] { model.destroy({number}); },
          [&, doomed = version(number)] {
            bool isDestroyed = false;
            m_project->changeManager().destroyVersion(doomed, nullptr, isDestroyed);
          });
    }
    return;
  case Operation::RenamePart: {
    const int place = draws.below(2);
    ReferenceModel::Part &renamed = model.parts[static_cast<std::size_t>(place)];
    const std::string name = (renamed.name[0] == 'P' ? "Q" : "P") + std::to_string(place);
    return bothDo(
        "part renamed to " + name, [&] { renamed.name = name; },
        [&] { m_project->renameEntity(part(place), name); });
  }
  case Operation::DeletePart:
    if (model.current == 0 && model.parts[2].isThere) {
      EntityModel::Entity *doomed = part(2);
      bothDo(
          "part deleted", [&] { model.parts[2].isThere = false; },
          [doomed] { EntityModel::EntityEditor::deleteEntity(doomed, false, true); });
    }
    return;
  default:
    return;
  }
}

void Session::saveAndReopen(const Step &step) {
  const std::string file = QDir(m_folder->path()).filePath(QStringLiteral("project.optstudy")).toStdString();
  if (step.operation == Operation::Save) {
    bothDo(
        "save", [&] { m_saved = m_reference; },
        [&] {
          m_problem += (m_project->file().empty() ? m_commands->saveAs(file) : m_commands->save()).problem;
          m_problem += m_project->needsSave() ? "needs to be saved after it was saved" : "";
        });
    return;
  }
  if (!m_saved.has_value()) {
    return;
  }
  bothDo(
      "reopen",
      [&] {
        if (m_reference.mistake != Mistake::ReopeningKeepsUnsaved) {
          const ReferenceStudy saved = *m_saved;
          m_reference = saved;
        }
        m_reference.held.reset();
        m_reference.announceRoot();
      },
      [&] {
        close();
        m_project = EmbeddedHost::Project::open(file, EmbeddedHost::OpenMode::ReadWrite, m_problem);
        if (m_project != nullptr) {
          show();
        }
      });
}

} // namespace StudyProperty
