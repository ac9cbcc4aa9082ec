#include "browser/find_controller.h"

#include "browser/texts.h"

#include <algorithm>
#include <utility>

namespace browser {
namespace {

// A pause by which somebody who types wants to see what was found.
constexpr int kRestMs = 300;
// Between two counts while files are looked for.
constexpr int kSearchAgainMs = 100;
// Files that are asked for at a time; takes less than a millisecond.
constexpr std::size_t kFilesAtATime = 500;

}  // namespace

FindController::FindController(const Parts& parts, Actions actions)
    : parts_(parts), actions_(std::move(actions)), rest_(*new QTimer(&parts.bar)) {
    parts_.bar.hide();
    parts_.tree.setItemDelegate(
        new FindMarkDelegate([this](std::size_t table) { return MarkOf(table); }, &parts_.tree));
    connect(&parts_.bar, &FindBar::TextChanged, this, &FindController::TextChanged);
    connect(&parts_.bar, &FindBar::NextWanted, this, &FindController::Next);
    connect(&parts_.bar, &FindBar::PreviousWanted, this, &FindController::Previous);
    connect(&parts_.bar, &FindBar::PlayWanted, this, &FindController::Play);
    connect(&parts_.bar, &FindBar::EscapePressed, this, &FindController::Escape);
    connect(&parts_.bar, &FindBar::LeaveWanted, this, &FindController::Leave);
    connect(&parts_.tree, &TableTreeView::NodeClicked, this, &FindController::NodeClicked);
    connect(&indexer_, &FindIndexer::Ready, this, [this] { TextChanged(parts_.bar.Text()); });
    connect(&parts_.model, &QAbstractItemModel::modelReset, this, &FindController::Forget);
    connect(&parts_.model, &QAbstractItemModel::dataChanged, this, [this] {
        if (query_.Asks(FindFlag::kMissing) && !search_again_.isActive()) search_again_.start();
    });
    rest_.setObjectName(QStringLiteral("findRest"));
    rest_.setSingleShot(true);
    rest_.setInterval(kRestMs);
    connect(&rest_, &QTimer::timeout, this, &FindController::SelectHere);
    search_again_.setSingleShot(true);
    search_again_.setInterval(kSearchAgainMs);
    connect(&search_again_, &QTimer::timeout, this, [this] { Search(true); });
    connect(&look_for_files_, &QTimer::timeout, this, &FindController::LookForSomeFiles);
}

void FindController::Open() {
    if (!parts_.bar.isEnabled() || !parts_.model.has_nodes()) return;
    if (parts_.bar.isHidden()) {
        parts_.bar.show();
        start_ = SelectedTable();
        MakeIndex();
    }
    parts_.bar.FocusField();
}

void FindController::Escape() {
    if (parts_.bar.Text().isEmpty()) return Leave();
    SelectHere();
    parts_.bar.SetText({});
    start_ = SelectedTable();
}

void FindController::Leave() {
    SelectHere();
    parts_.bar.SetText({});
    parts_.bar.hide();
    indexer_.Forget();
    parts_.tree.setFocus();
}

// The tree shows something else: what was found is gone, and is looked for among the new tables.
void FindController::Forget() {
    rest_.stop();
    search_again_.stop();
    look_for_files_.stop();
    next_file_ = 0;
    start_ = 0;
    found_.clear();
    here_.reset();
    indexer_.Forget();
    if (parts_.bar.isHidden()) return;
    MakeIndex();
    ShowCount();
}

void FindController::MakeIndex() {
    indexer_.Make(parts_.model.tables());
}

void FindController::TextChanged(const QString& text) {
    query_ = ParseFindQuery(text);
    const bool needs_files = query_.Asks(FindFlag::kMissing);
    if (needs_files && !look_for_files_.isActive())
        look_for_files_.start(0);
    else if (!needs_files)
        look_for_files_.stop();
    Search(false);
}

void FindController::Search(bool stays) {
    if (!indexer_.index()) return ShowCount();  // comes again when it is ready
    const std::optional<std::uint32_t> before =
        here_ ? std::optional(found_[*here_]) : std::nullopt;
    found_ = indexer_.index()->Find(
        query_, [this](std::size_t table) { return parts_.model.IsKnownMissing(table); });
    here_.reset();
    if (!found_.empty()) {
        const std::size_t from = stays && before ? *before : start_;
        const auto next = std::lower_bound(found_.begin(), found_.end(), from);
        here_ = next == found_.end() ? 0 : static_cast<std::size_t>(next - found_.begin());
        last_text_ = parts_.bar.Text();
    }
    ShowCount();
    if (stays && here_ && before == found_[*here_])
        ShowMarks();
    else
        ShowPlace();
}

void FindController::ShowMarks() {
    parts_.tree.viewport()->update();
    Q_EMIT MarksChanged();
}

void FindController::ShowPlace() {
    ShowMarks();
    rest_.stop();
    if (!here_) return;
    parts_.tree.scrollTo(parts_.model.IndexOfNode(NumberOf({found_[*here_], std::nullopt})));
    Q_EMIT PlaceShown(found_[*here_]);
    rest_.start();
}

void FindController::ShowCount() {
    if (!query_.not_understood.isEmpty())
        return parts_.bar.SetCount(BrowserTexts::tr("Not understood"), query_.not_understood);
    if (!query_.asks_for_something()) return parts_.bar.SetCount({});
    if (!indexer_.index()) return parts_.bar.SetCount(QStringLiteral("..."));
    const QString more = look_for_files_.isActive() ? QStringLiteral("+") : QString();
    if (found_.empty()) return parts_.bar.SetCount(BrowserTexts::tr("None") + more);
    parts_.bar.SetCount(BrowserTexts::tr("%1 of %2").arg(*here_ + 1).arg(found_.size()) + more);
}

FindMark FindController::MarkOf(std::size_t table) const {
    if (found_.empty()) return FindMark::kNone;
    if (!std::binary_search(found_.begin(), found_.end(), table)) return FindMark::kNone;
    return found_[*here_] == table ? FindMark::kHere : FindMark::kFound;
}

void FindController::Next() {
    Step(1);
}

void FindController::Previous() {
    Step(-1);
}

// False: the bar was open, or there is nothing to look for.
bool FindController::ReopenForStep() {
    if (!parts_.bar.isHidden()) return false;
    Open();
    parts_.bar.SetText(last_text_);
    return true;
}

void FindController::Step(int by) {
    if (!parts_.bar.isEnabled() || ReopenForStep() || !here_) return;
    const std::size_t count = found_.size();
    here_ = (*here_ + (by > 0 ? 1 : count - 1)) % count;
    start_ = found_[*here_];
    ShowCount();
    ShowPlace();
    SelectHere();
}

// The search goes on from where the user has gone.
void FindController::NodeClicked(const QModelIndex& index) {
    const auto table = TableTreeModel::TableOf(index);
    if (!table || parts_.bar.isHidden()) return;
    rest_.stop();
    start_ = *table;
    const auto place = std::lower_bound(found_.begin(), found_.end(), *table);
    if (place != found_.end() && *place == *table)
        here_ = static_cast<std::size_t>(place - found_.begin());
    ShowCount();
    ShowMarks();
}

void FindController::SelectHere() {
    rest_.stop();
    if (!here_ || !actions_.may_select()) return;
    const std::size_t table = found_[*here_];
    if (TableTreeModel::TableOf(parts_.tree.currentIndex()) == table) return;
    actions_.select(table);
}

void FindController::Play() {
    if (!here_) return;
    SelectHere();
    actions_.play();
}

// A few at a time, so that keys are answered meanwhile.
void FindController::LookForSomeFiles() {
    const std::size_t end = std::min(next_file_ + kFilesAtATime, parts_.model.tables()->size());
    for (; next_file_ < end; ++next_file_)
        parts_.model.LookForFile(next_file_);
    if (next_file_ < parts_.model.tables()->size()) return;
    look_for_files_.stop();
    Search(true);
}

std::size_t FindController::SelectedTable() const {
    return TableTreeModel::TableOf(parts_.tree.currentIndex()).value_or(0);
}

}  // namespace browser
