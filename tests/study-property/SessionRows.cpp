#include "tests/study-property/Session.h"
#include "tests/study-property/StateLines.h"

#include <limits>

// Steps on rows, costs and the study's own versions.

namespace StudyProperty {

using OptimizationTool::OptimizationData;

namespace {

std::string joined(const Texts &texts) {
  std::string all;
  for (const std::string &text : texts) {
    all += (all.empty() ? "\"" : ", \"") + text + "\"";
  }
  return "{" + all + "}";
}

std::string rowOrRefused(std::size_t row) {
  return row == 0 ? "refused" : "row " + std::to_string(row);
}

const Texts &names() {
  static const Texts all = {"R1", "R2", "R3", "R4", "R5", "U1", "Parametric Copy of Base"};
  return all;
}

} // namespace

bool Session::actOnRows(const Step &step, Draws &draws) {
  // Now and then one behind the last.
  const std::size_t count = m_reference.held->rows.size();
  const auto row = static_cast<std::size_t>(draws.below(count + (draws.oneIn(4) ? 1U : 0U)));
  const std::string index = std::to_string(row);
  const std::string name = draws.oneIn(4) ? "" : names()[static_cast<std::size_t>(draws.below(5))];
  const std::uint64_t position =
      draws.oneIn(4) ? static_cast<std::uint64_t>(draws.below(3)) : std::numeric_limits<std::uint64_t>::max();
  const std::string place = position > 2 ? "at the end" : std::to_string(position);
  switch (step.operation) {
  case Operation::AddVariant: {
    const Texts values = anyValues(draws);
    both(
        "addVariant(" + joined(values) + ", \"" + name + "\", " + place + ")",
        [&] { return rowOrRefused(m_reference.addVariant(values, name, position)); },
        [&] { return rowOrRefused(data().addVariant(values, name, position)); });
    return true;
  }
  case Operation::CopyVariant:
    both(
        "addVariant(row " + index + ", \"" + name + "\", " + place + ")",
        [&] { return rowOrRefused(m_reference.addVariant(row, name, position)); },
        [&] { return rowOrRefused(data().addVariant(row, name, position)); });
    return true;
  case Operation::RemoveVariant: {
    const bool destroys = draws.oneIn(2);
    bothDo(
        "removeVariant(" + index + (destroys ? ", true)" : ", false)"),
        [&] { m_reference.removeVariant(row, destroys); }, [&] { data().removeVariant(row, destroys); });
    return true;
  }
  case Operation::SetVariantName: {
    const std::string &newName = names()[static_cast<std::size_t>(draws.below(names().size()))];
    bothDo(
        "setVariantName(" + index + ", \"" + newName + "\")",
        [&] { m_reference.setVariantName(row, newName); }, [&] { data().setVariantName(row, newName); });
    return true;
  }
  case Operation::SetVariantValue: {
    const auto group = static_cast<std::size_t>(draws.below(m_reference.groups(true).size() + 1));
    const std::string value = anyValue(draws, group);
    bothDo(
        "setVariantValue(" + index + ", " + std::to_string(group) + ", \"" + value + "\")",
        [&] { m_reference.setVariantValue(row, group, value); },
        [&] { data().setVariantValue(row, group, value); });
    return true;
  }
  case Operation::SetVariantValues: {
    const Texts values = anyValues(draws);
    const std::string &known = row < count ? m_reference.held->rows[row].name : name;
    bothDo(
        "setVariantValues(\"" + known + "\", " + joined(values) + ")",
        [&] { m_reference.setVariantValues(known, values); },
        [known, values] { data().setVariantValues(known, values); });
    return true;
  }
  case Operation::UpdateAll:
  case Operation::UpdateByIndex:
  case Operation::UpdateByName: {
    const int flags = 1 + draws.below(3);
    const OptimizationData::UpdateTypes types(flags);
    const std::vector<std::size_t> rows = {row, 0, row, 99};
    const Texts known = {name, row < count ? m_reference.held->rows[row].name : "nobody", "nobody"};
    if (step.operation == Operation::UpdateAll) {
      bothDo(
          "updateAlternates(" + std::to_string(flags) + ")",
          [&] { m_reference.updateAlternates(flags, m_reference.allRows()); },
          [&] { data().updateAlternates(types, nullptr); });
    } else if (step.operation == Operation::UpdateByIndex) {
      bothDo(
          "updateAlternates(" + std::to_string(flags) + ", {" + index + ", 0, " + index + ", 99})",
          [&] { m_reference.updateAlternates(flags, rows); },
          [&] { data().updateAlternates(types, rows, nullptr); });
    } else {
      std::vector<std::size_t> found;
      for (const std::string &each : known) {
        if (const int foundAt = m_reference.rowIndex(each); foundAt >= 0) {
          found.push_back(static_cast<std::size_t>(foundAt));
        }
      }
      bothDo(
          "updateAlternates(" + std::to_string(flags) + ", " + joined(known) + ")",
          [&] {
            if (!found.empty()) {
              m_reference.updateAlternates(flags, found);
            }
          },
          [&] { data().updateAlternates(types, known, nullptr); });
    }
    return true;
  }
  default:
    return false;
  }
}

bool Session::actOnCosts(const Step &step, Draws &draws) {
  const auto row = static_cast<std::size_t>(draws.below(m_reference.held->rows.size() + 1));
  switch (step.operation) {
  case Operation::SetCost: {
    // The same text again takes up what groups there are now.
    const std::string text = draws.oneIn(4) ? m_reference.study().cost : anyCost(draws);
    bothDo(
        "setCostFunction(\"" + text + "\")", [&] { m_reference.setCostFunction(text); },
        [&] { data().setCostFunction(text); });
    return true;
  }
  case Operation::RecalculateCost:
    bothDo(
        "recalculateCost(" + std::to_string(row) + ")", [&] { m_reference.recalculateCost(row); },
        [&] { data().recalculateCost(row); });
    return true;
  case Operation::RecalculateCosts:
    bothDo(
        "recalculateCosts()", [&] { m_reference.recalculateCosts(); }, [&] { data().recalculateCosts(); });
    return true;
  case Operation::ClearCosts: {
    const bool isOne = draws.oneIn(2);
    bothDo(
        isOne ? "clearCosts(" + std::to_string(row) + ")" : "clearCosts()",
        [&] {
          for (std::size_t each = 0; each < m_reference.held->rows.size(); ++each) {
            if (!isOne || each == row) {
              m_reference.held->rows[each].cost.reset();
            }
          }
        },
        [&] { isOne ? data().clearCosts(row) : data().clearCosts(); });
    return true;
  }
  case Operation::SetTarget: {
    const int target = draws.below(4);
    bothDo(
        "setOptimisationTarget(" + std::to_string(target) + ")",
        [&] { m_reference.setOptimisationTarget(target); },
        [&] {
          data().setOptimisationTarget(static_cast<MathematicalUtilities::OptimisationStrategy>(target));
        });
    return true;
  }
  default:
    return false;
  }
}

bool Session::actOnVersions(const Step &step, Draws &draws) {
  switch (step.operation) {
  case Operation::ForgetCopy:
    bothDo(
        "setCopyVersionName(\"\")", [&] { m_reference.study().copy.clear(); },
        [&] { data().setCopyVersionName(""); });
    return true;
  case Operation::CreateCopy: {
    const bool forcesNew = draws.oneIn(2);
    bothDo(
        forcesNew ? "createCopyVersion(true)" : "createCopyVersion(false)",
        [&] { m_reference.createCopyVersion(forcesNew); }, [&] { data().createCopyVersion(forcesNew); });
    return true;
  }
  case Operation::CreateMissing:
    bothDo(
        "createMissingVersions()", [&] { m_reference.createMissingVersions(); },
        [&] { data().createMissingVersions(); });
    return true;
  case Operation::LoadAfresh:
    loadAfresh();
    return true;
  default:
    return false;
  }
}

// Only where it switches nothing, so that what is held stays as it is.
void Session::loadAfresh() {
  if (m_reference.model.find(m_reference.study().base) != m_reference.model.current) {
    return;
  }
  const auto text = [](const Texts &lines) {
    std::string all;
    for (const std::string &line : lines) {
      all += "\n    " + line;
    }
    return all;
  };
  both(
      "the study loaded afresh",
      [&] {
        const ReferenceStudy::Held held = *m_reference.held;
        m_reference.construct();
        m_reference.held->rows = m_reference.loaded(false);
        m_reference.updateCostCalculator();
        const Texts lines = rowLines(m_reference);
        m_reference.held = held;
        return text(lines);
      },
      [&] {
        OptimizationData fresh(data().get(), nullptr);
        fresh.initializeVariants(nullptr);
        return text(rowLines(fresh));
      });
}

} // namespace StudyProperty
