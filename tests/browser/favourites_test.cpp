#include "browser/favourites.h"

#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"

namespace browser {
namespace {

class FavouritesTest : public test_support::CatalogueFixture {
protected:
    void Add(const QString& name, const QString& file, bool favorite) {
        Execute(QStringLiteral("insert into tables (DisplayName, FileName, Favorite) "
                               "values ('%1', '%2', %3)")
                    .arg(catalogue::QuoteSql(name), file,
                         favorite ? QStringLiteral("true") : QStringLiteral("false")));
    }
    FavoritesToggle Toggle() {
        const auto toggled = ToggleFavorites(*connection, shown);
        EXPECT_TRUE(toggled.ok()) << toggled.status().message();
        return toggled.value_or({});
    }
    QString Favorites() {
        return Scalar(QStringLiteral("select count(*) from tables where Favorite = true"));
    }
    ShownSelection shown{.tag = QStringLiteral("/a.vpt"),
                         .text = QStringLiteral("Attack"),
                         .filter_key = QStringLiteral("All")};
};

TEST_F(FavouritesTest, AnUncheckedTableBecomesAFavourite) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), false);
    const FavoritesToggle toggled = Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("1"));
    EXPECT_EQ(toggled, (FavoritesToggle{.done = true, .leaves_filter = false}));
}

TEST_F(FavouritesTest, ACheckedOneIsNoneAnyMoreAndGetsTheFavouriteIconAllTheSame) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), true);
    shown.favorite_checked = true;
    const FavoritesToggle toggled = Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("0"));
    EXPECT_TRUE(toggled.done);
}

TEST_F(FavouritesTest, EveryRowWithTheNameChanges) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), false);
    Add(QStringLiteral("ATTACK"), QStringLiteral("/b.vpt"), false);
    Add(QStringLiteral("Attack 2"), QStringLiteral("/c.vpt"), false);
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("2"));
}

TEST_F(FavouritesTest, ANameWithAnApostropheIsFound) {
    shown.text = QStringLiteral("Bob's 'Table'");
    Add(shown.text, QStringLiteral("/a.vpt"), false);
    Toggle();
    EXPECT_EQ(Favorites(), QStringLiteral("1"));
}

TEST_F(FavouritesTest, NothingHappensOnADetailLineOrAnEmptyTree) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), false);
    shown.tag = QStringLiteral("X");
    EXPECT_EQ(Toggle(), FavoritesToggle{});
    shown.tag = QStringLiteral("/a.vpt");
    shown.tree_is_empty = true;
    EXPECT_EQ(Toggle(), FavoritesToggle{});
    EXPECT_EQ(Favorites(), QStringLiteral("0"));
}

TEST_F(FavouritesTest, TheFilterFavoritesIsLeft) {
    Add(QStringLiteral("Attack"), QStringLiteral("/a.vpt"), true);
    shown.favorite_checked = true;
    shown.filter_key = QStringLiteral("Favorites");
    EXPECT_TRUE(Toggle().leaves_filter);
}

TEST_F(FavouritesTest, AFailureIsReported) {
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(ToggleFavorites(*connection, shown).ok());
}

}  // namespace
}  // namespace browser
