#include "tests/study-property/ReferenceModel.h"

#include <algorithm>
#include <array>

namespace StudyProperty {

namespace {

constexpr double kMillimetresInAMetre = 1000.0;

// The numbers of these tests are halves.
std::string textOfHalves(double number) {
  const auto halves = static_cast<long>(number * 2);
  const long whole = halves / 2;
  const std::string sign = halves < 0 && whole == 0 ? "-" : "";
  return sign + std::to_string(whole) + (halves % 2 == 0 ? "" : ".5");
}

// The longest text that is tried is "-12.5 mm".
std::optional<double> numberIn(const std::string &text) {
  const std::size_t mark = text.find('.');
  const std::string whole = text.substr(0, mark);
  const std::string digits = whole.substr(whole.rfind('-', 0) == 0 ? 1 : 0);
  const bool isWhole = !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
  if (!isWhole || (mark != std::string::npos && text.substr(mark) != ".5")) {
    return std::nullopt;
  }
  const double size = std::stoi(digits) + (mark == std::string::npos ? 0.0 : 0.5);
  return whole.size() == digits.size() ? size : -size;
}

} // namespace

std::string Value::text() const {
  if (!number.has_value()) {
    return "";
  }
  return textOfHalves(*number) + (unit.empty() ? "" : " " + unit);
}

double Value::standard() const {
  return number.value_or(0.0) / (unit == "mm" ? kMillimetresInAMetre : 1.0);
}

double Value::in(const std::string &unitText) const {
  return unitText == "mm" ? standard() * kMillimetresInAMetre : standard();
}

Value Value::assigned(const std::string &valueText) const {
  Value result = *this;
  const std::size_t blank = valueText.find(' ');
  result.number = numberIn(valueText.substr(0, blank));
  const std::string unitText = blank == std::string::npos ? unit : valueText.substr(blank + 1);
  const bool isUnit = kind == Kind::Length ? unitText == "mm" || unitText == "m" : unitText.empty();
  const bool isHalf =
      result.number.has_value() && textOfHalves(*result.number).find('.') != std::string::npos;
  if (!result.number.has_value() || !isUnit || (kind == Kind::Integer && isHalf)) {
    throw Refusal(kHostRefusal);
  }
  result.unit = unitText;
  return result;
}

const std::vector<std::string> &paths() {
  static const std::vector<std::string> all = {"A", "B", "N", "L", "X", "Y"};
  return all;
}

bool isResult(const std::string &path) {
  return path == "X" || path == "Y";
}

Value defaultValue(const std::string &path) {
  static const std::map<std::string, Value> all = {
      {"A", {Kind::Real, 1.0, ""}},          {"B", {Kind::Real, 2.0, ""}},
      {"N", {Kind::Integer, 3.0, ""}},       {"L", {Kind::Length, 100.0, "mm"}},
      {"X", {Kind::Real, std::nullopt, ""}}, {"Y", {Kind::Real, std::nullopt, ""}}};
  return all.at(path);
}

ReferenceModel::ReferenceModel() {
  versions[0].label = "Base";
  for (int part = 0; part < kParts; ++part) {
    parts.push_back({"P" + std::to_string(part), true});
    for (const std::string &path : paths()) {
      versions[0].edits[{part, path}] = defaultValue(path);
    }
  }
}

bool ReferenceModel::has(int part, const std::string &path) const {
  const std::vector<std::string> &all = paths();
  return parts.at(static_cast<std::size_t>(part)).isThere &&
         std::find(all.begin(), all.end(), path) != all.end();
}

const Value &ReferenceModel::value(int version, int part, const std::string &path) const {
  const auto &edits = versions.at(version).edits;
  const auto found = edits.find({part, path});
  return found != edits.end() ? found->second : value(versions.at(version).previous, part, path);
}

void ReferenceModel::setText(int part, const std::string &path, const std::string &text) {
  Value result = value(current, part, path);
  if (text.empty()) {
    result.number.reset();
  } else {
    result = result.assigned(text);
  }
  versions.at(current).edits[{part, path}] = result;
}

int ReferenceModel::find(const std::string &label) const {
  for (const auto &[number, version] : versions) {
    if (version.label == label) {
      return number;
    }
  }
  return kNone;
}

std::string ReferenceModel::uniqueLabel(const std::string &label) const {
  std::string result = label;
  for (int number = 2; find(result) != kNone; ++number) {
    result = label + " (" + std::to_string(number) + ")";
  }
  return result;
}

bool ReferenceModel::isCase(int version) const {
  const Version &own = versions.at(version);
  if (own.isRemoved || own.isCopy || own.family == kNone) {
    return !own.isRemoved && own.isCopy;
  }
  const int origin = families.at(own.family).origin;
  return origin != kNone && origin != version && versions.at(origin).isCopy;
}

int ReferenceModel::type(int version) const {
  const Version &own = versions.at(version);
  if (own.studyType != 0) {
    return 3;
  }
  return !isCase(version) ? 0 : own.isCopy ? 2 : 1;
}

int ReferenceModel::studyBaseline(int version) const {
  const int previous = versions.at(version).previous;
  if (versions.at(version).studyType != 0) {
    return version;
  }
  return isCase(version) && previous != kNone && versions.at(previous).studyType != 0 ? previous : kNone;
}

std::vector<int> ReferenceModel::alternates(int version) const {
  const int family = version == kNone ? kNone : versions.at(version).family;
  std::vector<int> others = family == kNone ? std::vector<int>() : families.at(family).members;
  others.erase(std::remove(others.begin(), others.end(), version), others.end());
  return others;
}

std::vector<int> ReferenceModel::followers(int version) const {
  std::vector<int> found;
  for (const auto &[number, each] : versions) {
    if (each.previous == version) {
      found.push_back(number);
    }
  }
  return found;
}

int ReferenceModel::addFollower(int previous, const std::string &label) {
  versions[next].previous = previous;
  versions[next].label = label;
  return next++;
}

int ReferenceModel::addAlternate(int origin, std::uint64_t position) {
  const int number = addFollower(versions.at(origin).previous, uniqueLabel(versions.at(origin).label));
  versions[number].edits = versions.at(origin).edits;
  int &family = versions.at(origin).family;
  if (family == kNone) {
    family = origin;
    families[family].origin = origin;
  }
  versions[number].family = family;
  // The position counts the alternates of the origin, of which it is none itself.
  std::vector<int> &members = families[family].members;
  std::size_t place = position >= alternates(origin).size() ? members.size() : 0;
  for (std::uint64_t others = 0; place < members.size() && others < position; ++place) {
    others += members[place] == origin ? 0 : 1;
  }
  members.insert(members.begin() + static_cast<std::ptrdiff_t>(place), number);
  return number;
}

std::vector<int> ReferenceModel::withFollowers(std::vector<int> doomed) const {
  for (std::size_t position = 0; position < doomed.size(); ++position) {
    for (const int follower : followers(doomed[position])) {
      if (std::find(doomed.begin(), doomed.end(), follower) == doomed.end()) {
        doomed.push_back(follower);
      }
    }
  }
  return doomed;
}

void ReferenceModel::destroy(const std::vector<int> &doomed) {
  const std::vector<int> all = withFollowers(doomed);
  const auto isGone = [&all](int number) {
    return std::find(all.begin(), all.end(), number) != all.end();
  };
  while (isGone(current)) {
    current = versions.at(current).previous;
  }
  for (auto &[number, family] : families) {
    family.origin = isGone(family.origin) ? kNone : family.origin;
    family.members.erase(std::remove_if(family.members.begin(), family.members.end(), isGone),
                         family.members.end());
  }
  for (const int number : all) {
    versions.erase(number);
  }
}

void ReferenceModel::clearStudy(int version) {
  Version &own = versions.at(version);
  own.studyType = 0;
  own.isCopy = false;
  own.isRemoved = false;
}

} // namespace StudyProperty
