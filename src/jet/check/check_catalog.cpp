#include "jet/check/check_catalog.h"

#include "base/unicode.h"
#include "jet/check/check_properties.h"
#include "jet/check/check_table.h"

#include <algorithm>
#include <map>

namespace jet::check {
namespace {

constexpr std::int16_t kTableType = 1;
constexpr std::uint32_t kRootId = 0x0F000000;

struct Object {
    PageNumber page = 0;
    int row = -1;
    std::uint32_t id = 0;
    std::uint32_t parent = 0;
    std::int16_t type = 0;
    std::u16string name;
};

class CatalogCheck {
public:
    explicit CatalogCheck(CheckRun& run) : run_(run) {}

    Catalogue Run() {
        run_.SetTable("MSysObjects");
        definition_ = ReadDefinition(run_, kObjectsPage, "MSysObjects");
        if (!definition_ || !FindColumns()) return {};
        CheckTable(
            run_, *definition_,
            [this](PageNumber page, int row, const Row& parsed) { TakeRow(page, row, parsed); },
            [this](PageNumber page, int row, const Column& column, const Bytes& content) {
                CheckLongValue(page, row, column, content);
            });
        ++run_.report().tables;
        CheckObjects();
        return Content();
    }

private:
    bool FindColumns() {
        const auto find = [&](std::u16string_view name, ColumnType type) -> const Column* {
            for (const Column& column : definition_->columns)
                if (column.name == name && column.type == type) return &column;
            run_.Fault(kObjectsPage, -1, "the column " + base::ToUtf8(name) + " is not there");
            return nullptr;
        };
        id_ = find(u"Id", ColumnType::kLong);
        parent_ = find(u"ParentId", ColumnType::kLong);
        type_ = find(u"Type", ColumnType::kShort);
        name_ = find(u"Name", ColumnType::kText);
        return id_ != nullptr && parent_ != nullptr && type_ != nullptr && name_ != nullptr;
    }

    void TakeRow(PageNumber page, int row, const Row& parsed) {
        std::string problem;
        const auto id = parsed.Field(*id_, problem);
        const auto parent = parsed.Field(*parent_, problem);
        const auto type = parsed.Field(*type_, problem);
        const auto name = parsed.Field(*name_, problem);
        if (!id || !parent || !type || !name || id->size() != 4 || parent->size() != 4 ||
            type->size() != 2)
            return run_.Fault(page, row, "the object has no id, parent, type or name");
        objects_.push_back({page, row, base::LoadLittle<std::uint32_t>(id->data()),
                            base::LoadLittle<std::uint32_t>(parent->data()),
                            base::LoadLittle<std::int16_t>(type->data()),
                            run_.text().DecodeValue(*name)});
    }

    void CheckLongValue(PageNumber page, int row, const Column& column, const Bytes& content) {
        if (column.name != u"LvProp" || content.empty()) return;
        const std::string problem = CheckProperties(content, run_.format().jet4());
        if (!problem.empty()) run_.Fault(page, row, problem);
    }

    void CheckObjects() {
        std::map<std::uint32_t, const Object*> by_id;
        for (const Object& object : objects_)
            if (!by_id.emplace(object.id, &object).second)
                run_.Fault(object.page, object.row,
                           "object " + base::ToUtf8(object.name) + ": another one has its id");
        for (const Object& object : objects_)
            if (object.parent != kRootId && !by_id.contains(object.parent))
                run_.Fault(object.page, object.row,
                           "object " + base::ToUtf8(object.name) + ": its container is not there");
    }

    Catalogue Content() const {
        Catalogue catalogue;
        for (const Object& object : objects_) {
            catalogue.ids.insert(object.id);
            if (object.type == kTableType && object.id != kObjectsPage)
                catalogue.tables.push_back({object.name, object.id});
        }
        return catalogue;
    }

    CheckRun& run_;
    std::optional<Definition> definition_;
    const Column* id_ = nullptr;
    const Column* parent_ = nullptr;
    const Column* type_ = nullptr;
    const Column* name_ = nullptr;
    std::vector<Object> objects_;
};

}  // namespace

Catalogue CheckCatalog(CheckRun& run) {
    return CatalogCheck(run).Run();
}

}  // namespace jet::check
