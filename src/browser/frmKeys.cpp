#include "browser/frmKeys.h"

#include "browser/key_sheet.h"
#include "browser/texts.h"
#include "widgets/window_place.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

namespace browser {

frmKeys::frmKeys(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmKeys"));
    setWindowTitle(BrowserTexts::tr("Keys"));
    auto* list = new QTreeWidget(this);
    list->setObjectName(QStringLiteral("lstKeys"));
    list->setAccessibleName(windowTitle());
    list->setHeaderLabels(
        {BrowserTexts::tr("Key"), BrowserTexts::tr("Where"), BrowserTexts::tr("What it does")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    for (const KeyLine& line : KeySheet())
        list->addTopLevelItem(new QTreeWidgetItem({line.keys, line.where, line.what}));
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto* close = new QPushButton(BrowserTexts::tr("&Close"), this);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);
    auto* column = new QVBoxLayout(this);
    column->addWidget(list, 1);
    column->addLayout(buttons);
    int width = list->verticalScrollBar()->sizeHint().width() + 2 * fontMetrics().lineSpacing();
    const QAbstractItemView& view = *list;
    for (int i = 0; i < list->columnCount(); ++i)
        width += view.sizeHintForColumn(i);
    resize(width, fontMetrics().lineSpacing() * 34);
    widgets::FitToScreen(*this);
}

}  // namespace browser
