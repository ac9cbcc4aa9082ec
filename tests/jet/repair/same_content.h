// What two files of different pages have in common: everything that a program can see in them.
#pragma once

#include "jet/pages/page_store.h"

#include <filesystem>

namespace jet::test {

// Fails the test where `copy` holds something else than `original`: page 0 (the file mark apart),
// the objects of the catalogue, designs, automatic numbers, cells, the order of rows in the file
// and through each index, relations. Ids of tables, and rows of system tables about objects that
// are not there, do not count.
void ExpectSameContent(PageStore& original, PageStore& copy);

// The same as mdb-schema and mdb-export print it.
void ExpectSameExports(const std::filesystem::path& original, const std::filesystem::path& copy);

}  // namespace jet::test
