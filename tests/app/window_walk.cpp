#include "app/window_walk.h"

#include "widgets/elided_label.h"
#include "widgets/program_palette.h"
#include "widgets/program_style.h"
#include "widgets/svg_icon.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextTable>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTextBrowser>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QToolTip>

namespace test_support {
namespace {

using widgets::ContrastOf;

QString Called(const QWidget& widget) {
    const QWidget* const parent = widget.parentWidget();
    return QString::fromLatin1(widget.metaObject()->className()) + u' ' + widget.objectName() +
           QStringLiteral(" in ") + (parent != nullptr ? parent->objectName() : QString());
}

// The window itself and what is shown in it.
QList<QWidget*> Shown(QWidget& window) {
    QList<QWidget*> shown{&window};
    for (QWidget* const widget : window.findChildren<QWidget*>())
        if (widget->isVisible() && widget->window() == &window) shown.append(widget);
    return shown;
}

QList<QWidget*> Controls(QWidget& window) {
    QList<QWidget*> controls;
    for (QWidget* const widget : Shown(window))
        if (widget->focusPolicy() != Qt::NoFocus && widget->isEnabled() &&
            widget->focusProxy() == nullptr && widget != &window)
            controls.append(widget);
    return controls;
}

QRect InWindow(const QWidget& widget) {
    return {widget.mapTo(widget.window(), QPoint()), widget.size()};
}

bool IsField(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) != nullptr ||
           qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(&widget) != nullptr;
}

// The label that a user takes for that of the field: the nearest one left of it, with nothing else
// in between; null: there is none.
const QLabel* LabelLeftOf(const QWidget& field, const QList<QWidget*>& shown) {
    const QRect place = InWindow(field);
    const QWidget* nearest = nullptr;
    for (const QWidget* const other : shown) {
        if (qobject_cast<const QLabel*>(other) == nullptr && other->focusPolicy() == Qt::NoFocus)
            continue;
        const QRect theirs = InWindow(*other);
        const bool is_beside = theirs.right() <= place.left() && theirs.bottom() >= place.top() &&
                               theirs.top() <= place.bottom();
        if (!is_beside || theirs.isEmpty()) continue;
        if (nearest == nullptr || theirs.right() > InWindow(*nearest).right()) nearest = other;
    }
    const auto* const label = qobject_cast<const QLabel*>(nearest);
    return label != nullptr && !label->text().isEmpty() ? label : nullptr;
}

int TextWidth(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

bool IsCutLabel(const QLabel& label) {
    if (label.text().isEmpty() || !label.toolTip().isEmpty()) return false;
    if (qobject_cast<const widgets::ElidedLabel*>(&label) != nullptr) return false;
    if (!label.wordWrap())
        return label.sizeHint().width() > label.width() ||
               label.minimumSizeHint().height() > label.height();
    if (label.heightForWidth(label.width()) > label.height()) return true;
    for (const QString& word : label.text().split(QRegularExpression(QStringLiteral("\\s+"))))
        if (TextWidth(label, word) > label.contentsRect().width()) return true;
    return false;
}

bool IsCutButton(const QAbstractButton& button) {
    if (button.text().isEmpty()) return false;
    const auto* const tool = qobject_cast<const QToolButton*>(&button);
    if (tool != nullptr && tool->toolButtonStyle() == Qt::ToolButtonIconOnly &&
        !tool->icon().isNull())
        return false;
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    QRect room = button.rect();
    if (qobject_cast<const QCheckBox*>(&button) != nullptr)
        room = button.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &button);
    else if (qobject_cast<const QRadioButton*>(&button) != nullptr)
        room = button.style()->subElementRect(QStyle::SE_RadioButtonContents, &option, &button);
    else if (tool == nullptr)
        room = button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button);
    int needed = TextWidth(button, button.text());
    if (!button.icon().isNull()) needed += button.iconSize().width();
    return needed > room.width() || button.fontMetrics().height() > button.height();
}

bool IsCutCombo(const QComboBox& combo) {
    if (combo.fontMetrics().height() > combo.height()) return true;
    // The text of the first can be scrolled; the second says it otherwise, too.
    if (combo.isEditable() || !combo.toolTip().isEmpty()) return false;
    QStyleOptionComboBox option;
    option.initFrom(&combo);
    const QRect room = combo.style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                     QStyle::SC_ComboBoxEditField, &combo);
    int needed = 0;
    for (int i = 0; i < combo.count(); ++i) {
        const int icon = combo.itemIcon(i).isNull() ? 0 : combo.iconSize().width();
        needed = std::max(needed, icon + TextWidth(combo, combo.itemText(i)));
    }
    return needed > room.width();
}

bool IsCutLine(const QLineEdit& line) {
    constexpr int kMargins = 8;
    // That of a box with a list draws no frame.
    if (qobject_cast<const QComboBox*>(line.parentWidget()) != nullptr) return false;
    if (line.fontMetrics().height() > line.height()) return true;
    return line.text().isEmpty() &&
           TextWidth(line, line.placeholderText()) + kMargins > line.width();
}

QStringList CutSections(const QHeaderView& header) {
    QStringList cut;
    const int margins = 2 * header.style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, &header);
    for (int i = 0; i < header.count(); ++i) {
        const QString text = header.model()->headerData(i, header.orientation()).toString();
        if (!header.isSectionHidden(i) && TextWidth(header, text) + margins > header.sectionSize(i))
            cut.append(text);
    }
    return cut;
}

QStringList CutTabs(const QTabBar& tabs) {
    QStringList cut;
    for (int i = 0; i < tabs.count(); ++i)
        if (TextWidth(tabs, tabs.tabText(i)) > tabs.tabRect(i).width()) cut.append(tabs.tabText(i));
    return cut;
}

bool IsCut(const QWidget& widget) {
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) return IsCutLabel(*label);
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget))
        return IsCutButton(*button);
    if (const auto* const combo = qobject_cast<const QComboBox*>(&widget))
        return IsCutCombo(*combo);
    if (const auto* const line = qobject_cast<const QLineEdit*>(&widget)) return IsCutLine(*line);
    if (const auto* const group = qobject_cast<const QGroupBox*>(&widget))
        return TextWidth(*group, group->title()) > group->width();
    return false;
}

// Of what cannot be scrolled into sight.
bool IsPartlyOutside(const QWidget& widget) {
    for (const QWidget* up = widget.parentWidget(); up != nullptr; up = up->parentWidget())
        if (qobject_cast<const QAbstractScrollArea*>(up) != nullptr) return false;
    const bool has_text = qobject_cast<const QLabel*>(&widget) != nullptr ||
                          qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
                          IsField(widget);
    if (!has_text || widget.isWindow()) return false;
    if (widget.objectName().startsWith(u"qt_") || widget.objectName().startsWith(u"Scroll"))
        return false;
    return !widget.window()->rect().contains(InWindow(widget)) ||
           !widget.parentWidget()->rect().contains(widget.geometry());
}

// The colours of a window as it is painted.
class Grounds {
public:
    explicit Grounds(QWidget& window)
        : image_(window.grab().toImage().convertToFormat(QImage::Format_RGB32)) {}

    // The colour of most pixels there (in the window's coordinates).
    QColor At(const QRect& place) const {
        const qreal scale = image_.devicePixelRatio();
        const QRect pixels = QRectF(place.x() * scale, place.y() * scale, place.width() * scale,
                                    place.height() * scale)
                                 .toRect() &
                             image_.rect();
        // Colours of a shade count as one.
        constexpr QRgb kShade = 0xFFE0E0E0;
        struct Count {
            int pixels = 0;
            QRgb one = 0;
        };
        QHash<QRgb, Count> shades;
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            const auto* const line = reinterpret_cast<const QRgb*>(image_.constScanLine(y));
            for (int x = pixels.left(); x <= pixels.right(); ++x) {
                Count& count = shades[line[x] & kShade];
                ++count.pixels;
                count.one = line[x];
            }
        }
        Count most;
        for (const Count& count : shades)
            if (count.pixels > most.pixels) most = count;
        return QColor(most.one);
    }

private:
    QImage image_;
};

// Notes texts that are too faint.
class Readability {
public:
    Readability(const QString& where, QStringList& faint) : where_(where), faint_(faint) {}

    void Check(const char* what, const QColor& text, const QColor& ground) {
        const double contrast = ContrastOf(widgets::Blended(text, ground), ground);
        if (contrast < widgets::kLeastContrast)
            faint_.append(
                QStringLiteral("%1, %2: %3 on %4 is %5")
                    .arg(where_, QLatin1String(what), text.name(QColor::HexArgb), ground.name())
                    .arg(contrast));
    }

private:
    QString where_;
    QStringList& faint_;
};

void CheckView(const QAbstractItemView& view, Readability& check) {
    const QPalette palette = view.palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        check.Check("items", palette.color(group, QPalette::Text),
                    palette.color(group, QPalette::Base));
        check.Check("selected items", palette.color(group, QPalette::HighlightedText),
                    palette.color(group, QPalette::Highlight));
        if (view.alternatingRowColors())
            check.Check("every other item", palette.color(group, QPalette::Text),
                        palette.color(group, QPalette::AlternateBase));
    }
}

void CheckPage(const QTextBrowser& page, Readability& check) {
    const QColor base = page.palette().color(QPalette::Base);
    for (QTextBlock block = page.document()->begin(); block.isValid(); block = block.next()) {
        QColor ground = base;
        QTextCursor cursor(block);
        if (QTextTable* const table = cursor.currentTable()) {
            const QBrush brush = table->cellAt(cursor).format().background();
            if (brush.style() != Qt::NoBrush) ground = brush.color();
        }
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QBrush ink = piece.fragment().charFormat().foreground();
            check.Check("page",
                        ink.style() != Qt::NoBrush ? ink.color()
                                                   : page.palette().color(QPalette::Text),
                        ground);
        }
    }
}

void CheckField(const QWidget& field, Readability& check) {
    const QColor ground = field.palette().color(QPalette::Base);
    check.Check("text", field.palette().color(QPalette::Text), ground);
    check.Check("placeholder", field.palette().color(QPalette::PlaceholderText), ground);
    check.Check("selected text", field.palette().color(QPalette::HighlightedText),
                field.palette().color(QPalette::Highlight));
}

void CheckTabs(const QTabBar& tabs, const Grounds& grounds, Readability& check) {
    for (int i = 0; i < tabs.count(); ++i)
        if (tabs.isTabEnabled(i) && tabs.rect().contains(tabs.tabRect(i)))
            check.Check("tab", tabs.palette().color(QPalette::WindowText),
                        grounds.At(tabs.tabRect(i).translated(InWindow(tabs).topLeft())));
}

void CheckWidget(const QWidget& widget, const Grounds& grounds, Readability& check) {
    const QPalette palette = widget.palette();
    const auto ground = [&] { return grounds.At(InWindow(widget)); };
    if (const auto* const view = qobject_cast<const QHeaderView*>(&widget))
        return check.Check("headers", palette.color(QPalette::ButtonText), ground());
    if (const auto* const view = qobject_cast<const QAbstractItemView*>(&widget))
        return CheckView(*view, check);
    if (const auto* const page = qobject_cast<const QTextBrowser*>(&widget))
        return CheckPage(*page, check);
    if (const auto* const tabs = qobject_cast<const QTabBar*>(&widget))
        return CheckTabs(*tabs, grounds, check);
    if (qobject_cast<const QMenu*>(&widget) != nullptr ||
        qobject_cast<const QMenuBar*>(&widget) != nullptr) {
        check.Check("chosen entry", palette.color(QPalette::HighlightedText),
                    palette.color(QPalette::Highlight));
        return check.Check("entries", palette.color(QPalette::Text), ground());
    }
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
        if (label->text().isEmpty()) return;
        if (label->text().contains(u"<a href"))
            return check.Check("link", palette.color(QPalette::Link), ground());
        return check.Check("label", palette.color(label->foregroundRole()), ground());
    }
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget))
        // That one has colours of its own, and a test of its own.
        return button->text().isEmpty() || button->objectName() == u"cmdPlay"
                   ? void()
                   : check.Check("button", palette.color(button->foregroundRole()), ground());
    if (qobject_cast<const QGroupBox*>(&widget) != nullptr)
        return check.Check("group", palette.color(QPalette::WindowText), ground());
    if (const auto* const combo = qobject_cast<const QComboBox*>(&widget);
        combo != nullptr && !combo->isEditable())
        return check.Check("choice", palette.color(QPalette::ButtonText), ground());
    if (IsField(widget)) CheckField(widget, check);
}

bool IsOurs(const QIcon& icon) {
    return icon.isNull() || icon.name().startsWith(widgets::kSvgIconPrefix);
}

bool HasForeignPixmap(const QLabel& label) {
    const QPixmap shown = label.pixmap(Qt::ReturnByValue);
    if (shown.isNull()) return false;
    const qreal scale = shown.devicePixelRatio();
    const QSize size = (QSizeF(shown.size()) / scale).toSize();
    for (const char* const key : {"information", "question", "warning", "stop"})
        if (widgets::SvgIcon(QLatin1String(key)).pixmap(size, scale).toImage() == shown.toImage())
            return false;
    return QApplication::windowIcon().pixmap(size, scale).toImage() != shown.toImage();
}

QStringList ForeignItemIcons(const QAbstractItemView& view) {
    QStringList foreign;
    for (int y = 0; y < view.viewport()->height(); y += 8) {
        const QModelIndex item = view.indexAt({view.viewport()->width() / 2, y});
        const QVariant icon = item.data(Qt::DecorationRole);
        if (icon.canConvert<QIcon>() && !IsOurs(icon.value<QIcon>()))
            foreign.append(item.data().toString());
    }
    foreign.removeDuplicates();
    return foreign;
}

}  // namespace

QStringList NamelessControls(QWidget& window) {
    QStringList nameless;
    const QList<QWidget*> shown = Shown(window);
    for (QWidget* const control : Controls(window)) {
        QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(control);
        if (access == nullptr || access->text(QAccessible::Name).trimmed().isEmpty())
            nameless.append(Called(*control) + QStringLiteral(" has no name"));
        if (access == nullptr || access->role() == QAccessible::NoRole ||
            access->role() == QAccessible::Client)
            nameless.append(Called(*control) + QStringLiteral(" has no role"));
        if (!IsField(*control)) continue;
        const QLabel* const label = LabelLeftOf(*control, shown);
        if (label != nullptr && label->buddy() != control)
            nameless.append(Called(*control) + QStringLiteral(" is not known to its label ") +
                            label->text());
        if (label != nullptr && access != nullptr &&
            access->relations(QAccessible::Label).isEmpty())
            nameless.append(Called(*control) + QStringLiteral(" tells no relation to ") +
                            label->text());
    }
    return nameless;
}

QStringList CutTexts(QWidget& window) {
    QStringList cut;
    for (const QWidget* const widget : Shown(window)) {
        if (IsCut(*widget)) cut.append(Called(*widget) + QStringLiteral(" is cut"));
        if (IsPartlyOutside(*widget))
            cut.append(Called(*widget) + QStringLiteral(" is partly outside"));
        if (const auto* const header = qobject_cast<const QHeaderView*>(widget))
            for (const QString& text : CutSections(*header))
                cut.append(Called(*widget) + QStringLiteral(" cuts ") + text);
        if (const auto* const tabs = qobject_cast<const QTabBar*>(widget))
            for (const QString& text : CutTabs(*tabs))
                cut.append(Called(*widget) + QStringLiteral(" cuts ") + text);
    }
    const QSize most = window.screen()->availableSize();
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    if (least.width() > most.width() || least.height() > most.height())
        cut.append(QStringLiteral("the window needs %1x%2").arg(least.width()).arg(least.height()));
    return cut;
}

QStringList FaintTexts(QWidget& window) {
    QStringList faint;
    const Grounds grounds(window);
    for (const QWidget* const widget : Shown(window)) {
        if (!widget->isEnabled()) continue;  // which are told by their faintness
        Readability check(Called(*widget), faint);
        CheckWidget(*widget, grounds, check);
    }
    Readability tool_tips(QStringLiteral("tool tips"), faint);
    tool_tips.Check("text", QToolTip::palette().color(QPalette::Inactive, QPalette::ToolTipText),
                    QToolTip::palette().color(QPalette::Inactive, QPalette::ToolTipBase));
    faint.removeDuplicates();
    return faint;
}

QStringList ForeignIcons(QWidget& window) {
    QStringList foreign;
    const auto note = [&](const QString& where, const QIcon& icon) {
        if (!IsOurs(icon)) foreign.append(where + QStringLiteral(" has ") + icon.name());
    };
    for (const QWidget* const widget : Shown(window)) {
        if (const auto* const button = qobject_cast<const QAbstractButton*>(widget))
            note(Called(*widget), button->icon());
        if (const auto* const combo = qobject_cast<const QComboBox*>(widget))
            for (int i = 0; i < combo->count(); ++i)
                note(Called(*widget), combo->itemIcon(i));
        if (const auto* const label = qobject_cast<const QLabel*>(widget);
            label != nullptr && HasForeignPixmap(*label))
            foreign.append(Called(*widget));
        if (const auto* const view = qobject_cast<const QAbstractItemView*>(widget))
            for (const QString& item : ForeignItemIcons(*view))
                foreign.append(Called(*widget) + QStringLiteral(" beside ") + item);
    }
    for (const QAction* const action : window.findChildren<QAction*>())
        note(action->text(), action->icon());
    foreign.removeDuplicates();
    return foreign;
}

QStringList TornRows(QWidget& window) {
    QStringList torn;
    QList<QPushButton*> buttons;
    for (QWidget* const widget : Shown(window))
        if (auto* const button = qobject_cast<QPushButton*>(widget);
            button != nullptr && !button->text().isEmpty())
            buttons.append(button);
    for (const QPushButton* const one : buttons)
        for (const QPushButton* const other : buttons)
            if (one->parentWidget() == other->parentWidget() && one->y() == other->y() &&
                !one->icon().isNull() && other->icon().isNull())
                torn.append(Called(*one) + QStringLiteral(" has an icon, ") + Called(*other) +
                            QStringLiteral(" has none"));
    return torn;
}

QStringList OffTheGrid(QWidget& window) {
    QStringList off;
    for (const QLayout* const layout : window.findChildren<QLayout*>()) {
        const QWidget* const owner = layout->parentWidget();
        // Those two lay themselves out.
        if (owner == nullptr || qobject_cast<const QToolBar*>(owner) != nullptr ||
            qobject_cast<const QStatusBar*>(owner) != nullptr)
            continue;
        const QMargins margins = layout->contentsMargins();
        for (const int width : {margins.left(), margins.top(), margins.right(), margins.bottom(),
                                std::max(0, layout->spacing())})
            if (width % widgets::ProgramStyle::kGrid != 0)
                off.append(Called(*owner) + QStringLiteral(": %1 pixels").arg(width));
    }
    off.removeDuplicates();
    return off;
}

QStringList LostToTheTabKey(QWidget& window) {
    constexpr int kMostSteps = 400;
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) return {QStringLiteral("it does not become active")};
    QList<QWidget*> wanted;
    for (QWidget* const control : Controls(window)) {
        const auto* const radio = qobject_cast<const QRadioButton*>(control);
        const bool is_by_arrows = radio != nullptr && !radio->isChecked();
        if ((control->focusPolicy() & Qt::TabFocus) != 0 && !is_by_arrows) wanted.append(control);
    }
    if (wanted.isEmpty()) return {};
    wanted.front()->setFocus(Qt::TabFocusReason);
    if (!QTest::qWaitFor([&] { return QApplication::focusWidget() == wanted.front(); }))
        return {Called(*wanted.front()) + QStringLiteral(" does not take the focus")};
    QStringList lost;
    QList<QWidget*> met{QApplication::focusWidget()};
    for (int step = 0; step < kMostSteps; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QWidget* const now = QApplication::focusWidget();
        if (now == met.back()) continue;  // from one place of a page to its next
        if (now == met.front()) break;
        if (met.contains(now)) {
            lost.append(Called(*now) + QStringLiteral(" is met twice"));
            break;
        }
        met.append(now);
    }
    for (const QWidget* const control : wanted)
        if (!met.contains(control)) lost.append(Called(*control) + QStringLiteral(" is not met"));
    return lost;
}

}  // namespace test_support
