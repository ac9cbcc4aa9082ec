#include "jet/repair/rebuilt_catalogue.h"

#include "base/unicode.h"
#include "jet/repair/object_ids.h"
#include "jet/rows/field_codec.h"
#include "jet/tables/catalog.h"
#include "jet/tables/system_tables.h"
#include "jet/text/names.h"
#include "jet/values/system_clock.h"

#include <algorithm>

namespace jet {
namespace {

bool IsStandard(const TableDefinition& table, const TableDefinition& standard) {
    if (table.columns.size() != standard.columns.size() ||
        table.columns_ever != standard.columns_ever ||
        table.variables_ever != standard.variables_ever ||
        table.real_indexes.size() != standard.real_indexes.size())
        return false;
    for (std::size_t i = 0; i < table.real_indexes.size(); ++i)
        if (table.real_indexes[i].columns != standard.real_indexes[i].columns ||
            table.real_indexes[i].flags != standard.real_indexes[i].flags)
            return false;
    return std::ranges::all_of(standard.columns, [&](const ColumnDefinition& column) {
        const ColumnDefinition* found = table.FindColumn(column.number);
        return found != nullptr && found->type == column.type && found->name == column.name &&
               found->flags == column.flags && found->fixed_offset == column.fixed_offset &&
               (!column.is_variable() || found->variable_index == column.variable_index) &&
               found->length == column.length;
    });
}

class CatalogueRebuilder {
public:
    CatalogueRebuilder(FileContext& file, const Survey& survey, const RepairLimits& limits,
                       RepairReport& report)
        : file_(file), survey_(survey), limits_(limits), report_(report) {
        catalogue_.definition = SystemDefinition(survey, file.format, kObjectsPage);
    }

    base::Result<RebuiltCatalogue> Run(std::uint64_t& budget) {
        RowSalvage rows(file_, survey_, catalogue_.definition, "MSysObjects", report_, budget);
        RETURN_IF_ERROR(rows.Run([this](RowId at, CopiedRow row) {
            Take(at, std::move(row));
            return base::Status();
        }));
        for (const StandardObject& object : StandardObjects())
            if (!ids_.contains(object.id))
                Make(object.id, object.parent, object.name, object.type, kEngineObject);
        NameForgottenTables();
        FindParents();
        return std::move(catalogue_);
    }

private:
    using Object = RebuiltCatalogue::Object;

    void Take(RowId at, CopiedRow row) {
        const TableDefinition& table = catalogue_.definition;
        const auto id = LongOf(table, row, kObjectId);
        const auto parent = LongOf(table, row, kObjectParent);
        const auto type = ShortOf(table, row, kObjectType);
        CopiedField& name = Field(row, kObjectName);
        if (!id || !parent || !type || !name.set)
            return Lose(at, "the object has no id, parent, type or name");
        Object object{at, {}, *id, *parent, *type, file_.text.DecodeName(name.bytes)};
        const std::string text = "object " + base::ToUtf8(object.name);
        if (IsOfATable(object)) {
            object.type = kObjectIsTable;
            PutNumber(row, kObjectType, object.type);
            Lose(at, text + ": its type was damaged", "Type");
        }
        if (object.type == kObjectIsTable && !HasDefinition(object.id))
            return Lose(at, text + ": the definition of the table cannot be used");
        const bool is_standard = std::ranges::any_of(
            StandardObjects(), [&](const StandardObject& known) { return known.id == object.id; });
        if (object.name.empty() || IsNameTaken(object) || (is_standard && !IsAsStandard(object)))
            return Lose(at, text + ": its name is damaged or taken");
        if (!ids_.insert(object.id).second) return Lose(at, text + ": another one has its id");
        CheckProperties(at, row);
        object.row = std::move(row);
        catalogue_.objects.push_back(std::move(object));
    }

    bool HasDefinition(std::int32_t id) const {
        const auto page = static_cast<PageNumber>(id);
        return page >= kObjectsPage &&
               (page <= kRelationsPage ||
                (survey_.definitions.contains(page) && !limits_.excluded.contains(page)));
    }
    // What has the id of a table is that table or has a damaged id.
    bool IsOfATable(const Object& object) const {
        const auto page = static_cast<PageNumber>(object.id);
        return object.type != kObjectIsTable && page > kRelationsPage && HasDefinition(object.id) &&
               !IsGivenBack(file_, page);
    }
    static bool IsAsStandard(const Object& object) {
        return std::ranges::any_of(StandardObjects(), [&](const StandardObject& known) {
            return known.id == object.id && known.parent == object.parent &&
                   known.type == object.type && SameName(known.name, object.name);
        });
    }
    bool IsNameTaken(const Object& object) const {
        const auto same = [&](const auto& other) {
            return other.id != object.id && other.parent == object.parent &&
                   SameName(other.name, object.name);
        };
        return std::ranges::any_of(catalogue_.objects, same) ||
               std::ranges::any_of(StandardObjects(), same);
    }

    CopiedField& Field(CopiedRow& row, std::uint16_t column) const {
        const ColumnDefinition* found = catalogue_.definition.FindColumn(column);
        return row[static_cast<std::size_t>(found - catalogue_.definition.columns.data())];
    }
    void Lose(RowId at, const std::string& reason, const std::string& field = {}) {
        report_.Add({"MSysObjects", at.page, at.page == 0 ? -1 : at.slot, field, reason});
    }

    // A table whose properties cannot be read cannot be opened.
    void CheckProperties(RowId at, CopiedRow& row) {
        CopiedField& blob = Field(row, kObjectProperties);
        if (!blob.set || blob.bytes.empty()) return;
        if (!limits_.without_properties && PropertyBlob::Parse(blob.bytes, file_.text).ok()) return;
        blob = {};
        Lose(at, "the defaults, rules and other properties are damaged", "LvProp");
    }

    void Put(CopiedRow& row, std::uint16_t column, Bytes bytes) const {
        CopiedField& field = Field(row, column);
        field.set = true;
        field.bytes = std::move(bytes);
    }
    template <typename T>
    void PutNumber(CopiedRow& row, std::uint16_t column, T number) const {
        Bytes bytes;
        base::AppendLittle(bytes, number);
        Put(row, column, std::move(bytes));
    }

    void Make(std::int32_t id, std::int32_t parent, const std::u16string& name, std::int16_t type,
              std::int32_t flags) {
        Object object{{}, CopiedRow(catalogue_.definition.columns.size()), id, parent, type, name};
        PutNumber(object.row, kObjectId, id);
        PutNumber(object.row, kObjectParent, parent);
        PutNumber(object.row, kObjectType, type);
        PutNumber(object.row, kObjectFlags, flags);
        Put(object.row, kObjectName, file_.text.EncodeName(name).value_or(Bytes()));
        Bytes now(sizeof(double));
        base::StoreDouble(now.data(), SystemNow());
        Put(object.row, kObjectCreated, now);
        Put(object.row, kObjectUpdated, now);
        Bytes owner = SidBytes(flags == kEngineObject ? kSidEngine : kSidAdmin);
        Scramble(file_, owner);
        Put(object.row, kObjectOwner, owner);
        Lose({}, "object " + base::ToUtf8(name) + " was not there and has been made anew");
        ids_.insert(id);
        catalogue_.objects.push_back(std::move(object));
    }

    // No row says that it is of this table, and a definition says that it goes on here.
    bool IsPartOfAnother(PageNumber page) const {
        return survey_.continuations.contains(page) && !survey_.data_pages.contains(page);
    }

    void NameForgottenTables() {
        for (const auto& [page, definition] : survey_.definitions) {
            const auto id = static_cast<std::int32_t>(page);
            if (page <= kRelationsPage || ids_.contains(id) || limits_.excluded.contains(page) ||
                IsGivenBack(file_, page) || IsPartOfAnother(page))
                continue;
            Object object{{}, {}, id, kTablesContainer, kObjectIsTable, {}};
            const std::string name = "Recovered" + std::to_string(page);
            object.name.assign(name.begin(), name.end());
            while (IsNameTaken(object))
                object.name += u'x';
            Make(id, kTablesContainer, object.name, kObjectIsTable, 0);
        }
    }

    void FindParents() {
        for (Object& object : catalogue_.objects) {
            const bool in_place = object.type == kObjectIsTable ? object.parent == kTablesContainer
                                                                : object.parent == kRootContainer ||
                                                                      ids_.contains(object.parent);
            if (in_place) continue;
            Lose(object.at, "object " + base::ToUtf8(object.name) + ": its container was not there",
                 "ParentId");
            object.parent = object.type == kObjectIsTable ? kTablesContainer : kRootContainer;
            PutNumber(object.row, kObjectParent, object.parent);
        }
    }

    FileContext& file_;
    const Survey& survey_;
    const RepairLimits& limits_;
    RepairReport& report_;
    RebuiltCatalogue catalogue_;
    std::set<std::int32_t> ids_;
};

}  // namespace

std::u16string RebuiltCatalogue::NameOf(PageNumber definition_page) const {
    for (const Object& object : objects)
        if (object.type == kObjectIsTable && static_cast<PageNumber>(object.id) == definition_page)
            return object.name;
    return {};
}

TableDefinition SystemDefinition(const Survey& survey, const Format& format, PageNumber page) {
    TableDefinition standard = SystemTables(format.version)[page - kObjectsPage];
    const auto found = survey.definitions.find(page);
    if (found != survey.definitions.end() && IsStandard(found->second, standard))
        return found->second;
    standard.owned = {};  // unknown
    return standard;
}

base::Result<RebuiltCatalogue> RebuildCatalogue(FileContext& file, const Survey& survey,
                                                const RepairLimits& limits, RepairReport& report,
                                                std::uint64_t& budget) {
    return CatalogueRebuilder(file, survey, limits, report).Run(budget);
}

}  // namespace jet
