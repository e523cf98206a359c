#pragma once

#include <string>

namespace FaultTests {

/// Makes a project and solves its rows until it is ended. Reports each solved row as soon as the product does: one line
/// with the row's name and the hash of all that its version holds.
/// \param skipsSyncing  the project's database does not wait for the disk
/// \throws StepFailed
void writeUntilThePowerFails(const std::string &folder, const std::string &acknowledgementFile,
                             bool skipsSyncing);

/// Opens the project and compares it with such lines.
/// \return how many of the reported rows are not there as they were reported
/// \throws StepFailed  the project cannot be opened
int countLostRows(const std::string &folder, const std::string &acknowledgementFile);

} // namespace FaultTests
