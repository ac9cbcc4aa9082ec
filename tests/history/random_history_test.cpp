// Random histories: changes of ours, rows changed, deleted and inserted by another program between
// them, then one of ours is undone. A model says of each cell what must be there afterwards, and
// what must be listed: not one foreign value is overwritten.
#include "history_fixture.h"

#include "jet/pages/file_mark.h"

#include <algorithm>
#include <random>
#include <set>

namespace history::test {
namespace {

constexpr int kHistories = TAVOLO_HISTORIES;

class RandomHistoryTest : public HistoryFixture {
protected:
    std::size_t Pick(std::size_t count) { return random_() % count; }

    std::u16string Number(std::size_t number) {
        const std::string text = std::to_string(number);
        return {text.begin(), text.end()};
    }

    // Few rows and few values, so that changes meet.
    std::u16string Statement() {
        const std::u16string id = Number(1 + Pick(6));
        const std::u16string value = Number(Pick(3));
        switch (Pick(7)) {
        case 0:
            return u"INSERT INTO Games (ID, Name, Points) VALUES (" + id + u", 'n" + value +
                   u"', 1)";
        case 1:
            return u"INSERT INTO Games (Name, Notes) VALUES ('new', 'text')";
        case 2:
            return u"DELETE FROM Games WHERE ID = " + id;
        case 3:
            return u"UPDATE Games SET Points = " + value + u" WHERE ID < " + id;
        case 4:
            return u"UPDATE Games SET Name = 'n" + value + u"', Best = NOT Best WHERE ID = " + id;
        case 5:
            return u"UPDATE Games SET Notes = 'note" + value + u"', Name = NULL WHERE ID > " + id;
        default:
            return u"DELETE FROM Games WHERE ID > " + id + u" AND Points = " + value;
        }
    }

    void RunSome(jet::Connection& connection, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto done = connection.Execute(Statement());
            EXPECT_TRUE(done.ok() || done.status().number() == 3022) << done.status().message();
        }
    }

    // Another program writes to the file, which keeps its mark.
    void RunForeign(std::size_t count) {
        Close();
        const auto mark_of = [](std::vector<std::byte>& file) {
            return std::span(file).subspan(jet::FileMarkOffset(4096), jet::kFileMarkBytes);
        };
        std::vector<std::byte> before = files_->Get(kPath);
        {
            jet::Connection other(*files_);
            ASSERT_TRUE(other.Open(u"Data Source=folder/games.mdb").ok());
            RunSome(other, count);
            ASSERT_TRUE(other.Close().ok());
        }
        std::vector<std::byte> after = files_->Get(kPath);
        std::ranges::copy(mark_of(before), mark_of(after).begin());
        files_->Put(kPath, after);
        Open();
    }

    // `before` and `after` the change that was undone, `now` when it was, `then` behind it.
    static void Check(const Content& before, const Content& after, const Content& now,
                      const Content& then, const std::vector<Refusal>& refusals) {
        static const std::vector<std::u16string> fields = {u"Name", u"Points", u"Notes", u"Best"};
        Content wanted = now;
        std::set<std::u16string> refused;  // rows
        std::set<std::pair<std::u16string, std::u16string>> refused_cells;
        for (const auto& [id, old_row] : before) {
            const auto changed = after.find(id);
            const auto current = now.find(id);
            if (changed == after.end()) {  // it was deleted
                if (current == now.end())
                    wanted[id] = old_row;
                else
                    refused.insert(id);
                continue;
            }
            for (std::size_t i = 0; i < fields.size(); ++i) {
                if (old_row[i] == changed->second[i]) continue;
                if (current == now.end())
                    refused_cells.insert({id, fields[i]});
                else if (current->second[i] == changed->second[i])
                    wanted[id][i] = old_row[i];
                else if (current->second[i] != old_row[i])
                    refused_cells.insert({id, fields[i]});
            }
        }
        for (const auto& [id, new_row] : after) {
            if (before.contains(id) || !now.contains(id)) continue;  // it was inserted
            if (now.at(id) == new_row)
                wanted.erase(id);
            else
                refused.insert(id);
        }
        EXPECT_EQ(then, wanted);
        std::set<std::u16string> told;
        std::set<std::pair<std::u16string, std::u16string>> told_cells;
        for (const Refusal& refusal : refusals) {
            const std::u16string id = refusal.row.substr(3);
            if (refused.contains(id))
                told.insert(id);
            else
                told_cells.insert({id, refusal.field});
        }
        EXPECT_EQ(told, refused);
        EXPECT_EQ(told_cells, refused_cells);
    }

    std::mt19937 random_{20261122};
};

TEST_F(RandomHistoryTest, NoForeignValueIsOverwrittenAndEachRefusalIsListed) {
    Close();
    const std::vector<std::byte> empty = files_->Get(kPath);
    int refusals = 0;
    int clean = 0;
    for (int i = 0; i < kHistories && !HasFailure(); ++i) {
        SCOPED_TRACE("history " + std::to_string(i));
        files_ = std::make_unique<test_support::FaultyFileSystem>();
        files_->Put(kPath, empty);
        Open();
        InsertMany(static_cast<int>(Pick(6)));
        struct Step {
            std::uint64_t id = 0;
            Content before;
            Content after;
        };
        std::vector<Step> steps;
        const std::size_t count = 1 + Pick(3);
        for (std::size_t k = 0; k < count; ++k) {
            Step step;
            step.before = Rows();
            const std::size_t known = Changes().size();
            {
                const jet::NamedChange named(*connection_, u"Change");
                RunSome(*connection_, 1 + Pick(4));
            }
            step.after = Rows();
            const std::vector<Change> changes = Changes();
            if (changes.size() > known) {
                step.id = changes.back().number;
                steps.push_back(std::move(step));
            }
            if (Pick(3) == 0) RunForeign(1 + Pick(3));
        }
        if (!steps.empty()) {
            const Step& step = steps[Pick(steps.size())];
            const Content now = Rows();
            const PutBackResult done = Undo(step.id);
            const Content then = Rows();
            Check(step.before, step.after, now, then, done.refusals);
            done.refusals.empty() ? ++clean : ++refusals;
            if (done.refusals.empty()) {
                EXPECT_TRUE(UndoLast().refusals.empty());
                // An undone change that others had undone in part leaves these parts as they were.
                EXPECT_TRUE(now != step.after || Rows() == now);
            }
        }
        Close();
    }
    EXPECT_GT(refusals, kHistories / 10);
    EXPECT_GT(clean, kHistories / 10);
    files_ = std::make_unique<test_support::FaultyFileSystem>();
    files_->Put(kPath, empty);
    Open();
}

}  // namespace
}  // namespace history::test
