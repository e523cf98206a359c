#pragma once

#include "EmbeddedHost/src/project/ProjectFormat.h"

#include <stdexcept>

namespace EmbeddedHost {

class Model;

/// The content of a file contradicts itself.
class DamagedProject : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Reads the declared types of a project.
/// \throws DamagedProject, DatabaseError
ModelSchema readSchema(Database &database);

/// Reads everything else into a model that was made with the schema and has no version yet, and makes the saved
/// current version current.
/// \throws DamagedProject, DatabaseError
void readModel(Database &database, Model &model);

} // namespace EmbeddedHost
