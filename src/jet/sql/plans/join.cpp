#include "jet/sql/plans/join.h"

#include "jet/errors.h"
#include "jet/sql/plans/access_path.h"
#include "jet/sql/plans/join_condition.h"
#include "jet/sql/plans/link_index.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

constexpr std::uint32_t kNoRow = std::numeric_limits<std::uint32_t>::max();
// Combinations held at a time; more are refused (3360) before they take the machine's memory.
constexpr std::size_t kMaxCombinations = 20'000'000;

using RowNumbers = std::vector<std::uint32_t>;

// Tuples of row numbers, stored consecutively.
class Tuples {
public:
    explicit Tuples(std::size_t width) : width_(width) {}

    std::size_t size() const { return numbers_.size() / width_; }
    std::span<const std::uint32_t> at(std::size_t i) const {
        return std::span(numbers_).subspan(i * width_, width_);
    }
    Status Add(std::span<const std::uint32_t> tuple) {
        if (size() == kMaxCombinations) return JetError(ErrorNumber::kQueryTooComplex);
        numbers_.insert(numbers_.end(), tuple.begin(), tuple.end());
        return Status::Ok();
    }
    void Sort() {
        RowNumbers order(size());
        std::iota(order.begin(), order.end(), 0U);
        std::ranges::sort(order, [this](std::uint32_t a, std::uint32_t b) {
            return std::ranges::lexicographical_compare(at(a), at(b));
        });
        RowNumbers sorted;
        sorted.reserve(numbers_.size());
        for (const std::uint32_t i : order)
            sorted.insert(sorted.end(), at(i).begin(), at(i).end());
        numbers_ = std::move(sorted);
    }

private:
    std::size_t width_;
    RowNumbers numbers_;
};

struct Group;

// A table or an outer join: what is joined with others at a time.
struct Part {
    explicit Part(std::size_t all_sources) : sources(all_sources), rows(all_sources) {}

    SourceMarks sources;
    std::size_t source = 0;  // of a table
    // Of a table: its own conditions. Those that do not vary are tested when it is read.
    std::vector<JoinCondition*> fixed;
    std::vector<JoinCondition*> varying;

    // Of an outer join: the side whose rows are always kept, and the side that may be missing.
    std::unique_ptr<Group> kept;
    std::unique_ptr<Group> missing;
    JoinConditions on;
    std::vector<JoinCondition*> matching;  // those of `on` that take both sides

    struct Missing {
        Tuples rows;
        RowNumbers all;   // where nothing links them
        LinkIndex index;  // where something does
    };
    bool missing_varies = false;
    std::unique_ptr<Missing> missing_rows;  // kept where they do not vary

    bool varies = false;  // the rows depend on the row of the statement around this one
    bool is_read = false;
    Tuples rows;  // of an outer join: the row of each source
    std::size_t row_count = 0;
    std::map<std::vector<const Expression*>, LinkIndex> indexes;  // of all rows

    bool is_table() const { return kept == nullptr; }
};

// What INNER JOIN and commas join: parts in any order, under conditions.
struct Group {
    explicit Group(std::size_t all_sources) : sources(all_sources) {}

    SourceMarks sources;
    std::vector<std::unique_ptr<Part>> parts;  // as they are written
    JoinConditions own;
    std::vector<JoinCondition*> conditions;  // to be tested here: own ones, and others from above
    bool varies = false;
};

using TestList = std::vector<JoinCondition*>;

}  // namespace

class Joiner::Impl {
public:
    Impl(const Scope& scope, Session& session)
        : scope_(scope), session_(session), count_(scope.sources().size()), root_(count_),
          tables_(count_), ids_(count_), rows_(count_),
          shown_(count_, kNothingShown), context_{&session, &rows_, nullptr} {
        for (std::size_t i = 0; i < count_; ++i)
            ShowSource(i, kNoRow);
    }

    Status Build(const FromNode& from, const Expression* where) {
        RETURN_IF_ERROR(Fill(root_, from));
        AddConditions(where, count_, root_.own);
        return Distribute(root_);
    }

    Status Run(const TakeCombination& take) {
        if (statement_ != session_.statement || changes_ != session_.database->changes())
            Forget(root_);
        statement_ = session_.statement;
        changes_ = session_.database->changes();
        ASSIGN_OR_RETURN(const Tuples all, RowsOf(root_));
        CombinedRows found(count_);
        for (std::size_t i = 0; i < all.size(); ++i) {
            for (std::size_t source = 0; source < count_; ++source) {
                const std::uint32_t row = all.at(i)[source];
                ShowSource(source, row);
                found[source] = row == kNoRow ? std::nullopt : std::optional(ids_[source][row]);
            }
            ASSIGN_OR_RETURN(const bool more, take(rows_, found));
            if (!more) break;
        }
        return Status::Ok();
    }

private:
    static constexpr std::uint32_t kNothingShown = kNoRow - 1;

    // The plan.

    Status Fill(Group& group, const FromNode& node) {
        if (node.left != nullptr && node.kind == JoinKind::kInner) {
            RETURN_IF_ERROR(Fill(group, *node.left));
            RETURN_IF_ERROR(Fill(group, *node.right));
            AddConditions(node.on.get(), count_, group.own);
            return Status::Ok();
        }
        auto part = std::make_unique<Part>(count_);
        if (node.left == nullptr) {
            part->source = node.source;
            part->sources.Add(node.source);
        } else {
            const bool right = node.kind == JoinKind::kRight;
            part->kept = std::make_unique<Group>(count_);
            part->missing = std::make_unique<Group>(count_);
            RETURN_IF_ERROR(Fill(*part->kept, right ? *node.right : *node.left));
            RETURN_IF_ERROR(Fill(*part->missing, right ? *node.left : *node.right));
            part->sources.Add(part->kept->sources);
            part->sources.Add(part->missing->sources);
            AddConditions(node.on.get(), count_, part->on);
        }
        group.sources.Add(part->sources);
        group.parts.push_back(std::move(part));
        return Status::Ok();
    }

    // Each condition goes to where it can be tested first.
    Status Distribute(Group& group) {
        for (const auto& condition : group.own)
            group.conditions.push_back(condition.get());
        TestList here;
        for (JoinCondition* condition : group.conditions) {
            if (!condition->sources.IsWithin(group.sources))
                return JetError(ErrorNumber::kJoinNotSupported);
            Part* const part = PartOf(group, *condition);
            if (part == nullptr)
                here.push_back(condition);
            else if (!part->is_table())
                part->kept->conditions.push_back(condition);
            else
                (condition->varies ? part->varying : part->fixed).push_back(condition);
        }
        group.conditions = std::move(here);
        for (const auto& condition : group.own)
            group.varies = group.varies || condition->varies || condition->changes;
        for (const auto& part : group.parts) {
            if (!part->is_table()) RETURN_IF_ERROR(DistributeOuter(*part));
            part->varies = part->varies || !part->varying.empty();
            group.varies = group.varies || part->varies;
        }
        return Status::Ok();
    }

    Status DistributeOuter(Part& part) {
        for (const JoinCondition* condition : part.kept->conditions)
            part.varies = part.varies || condition->varies;
        for (const auto& condition : part.on) {
            if (!condition->sources.IsWithin(part.sources))
                return JetError(ErrorNumber::kJoinNotSupported);
            part.varies = part.varies || condition->varies || condition->changes;
            const bool only_missing = condition->sources.IsWithin(part.missing->sources) &&
                                      !condition->sources.IsEmpty() && !condition->changes;
            (only_missing ? part.missing->conditions : part.matching).push_back(condition.get());
            part.missing_varies = part.missing_varies || condition->varies;
        }
        RETURN_IF_ERROR(Distribute(*part.kept));
        RETURN_IF_ERROR(Distribute(*part.missing));
        part.varies = part.varies || part.kept->varies || part.missing->varies;
        part.missing_varies = part.missing_varies || part.missing->varies;
        return Status::Ok();
    }

    // The only part that the condition is about, where it may be tested before the others are
    // there; of an outer join, its kept side. nullptr: there is no such part.
    static Part* PartOf(const Group& group, const JoinCondition& condition) {
        if (condition.sources.IsEmpty() || condition.changes) return nullptr;
        for (const auto& part : group.parts)
            if (condition.sources.IsWithin(part->is_table() ? part->sources : part->kept->sources))
                return part.get();
        return nullptr;
    }

    static void Forget(Group& group) {
        for (const auto& part : group.parts) {
            part->is_read = false;
            part->indexes.clear();
            part->missing_rows.reset();
            if (part->is_table()) continue;
            Forget(*part->kept);
            Forget(*part->missing);
        }
    }

    // Current rows.

    void ShowSource(std::size_t source, std::uint32_t row) {
        if (shown_[source] == row) return;
        shown_[source] = row;
        if (row == kNoRow)
            rows_[source].assign(scope_.sources()[source].columns.size(), Value::Null());
        else
            rows_[source] = tables_[source][row];
    }

    void Show(const Part& part, std::uint32_t row) {
        if (part.is_table()) {
            ShowSource(part.source, row);
            return;
        }
        for (std::size_t source = 0; source < count_; ++source)
            if (part.sources.Has(source)) ShowSource(source, part.rows.at(row)[source]);
    }

    // Whether the current rows satisfy the conditions, as far as these can be tested.
    bool MayHold(const TestList& conditions) {
        return std::ranges::all_of(conditions, [this](JoinCondition* condition) {
            const auto truth = EvaluateTruth(*condition->test, context_);
            if (truth.ok()) return *truth == Truth::kTrue;
            condition->undecided = true;
            return true;
        });
    }

    Result<bool> Hold(const TestList& conditions) {
        for (const JoinCondition* condition : conditions) {
            ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*condition->test, context_));
            if (truth != Truth::kTrue) return false;
        }
        return true;
    }

    // Reading.

    Status ReadTable(Part& part) {
        const Source& source = scope_.sources()[part.source];
        auto& table = tables_[part.source];
        auto& ids = ids_[part.source];
        table.clear();
        ids.clear();
        shown_[part.source] = kNothingShown;
        ASSIGN_OR_RETURN(const AccessPath path, PathOf(part));
        ASSIGN_OR_RETURN(const std::unique_ptr<RowCursor> cursor, OpenPath(*source.table, path));
        for (;;) {
            ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
            if (!row) break;
            RETURN_IF_ERROR(cursor->Read(source.columns, rows_[part.source]));
            if (!MayHold(part.fixed)) continue;
            if (ids.size() == kMaxCombinations) return JetError(ErrorNumber::kQueryTooComplex);
            table.push_back(rows_[part.source]);
            ids.push_back(*row);
        }
        if (path.index) SortByPlace(table, ids);
        part.row_count = ids.size();
        return Status::Ok();
    }

    Result<AccessPath> PathOf(const Part& part) {
        if (part.fixed.empty()) return AccessPath();
        Scope scope;
        scope.sources().push_back(scope_.sources()[part.source]);
        Expression all;
        all.kind = NodeKind::kChain;
        for (const JoinCondition* condition : part.fixed)
            all.children.push_back(Clone(*condition->test));
        all.operators.assign(all.children.size() - 1, Operator::kAnd);
        return ChoosePath(scope, all.children.size() == 1 ? all.children[0].get() : &all, {},
                          session_);
    }

    // An index brings its rows in another order.
    static void SortByPlace(std::vector<std::vector<Value>>& table, std::vector<RowId>& ids) {
        RowNumbers order(ids.size());
        std::iota(order.begin(), order.end(), 0U);
        std::ranges::sort(order, {}, [&](std::uint32_t i) { return ids[i]; });
        std::vector<std::vector<Value>> sorted;
        for (const std::uint32_t i : order)
            sorted.push_back(std::move(table[i]));
        table = std::move(sorted);
        std::ranges::sort(ids);
    }

    Status Read(Part& part) {
        if (part.is_read) return Status::Ok();
        part.indexes.clear();
        if (part.is_table()) {
            RETURN_IF_ERROR(ReadTable(part));
        } else {
            RETURN_IF_ERROR(JoinOuter(part));
        }
        part.is_read = part.is_table() || !part.varies;
        return Status::Ok();
    }

    // The rows that the row of the statement around this one leaves.
    Status Narrow(Part& part, RowNumbers& rows) {
        rows.clear();
        const LinkIndex* index = nullptr;
        LinkKey key;
        const SourceMarks none(count_);
        for (const JoinCondition* condition : part.varying) {
            const auto link = FindLink(*condition, none, part.sources, true);
            if (!link || NamesOuterColumns(*link->there)) continue;
            key = LinkKeyOf({&link->here, 1}, context_);
            index = &IndexOf(part, {link->there});
            break;
        }
        if (index != nullptr) {
            index->Find(key, rows);
        } else {
            rows.resize(part.row_count);
            std::iota(rows.begin(), rows.end(), 0U);
        }
        std::erase_if(rows, [&](std::uint32_t row) {
            if (part.varying.empty()) return false;
            Show(part, row);
            return !MayHold(part.varying);
        });
        return Status::Ok();
    }

    void AddToIndex(const Part& part, std::uint32_t row,
                    const std::vector<const Expression*>& expressions, LinkIndex& index) {
        Show(part, row);
        index.Add(row, LinkKeyOf(expressions, context_));
    }

    // Of all rows; made once for as long as these are kept. Requires: nothing in it varies.
    const LinkIndex& IndexOf(Part& part, const std::vector<const Expression*>& expressions) {
        const auto [index, is_new] = part.indexes.try_emplace(expressions);
        for (std::uint32_t row = 0; is_new && row < part.row_count; ++row)
            AddToIndex(part, row, expressions, index->second);
        return index->second;
    }

    // Joining.

    // The parts of a group at work: which rows of each, and which are joined already.
    struct Work {
        explicit Work(std::size_t sources, std::size_t parts)
            : joined(sources), is_joined(parts), rows(parts), tuples(parts) {}

        SourceMarks joined;
        std::vector<bool> is_joined;
        std::vector<RowNumbers> rows;
        Tuples tuples;  // the row of each part
    };

    Result<Tuples> RowsOf(Group& group) {
        Work work(count_, group.parts.size());
        TestList at_once;
        for (JoinCondition* condition : group.conditions)
            if (condition->sources.IsEmpty() && !condition->changes) at_once.push_back(condition);
        if (!MayHold(at_once)) return Tuples(count_);
        for (std::size_t i = 0; i < group.parts.size(); ++i) {
            RETURN_IF_ERROR(Read(*group.parts[i]));
            RETURN_IF_ERROR(Narrow(*group.parts[i], work.rows[i]));
        }
        bool sorted = true;
        std::size_t last = 0;
        for (std::size_t step = 0; step < group.parts.size(); ++step) {
            const std::size_t next = NextPart(group, work);
            sorted = sorted && next >= last;
            last = next;
            RETURN_IF_ERROR(JoinPart(group, next, work));
        }
        if (!sorted) work.tuples.Sort();
        return Finish(group, work);
    }

    std::size_t NextPart(const Group& group, const Work& work) const {
        std::size_t best = group.parts.size();
        bool best_linked = false;
        for (std::size_t i = 0; i < group.parts.size(); ++i) {
            if (work.is_joined[i]) continue;
            const bool linked = !LinksTo(group, *group.parts[i], work.joined).empty();
            const bool better =
                best == group.parts.size() || (linked && !best_linked) ||
                (linked == best_linked && work.rows[i].size() < work.rows[best].size());
            if (!better) continue;
            best = i;
            best_linked = linked;
        }
        return best;
    }

    static std::vector<Link> LinksTo(const Group& group, const Part& part,
                                     const SourceMarks& joined) {
        return FindLinks(group.conditions, joined, part.sources);
    }

    static std::vector<Link> FindLinks(const TestList& conditions, const SourceMarks& here,
                                       const SourceMarks& there) {
        std::vector<Link> links;
        for (const JoinCondition* condition : conditions)
            if (const auto link = FindLink(*condition, here, there)) links.push_back(*link);
        return links;
    }

    Status JoinPart(Group& group, std::size_t number, Work& work) {
        Part& part = *group.parts[number];
        const std::vector<Link> links = LinksTo(group, part, work.joined);
        const bool first = work.joined.IsEmpty();
        const SourceMarks before = work.joined;
        work.joined.Add(part.sources);
        work.is_joined[number] = true;
        TestList tests;  // those that this part makes possible
        for (JoinCondition* condition : group.conditions)
            if (!condition->changes && condition->sources.IsWithin(work.joined) &&
                !condition->sources.IsWithin(before))
                tests.push_back(condition);
        Partners partners(*this, part, links, work.rows[number]);
        const Tuples left = std::exchange(work.tuples, Tuples(group.parts.size()));
        const RowNumbers nothing(group.parts.size(), kNoRow);
        for (std::size_t i = 0; i < (first ? 1 : left.size()); ++i) {
            const std::span<const std::uint32_t> tuple = first ? std::span(nothing) : left.at(i);
            for (std::size_t other = 0; other < tuple.size(); ++other)
                if (tuple[other] != kNoRow) Show(*group.parts[other], tuple[other]);
            RowNumbers both(tuple.begin(), tuple.end());
            for (const std::uint32_t row : partners.Find()) {
                Show(part, row);
                if (!MayHold(tests)) continue;
                both[number] = row;
                RETURN_IF_ERROR(work.tuples.Add(both));
            }
        }
        return Status::Ok();
    }

    // The rows of a part that may be joined to the current ones.
    class Partners {
    public:
        // `rows` are those of the part that are left; borrowed.
        Partners(Impl& joiner, Part& part, const std::vector<Link>& links, const RowNumbers& rows)
            : joiner_(joiner), rows_(rows) {
            if (links.empty()) return;
            bool varies = part.varies;
            for (const Link& link : links) {
                here_.push_back(link.here);
                there_.push_back(link.there);
                varies = varies || NamesOuterColumns(*link.there);
            }
            if (!varies) {
                index_ = &joiner.IndexOf(part, there_);
                return;
            }
            for (const std::uint32_t row : rows)
                joiner.AddToIndex(part, row, there_, own_index_);
            index_ = &own_index_;
        }
        Partners(const Partners&) = delete;
        Partners& operator=(const Partners&) = delete;

        // Valid until the next call.
        const RowNumbers& Find() {
            if (index_ == nullptr) return rows_;
            index_->Find(LinkKeyOf(here_, joiner_.context_), found_);
            return found_;
        }

    private:
        Impl& joiner_;
        const RowNumbers& rows_;
        std::vector<const Expression*> here_;
        std::vector<const Expression*> there_;
        LinkIndex own_index_;
        const LinkIndex* index_ = nullptr;  // nullptr: nothing links the part
        RowNumbers found_;
    };

    // What could not be tested before is tested now that everything else holds.
    Result<Tuples> Finish(Group& group, const Work& work) {
        TestList left;
        for (const auto& condition : group.own)
            if (condition->undecided || condition->changes) left.push_back(condition.get());
        Tuples all(count_);
        RowNumbers combination(count_, kNoRow);
        for (std::size_t i = 0; i < work.tuples.size(); ++i) {
            for (std::size_t number = 0; number < group.parts.size(); ++number)
                Write(*group.parts[number], work.tuples.at(i)[number], combination);
            if (!left.empty()) {
                ShowAll(group.sources, combination);
                ASSIGN_OR_RETURN(const bool holds, Hold(left));
                if (!holds) continue;
            }
            RETURN_IF_ERROR(all.Add(combination));
        }
        return all;
    }

    void Write(const Part& part, std::uint32_t row, RowNumbers& combination) const {
        for (std::size_t source = 0; source < count_; ++source)
            if (part.sources.Has(source))
                combination[source] = part.is_table() ? row : part.rows.at(row)[source];
    }

    void ShowAll(const SourceMarks& sources, std::span<const std::uint32_t> combination) {
        for (std::size_t source = 0; source < count_; ++source)
            if (sources.Has(source)) ShowSource(source, combination[source]);
    }

    Status JoinOuter(Part& part) {
        ASSIGN_OR_RETURN(const Tuples kept, RowsOf(*part.kept));
        const std::vector<Link> links =
            FindLinks(part.matching, part.kept->sources, part.missing->sources);
        std::vector<const Expression*> here;
        std::vector<const Expression*> there;
        for (const Link& link : links) {
            here.push_back(link.here);
            there.push_back(link.there);
        }
        if (part.missing_rows == nullptr || part.missing_varies)
            RETURN_IF_ERROR(ReadMissing(part, there));
        const Part::Missing& missing = *part.missing_rows;
        RowNumbers found;
        part.rows = Tuples(count_);
        for (std::size_t i = 0; i < kept.size(); ++i) {
            ShowAll(part.kept->sources, kept.at(i));
            if (!links.empty()) missing.index.Find(LinkKeyOf(here, context_), found);
            RETURN_IF_ERROR(
                Match(part, kept.at(i), missing.rows, links.empty() ? missing.all : found));
        }
        part.row_count = part.rows.size();
        return Status::Ok();
    }

    Status ReadMissing(Part& part, const std::vector<const Expression*>& links) {
        ASSIGN_OR_RETURN(Tuples rows, RowsOf(*part.missing));
        part.missing_rows = std::make_unique<Part::Missing>(Part::Missing{std::move(rows), {}, {}});
        Part::Missing& missing = *part.missing_rows;
        for (std::uint32_t row = 0; row < missing.rows.size(); ++row) {
            ShowAll(part.missing->sources, missing.rows.at(row));
            if (links.empty())
                missing.all.push_back(row);
            else
                missing.index.Add(row, LinkKeyOf(links, context_));
        }
        return Status::Ok();
    }

    Status Match(Part& part, std::span<const std::uint32_t> kept, const Tuples& missing,
                 const RowNumbers& partners) {
        TestList tests = part.matching;
        for (const auto& condition : part.on)
            if (condition->undecided && std::ranges::find(tests, condition.get()) == tests.end())
                tests.push_back(condition.get());
        bool matched = false;
        RowNumbers both(kept.begin(), kept.end());
        for (const std::uint32_t partner : partners) {
            ShowAll(part.missing->sources, missing.at(partner));
            ASSIGN_OR_RETURN(const bool holds, Hold(tests));
            if (!holds) continue;
            matched = true;
            for (std::size_t source = 0; source < count_; ++source)
                if (part.missing->sources.Has(source)) both[source] = missing.at(partner)[source];
            RETURN_IF_ERROR(part.rows.Add(both));
        }
        return matched ? Status::Ok() : part.rows.Add(kept);
    }

    const Scope& scope_;
    Session& session_;
    std::size_t count_;  // of sources
    Group root_;
    std::uint64_t statement_ = 0;
    std::uint64_t changes_ = 0;
    std::vector<std::vector<std::vector<Value>>> tables_;  // of each source the rows in use
    std::vector<std::vector<RowId>> ids_;                  // of these rows
    SourceRows rows_;                                      // the current ones
    RowNumbers shown_;                                     // which these are
    EvalContext context_;
};

Joiner::Joiner(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Joiner::~Joiner() = default;

Result<std::unique_ptr<Joiner>> Joiner::Make(const FromNode& from, const Scope& scope,
                                             const Expression* where, Session& session) {
    auto impl = std::make_unique<Impl>(scope, session);
    RETURN_IF_ERROR(impl->Build(from, where));
    return std::unique_ptr<Joiner>(new Joiner(std::move(impl)));
}

Status Joiner::Run(const TakeCombination& take) {
    return impl_->Run(take);
}

}  // namespace jet::sql
