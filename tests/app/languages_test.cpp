// The windows in another language: each text was handed to a translator, all of those are in what
// translators are given (scripts/texts), and a language with longer words is not cut.
#include "app/english_texts.h"
#include "app/every_window.h"
#include "app/pseudo_translator.h"
#include "app/window_walk.h"
#include "support/programs.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QTreeView>

namespace test_support {
namespace {

using Text = QPair<QString, QString>;  // context and source

class LanguagesTest : public EveryWindow {
protected:
    void SetUp() override {
        QCoreApplication::installTranslator(&translator_);
        EveryWindow::SetUp();
    }
    void TearDown() override {
        EveryWindow::TearDown();
        QCoreApplication::removeTranslator(&translator_);
    }

    // What the windows of this fixture show that is nobody's to translate.
    QStringList Data() const {
        QStringList data = {
            QStringLiteral("Tavolo"), QStringLiteral("RC 1"), QCoreApplication::applicationName(),
            QStringLiteral("Command1"),
            // The tables.
            QStringLiteral("Alpha"), QStringLiteral("Bob"), QStringLiteral("Ann"),
            QStringLiteral("Another company"), QStringLiteral("Company"), QStringLiteral("Gamma"),
            QStringLiteral("The Machine of the Bride and of all her Guests"),
            QStringLiteral("A note of this table."), QStringLiteral("/gone/beta.vpt"),
            QStringLiteral("C:\\Games\\Tables"), folder.path(), QStringLiteral("shot.png"),
            QStringLiteral("alpha.vpt"), QStringLiteral("/bin/vp"),
            // What the tests themselves ask.
            QStringLiteral("A sentence that the box says."), QStringLiteral("And a second one."),
            QStringLiteral("Select Image File"), QStringLiteral("Visual Pinball"),
            // The database's table; files; units and dates, which are US English everywhere.
            QStringLiteral("Tables:"), QStringLiteral("pinball.mdb"), QStringLiteral("pinball.BU"),
            QStringLiteral("KB"), QStringLiteral("AM"), QStringLiteral("PM"),
            // Keys, by what stands on them.
            QStringLiteral("Ctrl"), QStringLiteral("Shift"), QStringLiteral("Alt")};
        return data;
    }

    PseudoTranslator translator_;
};

// The template for translators, made by lupdate of the sources as they are.
QSet<Text> Template() {
    const test_support::TemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("texts.ts"));
    EXPECT_TRUE(test_support::OutputOf({TAVOLO_SOURCE "/scripts/texts", file.toStdString()}));
    QFile texts(file);
    EXPECT_TRUE(texts.open(QIODevice::ReadOnly));
    QSet<Text> found;
    QString context;
    for (QXmlStreamReader reader(&texts); !reader.atEnd(); reader.readNext()) {
        if (!reader.isStartElement()) continue;
        if (reader.name() == u"name") context = reader.readElementText();
        if (reader.name() != u"source") continue;
        QString source;
        while (!(reader.readNext() == QXmlStreamReader::EndElement && reader.name() == u"source")) {
            if (reader.isCharacters()) source += reader.text();
            if (reader.isStartElement())  // <byte value="xd"/>
                source += QChar(
                    reader.attributes().value(QStringLiteral("value")).mid(1).toInt(nullptr, 16));
        }
        found.insert({context, source});
    }
    return found;
}

TEST_F(LanguagesTest, EveryTextIsTranslatedAndTheTranslatorsAreGivenIt) {
    ForEach([this](const QString& name, QWidget& shown) {
        const QStringList english = EnglishTexts(shown, Data());
        EXPECT_TRUE(english.isEmpty())
            << name.toStdString() << ":\n  " << english.join(QStringLiteral("\n  ")).toStdString();
    });
    const QSet<Text> given = Template();
    EXPECT_GT(given.size(), 400);
    for (const auto& [context, text] : translator_.asked())
        EXPECT_TRUE(given.contains({context, text}))
            << context.toStdString() << ": " << text.toStdString();
}

TEST_F(LanguagesTest, LongerWordsAreNotCut) {
    ForEach([](const QString& name, QWidget& shown) {
        const QStringList cut = CutTexts(shown);
        EXPECT_TRUE(cut.isEmpty())
            << name.toStdString() << ":\n  " << cut.join(QStringLiteral("\n  ")).toStdString();
    });
}

TEST_F(LanguagesTest, WhatIsStoredAndComparedStaysEnglish) {
    OpenMainWindow();
    const auto choose = [this](const char* name, int item) {
        auto* const box = window->findChild<QComboBox*>(QLatin1String(name));
        box->setCurrentIndex(item);
        Q_EMIT box->activated(item);
    };
    choose("cboFilter", 2);
    choose("cboOrder", 1);
    QTest::mouseClick(window->findChild<QWidget*>(QStringLiteral("lblDirection")), Qt::LeftButton);
    window->RefreshTree();
    const auto* const tree = window->findChild<QTreeView*>(QStringLiteral("tvwDB"));
    EXPECT_EQ(tree->model()->rowCount(tree->model()->index(0, 0)), 1);
    window->close();
    const auto stored = [this](const char* key) {
        return settings.values.value(QStringLiteral("TAVOLO/GENERAL/") + QLatin1String(key));
    };
    EXPECT_EQ(stored("FILTER"), QStringLiteral("Favorites"));
    EXPECT_EQ(stored("ORDERBY"), QStringLiteral("Year"));
    EXPECT_EQ(stored("DIRECTION"), QStringLiteral("Desc"));
}

TEST_F(LanguagesTest, Pictures) {
    const QDir pictures(QStringLiteral(TAVOLO_PICTURES "/pseudo"));
    ASSERT_TRUE(pictures.mkpath(QStringLiteral(".")));
    ForEach([&](const QString& name, QWidget& shown) {
        EXPECT_TRUE(shown.grab().save(pictures.filePath(name + QStringLiteral(".png"))));
    });
}

TEST(PseudoTest, IsLongerAndKeepsPlacesMarksAndLines) {
    EXPECT_EQ(Pseudo(QStringLiteral("&Put %1\n%n <b>back</b>")),
              QStringLiteral("&Þûţţ %1\n%n <b>ƀååçķķ</b>"));
    for (const char* const text : {"OK", "Find", "Restore Default Size"}) {
        const QString english = QString::fromLatin1(text);
        EXPECT_GE(double(Pseudo(english).size()), 1.4 * double(english.size())) << text;
    }
}

TEST(EnglishTextsTest, FindsATextThatNobodyTranslated) {
    QWidget window;
    window.setWindowTitle(QStringLiteral("A title"));
    EXPECT_EQ(EnglishTexts(window, {}).size(), 1);
    EXPECT_EQ(EnglishTexts(window, {QStringLiteral("A title")}).size(), 0);
    window.setWindowTitle(Pseudo(QStringLiteral("A title")));
    EXPECT_EQ(EnglishTexts(window, {}).size(), 0);
}

}  // namespace
}  // namespace test_support
