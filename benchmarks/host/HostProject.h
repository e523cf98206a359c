#pragma once

#include "EmbeddedHost/Project.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace HostBenchmark {

/// Attributes of one part, and edits of one alternate.
constexpr std::size_t kEdits = 10;

/// One attribute of the model, as the host's interface names it.
struct AttributeName {
  EntityModel::Entity *entity = nullptr;
  EntityModel::AttributePath path;
};

/// A project with a model of parts that have ten attributes each: six quantities, shown in another unit than their
/// standard one, two plain numbers, a whole number and a choice.
struct HostProject {
  std::unique_ptr<EmbeddedHost::Project> project;
  std::vector<EntityModel::Entity *> parts;
  EntityModel::ModelVersion *design =
      nullptr; ///< follows the root version, and is what alternates are made of
  std::vector<EntityModel::ModelVersion *> alternates;
  /// The attributes that each alternate edits, spread over the model.
  std::vector<AttributeName> edited;
};

/// \param attributes  of the model, a multiple of ten
HostProject makeProject(std::size_t attributes);
/// Sets the attributes that alternates edit in the current version.
/// \param seed  other seeds give other values
void editCurrentVersion(const HostProject &host, std::size_t seed);
/// Adds alternates with an edit of each of `edited`, and leaves the last current.
void addAlternates(HostProject &host, std::size_t count);
/// The label of an alternate.
std::string alternateLabel(std::size_t number);

/// Switches as a program does that nobody watches.
void makeCurrent(HostProject &host, EntityModel::ModelVersion *version);

} // namespace HostBenchmark
