#include "app/english_texts.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QFileSystemModel>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QTabWidget>

namespace test_support {
namespace {

class Finder {
public:
    explicit Finder(QStringList data) : data_(std::move(data)) {
        // A text that holds another one is taken out first.
        std::sort(data_.begin(), data_.end(),
                  [](const QString& a, const QString& b) { return a.size() > b.size(); });
    }

    void Check(const QString& where, QString text) {
        static const QRegularExpression markup(QStringLiteral("<[^>]*>"));
        static const QRegularExpression word(QStringLiteral("[A-Za-z]{2,}"));
        static const QRegularExpression checksum(
            QStringLiteral("\\b(?=[A-F]*[0-9])[0-9A-F]{5,8}\\b"));
        const QString whole = text;
        text.remove(markup).remove(checksum).remove(u'&');
        for (const QString& known : data_)
            text.remove(known);
        if (text.contains(word)) found_.append(where + QStringLiteral(": ") + whole);
    }

    QStringList found() {
        found_.removeDuplicates();
        return found_;
    }

private:
    QStringList data_;
    QStringList found_;
};

void CheckItems(const QString& where, const QAbstractItemModel& model, const QModelIndex& parent,
                Finder& finder) {
    constexpr int kMostRows = 100;
    for (int row = 0; row < std::min(kMostRows, model.rowCount(parent)); ++row)
        for (int column = 0; column < model.columnCount(parent); ++column) {
            const QModelIndex item = model.index(row, column, parent);
            for (const int role : {int{Qt::DisplayRole}, int{Qt::ToolTipRole},
                                   int{Qt::AccessibleTextRole}, int{Qt::AccessibleDescriptionRole}})
                finder.Check(where + QStringLiteral(" item"), item.data(role).toString());
            if (column == 0) CheckItems(where, model, item, finder);
        }
}

void CheckView(const QString& where, const QAbstractItemView& view, Finder& finder) {
    const QAbstractItemModel* const model = view.model();
    if (model == nullptr) return;
    if (qobject_cast<const QHeaderView*>(&view) == nullptr) {
        // The desktop's files and places.
        if (qobject_cast<const QFileDialog*>(view.window()) == nullptr)
            CheckItems(where, *model, {}, finder);
        return;
    }
    const Qt::Orientation orientation = static_cast<const QHeaderView&>(view).orientation();
    if (orientation == Qt::Vertical) return;
    for (int i = 0; i < model->columnCount(); ++i)
        finder.Check(where + QStringLiteral(" header"),
                     model->headerData(i, orientation).toString());
}

// What the widget itself shows.
void CheckContent(const QString& where, const QWidget& widget, Finder& finder) {
    if (const auto* const label = qobject_cast<const QLabel*>(&widget))
        finder.Check(where, label->text());
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget))
        finder.Check(where, button->text());
    if (const auto* const group = qobject_cast<const QGroupBox*>(&widget))
        finder.Check(where, group->title());
    if (const auto* const line = qobject_cast<const QLineEdit*>(&widget))
        finder.Check(where + QStringLiteral(" placeholder"), line->placeholderText());
    if (const auto* const menu = qobject_cast<const QMenu*>(&widget))
        finder.Check(where, menu->title());
    if (const auto* const tabs = qobject_cast<const QTabWidget*>(&widget))
        for (int i = 0; i < tabs->count(); ++i)
            finder.Check(where + QStringLiteral(" tab"), tabs->tabText(i));
    if (const auto* const view = qobject_cast<const QAbstractItemView*>(&widget))
        CheckView(where, *view, finder);
    if (const auto* const combo = qobject_cast<const QComboBox*>(&widget);
        combo != nullptr && qobject_cast<const QFileDialog*>(combo->window()) == nullptr)
        for (int i = 0; i < combo->count(); ++i)
            finder.Check(where + QStringLiteral(" choice"), combo->itemText(i));
    for (const QAction* const action : widget.actions()) {
        finder.Check(where + QStringLiteral(" action"), action->text());
        if (action->toolTip() != action->text())
            finder.Check(where + QStringLiteral(" action's tool tip"), action->toolTip());
        finder.Check(where + QStringLiteral(" action's status"), action->statusTip());
    }
}

}  // namespace

QStringList EnglishTexts(QWidget& window, const QStringList& data) {
    Finder finder(data);
    QList<QWidget*> all = window.findChildren<QWidget*>();
    all.prepend(&window);
    for (const QWidget* const widget : all) {
        if (widget->window() != &window) continue;
        const QString where =
            QString::fromLatin1(widget->metaObject()->className()) + u' ' + widget->objectName();
        if (widget->isWindow())
            finder.Check(where + QStringLiteral(" title"), widget->windowTitle());
        finder.Check(where + QStringLiteral(" tool tip"), widget->toolTip());
        finder.Check(where + QStringLiteral(" name"), widget->accessibleName());
        finder.Check(where + QStringLiteral(" description"), widget->accessibleDescription());
        CheckContent(where, *widget, finder);
    }
    return finder.found();
}

}  // namespace test_support
