#include "HostModel/TypeRef.h"

#include "HostModel/Type.h"
#include "HostModel/src/TypeTable.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace EntityModel {

namespace {

struct InternedName {
  explicit InternedName(std::string_view text) : storage(text), name(storage) {}

  std::string storage;
  TypeName name;
};

class NameTable {
public:
  NameTable() {
    for (const TypeName *name : builtInTypeNames()) {
      m_names.emplace(name->label(), name);
    }
  }

  const TypeName &find(std::string_view label) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_names.find(label);
    if (found != m_names.end()) {
      return *found->second;
    }
    m_interned.push_back(std::make_unique<InternedName>(label));
    const TypeName &name = m_interned.back()->name;
    m_names.emplace(name.label(), &name);
    return name;
  }

private:
  std::mutex m_mutex;
  std::unordered_map<std::string_view, const TypeName *> m_names;
  std::vector<std::unique_ptr<InternedName>> m_interned;
};

NameTable &nameTable() {
  // Never destroyed: references are used by objects that are destroyed at process exit in any order.
  static auto *table = new NameTable;
  return *table;
}

} // namespace

TypeRef::TypeRef(const Type &type) noexcept : TypeRef(type.getReference()) {}

TypeRef TypeRef::fromLabel(std::string_view label) {
  return label.empty() ? TypeRef() : TypeRef(nameTable().find(label));
}

bool operator==(const Type &type, const TypeRef &reference) noexcept {
  return type.getReference() == reference;
}

const Type TypeFactory::emptyType;

} // namespace EntityModel
