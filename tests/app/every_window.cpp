#include "app/every_window.h"

#include "browser/detail_tabs.h"
#include "browser/frmSplash.h"
#include "catalogue/detail_field.h"
#include "checksum/frmCRC.h"
#include "dialogs/help_window.h"
#include "maintenance/frmPathPair.h"
#include "snapshots/restore_catalogue.h"
#include "support/vpt_builder.h"
#include "widgets/picture_box.h"
#include "widgets/program_palette.h"
#include "widgets/program_style.h"
#include "widgets/zoom_view.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QTreeView>

#include <utility>

namespace test_support {
namespace {

constexpr int kPatienceMs = 20'000;

// Texts that end so stand for what is still read.
bool LabelIsThere(QWidget& window, const char* label) {
    const auto* const found = window.findChild<QLabel*>(QLatin1String(label));
    return found != nullptr && !found->text().endsWith(u"...");
}

// nullptr: none of that object name is shown.
QWidget* ShownWindow(const char* name) {
    for (QWidget* const top : QApplication::topLevelWidgets())
        if (top->objectName() == QLatin1String(name) && top->isVisible()) return top;
    return nullptr;
}

// Layouts that are posted, and those that they post.
void Settle() {
    constexpr int kRounds = 4;
    for (int i = 0; i < kRounds; ++i)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

QImage Painting(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(0x1d, 0x2b, 0x52));
    QPainter painter(&image);
    painter.setBrush(QColor(0xc8, 0x4a, 0x32));
    painter.drawEllipse(
        QRect(size.width() / 3, size.height() / 3, size.width() / 4, size.width() / 4));
    return image;
}

}  // namespace

void EveryWindow::UseFonts(int percent) {
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * percent / 100);
    QApplication::setFont(font);
}

void EveryWindow::UseDark() {
    QApplication::setPalette(widgets::DarkPalette());
}

void EveryWindow::SetUp() {
    TreeFixture::SetUp();
    usual_font_ = QApplication::font();
    QApplication::setStyle(new widgets::ProgramStyle);
    values.VisualPinballExe = QStringLiteral("/bin/vp");
    ASSERT_TRUE(connection->Close().ok());
    history_ = std::make_unique<history::HistoryFile>(*files, DatabasePath().toStdU16String());
    connection->UseNotes(history_.get());
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    MakeTables();
    MakeChanges();
    values.paths.Use(catalogue::PathMap({{QStringLiteral("C:\\Games\\Tables"), folder.path()}}));
}

void EveryWindow::TearDown() {
    edit_commands_.reset();
    commands_.reset();
    window.reset();
    keeper_.reset();
    connection.reset();
    QApplication::setPalette(QPalette());
    QApplication::setFont(usual_font_);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

QString EveryWindow::MakePicture(const QString& name, QSize size) {
    const QString path = folder.filePath(name);
    EXPECT_TRUE(Painting(size).save(path));
    return path;
}

void EveryWindow::MakeTables() {
    const QString file = folder.filePath(QStringLiteral("alpha.vpt"));
    ASSERT_TRUE(VptBuilder()
                    .Text(u"TableName", u"Alpha")
                    .Text(u"AuthorName", u"Bob")
                    .Text(u"TableRules", u"Hit all targets.")
                    .Write(file.toStdU16String())
                    .ok());
    AddRow(QStringLiteral("DisplayName, FileName, Author, Company, Year, Version, TimesPlayed, "
                          "Favorite, FileDate, Notes, ImageFile, FlyerFile, RulesFile, RulesText"),
           QStringLiteral("'Alpha', '%1', 'Bob', 'Company', '1990', '1.0', 3, true, '1/2/2003', "
                          "'A note of this table.', '%2', '%3', '%4', 'Hit all targets.'")
               .arg(file, MakePicture(QStringLiteral("shot.png"), {320, 240}),
                    MakePicture(QStringLiteral("flyer.png"), {240, 320}),
                    MakePicture(QStringLiteral("rules.png"), {400, 600})));
    AddRow(QStringLiteral("DisplayName, FileName, Author, Year, TimesPlayed, PinMame, FileDate"),
           QStringLiteral("'The Machine of the Bride and of all her Guests', '/gone/beta.vpt', "
                          "'Ann', '1991', 0, true, '5/6/2007'"));
    AddTable(QStringLiteral("Gamma"), MakeFile(QStringLiteral("gamma.vpt")));
    Execute(QStringLiteral("Update Tables set DateAdded = '1/2/2003', LastPlayed = '1/2/2004'"));
}

// For the windows that show earlier states.
void EveryWindow::MakeChanges() {
    keeper_ = std::make_unique<snapshots::SnapshotKeeper>(*files, snapshots::DatabaseOf(catalogue),
                                                          clock);
    keeper_->MakeBefore(QStringLiteral("Purge Missing Tables"));
    keeper_->WaitUntilIdle();
    const jet::NamedChange named(*connection, u"Edit");
    Execute(QStringLiteral("Update Tables set Company = 'Another company'"));
}

void EveryWindow::OpenMainWindow() {
    window = std::make_unique<browser::frmPinball>(catalogue, prompts);
    commands_ = std::make_unique<app::Commands>(
        catalogue, prompts, app::OutsideWorld{shell_, programs_, sounds_, windows_}, *keeper_,
        *window);
    edit_commands_ = std::make_unique<app::EditCommands>(catalogue, *history_, prompts, *window);
    boxes_.SetOwner(window.get());
    window->Load();
    window->show();
}

void EveryWindow::Trigger(const char* action) {
    auto* const found = window->findChild<QAction*>(QLatin1String(action));
    ASSERT_TRUE(found) << action;
    ASSERT_TRUE(found->isEnabled()) << action;
    found->trigger();
}

void EveryWindow::SelectTable(int table) {
    auto* const tree = window->findChild<QTreeView*>(QStringLiteral("tvwDB"));
    const QAbstractItemModel& model = *tree->model();
    tree->setCurrentIndex(model.index(table, 0, model.index(0, 0)));
}

void EveryWindow::ShowTab(int tab) {
    window->details().SetCurrentTab(tab);
    const auto boxes = window->findChildren<widgets::PictureBox*>();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            for (const auto* const box : boxes)
                if (box->waits()) return false;
            return true;
        },
        kPatienceMs));
}

void EveryWindow::ForEach(const Look& look_at) {
    const Look look = [&](const QString& name, QWidget& shown) {
        Settle();
        look_at(name, shown);
    };
    OpenMainWindow();
    MainWindow(look);
    Menus(look);
    Dialogs(look);
    Boxes(look);
    Welcome(look);
}

void EveryWindow::MainWindow(const Look& look) {
    look(QStringLiteral("main-nothing-selected"), *window);
    SelectTable(0);
    ShowTab(browser::kDetailsTab);
    look(QStringLiteral("main-details"), *window);
    const std::pair<int, const char*> tabs[] = {{browser::kScreenshotTab, "main-screenshot"},
                                                {browser::kFlyerTab, "main-flyer"},
                                                {browser::kRulesTextTab, "main-rules-text"},
                                                {browser::kRulesSheetTab, "main-rules-sheet"}};
    for (const auto& [tab, name] : tabs) {
        ShowTab(tab);
        look(QLatin1String(name), *window);
    }
    ShowTab(browser::kDetailsTab);
    window->details().SetDetailText(catalogue::kDisplayName, QStringLiteral("Alpha!"));
    look(QStringLiteral("main-edit"), *window);
    window->details().Cancel();

    auto* const filter = window->findChild<QComboBox*>(QStringLiteral("cboFilter"));
    filter->setCurrentIndex(filter->findData(QStringLiteral("Author")));
    Q_EMIT filter->activated(filter->currentIndex());
    look(QStringLiteral("main-filter"), *window);
    filter->setCurrentIndex(0);
    Q_EMIT filter->activated(0);
    window->RefreshTree();

    Trigger("mnuFind");
    window->findChild<QLineEdit*>(QStringLiteral("txtFind"))->setText(QStringLiteral("a"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return LabelIsThere(*window, "lblFindCount"); }));
    look(QStringLiteral("main-find"), *window);
    Trigger("mnuWall");
    look(QStringLiteral("main-wall"), *window);
    Trigger("mnuWall");
    QTest::keyClick(window->findChild<QLineEdit*>(QStringLiteral("txtFind")), Qt::Key_Escape);
    QTest::mouseClick(window->findChild<QWidget*>(QStringLiteral("cmdFindLeave")), Qt::LeftButton);
}

void EveryWindow::Menus(const Look& look) {
    for (QMenu* const menu : window->findChildren<QMenu*>()) {
        if (menu->objectName().isEmpty()) continue;
        menu->popup(window->mapToGlobal(QPoint(20, 20)));
        look(QStringLiteral("menu-") + menu->objectName(), *menu);
        menu->hide();
    }
}

void EveryWindow::Modal(const QString& name, const Look& look, const std::function<void()>& open,
                        const std::function<bool(QWidget&)>& is_ready) {
    bool seen = false;
    QElapsedTimer waited;
    waited.start();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        const QPointer<QWidget> modal = QApplication::activeModalWidget();
        if (!modal) return;  // what it shows is still being read
        // Not in an event loop of its own: work that the window waits for would wait for that.
        const bool is_there = !is_ready || is_ready(*modal);
        if (!is_there && waited.elapsed() < kPatienceMs) return;
        timer.stop();
        EXPECT_TRUE(is_there) << name.toStdString();
        seen = true;
        look(name, *modal);
        if (modal) modal->close();
    });
    timer.start(0);
    open();
    EXPECT_TRUE(seen) << name.toStdString();
}

void EveryWindow::ModalOf(const QString& name, const Look& look, const char* action,
                          const std::function<bool(QWidget&)>& is_ready) {
    Modal(
        name, look, [&] { Trigger(action); }, is_ready);
}

void EveryWindow::Dialogs(const Look& look) {
    SelectTable(0);
    ModalOf(QStringLiteral("settings"), look, "mnuExe");
    ModalOf(QStringLiteral("about"), look, "mnuAbout");
    ModalOf(QStringLiteral("keys"), look, "mnuKeys");
    ModalOf(QStringLiteral("scan"), look, "mnuTblScan");
    ModalOf(QStringLiteral("paths"), look, "mnuRest");
    ModalOf(QStringLiteral("path-map"), look, "mnuPathMap",
            [](QWidget& dialog) { return LabelIsThere(dialog, "lblOthers"); });
    maintenance::frmPathPair pair(
        values.paths.map()->pairs().front(),
        [](const catalogue::PathPair&) { return base::Status(); }, prompts, window.get());
    Modal(QStringLiteral("path-pair"), look, [&] { pair.exec(); });
    ModalOf(QStringLiteral("import"), look, "mnuImport");
    ModalOf(QStringLiteral("table-information"), look, "mnuTI");
    ModalOf(QStringLiteral("history"), look, "mnuHistory",
            [](QWidget& dialog) { return LabelIsThere(dialog, "lblCount"); });
    ModalOf(QStringLiteral("restore"), look, "mnuRestoreSnapshot",
            [](QWidget& dialog) { return LabelIsThere(dialog, "lblDifferences"); });
    Checksums(look);
    QGuiApplication::clipboard()->setImage(Painting({400, 300}));
    ModalOf(QStringLiteral("capture"), look, "mnuClip");
    QGuiApplication::clipboard()->clear();
    LargePicture(look);
    dialogs::ShowInHelpWindow(QStringLiteral(TAVOLO_HELP_FOLDER "/menus.html"));
    const QPointer<QWidget> help = ShownWindow("HelpWindow");
    ASSERT_TRUE(help);
    look(QStringLiteral("help"), *help);
    if (help) help->close();
    browser::SplashDisplay splash(window.get());
    splash.Show(QStringLiteral("Visual Pinball"));
    QWidget* const shown_splash = ShownWindow("frmSplash");
    ASSERT_TRUE(shown_splash);
    look(QStringLiteral("splash"), *shown_splash);
    splash.Unload();
}

// It works as soon as it is shown, and goes when it is done.
void EveryWindow::Checksums(const Look& look) {
    bool seen = false;
    checksum::frmCRC* shown = nullptr;
    checksum::frmCRC dialog(catalogue, window.get(), [&](std::int64_t, std::int64_t) {
        if (!std::exchange(seen, true)) look(QStringLiteral("checksums"), *shown);
    });
    shown = &dialog;
    dialog.exec();
    EXPECT_TRUE(seen);
}

// By the keyboard, as everything.
void EveryWindow::LargePicture(const Look& look) {
    ShowTab(browser::kScreenshotTab);
    auto* const box = window->findChild<QWidget*>(QStringLiteral("imgShot"));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Return);
    const QPointer<QWidget> large = window->findChild<QWidget*>(QStringLiteral("frmLargePicture"));
    ASSERT_TRUE(large);
    const auto* const picture = large->findChild<widgets::ZoomView*>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !picture->ShownImage().isNull(); }, kPatienceMs));
    look(QStringLiteral("large-picture"), *large);
    if (large) large->close();
    ShowTab(browser::kDetailsTab);
}

void EveryWindow::Boxes(const Look& look) {
    using platform::MessageButtons;
    using platform::MessageIcon;
    const QString text = QStringLiteral("A sentence that the box says.\rAnd a second one.");
    const std::pair<const char*, platform::Message> messages[] = {
        {"box-plain", {text, {}, MessageIcon::kNone, MessageButtons::kOk}},
        {"box-information", {text, {}, MessageIcon::kInformation, MessageButtons::kOk}},
        {"box-question", {text, {}, MessageIcon::kExclamation, MessageButtons::kYesNo}},
        {"box-critical", {text, {}, MessageIcon::kCritical, MessageButtons::kOkCancel}}};
    for (const auto& [name, message] : messages)
        Modal(QLatin1String(name), look, [&, asked = message] { boxes_.Ask(asked); });
    platform::FileDialog file;
    file.title = QStringLiteral("Select Image File");
    file.folder = folder.path();
    file.filter = QStringLiteral("Pictures|*.png|All files|*.*");
    Modal(QStringLiteral("file-open"), look, [&] { boxes_.ChooseFileToOpen(file); });
    Modal(QStringLiteral("file-save"), look, [&] { boxes_.ChooseFileToSave(file); });
    Modal(QStringLiteral("folder"), look, [&] { boxes_.ChooseFolder({}, folder.path()); });
}

void EveryWindow::Welcome(const Look& look) {
    Execute(QStringLiteral("Delete from Tables"));
    window->RefreshTree();
    look(QStringLiteral("welcome"), *window);
}

}  // namespace test_support
