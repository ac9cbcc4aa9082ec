// What transactions tell of the rows that they change, by single and by bulk ways.
#include "jet/tables/change_note.h"

#include "base/unicode.h"
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

class KeptNotes final : public CommitNotes {
public:
    void Bind(std::vector<std::uint64_t>) override {}
    void Keep(std::vector<CommitNote> taken, std::uint64_t) override {
        for (CommitNote& note : taken)
            notes.push_back(std::move(note.bytes));
    }
    std::vector<Bytes> notes;
};

std::string TextOf(const NoteTable& table, std::size_t column, const NotedCell& cell) {
    const auto value = table.Decode(column, cell);
    if (!value.ok()) return value.status().message();
    if (value->is_null()) return "Null";
    if (const Bytes* bytes = value->get_if<Bytes>())
        return std::to_string(bytes->size()) + " bytes";
    return base::ToUtf8(ToText(*value));
}

// A line for each row: "Games -(1) Name=Taxi ...", "Games *(1) Name=Taxi>Fathom".
std::vector<std::string> Told(const Bytes& note, std::vector<NoteTable>* known = nullptr) {
    std::vector<std::string> lines;
    auto reader = NoteReader::Open(note, known != nullptr ? *known : std::vector<NoteTable>());
    if (!reader.ok()) return {reader.status().message()};
    NotedRow row;
    for (;;) {
        const auto more = reader->Next(row);
        if (!more.ok()) lines.push_back(more.status().message());
        if (!more.ok() || !*more) {
            if (known != nullptr) *known = std::move(*reader).TakeTables();
            return lines;
        }
        const NoteTable& table = reader->tables()[row.table];
        std::string line = base::ToUtf8(table.name) + " ";
        line += row.change == RowChange::kUpdated   ? "*"
                : row.change == RowChange::kDeleted ? "-"
                                                    : "+";
        for (std::size_t i = 0; i < row.key.size(); ++i)
            line += "(" + TextOf(table, table.key[i], row.key[i]) + ")";
        for (const NotedRow::Cell& cell : row.cells) {
            line += " " + base::ToUtf8(table.columns[cell.column].name) + "=";
            if (row.change != RowChange::kInserted) line += TextOf(table, cell.column, cell.before);
            if (row.change == RowChange::kUpdated) line += ">";
            if (row.change != RowChange::kDeleted) line += TextOf(table, cell.column, cell.after);
        }
        lines.push_back(line);
    }
}

class ChangeNoteTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(files_, "games.mdb", 45000).ok());
        connection_.UseNotes(&kept_);
        ASSERT_TRUE(connection_.Open(u"Data Source=games.mdb").ok());
        Run(u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(50), Points LONG, Notes MEMO, "
            u"Best YESNO)");
    }

    void Run(std::u16string_view sql) {
        const auto done = connection_.Execute(sql);
        EXPECT_TRUE(done.ok()) << done.status().message();
    }
    // What was told since the last call.
    std::vector<std::string> Lines() {
        EXPECT_TRUE(connection_.Flush().ok());
        std::vector<std::string> lines;
        for (const Bytes& note : kept_.notes)
            for (std::string& line : Told(note))
                lines.push_back(std::move(line));
        kept_.notes.clear();
        return lines;
    }
    void InsertMany(int count) {
        for (int i = 0; i < count; ++i)
            Run(u"INSERT INTO Games (Name, Points) VALUES ('Game', 1)");
        Lines();
    }

    test_support::FaultyFileSystem files_;
    KeptNotes kept_;
    Connection connection_{files_, [] { return 46000.25; }};
};

TEST_F(ChangeNoteTest, AnInsertTellsAllCells) {
    Run(u"INSERT INTO Games (Name, Notes, Best) VALUES ('Taxi', 'fast', TRUE)");
    EXPECT_EQ(Lines(), (std::vector<std::string>{
                           "Games + ID=1 Name=Taxi Points=Null Notes=fast Best=True"}));
}

TEST_F(ChangeNoteTest, AnUpdateTellsTheCellsThatDiffer) {
    Run(u"INSERT INTO Games (Name, Points) VALUES ('Taxi', 7)");
    Lines();
    Run(u"UPDATE Games SET Name = 'Taxi', Points = 8, Best = TRUE WHERE ID = 1");
    EXPECT_EQ(Lines(), (std::vector<std::string>{"Games *(1) Points=7>8 Best=False>True"}));
    Run(u"UPDATE Games SET Points = 8");
    EXPECT_EQ(Lines(), std::vector<std::string>());
}

TEST_F(ChangeNoteTest, LongValuesAreToldWhole) {
    Run(u"INSERT INTO Games (Name) VALUES ('Taxi')");
    Lines();
    const std::u16string text(20000, u'x');
    Run(u"UPDATE Games SET Notes = '" + text + u"'");
    EXPECT_EQ(Lines(), (std::vector<std::string>{"Games *(1) Notes=Null>" + base::ToUtf8(text)}));
    Run(u"DELETE FROM Games");
    EXPECT_EQ(Lines(), (std::vector<std::string>{"Games - ID=1 Name=Taxi Points=Null Notes=" +
                                                 base::ToUtf8(text) + " Best=False"}));
}

TEST_F(ChangeNoteTest, ManyRowsAreToldAsSingleOnesAre) {
    InsertMany(300);
    Run(u"UPDATE Games SET Name = 'Game ' & ID, Points = ID");
    const std::vector<std::string> updated = Lines();
    ASSERT_EQ(updated.size(), 300U);
    EXPECT_EQ(updated[4], "Games *(5) Name=Game>Game 5 Points=1>5");
    EXPECT_EQ(updated[0], "Games *(1) Name=Game>Game 1");
    Run(u"DELETE FROM Games WHERE ID <= 200");
    const std::vector<std::string> deleted = Lines();
    ASSERT_EQ(deleted.size(), 200U);
    EXPECT_EQ(deleted[9], "Games - ID=10 Name=Game 10 Points=10 Notes=Null Best=False");
}

// Rows that grow leave their pages.
TEST_F(ChangeNoteTest, MovedRowsAreTold) {
    InsertMany(300);
    Run(u"UPDATE Games SET Name = 'A name that is much longer than before, ' & ID");
    Lines();
    Run(u"UPDATE Games SET Points = 3");
    const std::vector<std::string> updated = Lines();
    ASSERT_EQ(updated.size(), 300U);
    EXPECT_EQ(updated[299], "Games *(300) Points=1>3");
}

TEST_F(ChangeNoteTest, CascadesAreTold) {
    Run(u"CREATE TABLE Scores (ID COUNTER PRIMARY KEY, Game LONG, "
        u"CONSTRAINT OfGame FOREIGN KEY (Game) REFERENCES Games (ID) ON UPDATE CASCADE ON DELETE "
        u"CASCADE)");
    InsertMany(2);
    Run(u"INSERT INTO Scores (Game) VALUES (2)");
    Lines();
    Run(u"UPDATE Games SET ID = 9 WHERE ID = 2");
    EXPECT_EQ(Lines(), (std::vector<std::string>{"Games *(2) ID=2>9", "Scores *(1) Game=2>9"}));
    Run(u"DELETE FROM Games WHERE ID = 9");
    EXPECT_EQ(Lines(),
              (std::vector<std::string>{"Games - ID=9 Name=Game Points=1 Notes=Null Best=False",
                                        "Scores - ID=1 Game=9"}));
}

TEST_F(ChangeNoteTest, WithoutAKeyARowIsKnownByAllItsCells) {
    Run(u"CREATE TABLE Words (Word TEXT(20), Times LONG)");
    Run(u"INSERT INTO Words VALUES ('a', 1)");
    Lines();
    Run(u"UPDATE Words SET Times = 2");
    EXPECT_EQ(Lines(), (std::vector<std::string>{"Words * Word=a>a Times=1>2"}));
}

TEST_F(ChangeNoteTest, WhatIsRolledBackIsNotTold) {
    Run(u"CREATE UNIQUE INDEX ByName ON Games (Name)");
    Run(u"INSERT INTO Games (Name) VALUES ('a')");
    Run(u"INSERT INTO Games (Name) VALUES ('b')");
    Lines();
    EXPECT_FALSE(connection_.Execute(u"UPDATE Games SET Name = 'c'").ok());
    EXPECT_FALSE(connection_
                     .Change([](Database& database) -> base::Status {
                         std::vector<Value> row(5);
                         row[4] = Value::Boolean(false);
                         auto inserted = (*database.FindTable(u"Games"))->Insert(row);
                         EXPECT_TRUE(inserted.ok());
                         EXPECT_EQ(database.recorded_rows(), 1U);
                         return {base::StatusCode::kInvalidArgument, "no"};
                     })
                     .ok());
    EXPECT_EQ(Lines(), std::vector<std::string>());
    Run(u"UPDATE Games SET Name = 'd' WHERE ID = 1");
    EXPECT_EQ(Lines(), (std::vector<std::string>{"Games *(1) Name=a>d"}));
}

TEST_F(ChangeNoteTest, TheOutermostNameNamesTheChange) {
    {
        const NamedChange outer(connection_, u"Scan", 77);
        Run(u"INSERT INTO Games (Name) VALUES ('a')");
        const NamedChange inner(connection_, u"Update");
        Run(u"INSERT INTO Games (Name) VALUES ('b')");
    }
    Run(u"INSERT INTO Games (Name) VALUES ('c')");
    ASSERT_TRUE(connection_.Flush().ok());
    ASSERT_EQ(kept_.notes.size(), 3U);
    std::vector<ChangeLabel> labels;
    for (const Bytes& note : kept_.notes)
        labels.push_back(NoteReader::Open(note)->label());
    EXPECT_EQ(labels[0], (ChangeLabel{labels[1].id, 77, 46000.25, u"Scan"}));
    EXPECT_EQ(labels[1], labels[0]);
    EXPECT_EQ(labels[2], (ChangeLabel{labels[2].id, 0, 46000.25, u""}));
    EXPECT_NE(labels[2].id, labels[0].id);
}

// Notes of one change tell each table once, as it is then; a note that was not committed tells
// none.
TEST_F(ChangeNoteTest, EachTableIsToldOnceInAChange) {
    Run(u"CREATE UNIQUE INDEX ByName ON Games (Name)");
    {
        const NamedChange named(connection_, u"Insert");
        EXPECT_FALSE(connection_.Execute(u"INSERT INTO Games (ID) VALUES ('no')").ok());
        Run(u"INSERT INTO Games (Name) VALUES ('a')");
        EXPECT_FALSE(connection_.Execute(u"INSERT INTO Games (Name) VALUES ('a')").ok());
        Run(u"INSERT INTO Games (Name) VALUES ('b')");
        Run(u"ALTER TABLE Games ADD COLUMN Extra LONG");
        Run(u"UPDATE Games SET Extra = 1");
        Run(u"UPDATE Games SET Extra = 2 WHERE Name = 'a'");
    }
    ASSERT_TRUE(connection_.Flush().ok());
    ASSERT_EQ(kept_.notes.size(), 4U);
    EXPECT_LT(kept_.notes[1].size() + 30, kept_.notes[0].size());
    std::vector<NoteTable> known;
    std::vector<std::string> lines;
    for (const Bytes& note : kept_.notes)
        for (std::string& line : Told(note, &known))
            lines.push_back(std::move(line));
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[4], "Games *(1) Extra=1>2");
    EXPECT_EQ(known.size(), 2U);
}

// A note cut at any place, and one with any byte changed, gives rows or a status.
TEST_F(ChangeNoteTest, DamagedNotesAreNoDanger) {
    Run(u"INSERT INTO Games (Name, Notes) VALUES ('Taxi', 'fast')");
    Run(u"UPDATE Games SET Points = 8, Best = TRUE");
    ASSERT_TRUE(connection_.Flush().ok());
    for (const Bytes& note : kept_.notes) {
        for (std::size_t size = 0; size < note.size(); ++size)
            Told(Bytes(note.begin(), note.begin() + static_cast<std::ptrdiff_t>(size)));
        for (std::size_t at = 0; at < note.size(); ++at)
            for (const unsigned flip : {1U, 0x80U, 0xFFU}) {
                Bytes damaged = note;
                damaged[at] ^= static_cast<std::byte>(flip);
                Told(damaged);
            }
    }
}

// The same commands with and without somebody who keeps notes leave the same file.
TEST_F(ChangeNoteTest, TheDatabaseFileIsTheSameWithoutNotes) {
    const auto run = [](CommitNotes* notes) {
        test_support::FaultyFileSystem files;
        EXPECT_TRUE(CreateDatabaseFile(files, "games.mdb", 45000).ok());
        Connection connection(files, [] { return 46000.25; });
        connection.UseNotes(notes);
        EXPECT_TRUE(connection.Open(u"Data Source=games.mdb").ok());
        for (const std::u16string_view sql :
             {u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(50), Notes MEMO)",
              u"INSERT INTO Games (Name, Notes) VALUES ('Taxi', 'fast')",
              u"INSERT INTO Games (Name, Notes) SELECT Name, Notes FROM Games",
              u"UPDATE Games SET Name = Name & ' 2' WHERE ID = 2",
              u"DELETE FROM Games WHERE ID = 1"})
            EXPECT_TRUE(connection.Execute(sql).ok());
        EXPECT_TRUE(connection.Close().ok());
        Bytes file = files.Get("games.mdb");
        for (std::size_t i = 0; i < 16; ++i)
            file[0xFF0 + i] = std::byte{0};  // the mark
        return file;
    };
    EXPECT_EQ(run(nullptr), run(&kept_));
}

}  // namespace
}  // namespace jet::test
