// Transaction: a statement's changes, all or none.
#pragma once

#include "base/status.h"
#include "jet/tables/database.h"

namespace jet::sql {

class Transaction {
public:
    explicit Transaction(Database& database) : database_(database) {}
    // Rolls back what was not committed.
    ~Transaction() {
        if (open_) database_.Rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    base::Status Begin() {
        base::Status begun = database_.Begin();
        open_ = begun.ok();
        return begun;
    }
    base::Status Commit() {
        open_ = false;
        return database_.Commit();
    }

private:
    Database& database_;
    bool open_ = false;
};

}  // namespace jet::sql
