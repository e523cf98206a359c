#pragma once

#include "Workbench/src/StudyNode.h"

#include <string>

namespace Workbench {

// Checks a document by a JSON Schema: the keywords that the published schema uses, and no others. The answer is "" or
// the first thing that the schema refuses.
class SchemaCheck {
public:
  explicit SchemaCheck(StudyNode schema) : m_schema(std::move(schema)) {}

  std::string refusal(const StudyNode &document) const { return refusal(document, m_schema, "document"); }

private:
  std::string refusal(const StudyNode &node, const StudyNode &schema, const std::string &where) const;
  std::string refusalOfObject(const StudyNode &node, const StudyNode &schema, const std::string &where) const;
  std::string refusalOfList(const StudyNode &node, const StudyNode &schema, const std::string &where) const;
  std::string refusalOfScalar(const StudyNode &node, const StudyNode &schema, const std::string &where) const;
  std::string refusalOfChoice(const StudyNode &node, const StudyNode &schema, const std::string &where) const;
  const StudyNode &resolved(const StudyNode &schema) const;

  StudyNode m_schema;
};

} // namespace Workbench
