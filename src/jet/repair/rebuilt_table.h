// RebuiltTable: a table of the new file whose rows come from a damaged one, so that they may break
// its rules. Rows go before rules: a number that is taken gives way to the next automatic one, any
// other index lets values repeat from then on. Only the engine's own tables refuse such rows.
#pragma once

#include "jet/repair/repair.h"
#include "jet/repair/table_builder.h"

#include <memory>
#include <set>

namespace jet {

class RebuiltTable {
public:
    // `page`: of the new definition.
    RebuiltTable(FileContext& file, const TableDefinition& source, std::u16string name,
                 PageNumber page, RepairReport& report);
    // `maps`: see TableBuilder::Start; nullptr: maps of its own.
    base::Status Start(MapRows* maps);

    const TableDefinition& source() const { return source_; }
    const std::u16string& name() const { return name_; }
    TableBuilder& builder() { return builder_; }
    bool is_own() const { return source_.page <= kRelationsPage; }

    // `at`: where the row was. A row that cannot be stored is told.
    base::Status Add(RowId at, const CopiedRow& row);
    // After the last row: those whose numbers were taken.
    base::Status AddDeferred();
    // The index is gone with all its names, which is told.
    void GiveUpIndex(std::size_t index, const std::string& reason);

private:
    struct Deferred {
        RowId at;
        CopiedRow row;
        std::size_t column;
    };
    enum class Verdict { kFine, kDeferred, kRefused };

    Verdict Judge(RowId at, const CopiedRow& row, IndexSet::Keys& keys, bool may_defer);
    base::Status Store(RowId at, const CopiedRow& row, IndexSet::Keys keys);
    bool Breaks(std::size_t index, const CopiedRow& row, const std::optional<Bytes>& key) const;
    std::optional<std::size_t> AutonumberOf(std::size_t index) const;
    void Relax(std::size_t index, RowId at);
    void NoteNumbers(const CopiedRow& row);
    std::string NameOf(std::size_t index);
    void Lose(RowId at, const std::string& field, const std::string& reason);

    FileContext& file_;
    TableDefinition source_;
    std::u16string name_;
    RepairReport& report_;
    MapRows own_maps_;
    TableBuilder builder_;
    std::vector<std::set<Bytes>> seen_;  // keys of unique indexes
    std::vector<Deferred> deferred_;
    std::int32_t greatest_ = 0;  // of the automatic numbers
};

}  // namespace jet
