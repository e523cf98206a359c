#include "EmbeddedHost/src/project/DatabaseCopy.h"

#include <memory>

namespace EmbeddedHost {

namespace {

struct Finish {
  void operator()(sqlite3_backup *copying) const { sqlite3_backup_finish(copying); }
};

} // namespace

void copyDatabase(const Database &from, const Database &to) {
  std::unique_ptr<sqlite3_backup, Finish> copying(
      sqlite3_backup_init(to.handle(), "main", from.handle(), "main"));
  if (copying == nullptr) {
    throw DatabaseError(sqlite3_extended_errcode(to.handle()), sqlite3_errmsg(to.handle()));
  }
  // All pages at once: with pauses a project that is saved all the time would never be copied to its end.
  const int code = sqlite3_backup_step(copying.get(), -1);
  const int finished = sqlite3_backup_finish(copying.release());
  if (code != SQLITE_DONE || finished != SQLITE_OK) {
    const int failed = code == SQLITE_DONE ? finished : code;
    throw DatabaseError(failed, sqlite3_errstr(failed));
  }
}

} // namespace EmbeddedHost
