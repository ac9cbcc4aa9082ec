#include "history/frmHistory.h"

#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "history/change_names.h"
#include "history/change_texts.h"
#include "history/refusals_text.h"
#include "history/texts.h"
#include "jet/connection.h"
#include "jet/text/names.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace history {
namespace {

QString Text(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// What the pinball tables are called now, by their ID. All texts lie end to end.
class NamesById {
public:
    // Requires: after all smaller IDs.
    void Add(std::int32_t id, std::u16string_view name) {
        places_.push_back({id, static_cast<std::uint32_t>(texts_.size()),
                           static_cast<std::uint32_t>(name.size())});
        texts_ += name;
    }
    // Empty: it has none.
    std::u16string Of(std::int32_t id) const {
        const auto place = std::ranges::lower_bound(places_, id, {}, &Place::id);
        if (place == places_.end() || place->id != id) return {};
        return texts_.substr(place->start, place->length);
    }

private:
    struct Place {
        std::int32_t id;
        std::uint32_t start, length;  // in texts_
    };
    std::vector<Place> places_;
    std::u16string texts_;
};

// After a failure `names` has those that were read before.
base::Status ReadNames(jet::Connection& connection, NamesById& names) {
    ASSIGN_OR_RETURN(auto rows,
                     connection.Execute(u"Select ID, DisplayName from Tables Order By ID"));
    while (!rows.Eof()) {
        ASSIGN_OR_RETURN(const jet::Value id, rows.Fields(std::size_t{0}));
        ASSIGN_OR_RETURN(const jet::Value name, rows.Fields(std::size_t{1}));
        if (id.is<std::int32_t>()) names.Add(id.as<std::int32_t>(), jet::ToText(name));
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return {};
}

// The name that the change itself tells; empty: it does not.
std::u16string NotedName(const jet::NoteTable& table, const FoldedRow& row) {
    for (const FoldedRow::Cell& cell : row.cells)
        if (jet::SameName(table.columns[cell.column].name, u"DisplayName"))
            return CellText(table, cell.column,
                            row.change == jet::RowChange::kInserted ? cell.after : cell.before);
    return {};
}

}  // namespace

frmHistory::frmHistory(catalogue::Catalogue& catalogue, HistoryFile& file,
                       platform::UserPrompts& prompts, std::function<void()> rows_changed,
                       QWidget* parent)
    : QDialog(parent), catalogue_(catalogue), file_(file), prompts_(prompts),
      rows_changed_(std::move(rows_changed)) {
    setObjectName(QStringLiteral("frmHistory"));
    setWindowTitle(HistoryTexts::tr("History"));
    BuildControls();
    BuildLayout();
    connect(changes_view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { ShowChosen(); });
    connect(lines_view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { EnableButtons(); });
    connect(txtFilter_, &QLineEdit::textChanged, this, [this] { ApplyFilter(); });
    connect(cboField_, &QComboBox::currentIndexChanged, this, [this] { ApplyFilter(); });
    connect(cmdField_, &QPushButton::clicked, this, [this] { PutFieldBack(); });
    connect(cmdTable_, &QPushButton::clicked, this, [this] { PutTableBack(); });
    connect(cmdAll_, &QPushButton::clicked, this,
            [this] { PutBackPart({}, HistoryTexts::tr("Put back all of this change?")); });
    connect(cmdClose_, &QPushButton::clicked, this, &QDialog::reject);
    ShowChanges();
}

QTableView* frmHistory::MakeView(const char* object_name, const QString& title,
                                 QAbstractItemModel& model) {
    auto* view = new QTableView(this);
    view->setObjectName(QLatin1String(object_name));
    view->setAccessibleName(title);
    view->setModel(&model);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setTabKeyNavigation(false);
    view->setWordWrap(false);
    view->verticalHeader()->hide();
    // All lines are of one height, so that none of them is asked for it.
    view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    view->horizontalHeader()->setHighlightSections(false);
    return view;
}

QPushButton* frmHistory::MakeButton(const char* object_name, const QString& caption) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QLatin1String(object_name));
    button->setAutoDefault(false);
    return button;
}

void frmHistory::BuildControls() {
    changes_view_ = MakeView("tblChanges", HistoryTexts::tr("Changes"), changes_);
    const int width = fontMetrics().averageCharWidth();
    const int widest_time =
        fontMetrics().horizontalAdvance(QStringLiteral("00/00/0000 00:00:00 PM"));
    changes_view_->setColumnWidth(ChangeListModel::kWhen, widest_time + 4 * width);
    changes_view_->horizontalHeader()->setSectionResizeMode(ChangeListModel::kWhat,
                                                            QHeaderView::Stretch);
    lines_view_ = MakeView("tblFields", HistoryTexts::tr("Fields of the change"), lines_);
    lines_view_->setColumnWidth(ChangeLinesModel::kTable, 28 * width);
    lines_view_->setColumnWidth(ChangeLinesModel::kField, 16 * width);
    lines_view_->setColumnWidth(ChangeLinesModel::kBefore, 36 * width);
    lines_view_->horizontalHeader()->setStretchLastSection(true);
    txtFilter_ = new QLineEdit(this);
    txtFilter_->setObjectName(QStringLiteral("txtFilter"));
    txtFilter_->setPlaceholderText(HistoryTexts::tr("Only lines with this text"));
    txtFilter_->setAccessibleName(txtFilter_->placeholderText());
    txtFilter_->setClearButtonEnabled(true);
    cboField_ = new QComboBox(this);
    cboField_->setObjectName(QStringLiteral("cboField"));
    cboField_->setAccessibleName(HistoryTexts::tr("Field"));
    cboField_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    lblCount_ = new QLabel(this);
    lblCount_->setObjectName(QStringLiteral("lblCount"));
    lblCount_->setTextFormat(Qt::PlainText);
    cmdField_ = MakeButton("cmdField", HistoryTexts::tr("Put &Field Back..."));
    cmdTable_ = MakeButton("cmdTable", HistoryTexts::tr("Put &Table Back..."));
    cmdAll_ = MakeButton("cmdAll", HistoryTexts::tr("Put &All Back..."));
    cmdClose_ = MakeButton("cmdClose", HistoryTexts::tr("&Close"));
}

void frmHistory::BuildLayout() {
    auto* filter = new QHBoxLayout;
    filter->addWidget(txtFilter_, 1);
    filter->addWidget(cboField_);
    filter->addWidget(lblCount_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* button : {cmdField_, cmdTable_, cmdAll_, cmdClose_})
        buttons->addWidget(button);
    auto* column = new QVBoxLayout(this);
    column->addWidget(changes_view_, 2);
    column->addLayout(filter);
    column->addWidget(lines_view_, 3);
    column->addLayout(buttons);
    resize(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 36);
}

// What was changed last is not in the file before a checkpoint.
void frmHistory::ShowChanges() {
    base::Status flushed;
    auto changes = catalogue::RunLong(catalogue_, {HistoryTexts::tr("Reading the history")},
                                      [&](const base::RunSteps&) {
                                          flushed = catalogue_.CatalogueConnection->Flush();
                                          return file_.Changes();
                                      });
    catalogue::ShowError(prompts_, flushed);
    catalogue::ShowError(prompts_, changes.status());
    names_ = {};
    changes_.Show(changes.ok() ? std::move(changes).value() : std::vector<Change>());
    if (changes_.rowCount() > 0)
        changes_view_->selectRow(0);  // which shows it
    else
        ShowLines(nullptr);
}

// A table is called by its name, as it is now or as the change tells it.
ChangeLines::RowNames frmHistory::NamesOfRows() {
    const auto names = std::make_shared<NamesById>();
    const base::Status read = catalogue::RunLong(
        catalogue_, {HistoryTexts::tr("Reading the names of the tables")},
        [&](const base::RunSteps&) { return ReadNames(*catalogue_.CatalogueConnection, *names); });
    catalogue::ShowError(prompts_, read);
    return [names](const jet::NoteTable& table, const FoldedRow& row) -> std::u16string {
        if (!jet::SameName(table.name, u"Tables") || table.key.size() != 1) return {};
        std::u16string noted = NotedName(table, row);
        if (!noted.empty()) return noted;
        const auto& key = row.change == jet::RowChange::kInserted ? row.key_after : row.key_before;
        const auto id = table.Decode(table.key.front(), key.front());
        if (!id.ok() || !id->is<std::int32_t>()) return {};
        return names->Of(id->as<std::int32_t>());
    };
}

int frmHistory::ChosenRow(const QTableView& view) const {
    return view.currentIndex().isValid() ? view.currentIndex().row() : -1;
}

void frmHistory::ShowChosen() {
    filtering_.Stop();
    ChangeLinesModel::LinesPointer shown = lines_.lines();
    ShowLines(nullptr);
    const auto number = changes_.NumberOf(ChosenRow(*changes_view_));
    if (!number) return reading_.Stop();
    if (!names_) names_ = NamesOfRows();
    lblCount_->setText(HistoryTexts::tr("Reading..."));
    using Read = base::Result<ChangeLinesModel::LinesPointer>;
    reading_.Start(
        // To take 100,000 lines out of memory takes its time, too.
        [this, number = *number, names = names_,
         shown = std::move(shown)](const std::stop_token& stop) mutable -> Read {
            shown.reset();
            ASSIGN_OR_RETURN(auto notes, file_.NotesOf(number));
            ASSIGN_OR_RETURN(auto change, FoldedChange::Fold(std::move(notes), stop));
            return std::make_shared<const ChangeLines>(std::move(change), names);
        },
        [this](Read lines) {
            catalogue::ShowError(prompts_, lines.status());
            ShowLines(lines.ok() ? *std::move(lines) : nullptr);
        });
}

void frmHistory::ShowLines(ChangeLinesModel::LinesPointer lines) {
    {
        const QSignalBlocker block_text(txtFilter_);
        const QSignalBlocker block_field(cboField_);
        txtFilter_->clear();
        cboField_->clear();
        cboField_->addItem(HistoryTexts::tr("All fields"));
        if (lines)
            for (const std::u16string& field : lines->fields())
                cboField_->addItem(Text(field));
    }
    lines_.Show(std::move(lines));
    ShowCount();
}

// What was shown stays until the answer is there.
void frmHistory::ApplyFilter() {
    if (!lines_.lines()) return;
    lblCount_->setText(HistoryTexts::tr("Searching..."));
    filtering_.Start(
        [lines = lines_.lines(), text = txtFilter_->text().toStdU16String(),
         field = cboField_->currentIndex() > 0 ? cboField_->currentText().toStdU16String()
                                               : std::u16string()](const std::stop_token& stop) {
            return lines->Matching(text, field, stop);
        },
        [this](std::vector<ChangeLines::Place> shown) {
            lines_.ShowOnly(std::move(shown));
            ShowCount();
        });
}

void frmHistory::ShowCount() {
    const auto count = static_cast<std::uint64_t>(lines_.rowCount());
    lblCount_->setText(FieldsText(count));
    EnableButtons();
}

void frmHistory::EnableButtons() {
    const bool has_line = ChosenRow(*lines_view_) >= 0 && lines_.rowCount() > 0;
    cmdField_->setEnabled(has_line);
    cmdTable_->setEnabled(has_line);
    cmdAll_->setEnabled(lines_.lines() != nullptr);
}

void frmHistory::PutFieldBack() {
    const ChangeLines& lines = *lines_.lines();
    const ChangeLines::Place place = lines_.PlaceOf(ChosenRow(*lines_view_));
    const bool is_field = lines.change().rows()[place.row].change == jet::RowChange::kUpdated;
    // Of a table that was added or removed there is no single field to be put back.
    if (!is_field) return PutTableBack();
    const ChangeLine texts = lines.Line(place);
    PutBackPart({.row = place.row, .column = lines.ColumnOf(place)},
                HistoryTexts::tr("Put back %1 of %2?").arg(Text(texts.field), Text(texts.row)));
}

void frmHistory::PutTableBack() {
    const ChangeLines::Place place = lines_.PlaceOf(ChosenRow(*lines_view_));
    PutBackPart({.row = place.row, .column = {}},
                HistoryTexts::tr("Put back all that this change did to %1?")
                    .arg(Text(lines_.lines()->Line(place).row)));
}

void frmHistory::PutBackPart(const PartOfChange& part, const QString& what) {
    const Change* const change = changes_.ChangeOf(ChosenRow(*changes_view_));
    if (change == nullptr) return;
    platform::Message question;
    question.text = what;
    question.title = windowTitle();
    question.buttons = platform::MessageButtons::kYesNo;
    if (prompts_.Ask(question) != platform::MessageAnswer::kYes) return;
    const std::u16string verb(part.is_all() ? kUndoPrefix : kPutBackPrefix);
    const auto done = catalogue::RunLong(
        catalogue_, {HistoryTexts::tr("Putting back"), catalogue::LongRun::Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            return PutBack(*catalogue_.CatalogueConnection, file_, change->number,
                           verb + change->label.name, part, steps);
        });
    if (base::IsStopped(done.status())) return;
    catalogue::ShowError(prompts_, done.status());
    if (!done.ok()) return;
    const QString refusals = RefusalsText(done->refusals);
    if (!refusals.isEmpty())
        prompts_.Ask({refusals, windowTitle(), platform::MessageIcon::kInformation,
                      platform::MessageButtons::kOk});
    if (rows_changed_) rows_changed_();
    ShowChanges();
}

}  // namespace history
