#include "dialogs/qt_user_prompts.h"

#include "base/path_pieces.h"
#include "dialogs/file_filter.h"
#include "dialogs/file_icons.h"
#include "dialogs/program_version.h"
#include "dialogs/texts.h"
#include "widgets/window_place.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeView>

namespace dialogs {
namespace {

using platform::MessageAnswer;
using platform::MessageButtons;
using platform::MessageIcon;

QMessageBox::Icon QtIcon(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::kNone:
        return QMessageBox::NoIcon;
    case MessageIcon::kInformation:
        return QMessageBox::Information;
    case MessageIcon::kExclamation:
        return QMessageBox::Warning;
    case MessageIcon::kCritical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

// Lines of messages end with CR or CR LF; Qt's labels need LF.
QString WithLineFeeds(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
}

void AddButton(QMessageBox& box, QMessageBox::StandardButton button, const QString& name) {
    box.addButton(button)->setObjectName(name);
}

// Qt derives from the roles that Escape and the close button press No or Cancel, Return presses Ok.
void AddButtons(QMessageBox& box, const platform::Message& message) {
    const MessageButtons buttons = message.buttons;
    if (buttons == MessageButtons::kYesNo) {
        AddButton(box, QMessageBox::Yes, QStringLiteral("cmdYes"));
        AddButton(box, QMessageBox::No, QStringLiteral("cmdNo"));
        box.setDefaultButton(message.no_is_default ? QMessageBox::No : QMessageBox::Yes);
        return;
    }
    AddButton(box, QMessageBox::Ok, QStringLiteral("cmdOK"));
    if (buttons == MessageButtons::kOkCancel)
        AddButton(box, QMessageBox::Cancel, QStringLiteral("cmdCancel"));
}

// Qt makes the box as wide as its text, which may be shorter than the title.
void MakeRoomForTitle(QMessageBox& box) {
    constexpr int kWindowButtons = 140;  // pixels
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    if (grid == nullptr) return;
    const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + kWindowButtons;
    grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
}

MessageAnswer AnswerOf(int button, MessageButtons buttons) {
    switch (button) {
    case QMessageBox::Yes:
        return MessageAnswer::kYes;
    case QMessageBox::Ok:
        return MessageAnswer::kOk;
    default:
        return buttons == MessageButtons::kYesNo ? MessageAnswer::kNo : MessageAnswer::kCancel;
    }
}

// Sets the folder and the name that the dialog offers. If the folder of dialog.file_name does not
// exist (a path of another system), nothing is offered.
void Preset(QFileDialog& window, const platform::FileDialog& dialog) {
    const std::u16string path = dialog.file_name.toStdU16String();
    const QString folder = QStringView(base::GetFolder(path)).toString();
    if (!folder.isEmpty() && !QDir(folder).exists()) return;
    if (!folder.isEmpty())
        window.setDirectory(folder);
    else if (!dialog.folder.isEmpty() && QDir(dialog.folder).exists())
        window.setDirectory(dialog.folder);
    const QString name = QStringView(base::GetFileName(path)).toString();
    if (!name.isEmpty()) window.selectFile(name);
}

// Works around Qt's dialog, which takes a quote in a name as the border between two names.
class FileWindow final : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    // The chosen path; empty when the user cancels.
    QString Choose() {
        if (exec() != Accepted) return {};
        if (!quoted_.isEmpty()) return QDir::toNativeSeparators(quoted_);
        const QStringList files = selectedFiles();
        return files.isEmpty() ? QString() : QDir::toNativeSeparators(files.constFirst());
    }

protected:
    void accept() override {
        quoted_ = ExistingWithQuote();
        if (quoted_.isEmpty())
            QFileDialog::accept();
        else
            QDialog::accept();  // NOLINT(bugprone-parent-virtual-call): QFileDialog would refuse it
    }

private:
    QString ExistingWithQuote() const {
        const auto* edit = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (edit == nullptr || !edit->text().contains(u'"')) return {};
        const QFileInfo file(directory(), edit->text());
        const bool fits = (fileMode() == ExistingFile && file.isFile()) ||
                          (fileMode() == Directory && file.isDir());
        return fits ? QDir::cleanPath(file.absoluteFilePath()) : QString();
    }

    QString quoted_;
};

// The labels know what they stand for; of a long folder the tool tip says all.
void DescribeParts(QFileDialog& window) {
    const std::pair<const char*, const char*> labels[] = {{"lookInLabel", "lookInCombo"},
                                                          {"fileTypeLabel", "fileTypeCombo"}};
    for (const auto& [label, field] : labels)
        if (auto* const found = window.findChild<QLabel*>(QLatin1String(label)))
            found->setBuddy(window.findChild<QWidget*>(QLatin1String(field)));
    auto* const folder = window.findChild<QComboBox*>(QStringLiteral("lookInCombo"));
    if (folder == nullptr) return;
    const auto tell = [folder](const QString& path) { folder->setToolTip(path.toHtmlEscaped()); };
    tell(folder->currentText());
    QObject::connect(folder, &QComboBox::currentTextChanged, folder, tell);
}

// Columns and places as wide as their texts, in letters of every size.
void MakeRoomForParts(QFileDialog& window) {
    if (auto* const files = window.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        constexpr int kMeasuredRows = 100;
        files->header()->setResizeContentsPrecision(kMeasuredRows);
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
    if (auto* const places = window.findChild<QListView*>(QStringLiteral("sidebar")))
        places->setMinimumWidth(places->sizeHintForColumn(0) + 3 * places->frameWidth());
    constexpr QSize kLeast(100, 26);  // in characters of an average width, and in lines
    const QFontMetrics letters = window.fontMetrics();
    window.resize(window.sizeHint().expandedTo(
        {kLeast.width() * letters.averageCharWidth(), kLeast.height() * letters.lineSpacing()}));
    widgets::FitToScreen(window);
}

// By Qt and not by the desktop, with the program's icons.
void DrawItself(QFileDialog& window) {
    static FileIcons icons;  // borrowed by every dialog
    window.setOption(QFileDialog::DontUseNativeDialog);
    window.setIconProvider(&icons);
    DescribeParts(window);
    MakeRoomForParts(window);
}

void Prepare(QFileDialog& window, const platform::FileDialog& dialog) {
    window.setObjectName(dialog.name.isEmpty() ? QStringLiteral("FileDialog") : dialog.name);
    DrawItself(window);
    if (!dialog.title.isEmpty()) window.setWindowTitle(dialog.title);
    const QStringList filters = QtNameFilters(dialog.filter);
    if (!filters.isEmpty()) window.setNameFilters(filters);
    if (!dialog.default_extension.isEmpty()) window.setDefaultSuffix(dialog.default_extension);
}

}  // namespace

QtUserPrompts::QtUserPrompts(QWidget* owner) : owner_(owner) {}

void QtUserPrompts::SetOwner(QWidget* owner) {
    owner_ = owner;
}

QWidget* QtUserPrompts::Owner() const {
    QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : owner_.data();
}

MessageAnswer QtUserPrompts::Ask(const platform::Message& message) {
    QMessageBox box(Owner());
    box.setObjectName(QStringLiteral("MessageBox"));
    box.setWindowTitle(message.title.isEmpty() ? ApplicationTitle() : message.title);
    box.setTextFormat(Qt::PlainText);
    box.setText(WithLineFeeds(message.text));
    box.setIcon(QtIcon(message.icon));
    AddButtons(box, message);
    MakeRoomForTitle(box);
    return AnswerOf(box.exec(), message.buttons);
}

QString QtUserPrompts::ChooseFileToOpen(const platform::FileDialog& dialog) {
    FileWindow window(Owner());
    Prepare(window, dialog);
    window.setFileMode(dialog.must_exist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    Preset(window, dialog);
    return window.Choose();
}

QString QtUserPrompts::ChooseFileToSave(const platform::FileDialog& dialog) {
    FileWindow window(Owner());
    Prepare(window, dialog);
    window.setAcceptMode(QFileDialog::AcceptSave);
    window.setFileMode(QFileDialog::AnyFile);
    Preset(window, dialog);
    return window.Choose();
}

QString QtUserPrompts::ChooseFolder(const QString& title, const QString& start) {
    FileWindow window(Owner());
    window.setObjectName(QStringLiteral("FolderDialog"));
    DrawItself(window);
    window.setOption(QFileDialog::ShowDirsOnly);
    window.setFileMode(QFileDialog::Directory);
    window.setWindowTitle(title.isEmpty() ? DialogsTexts::tr("Select a folder.") : title);
    if (!start.isEmpty() && QDir(start).exists()) window.setDirectory(start);
    return window.Choose();
}

}  // namespace dialogs
