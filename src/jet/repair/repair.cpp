#include "jet/repair/repair.h"

#include "base/unicode.h"
#include "jet/check/check.h"
#include "jet/errors.h"
#include "jet/repair/damaged_file.h"
#include "jet/repair/finished_file.h"
#include "jet/repair/object_ids.h"
#include "jet/repair/rebuilt_catalogue.h"
#include "jet/repair/rebuilt_table.h"
#include "jet/rows/field_codec.h"
#include "jet/tables/catalog.h"
#include "jet/tables/system_tables.h"
#include "jet/text/names.h"

#include <algorithm>

namespace jet {
namespace {

// Rows and long values take no more than this many times the file's size.
constexpr std::uint64_t kBudget = 16;
// Each attempt leaves more out than the one before; the last one leaves all tables of users out.
constexpr int kAttempts = 6;

class Rebuilder {
public:
    Rebuilder(FileContext& source, const Survey& survey, const RepairLimits& limits,
              NewFile& target, RepairReport& report)
        : source_(source), survey_(survey), limits_(limits), target_(target), report_(report),
          budget_(kBudget * source.store.page_count() * source.store.page_size()) {}

    base::Status Run() {
        ASSIGN_OR_RETURN(catalogue_, RebuildCatalogue(source_, survey_, limits_, report_, budget_));
        RETURN_IF_ERROR(AddTables());
        for (const auto& table : tables_)
            RETURN_IF_ERROR(FillTable(*table));
        ReportOwnersWithoutDefinition();
        for (const PageNumber page : UnexplainedPages(source_, survey_))
            report_.Add(
                {"", page, -1, "", "the page is damaged, and nothing tells what was on it"});
        KeepRelations();
        for (const auto& table : tables_) {
            RETURN_IF_ERROR(table->builder().BuildIndexes());
            RETURN_IF_ERROR(table->builder().WriteDefinition());
            ++report_.tables;
        }
        return {};
    }

private:
    base::Status AddTables() {
        for (PageNumber page = kObjectsPage; page <= kRelationsPage; ++page)
            RETURN_IF_ERROR(AddTable(SystemDefinition(survey_, source_.format, page), page));
        for (const auto& object : catalogue_.objects) {
            const auto page = static_cast<PageNumber>(object.id);
            if (object.type != kObjectIsTable) {
                ids_.AddObject(page);
            } else if (page > kRelationsPage) {
                ASSIGN_OR_RETURN(const PageNumber added, target_.context().allocator.Allocate());
                RETURN_IF_ERROR(AddTable(survey_.definitions.at(page), added));
            }
        }
        return {};
    }

    base::Status AddTable(const TableDefinition& definition, PageNumber page) {
        ids_.AddTable(definition.page, page);
        tables_.push_back(std::make_unique<RebuiltTable>(
            target_.context(), definition, catalogue_.NameOf(definition.page), page, report_));
        RebuiltTable& table = *tables_.back();
        RETURN_IF_ERROR(table.Start(table.is_own() ? &target_.system_maps() : nullptr));
        if (limits_.without_indexes.contains(definition.page))
            for (std::size_t i = 0; i < definition.real_indexes.size(); ++i)
                table.GiveUpIndex(i, "the new file was not sound with it");
        return {};
    }

    base::Status FillTable(RebuiltTable& table) {
        if (table.source().page == kObjectsPage) {
            for (auto& object : catalogue_.objects) {
                ids_.Renew(table.source(), table.name(), object.row);
                RETURN_IF_ERROR(table.Add(object.at, object.row));
            }
            return {};
        }
        RowSalvage rows(source_, survey_, table.source(), base::ToUtf8(table.name()), report_,
                        budget_);
        RETURN_IF_ERROR(rows.Run([&](RowId at, CopiedRow row) {
            return MayStay(table, at, row) ? table.Add(at, row) : base::Status();
        }));
        return table.AddDeferred();
    }

    bool MayStay(const RebuiltTable& table, RowId at, CopiedRow& row) {
        if (!ids_.Renew(table.source(), table.name(), row)) return false;
        if (table.source().page == kRelationsPage) NoteRelation(table.source(), row);
        if (table.source().page != kAccessPage || HasKnownUser(table.source(), row)) return true;
        report_.Add({"MSysACEs", at.page, at.slot, "SID", "the user of the permission is unknown"});
        return false;
    }

    // Users that every file knows have names of two bytes.
    bool HasKnownUser(const TableDefinition& table, const CopiedRow& row) {
        const ColumnDefinition* column = table.FindColumn(kAccessSid);
        const auto user =
            ValueOf(source_, *column, row[static_cast<std::size_t>(column - table.columns.data())]);
        const Bytes* sid = user.ok() ? user->get_if<Bytes>() : nullptr;
        if (sid == nullptr) return false;
        return sid->size() != 2 ||
               std::ranges::any_of(std::array{kSidEngine, kSidCreator, kSidUsers, kSidAdmin},
                                   [&](std::uint16_t known) { return SidBytes(known) == *sid; });
    }

    void NoteRelation(const TableDefinition& table, const CopiedRow& row) {
        const auto text = [&](std::uint16_t number) {
            const ColumnDefinition* column = table.FindColumn(number);
            const auto value = ValueOf(
                source_, *column, row[static_cast<std::size_t>(column - table.columns.data())]);
            const auto* found = value.ok() ? value->get_if<std::u16string>() : nullptr;
            return found == nullptr ? std::u16string() : *found;
        };
        told_.push_back(
            {text(kRelationName), text(kRelationTable), text(kRelationReferencedTable)});
    }

    void ReportOwnersWithoutDefinition() {
        for (const auto& [owner, pages] : survey_.data_pages) {
            if (owner <= kRelationsPage || owner == kLongValueOwner || ids_.NewPage(owner) != 0)
                continue;
            const auto used = static_cast<std::size_t>(std::ranges::count_if(
                pages, [&](PageNumber page) { return !IsGivenBack(source_, page); }));
            if (used > 0)
                report_.Add({"", pages.front(), -1, "",
                             std::to_string(used) +
                                 " pages hold rows of a table whose definition on page " +
                                 std::to_string(owner) + " cannot be used"});
        }
    }

    // --------------------------------------------------------------------------------- relations

    RebuiltTable* TableOf(PageNumber old_page) {
        for (const auto& table : tables_)
            if (table->source().page == old_page) return table.get();
        return nullptr;
    }

    bool IsTold(const RebuiltTable& from, const LogicalIndex& index, const RebuiltTable& to) const {
        return std::ranges::any_of(told_, [&](const Relation& relation) {
            return SameName(relation.name, index.name) && SameName(relation.table, from.name()) &&
                   SameName(relation.referenced, to.name());
        });
    }

    // Both sides are there and fit each other.
    bool IsWhole(RebuiltTable& table, const LogicalIndex& index) {
        RebuiltTable* const other = TableOf(index.other_table);
        if (other == nullptr || table.is_own() || other->is_own()) return false;
        const LogicalIndex* const back = other->source().FindIndex(index.partner);
        if (back == nullptr || back->partner != static_cast<std::int32_t>(index.number) ||
            back->other_table != table.source().page ||
            static_cast<int>(back->side) + static_cast<int>(index.side) != 3)
            return false;
        const bool refers = index.side == RelationSide::kForeign;
        RebuiltTable& from = refers ? table : *other;
        RebuiltTable& to = refers ? *other : table;
        const LogicalIndex& of_from = refers ? index : *back;
        const LogicalIndex& of_to = refers ? *back : index;
        return !from.builder().IsDropped(of_from.real) && !to.builder().IsDropped(of_to.real) &&
               to.builder().definition().real_indexes[of_to.real].unique() &&
               IsTold(from, of_from, to);
    }

    void KeepRelations() {
        for (const auto& table : tables_) {
            TableDefinition& definition = table->builder().definition();
            std::vector<LogicalIndex> kept;
            for (LogicalIndex index : definition.logical_indexes) {
                if (index.side != RelationSide::kNone) {
                    if (IsWhole(*table, index)) {
                        index.other_table = ids_.NewPage(index.other_table);
                    } else {
                        report_.Add({base::ToUtf8(table->name()), table->source().page, -1, "",
                                     "relation " + base::ToUtf8(index.name) +
                                         " is kept no more: its other side is not there"});
                        if (index.side == RelationSide::kPrimary) continue;
                        index.side = RelationSide::kNone;
                        index.kind = IndexKind::kPlain;
                        index.partner = -1;
                        index.other_table = 0;
                    }
                }
                kept.push_back(index);
            }
            definition.logical_indexes = std::move(kept);
            for (std::uint32_t real = 0; real < definition.real_indexes.size(); ++real)
                if (std::ranges::none_of(
                        definition.logical_indexes,
                        [&](const LogicalIndex& index) { return index.real == real; }))
                    table->GiveUpIndex(real, "it belonged to a relation");
        }
    }

    struct Relation {
        std::u16string name;
        std::u16string table;
        std::u16string referenced;
    };

    FileContext& source_;
    const Survey& survey_;
    const RepairLimits& limits_;
    NewFile& target_;
    RepairReport& report_;
    std::uint64_t budget_;
    RebuiltCatalogue catalogue_;
    ObjectIds ids_;
    std::vector<std::unique_ptr<RebuiltTable>> tables_;
    std::vector<Relation> told_;
};

bool IsAtFault(const CheckReport& check, const std::string& table) {
    return std::ranges::any_of(check.findings, [&](const Finding& finding) {
        return finding.severity == Severity::kFault && finding.table == table;
    });
}

// What the next attempt leaves out: of a table that the checker finds fault with the indexes, then
// the table.
void Narrow(const CheckReport& check, const Survey& survey, const RebuiltCatalogue& names,
            int attempt, RepairLimits& limits) {
    bool is_explained = false;
    for (const auto& [page, definition] : survey.definitions) {
        if (page <= kRelationsPage) continue;
        const bool is_at_fault = IsAtFault(check, base::ToUtf8(names.NameOf(page)));
        is_explained = is_explained || is_at_fault;
        if (attempt >= kAttempts - 2 || (is_at_fault && limits.without_indexes.contains(page)))
            limits.excluded.insert(page);
        else if (is_at_fault || attempt >= kAttempts - 3)
            limits.without_indexes.insert(page);
    }
    if (!is_explained || attempt > 0) limits.without_properties = true;
}

base::Result<std::unique_ptr<NewFile>> Rebuild(const DamagedFile& damaged, RepairReport& report) {
    ASSIGN_OR_RETURN(const PageHeader header, ReadPageHeader(damaged.first_page, "file"));
    FileContext source(*damaged.pages, header);
    const Survey survey = SurveyPages(source);
    const RepairReport before = report;
    RepairLimits limits;
    CheckReport check;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        report = before;
        for (const PageNumber page : limits.excluded)
            report.Add(
                {"", page, -1, "", "the new file was not sound with the table of this page"});
        ASSIGN_OR_RETURN(auto target, NewFile::Make(damaged.first_page));
        RETURN_IF_ERROR(Rebuilder(source, survey, limits, *target, report).Run());
        check = CheckIntegrity(target->store());
        if (check.sound()) return target;
        RepairReport ignored;
        std::uint64_t budget = kBudget * source.store.page_count() * source.store.page_size();
        ASSIGN_OR_RETURN(const RebuiltCatalogue names,
                         RebuildCatalogue(source, survey, limits, ignored, budget));
        Narrow(check, survey, names, attempt, limits);
    }
    return Damaged(check.findings.empty() ? "nothing sound can be made of it"
                                          : Describe(check.findings.front()));
}

base::Result<std::unique_ptr<NewFile>>
RebuildFile(FileSystem& files, const std::filesystem::path& from, RepairReport& report) {
    ASSIGN_OR_RETURN(const DamagedFile damaged, OpenDamagedFile(files, from));
    if (damaged.first_page_was_damaged)
        report.Add({"", 0, -1, "", "the first page was damaged and has been made anew"});
    return Rebuild(damaged, report);
}

}  // namespace

void RepairReport::Add(RepairLoss loss) {
    ++loss_count;
    if (losses.size() < kMaxLosses) losses.push_back(std::move(loss));
}

std::string Describe(const RepairLoss& loss) {
    std::string text = "page " + std::to_string(loss.page);
    if (loss.row >= 0) text += ", row " + std::to_string(loss.row);
    if (!loss.table.empty()) text += ", table " + loss.table;
    if (!loss.field.empty()) text += ", field " + loss.field;
    return text + ": " + loss.reason;
}

base::Status TryRepair(FileSystem& files, const std::filesystem::path& from, RepairReport& report) {
    return RebuildFile(files, from, report).status();
}

base::Status Repair(FileSystem& files, const std::filesystem::path& from,
                    const std::filesystem::path& to, RepairReport& report) {
    if (files.Exists(to)) return JetError(ErrorNumber::kDatabaseExists);
    ASSIGN_OR_RETURN(const auto content, RebuildFile(files, from, report));
    ASSIGN_OR_RETURN(const auto finished, FinishedFile::Write(files, *content, to));
    return finished->PutInPlace();
}

}  // namespace jet
