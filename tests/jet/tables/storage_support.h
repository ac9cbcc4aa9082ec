// What the tests of the storage share: whole files, databases in memory, and other
// programs' view of a file.
#pragma once

#include "jet/tables/database.h"
#include "jet/values/conversions.h"
#include "support/programs.h"
#include "support/temporary_folder.h"
#include "support/test_data.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace jet::test {

using test_support::DataFolder;
using test_support::HasTool;
using test_support::NameOfFile;
using test_support::OurFilesAndReal;
using test_support::OutputOf;
using test_support::SampleFolder;
using test_support::TemporaryFolder;

// All databases of tests/data, and the real ones where there are some.
std::vector<std::filesystem::path> WholeDatabases();
// Of those, the ones that are opened without a password.
std::vector<std::filesystem::path> DatabasesWithoutPassword();
bool HasPassword(const std::filesystem::path& path);
std::vector<std::byte> ReadWholeFile(const std::filesystem::path& path);
void WriteWholeFile(const std::filesystem::path& path, std::span<const std::byte> bytes);

// The clock of tests that ask for the time: November 20, 2026, 12:00.
inline double Noon() {
    return DaysFromCivil({2026, 11, 20, 12, 0, 0});
}

// A copy of the file in memory.
std::unique_ptr<PageStore> LoadIntoMemory(const std::filesystem::path& path);
base::Result<std::unique_ptr<Database>> OpenCopy(const std::filesystem::path& path);
std::vector<std::byte> AllBytes(PageStore& pages);

// The rows of a table as mdb-export prints them; nullopt for a null field. Dates as "YYYY-MM-DD
// HH:MM:SS", binary as hexadecimal.
using TextRow = std::vector<std::optional<std::string>>;
std::optional<std::vector<TextRow>> ExportedRows(const std::filesystem::path& file,
                                                 const std::string& table);
// The columns' names come first in what it prints.
std::vector<std::string> ExportedNames(const std::filesystem::path& file, const std::string& table);

// True when `exported` is what mdb-export prints for `value`.
bool SameAsExported(const Value& value, const std::optional<std::string>& exported);
std::string Describe(const Value& value);

// All rows in physical order, all columns as shown.
std::vector<std::vector<Value>> AllRows(Table& table);
// Fails the test where a cell is not what mdb-export prints for it. `left_behind`: rows at most
// that it prints and nothing leads to.
void CompareWithExport(const std::filesystem::path& path, Table& table,
                       std::size_t left_behind = 0);

}  // namespace jet::test
