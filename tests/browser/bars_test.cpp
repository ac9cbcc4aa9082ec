#include "browser/filter_bar.h"
#include "browser/order_bar.h"
#include "support/fakes.h"
#include "support/qt_text.h"

#include <gtest/gtest.h>

#include <QtGui/QScreen>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

namespace browser {
namespace {

using test_support::S;

class FilterBarTest : public testing::Test {
protected:
    template <typename T>
    T* Find(const char16_t* name) {
        return bar.findChild<T*>(S(name));
    }
    // Selects an entry of the list as the user does.
    void Pick(const char16_t* text) {
        auto* combo = Find<QComboBox>(u"cboFilter");
        const int index = combo->findText(S(text));
        combo->setCurrentIndex(index);
        Q_EMIT combo->activated(index);
    }

    test_support::FakePrompts prompts;
    IconList icons;
    QStringList values = {S(u"Bally"), S(u"Stern")};
    QStringList asked;
    FilterBar bar{[this](const QString& key) -> base::Result<QStringList> {
                      asked.append(key);
                      return values;
                  },
                  prompts, icons};
    QSignalSpy changes{&bar, &FilterBar::Changed};
};

TEST_F(FilterBarTest, OffersTenKindsWithIconsAndKeys) {
    const auto* combo = Find<QComboBox>(u"cboFilter");
    QStringList kinds;
    for (int i = 0; i < combo->count(); ++i) {
        kinds.append(combo->itemText(i) + u'/' + combo->itemData(i).toString());
        EXPECT_FALSE(combo->itemIcon(i).isNull()) << i;
    }
    EXPECT_EQ(kinds.join(u' ').toStdString(),
              "All/All VPinMAME/PinMame Favorites/Favorites VP Only/VP Only Author/Author "
              "Company/Company Year/Year File Date/FileDate Times Played/TimesPlayed "
              "Date Added/DateAdded");
}

TEST_F(FilterBarTest, EachKindHasTheIconOfItsKey) {
    const auto* combo = Find<QComboBox>(u"cboFilter");
    const auto picture = [](const QIcon& icon) { return icon.pixmap(16).toImage(); };
    const QStringList keys = S(u"pinball mame favorite vp author company year filedate number "
                               u"filedate")
                                 .split(u' ');
    ASSERT_EQ(combo->count(), keys.size());
    for (int i = 0; i < keys.size(); ++i)
        for (int other = 0; other < keys.size(); ++other)
            EXPECT_EQ(picture(combo->itemIcon(i)) == picture(icons.Icon(keys[other])),
                      keys[i] == keys[other])
                << keys[i].toStdString() << " and " << keys[other].toStdString();
}

TEST_F(FilterBarTest, AFixedKindHidesValueAndOperator) {
    Pick(u"Company");
    Pick(u"Favorites");
    EXPECT_TRUE(Find<QFrame>(u"fraFilter")->isHidden());
    EXPECT_TRUE(Find<QPushButton>(u"cmdOperator")->isHidden());
    EXPECT_EQ(Find<QComboBox>(u"cboFilterDet")->count(), 0);
    EXPECT_EQ(bar.FilterValue(), QString());
    EXPECT_FALSE(bar.TakesValue());
}

TEST_F(FilterBarTest, AValueKindOffersTheValuesOfItsColumn) {
    Pick(u"Company");
    EXPECT_EQ(asked, QStringList({S(u"Company")}));
    EXPECT_FALSE(Find<QFrame>(u"fraFilter")->isHidden());
    EXPECT_FALSE(Find<QPushButton>(u"cmdOperator")->isHidden());
    const auto* det = Find<QComboBox>(u"cboFilterDet");
    EXPECT_EQ(det->count(), 2);
    EXPECT_EQ(det->itemText(1), S(u"Stern"));
    EXPECT_EQ(bar.FilterValue(), QString());  // none is chosen yet
    EXPECT_EQ(det->currentIndex(), -1) << "the first one can still be chosen by a key";
}

TEST_F(FilterBarTest, ChangingTheKindEmptiesTheValue) {
    Pick(u"Company");
    Find<QComboBox>(u"cboFilterDet")->setEditText(S(u"Bally"));
    Pick(u"Author");
    EXPECT_EQ(bar.FilterValue(), QString());
}

TEST_F(FilterBarTest, AColumnWithoutValuesIsReportedAndTheFrameStaysAsItWas) {
    values.clear();
    Pick(u"Author");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"The database contains no values for Author"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
    EXPECT_TRUE(Find<QFrame>(u"fraFilter")->isHidden());
    values = {S(u"x")};
    Pick(u"Company");
    values.clear();
    Pick(u"Year");
    EXPECT_FALSE(Find<QFrame>(u"fraFilter")->isHidden());
}

TEST_F(FilterBarTest, EveryChangeOfTheUserIsSignalled) {
    Pick(u"Company");
    EXPECT_EQ(changes.count(), 1);
    QTest::keyClicks(Find<QComboBox>(u"cboFilterDet")->lineEdit(), S(u"B"));
    EXPECT_EQ(changes.count(), 2);
    QTest::mouseClick(Find<QPushButton>(u"cmdOperator"), Qt::LeftButton);
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(FilterBarTest, TheOperatorStartsAtGreaterWhateverWasRestored) {
    bar.SetComparison(S(u"<"));
    QStringList shown;
    for (int i = 0; i < 6; ++i) {
        QTest::mouseClick(Find<QPushButton>(u"cmdOperator"), Qt::LeftButton);
        shown.append(bar.Comparison());
    }
    EXPECT_EQ(shown.join(u' ').toStdString(), "> < <> = > <");
}

TEST_F(FilterBarTest, RestoringAFixedKindSetsTheOperatorToEqual) {
    bar.SetComparison(S(u"<>"));
    bar.Restore(S(u"PinMame"), S(u"left over"));
    EXPECT_EQ(bar.FilterKey(), S(u"PinMame"));
    EXPECT_EQ(bar.Comparison(), S(u"="));
    EXPECT_EQ(bar.FilterValue(), QString());
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(FilterBarTest, RestoringAValueKindPutsTheValueBack) {
    bar.SetComparison(S(u"<>"));
    bar.Restore(S(u"Company"), S(u"Gone Inc."));
    EXPECT_TRUE(bar.TakesValue());
    EXPECT_EQ(bar.FilterValue(), S(u"Gone Inc."));
    EXPECT_EQ(bar.Comparison(), S(u"<>"));
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(FilterBarTest, AnUnknownSavedKindIsAll) {
    bar.Restore(S(u"Colour"), S(u"red"));
    EXPECT_EQ(bar.FilterKey(), S(u"All"));
}

TEST_F(FilterBarTest, TypedTextIsNotCompleted) {
    values = {S(u"1999")};
    Pick(u"Year");
    auto* edit = Find<QComboBox>(u"cboFilterDet")->lineEdit();
    QTest::keyClicks(edit, S(u"19"));
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(bar.FilterValue(), S(u"19"));
    EXPECT_EQ(Find<QComboBox>(u"cboFilterDet")->count(), 1);
}

TEST_F(FilterBarTest, TheListIsAsWideAsItsValues) {
    values = {S(u"11/20/2026 3:04:05 PM"), S(u"11/20/2026 3:04:06 PM"),
              S(u"11/20/2026 3:04:07 PM of a longer kind")};
    bar.resize(320, 30);
    bar.show();
    Pick(u"File Date");
    auto* det = Find<QComboBox>(u"cboFilterDet");
    det->showPopup();
    const int needed = det->view()->fontMetrics().horizontalAdvance(values.back());
    EXPECT_GT(needed, det->width()) << "or there is nothing to see";
    EXPECT_GE(det->view()->viewport()->width(), needed);
    EXPECT_LE(det->view()->window()->geometry().right(),
              det->screen()->availableGeometry().right());
    det->hidePopup();
}

TEST_F(FilterBarTest, APickedValueIsShownFromItsBeginning) {
    Pick(u"File Date");
    auto* det = Find<QComboBox>(u"cboFilterDet");
    det->setCurrentIndex(1);
    Q_EMIT det->activated(1);
    EXPECT_EQ(det->lineEdit()->cursorPosition(), 0);
    EXPECT_EQ(det->toolTip(), S(u"Stern")) << "all of it under the pointer";
    bar.Restore(S(u"Company"), S(u"A very long name that does not fit"));
    EXPECT_EQ(det->lineEdit()->cursorPosition(), 0);
    EXPECT_EQ(det->toolTip(), S(u"A very long name that does not fit"));
}

TEST_F(FilterBarTest, HundredThousandValuesAreOffered) {
    values.clear();
    for (int i = 0; i < 100'000; ++i)
        values.append(QString::number(i));
    QAbstractItemModel* model = Find<QComboBox>(u"cboFilterDet")->model();
    const QSignalSpy insertions(model, &QAbstractItemModel::rowsInserted);
    const QSignalSpy changes_of_items(model, &QAbstractItemModel::dataChanged);
    Pick(u"Author");
    EXPECT_EQ(Find<QComboBox>(u"cboFilterDet")->count(), 100'000);
    EXPECT_EQ(insertions.count() + changes_of_items.count(), 0) << "the list is exchanged whole";
}

class OrderBarTest : public testing::Test {
protected:
    template <typename T>
    T* Find(const char16_t* name) {
        return bar.findChild<T*>(S(name));
    }
    OrderBar bar;
};

TEST_F(OrderBarTest, OffersSixOrders) {
    const auto* combo = Find<QComboBox>(u"cboOrder");
    QStringList orders;
    for (int i = 0; i < combo->count(); ++i)
        orders.append(combo->itemText(i));
    EXPECT_EQ(orders.join(u'/').toStdString(),
              "Table Name/Year/Author/Company/Date Added/Times Played");
    EXPECT_EQ(bar.objectName(), S(u"ssOrder"));
    EXPECT_EQ(Find<QLabel>(u"Label3")->text(), S(u"Order:"));
}

TEST_F(OrderBarTest, TheDirectionToggles) {
    const QSignalSpy changes(&bar, &OrderBar::Changed);
    auto* direction = Find<QPushButton>(u"lblDirection");
    EXPECT_EQ(direction->toolTip(), S(u"Changes Sort Direction"));
    QTest::mouseClick(direction, Qt::LeftButton);
    EXPECT_EQ(bar.Direction(), S(u"Desc"));
    QTest::mouseClick(direction, Qt::LeftButton);
    EXPECT_EQ(bar.Direction(), S(u"Asc"));
    bar.SetDirection(S(u"sideways"));
    QTest::mouseClick(direction, Qt::LeftButton);
    EXPECT_EQ(bar.Direction(), S(u"Asc"));
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(OrderBarTest, ThePendingMarkIsOnTheButton) {
    auto* go = Find<QPushButton>(u"cmdGo");
    EXPECT_EQ(go->text(), S(u"Refresh Tree"));
    EXPECT_EQ(go->toolTip(), S(u"Click to Apply Selection(s)"));
    bar.SetRefreshPending(true);
    EXPECT_EQ(go->property("textEffect").toInt(), 3);
    bar.SetRefreshPending(false);
    EXPECT_EQ(go->property("textEffect").toInt(), 0);
}

TEST_F(OrderBarTest, ThePendingMarkCanBeSeen) {
    bar.resize(bar.sizeHint());
    bar.SetRefreshPending(false);
    const QImage plain = bar.grab().toImage();
    bar.SetRefreshPending(true);
    EXPECT_NE(bar.grab().toImage(), plain);
}

TEST_F(OrderBarTest, NothingMovesWhenThePendingMarkComesAndGoes) {
    const auto places = [this] {
        bar.resize(bar.sizeHint());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        std::vector<QRect> found = {bar.rect()};
        for (const char16_t* name : {u"cboOrder", u"lblDirection", u"cmdGo"})
            found.push_back(Find<QWidget>(name)->geometry());
        return found;
    };
    bar.show();
    const auto before = places();
    bar.SetRefreshPending(true);
    EXPECT_EQ(places(), before);
    QFont larger = bar.font();
    larger.setPointSizeF(larger.pointSizeF() * 2);
    bar.setFont(larger);
    const auto pending = places();
    bar.SetRefreshPending(false);
    EXPECT_EQ(places(), pending);
}

TEST_F(OrderBarTest, AnUnknownSavedOrderIsIgnored) {
    bar.SetOrderCaption(S(u"Year"));
    bar.SetOrderCaption(S(u"Size"));
    EXPECT_EQ(bar.OrderCaption(), S(u"Year"));
}

}  // namespace
}  // namespace browser
