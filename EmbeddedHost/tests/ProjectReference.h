#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace EmbeddedHost {

/// What a project has to hold, kept and worked out in the simplest way: nothing is remembered that can be looked up.
/// Versions have numbers in order of creation, the first is 0; entities have those of the project, the root is 1.
class ProjectReference {
public:
  /// A wrong idea of what versions are, to see that a comparison finds it.
  enum class Mistake { None, SiblingsSeeEdits, ReopeningKeepsUnsaved, FollowersSurvive };

  static constexpr int kNone = -1;
  static constexpr int kRoot = 1;

  struct Element {
    int entity = 0;
    bool isOwned = false;
  };
  struct Marks {
    std::string label;
    std::string description;
    int studyType = 0;
    bool isCase = false;
    bool isRemoved = false;
    bool isReadOnly = false;
    bool isEdited = false;
    std::string run; ///< reason of the last run
  };
  struct Version {
    int previous = kNone;
    int family = kNone; ///< number of the first origin
    Marks marks;
    std::map<std::pair<int, std::string>, std::string> values; ///< by entity and path
    std::map<int, std::vector<Element>> lists;                 ///< the parts of an entity
  };
  struct Family {
    int origin = kNone;
    std::vector<int> members;
  };

  std::map<int, Version> versions = {{0, Version()}};
  std::map<int, Family> families;
  std::map<int, std::string> entities = {{kRoot, "Model"}}; ///< names
  int current = 0;
  int nextVersion = 1;
  Mistake mistake = Mistake::None;

  /// \name What a version shows: its own edit, else what its previous version shows
  /// @{
  std::optional<std::string> value(int version, int entity, const std::string &path) const;
  std::vector<Element> list(int version, int owner) const;
  /// Who owns an entity: of the lists that say so the one that the latest version has edited; kNone when nobody does.
  int owner(int version, int entity) const;
  bool exists(int version, int entity) const { return isInside(version, entity, kRoot); }
  /// Whether an entity is another or is owned by it, over any number of owners.
  bool isInside(int version, int entity, int other) const;
  /// @}
  bool isCaseThroughAlternate(int version) const;
  std::vector<int> alternates(int version) const;

  /// \name Changes
  /// @{
  void setValue(int version, int entity, const std::string &path, const std::string &text);
  void insert(int owner, int entity, std::size_t position);
  void takeOut(int entity);
  int addFollower(int previous, const std::string &label);
  int addAlternate(int origin, const std::string &label, std::size_t position);
  void destroy(int version);
  /// @}

private:
  std::vector<Element> &ownList(int owner);
  bool follows(int version, int other) const;
};

} // namespace EmbeddedHost
