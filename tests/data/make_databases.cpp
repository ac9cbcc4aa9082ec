#include "base/unicode.h"
#include "data/invented.h"
#include "data/make_test_data.h"
#include "jet/connection.h"
#include "jet/sql/statements/rule_maker.h"
#include "jet/tables/database.h"
#include "platform/file_system.h"

#include <fstream>

namespace test_data {
namespace {

using namespace jet;

constexpr double kCreated = 38000.5;  // 2004-01-14
constexpr std::size_t kMachines = 40;
constexpr std::size_t kCatalogueRows = 40;

double Now() {
    return kCreated;
}

// Made in memory: a file on disk carries random marks.
base::Result<std::unique_ptr<Database>> NewDatabase(const std::filesystem::path& folder,
                                                    int version) {
    const auto files = platform::MakeFileSystem();
    const std::filesystem::path path = folder / "new.mdb";
    RETURN_IF_ERROR(CreateDatabaseFile(*files, path, kCreated, version));
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    RETURN_IF_ERROR(files->Remove(path));
    return OpenDatabase(
        MakeMemoryPageStore(version == 3 ? 2048 : 4096, {bytes, bytes + text.size()}), "new");
}

base::Result<std::vector<std::byte>> BytesOf(PageStore& pages) {
    std::vector<std::byte> bytes;
    for (PageNumber page = 0; page < pages.page_count(); ++page) {
        ASSIGN_OR_RETURN(const PageView view, pages.Read(page));
        bytes.insert(bytes.end(), view.bytes().begin(), view.bytes().end());
    }
    return bytes;
}

base::Status WriteFile(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (file.good()) return {};
    return {base::StatusCode::kIoError, path.string() + " cannot be written"};
}

ColumnDesign Column(const char16_t* name, ColumnType type, std::uint16_t size = 0) {
    ColumnDesign column;
    column.name = name;
    column.type = type;
    column.size = size;
    return column;
}

IndexDesign Index(const char16_t* name, std::vector<IndexColumn> columns) {
    IndexDesign index;
    index.name = name;
    index.columns = std::move(columns);
    return index;
}

IndexDesign PrimaryKey(std::size_t column) {
    IndexDesign index = Index(u"PrimaryKey", {{column, true}});
    index.primary = true;
    return index;
}

template <typename Change>
base::Status Do(Database& database, Change change) {
    RETURN_IF_ERROR(database.Begin());
    RETURN_IF_ERROR(change());
    return database.Commit();
}

// ------------------------------------------------------------------------- the arcade

enum MachineColumn : std::size_t {
    kID,
    kName,
    kMaker,
    kPlayers,
    kMade,
    kPrice,
    kWeight,
    kRating,
    kBought,
    kWorking,
    kSerial,
    kMark,
    kNotes,
    kPicture,
    kObsolete,
    kShare,  // version 4
};

TableDesign MachinesDesign(int version) {
    TableDesign design;
    design.name = u"Machines";
    design.columns = {
        Column(u"ID", ColumnType::kLong),           Column(u"Name", ColumnType::kText, 120),
        Column(u"Maker", ColumnType::kText, 80),    Column(u"Players", ColumnType::kByte),
        Column(u"Made", ColumnType::kShort),        Column(u"Price", ColumnType::kMoney),
        Column(u"Weight", ColumnType::kSingle),     Column(u"Rating", ColumnType::kDouble),
        Column(u"Bought", ColumnType::kDate),       Column(u"Working", ColumnType::kBoolean),
        Column(u"Serial", ColumnType::kBinary, 12), Column(u"Mark", ColumnType::kGuid),
        Column(u"Notes", ColumnType::kMemo),        Column(u"Picture", ColumnType::kOle),
        Column(u"Obsolete", ColumnType::kText, 20)};
    design.columns[kID].autonumber = true;
    design.columns[kName].required = true;
    design.columns[kName].compressed = true;
    design.columns[kNotes].compressed = true;
    design.columns[kPlayers].validation_rule = u">0";
    design.columns[kPlayers].validation_text = u"Somebody has to play.";
    design.columns[kPrice].validation_rule = u">=0";
    design.columns[kRating].validation_rule = u"Between 0 And 1";
    design.columns[kMade].default_value = u"1980";
    design.indexes = {PrimaryKey(kID),
                      Index(u"Name", {{kName, true}}),
                      Index(u"MakerMade", {{kMaker, true}, {kMade, false}}),
                      Index(u"Rating", {{kRating, false}}),
                      Index(u"Serial", {{kSerial, true}}),
                      Index(u"Mark", {{kMark, true}})};
    design.indexes[4].unique = true;
    design.indexes[4].ignore_nulls = true;
    if (version == 4) {
        design.columns.push_back(Column(u"Share", ColumnType::kNumeric));
        design.columns[kShare].precision = 12;
        design.columns[kShare].scale = 3;
    }
    return design;
}

// One row in four has no notes, the others short, long and very long ones.
Value NotesOf(Invented& invented, std::size_t number) {
    if (number % 20 == 9) return Value::Text(invented.Prose(3000));
    if (number % 5 == 1) return Value::Text(invented.Prose(300));
    if (number % 4 == 0) return {};
    return Value::Text(number % 4 == 1 ? std::u16string() : invented.Prose(25));
}

std::u16string NameOf(Invented& invented, std::size_t number, int version) {
    if (version == 4 && number == 11) return u"Ελληνικό λιμάνι";
    if (version == 4 && number == 12) return u"Тихая гавань";
    if (version == 4 && number == 13) return u"静かな港 カメラ";
    if (number == 14) return u"Straße-Øst, l'été ÆÞ";
    // Long ones, so that a few dozen fill more than one page of an index.
    std::u16string name = invented.Title();
    while (name.size() < 95)
        name += u" of the " + invented.Title();
    return name;
}

std::vector<Value> MachineOf(Invented& invented, std::size_t number, int version) {
    std::vector<Value> row(version == 4 ? kShare + 1 : kShare);
    const auto small = static_cast<std::int32_t>(number);
    row[kName] = Value::Text(NameOf(invented, number, version));
    if (number % 6 != 5) row[kMaker] = Value::Text(invented.Maker());
    if (number % 7 != 6) row[kPlayers] = Value::Byte(static_cast<std::uint8_t>(1 + number % 4));
    row[kMade] = Value::Short(static_cast<std::int16_t>(1960 + number));
    if (number % 3 != 2) row[kPrice] = Value::Currency({small * 1234567});
    row[kWeight] = Value::Single(90.0F + static_cast<float>(number) / 8);
    if (number % 8 != 3) row[kRating] = Value::Double(static_cast<double>(number) / 64);
    if (number % 5 != 4) row[kBought] = Value::DateTime(30000 + small * 100 + small / 24.0);
    row[kWorking] = Value::Boolean(number % 3 == 0);
    if (number % 4 != 2) row[kSerial] = Value::Binary(invented.Bytes(4 + number % 9));
    Guid mark;
    const std::vector<std::byte> bytes = invented.Bytes(mark.bytes.size());
    std::copy(bytes.begin(), bytes.end(), mark.bytes.begin());
    if (number % 9 != 8) row[kMark] = Value::OfGuid(mark);
    row[kNotes] = NotesOf(invented, number);
    if (number == 4) row[kPicture] = Value::Binary(invented.Bytes(5000));
    if (number % 10 == 6) row[kPicture] = Value::Binary(invented.Bytes(90));
    row[kObsolete] = Value::Text(u"gone");
    if (version == 4 && number % 2 == 0)
        row[kShare] = Value::Decimal(
            {number % 4 == 0, 3, {0, 0, 0, static_cast<std::uint32_t>(number * 12345)}});
    return row;
}

// Rows that grow and go elsewhere, rows that go, a column that goes and one that comes.
base::Status ChangeMachines(Database& database, const std::vector<RowId>& rows) {
    const auto grow_and_delete = [&]() -> base::Status {
        ASSIGN_OR_RETURN(Table * machines, database.FindTable(u"Machines"));
        for (const std::size_t grown : {1U, 2U, 8U, 17U, 18U, 30U}) {
            const ColumnChange change{kMaker,
                                      Value::Text(std::u16string(75, u'M') + Digits(grown))};
            RETURN_IF_ERROR(machines->Update(rows[grown], std::span(&change, 1)));
        }
        for (const std::size_t gone : {6U, 22U, 38U})
            RETURN_IF_ERROR(machines->Delete(rows[gone]));
        return {};
    };
    RETURN_IF_ERROR(Do(database, grow_and_delete));
    RETURN_IF_ERROR(Do(database, [&] { return database.DropColumn(u"Machines", u"Obsolete"); }));
    RETURN_IF_ERROR(Do(database, [&] {
        return database.AddColumn(u"Machines", Column(u"Shelf", ColumnType::kText, 30));
    }));
    return Do(database, [&]() -> base::Status {
        ASSIGN_OR_RETURN(Table * machines, database.FindTable(u"Machines"));
        const ColumnChange change{machines->design().columns.size() - 1, Value::Text(u"B 2")};
        return machines->Update(rows[3], std::span(&change, 1));
    });
}

base::Status AddMachines(Database& database) {
    const int version = database.jet_version();
    RETURN_IF_ERROR(Do(database, [&] { return database.CreateTable(MachinesDesign(version)); }));
    std::vector<RowId> rows;
    Invented invented(1);
    const auto fill = [&]() -> base::Status {
        ASSIGN_OR_RETURN(Table * machines, database.FindTable(u"Machines"));
        for (std::size_t number = 0; number < kMachines; ++number) {
            std::vector<Value> row = MachineOf(invented, number, version);
            ASSIGN_OR_RETURN(const RowId inserted, machines->Insert(row));
            rows.push_back(inserted);
        }
        return {};
    };
    RETURN_IF_ERROR(Do(database, fill));
    return ChangeMachines(database, rows);
}

base::Status AddRows(Database& database, const char16_t* name,
                     std::vector<std::vector<Value>> rows) {
    return Do(database, [&]() -> base::Status {
        ASSIGN_OR_RETURN(Table * table, database.FindTable(name));
        for (std::vector<Value>& row : rows)
            RETURN_IF_ERROR(table->Insert(row).status());
        return {};
    });
}

// Visits of guests (who take theirs along when they go) to halls (whose numbers may change).
base::Status AddVisits(Database& database) {
    const TableDesign tables[] = {
        {u"Halls",
         {Column(u"id", ColumnType::kLong), Column(u"Name", ColumnType::kText, 60)},
         {PrimaryKey(0)},
         {},
         {}},
        {u"Guests",
         {Column(u"id", ColumnType::kLong), Column(u"Name", ColumnType::kText, 50)},
         {PrimaryKey(0)},
         {},
         {}},
        {u"Visits",
         {Column(u"id", ColumnType::kLong), Column(u"guest", ColumnType::kLong),
          Column(u"hall", ColumnType::kLong), Column(u"Remark", ColumnType::kText, 200)},
         {PrimaryKey(0)},
         {},
         {}}};
    RelationDesign guests{u"GuestsVisits", u"Visits", {u"guest"}, u"Guests", {u"id"}};
    guests.on_delete = RelationRule::kCascade;
    RelationDesign halls{u"HallsVisits", u"Visits", {u"hall"}, u"Halls", {u"id"}};
    halls.on_update = RelationRule::kCascade;
    const auto create = [&]() -> base::Status {
        for (const TableDesign& table : tables)
            RETURN_IF_ERROR(database.CreateTable(table));
        RETURN_IF_ERROR(database.CreateRelation(guests));
        return database.CreateRelation(halls);
    };
    RETURN_IF_ERROR(Do(database, create));
    const auto number = [](std::int32_t n) { return Value::Long(n); };
    const auto text = [](const char16_t* t) { return Value::Text(t); };
    RETURN_IF_ERROR(AddRows(database, u"Halls",
                            {{number(10), text(u"North Pier")},
                             {number(11), text(u"Café Élan")},
                             {number(12), text(u"Old Station")}}));
    RETURN_IF_ERROR(AddRows(database, u"Guests",
                            {{number(1), text(u"Ada Marlow")}, {number(2), text(u"Otto Vance")}}));
    return AddRows(database, u"Visits",
                   {{number(0), number(1), number(10), text(u"rain")},
                    {number(1), number(1), number(11), {}},
                    {number(2), number(2), number(11), text(u"")},
                    {number(3), number(2), number(10), text(u"it's | \"closed\"")}});
}

// Its definition needs more than one page of version 3.
base::Status AddWideTable(Database& database) {
    TableDesign design;
    design.name = u"Übersicht";
    for (std::size_t i = 0; i < 70; ++i) {
        ColumnDesign column = Column(u"", i % 3 == 0 ? ColumnType::kText : ColumnType::kShort,
                                     i % 3 == 0 ? std::uint16_t{30} : std::uint16_t{0});
        column.name = u"Column number " + Digits(i);
        design.columns.push_back(column);
    }
    RETURN_IF_ERROR(Do(database, [&] { return database.CreateTable(design); }));
    std::vector<std::vector<Value>> rows(2, std::vector<Value>(design.columns.size()));
    for (std::size_t i = 0; i < design.columns.size(); ++i)
        rows[1][i] = i % 3 == 0 ? Value::Text(u"value " + Digits(i))
                                : Value::Short(static_cast<std::int16_t>(i * 100));
    return AddRows(database, u"Übersicht", std::move(rows));
}

// Leaves free pages behind.
base::Status AddAndDropATable(Database& database) {
    TableDesign design;
    design.name = u"Passing";
    design.columns = {Column(u"id", ColumnType::kLong)};
    design.indexes = {PrimaryKey(0)};
    RETURN_IF_ERROR(Do(database, [&] { return database.CreateTable(design); }));
    RETURN_IF_ERROR(AddRows(database, u"Passing", {{Value::Long(1)}}));
    return Do(database, [&] { return database.DropTable(u"Passing"); });
}

base::Status MakeArcade(const std::filesystem::path& folder, int version) {
    ASSIGN_OR_RETURN(const auto database, NewDatabase(folder, version));
    database->UseRowRules(std::make_unique<sql::RuleMaker>(Now));
    RETURN_IF_ERROR(AddMachines(*database));
    RETURN_IF_ERROR(AddVisits(*database));
    if (version == 3) RETURN_IF_ERROR(AddWideTable(*database));
    RETURN_IF_ERROR(AddAndDropATable(*database));
    ASSIGN_OR_RETURN(const auto bytes, BytesOf(database->pages()));
    return WriteFile(folder / ("arcade-jet" + std::to_string(version) + ".mdb"), bytes);
}

// ------------------------------------------------------------------------- catalogues

// As installations of the first versions have them: twelve columns; the seven others came later.
constexpr const char16_t* kTwelveColumns =
    u"CREATE TABLE Tables (ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, DisplayName TEXT(255), "
    u"FileName TEXT(255), Author TEXT(100), Company TEXT(100), [Year] TEXT(50), Version TEXT(50), "
    u"ImageFile TEXT(255), FlyerFile TEXT(255), Notes MEMO, PinMame YESNO, Favorite YESNO";
constexpr const char16_t* kLaterColumns =
    u", RulesFile TEXT(255), FileDate DATETIME, RulesText MEMO, TimesPlayed LONG, "
    u"LastPlayed DATETIME, DateAdded DATETIME, CRC TEXT(50)";

std::u16string Quoted(std::u16string_view text) {
    std::u16string quoted = u"'";
    for (const char16_t c : text)
        quoted += c == u'\'' ? std::u16string(u"''") : std::u16string(1, c);
    return quoted + u"'";
}

std::u16string CatalogueRow(Invented& invented, std::size_t number) {
    const std::u16string title =
        number == 17 ? u"Otto's \"Best\" | Château" : invented.Title() + u" " + Digits(number);
    const std::u16string folder = number % 3 == 0 ? u"D:\\Old Tables\\" : u"C:\\Games\\Tables\\";
    const std::u16string file = u"Table " + Digits(number) + (number % 7 == 0 ? u"'s" : u"");
    std::u16string row = Quoted(title) + u", " + Quoted(folder + file + u".vpt");
    row += u", " + (number % 5 == 4 ? std::u16string(u"Null") : Quoted(invented.Person()));
    row += u", " + (number % 6 == 5 ? std::u16string(u"''") : Quoted(invented.Maker()));
    row += u", " + (number % 4 == 3 ? std::u16string(u"Null") : Quoted(Digits(1960 + number)));
    row += u", " + Quoted(u"1." + Digits(number % 10));
    row += u", " + (number % 2 == 0 ? std::u16string(u"Null") : Quoted(folder + file + u".jpg"));
    row += u", Null";
    row += u", " + (number % 3 == 1 ? std::u16string(u"Null")
                                    : Quoted(invented.Prose(number % 9 == 0 ? 2500 : 60)));
    row += number % 4 == 0 ? u", True" : u", False";
    row += number % 5 == 0 ? u", True" : u", False";
    return row;
}

std::u16string LaterCells(Invented& invented, std::size_t number) {
    const std::u16string day = Digits(1 + number % 28);
    std::u16string row = number % 6 == 0 ? u", 'C:\\Games\\Rules\\" + Digits(number) + u".txt'"
                                         : std::u16string(u", Null");
    row += u", #6/" + day + u"/2003 8:15:00 PM#";
    row += u", " + (number % 4 == 1 ? Quoted(invented.Prose(120)) : std::u16string(u"Null"));
    row += u", " + Digits(number % 8);
    row += number % 8 == 0 ? std::u16string(u", Null") : u", #11/" + day + u"/2003 9:05:30 AM#";
    row += u", #1/" + day + u"/2003#";
    row += u", " + (number % 3 == 0 ? std::u16string(u"Null") : Quoted(u"AB12CD" + Digits(number)));
    return row;
}

base::Status MakeCatalogue(const std::filesystem::path& folder, int version, bool all_columns) {
    ASSIGN_OR_RETURN(auto database, NewDatabase(folder, version));
    PageStore& pages = database->pages();
    Connection connection(std::move(database), Now);
    const auto execute = [&](const std::u16string& sql) -> base::Status {
        const auto done = connection.Execute(sql);
        if (done.ok()) return {};
        return {done.status().code(), base::ToUtf8(sql) + ": " + done.status().message()};
    };
    RETURN_IF_ERROR(
        execute(std::u16string(kTwelveColumns) + (all_columns ? kLaterColumns : u"") + u")"));
    RETURN_IF_ERROR(execute(u"CREATE INDEX DisplayName ON Tables (DisplayName)"));
    RETURN_IF_ERROR(execute(u"CREATE INDEX AuthorYear ON Tables (Author, [Year])"));
    Invented invented(all_columns ? 12 : 11);
    const std::u16string names =
        std::u16string(u"DisplayName, FileName, Author, Company, [Year], Version, ImageFile, "
                       u"FlyerFile, Notes, PinMame, Favorite") +
        (all_columns ? u", RulesFile, FileDate, RulesText, TimesPlayed, LastPlayed, DateAdded, CRC"
                     : u"");
    for (std::size_t number = 1; number <= kCatalogueRows; ++number) {
        std::u16string row = CatalogueRow(invented, number);
        if (all_columns) row += LaterCells(invented, number);
        RETURN_IF_ERROR(execute(u"INSERT INTO Tables (" + names + u") VALUES (" + row + u")"));
    }
    ASSIGN_OR_RETURN(const auto bytes, BytesOf(pages));
    return WriteFile(folder / ("catalogue-jet" + std::to_string(version) + ".mdb"), bytes);
}

// The word is "b1": the key that scrambles owners is the same with it as without a password, so
// that nothing else in the file changes.
base::Status MakeFileWithPassword(const std::filesystem::path& folder) {
    ASSIGN_OR_RETURN(const auto database, NewDatabase(folder, 4));
    ASSIGN_OR_RETURN(auto bytes, BytesOf(database->pages()));
    bytes[0x42] ^= std::byte{'b'};
    bytes[0x44] ^= std::byte{'1'};
    return WriteFile(folder / "password-jet4.mdb", bytes);
}

}  // namespace

base::Status MakeDatabases(const std::filesystem::path& folder) {
    for (const int version : {3, 4})
        RETURN_IF_ERROR(MakeArcade(folder, version));
    RETURN_IF_ERROR(MakeCatalogue(folder, 3, false));
    RETURN_IF_ERROR(MakeCatalogue(folder, 4, true));
    return MakeFileWithPassword(folder);
}

}  // namespace test_data
