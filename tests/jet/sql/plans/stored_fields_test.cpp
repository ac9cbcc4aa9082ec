// Every cursor over the rows of a file shows them as they are stored, too, whatever path it takes.
#include "jet/connection.h"
#include "jet/rows/field_bytes.h"
#include "jet/sql/plans/access_path.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

namespace jet::test {
namespace {

// Among the columns of T.
constexpr std::size_t kId = 0;
constexpr std::size_t kName = 1;
constexpr std::size_t kSeen = 2;

struct PathCase {
    const char* name;
    bool by_index;
    std::vector<std::pair<std::int32_t, std::int32_t>> ranges;  // of Id
    bool backwards;
    std::string ids;  // of the rows on the path
};

void PrintTo(const PathCase& path, std::ostream* out) {
    *out << path.name;
}

KeyBound BoundAt(std::int32_t id) {
    KeyBound bound;
    bound.values.push_back(Value::Long(id));
    return bound;
}

class StoredFieldsOf : public testing::TestWithParam<PathCase> {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files, path, 45000).ok());
        connection = std::make_unique<Connection>(*files);
        ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string()).ok());
        Run(u"CREATE TABLE T (Id COUNTER CONSTRAINT K PRIMARY KEY, Name TEXT(50) WITH COMPRESSION, "
            u"Seen YESNO)");
        for (const auto* values :
             {u"'one', True", u"'two', False", u"Null, True", u"'\u65e5', False"})
            Run(u"INSERT INTO T (Name, Seen) VALUES (" + std::u16string(values) + u")");
        table = *connection->database()->FindTable(u"T");
    }
    void Run(std::u16string_view sql) {
        const auto done = connection->Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    base::Result<std::unique_ptr<RowCursor>> OpenCursor() const {
        sql::AccessPath access;
        if (GetParam().by_index) access.index = 0;
        for (const auto& [from, to] : GetParam().ranges)
            access.ranges.push_back({BoundAt(from), BoundAt(to)});
        access.backwards = GetParam().backwards;
        return sql::OpenPath(*table, access);
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "stored.mdb";
    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<Connection> connection;
    Table* table = nullptr;
};

TEST_P(StoredFieldsOf, AreThoseOfTheRowMetLast) {
    const std::size_t columns[] = {kSeen, kName, kId};
    const std::map<std::int32_t, std::string> narrow_names = {{1, "one"}, {2, "two"}};
    auto cursor = OpenCursor();
    ASSERT_TRUE(cursor.ok());
    StoredFields* const stored = (*cursor)->stored_fields();
    ASSERT_NE(stored, nullptr);
    std::string ids;
    for (;;) {
        const auto row = (*cursor)->Next();
        ASSERT_TRUE(row.ok());
        if (!row->has_value()) break;
        FieldBytes fields;
        ASSERT_TRUE(stored->Append(columns, fields).ok());
        std::vector<Value> values(3);
        ASSERT_TRUE((*cursor)->Read(columns, values).ok());
        for (std::size_t place = 0; place < std::size(columns); ++place) {
            Value value;
            ASSERT_TRUE(
                stored->reader().ReadStored(fields.bytes(), place, columns[place], value).ok());
            EXPECT_EQ(value, values[place]);
        }
        const std::int32_t id = *values[2].get_if<std::int32_t>();
        ids += std::to_string(id);
        const auto name = stored->NarrowText(kName);
        EXPECT_EQ(name.has_value(), narrow_names.contains(id)) << id;
        if (name) {
            EXPECT_EQ(*name, narrow_names.at(id));
        }
        EXPECT_EQ(stored->NarrowText(kId), std::nullopt);
    }
    EXPECT_EQ(ids, GetParam().ids);
    EXPECT_EQ((*cursor)->stored_fields(), stored);
}

INSTANTIATE_TEST_SUITE_P(
    EveryPath, StoredFieldsOf,
    testing::Values(PathCase{"WholeTable", false, {}, false, "1234"},
                    PathCase{"OneRange", true, {{1, 3}}, false, "123"},
                    PathCase{"OneRangeBackwards", true, {{1, 3}}, true, "321"},
                    PathCase{"SeveralRanges", true, {{1, 2}, {3, 3}, {4, 9}}, false, "1234"},
                    PathCase{"SeveralRangesBackwards", true, {{1, 1}, {2, 2}, {4, 4}}, true, "421"},
                    PathCase{"ARangeWithoutRowsFirst", true, {{-5, 0}, {2, 3}}, false, "23"}),
    [](const auto& of) { return of.param.name; });

}  // namespace
}  // namespace jet::test
