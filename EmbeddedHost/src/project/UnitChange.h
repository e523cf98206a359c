#pragma once

namespace EmbeddedHost {

class Model;
class ModelSchema;

/// Brings the values of a model whose types were declared in other units when they were saved into the units that are
/// declared now. What another unit is declared for is shown, and priced, in it.
void convertChangedUnits(const ModelSchema &saved, Model &model);

} // namespace EmbeddedHost
