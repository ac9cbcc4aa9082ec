#include "browser/favourites.h"

#include "support/catalogue_fixture.h"

#include <QtCore/QStringList>

namespace browser {
namespace {

class FakeFavouritesHost final : public FavouritesHost {
public:
    bool empty = false;
    QString tag = QStringLiteral("/a.vpt");
    QString text = QStringLiteral("Attack");
    bool checked = false;
    QString filter = QStringLiteral("All");
    QStringList steps;

    bool TreeIsEmpty() const override { return empty; }
    QString SelectedTag() const override { return tag; }
    QString SelectedText() const override { return text; }
    bool FavoriteChecked() const override { return checked; }
    void SetSelectedNodeIcon(const QString& key) override {
        steps << QStringLiteral("icon ") + key;
    }
    void ShowTableDetails(const QString& file) override { steps << QStringLiteral("show ") + file; }
    QString FilterText() const override { return filter; }
    void SelectFilterAll() override { steps << QStringLiteral("all"); }
};

class FavouritesTest : public test_support::CatalogueFixture {
protected:
    void Add(const QString& name, const QString& file, bool favorite) {
        Execute(QStringLiteral("insert into tables (DisplayName, FileName, Favorite) "
                               "values ('%1', '%2', %3)")
                    .arg(catalogue::QuoteSql(name), file,
                         favorite ? QStringLiteral("true") : QStringLiteral("false")));
    }
    void Toggle() {
        const auto done = ToggleFavorites(*connection, host);
        EXPECT_TRUE(done.ok()) << done.message();
    }
    QString Favorites() {
        return Scalar(QStringLiteral("select count(*) from tables where Favorite = true"));
    }
    FakeFavouritesHost host;
};

TEST_F(FavouritesTest, AnUncheckedTableBecomesAFavourite) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), false);
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("1"));
    EXPECT_EQ(host.steps,
              QStringList({QStringLiteral("icon favorite"), QStringLiteral("show /a.vpt")}));
}

TEST_F(FavouritesTest, ACheckedOneIsNoneAnyMoreAndGetsTheFavouriteIconAllTheSame) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), true);
    host.checked = true;
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("0"));
    EXPECT_EQ(host.steps.first(), QStringLiteral("icon favorite"));
}

TEST_F(FavouritesTest, EveryRowWithTheNameChanges) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), false);
    Add(QStringLiteral("ATTACK"), QStringLiteral("/b.vpt"), false);
    Add(QStringLiteral("Attack 2"), QStringLiteral("/c.vpt"), false);
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("2"));
}

TEST_F(FavouritesTest, ANameWithAnApostropheIsFound) {
    host.text = QStringLiteral("Bob's 'Table'");
    Add(host.text, QStringLiteral("/a.vpt"), false);
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("1"));
}

TEST_F(FavouritesTest, NothingHappensOnADetailLineOrAnEmptyTree) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), false);
    host.tag = QStringLiteral("X");
    Toggle();
    host.tag = QStringLiteral("/a.vpt");
    host.empty = true;
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("0"));
    EXPECT_TRUE(host.steps.isEmpty());
}

TEST_F(FavouritesTest, TheFilterFavoritesIsLeft) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), true);
    host.checked = true;
    host.filter = QStringLiteral("Favorites");
    Toggle();
    EXPECT_EQ(host.steps.last(), QStringLiteral("all"));
}

TEST_F(FavouritesTest, AFailureIsReportedAndNothingIsShown) {
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(ToggleFavorites(*connection, host).ok());
    EXPECT_TRUE(host.steps.isEmpty());
}

}  // namespace
}  // namespace browser
