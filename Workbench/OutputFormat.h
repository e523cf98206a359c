#pragma once

namespace Workbench {

/// How a command prints what it found: for people, for spreadsheets or for programs.
enum class OutputFormat { Table, Csv, Json };

} // namespace Workbench
