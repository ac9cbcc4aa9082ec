// NewFile: a database file in the making. It is built in memory (so it takes as much of that as the
// file is long) and written in one go, as nobody is to see it before it is whole.
#pragma once

#include "jet/pages/file_system.h"
#include "jet/tables/map_rows.h"

#include <memory>
#include <vector>

namespace jet {

class NewFile {
public:
    // A file with this page 0 and room for the four system tables; `first_page` is taken over but
    // for the file mark, which must be another one: a journal of the old file is none of the new
    // one's. 3343: not the first page of a database.
    static base::Result<std::unique_ptr<NewFile>> Make(std::vector<std::byte> first_page);

    FileContext& context() { return context_; }
    // Page maps of the system tables.
    MapRows& system_maps() { return system_maps_; }
    // For the checker.
    PageStore& store() { return *store_; }
    PageNumber page_count() const { return store_->page_count(); }

    // Writes the whole file, encoded where its page 0 asks for that. 3026: it would be larger than
    // the format allows. Not synced.
    base::Status Write(File& file);

private:
    NewFile(std::unique_ptr<PageStore> store, const PageHeader& header)
        : store_(std::move(store)), context_(*store_, header), system_maps_(context_) {}
    base::Status MakeFixedPages();

    std::unique_ptr<PageStore> store_;  // one transaction, never committed
    FileContext context_;
    MapRows system_maps_;
};

}  // namespace jet
