#include "catalogue/path_map.h"

#include "catalogue/path_names.h"
#include "catalogue/texts.h"

#include <QtCore/QDir>
#include <QtCore/QSet>

#include <algorithm>
#include <utility>

namespace catalogue {
namespace {

// What a path begins with, by which it is known what separates its names.
enum class Root { kNone, kSlash, kDrive, kShare };

bool IsEither(QChar c) {
    return c == u'/' || c == u'\\';
}

Root RootOf(QStringView path) {
    if (path.size() >= 2 && IsEither(path[0]) && IsEither(path[1])) return Root::kShare;
    if (path.startsWith(u'/')) return Root::kSlash;
    if (path.size() < 2 || path[1] != u':') return Root::kNone;
    const char16_t drive = path[0].toLower().unicode();
    const bool is_drive = drive >= u'a' && drive <= u'z' && (path.size() == 2 || IsEither(path[2]));
    return is_drive ? Root::kDrive : Root::kNone;
}

// The folders that a path begins with, from its root on, as keys that are equal for all ways to
// write a folder: "c:/tables/".
class Folders {
public:
    explicit Folders(QStringView path) : path_(path), root_(RootOf(path)) {
        if (root_ == Root::kShare) SkipSeparators();
    }

    // False: there is none.
    bool Next() {
        if (root_ == Root::kNone || is_at_end()) return false;
        if (root_ == Root::kShare && key_.isEmpty()) key_ = QStringLiteral("//");
        const qsizetype start = at_;
        while (!is_at_end() && !IsSeparator(path_[at_]))
            ++at_;
        key_ += path_.sliced(start, at_ - start).toString().toCaseFolded() + u'/';
        length_ = at_;
        SkipSeparators();
        return true;
    }

    const QString& key() const { return key_; }
    // Of the path up to the end of the folder's name, without the separator.
    qsizetype length() const { return length_; }
    bool IsSeparator(QChar c) const { return c == u'/' || (c == u'\\' && root_ != Root::kSlash); }

private:
    bool is_at_end() const { return at_ == path_.size(); }
    void SkipSeparators() {
        while (!is_at_end() && IsSeparator(path_[at_]))
            ++at_;
    }

    QStringView path_;
    Root root_;
    QString key_;
    qsizetype at_ = 0;
    qsizetype length_ = 0;
};

struct FolderKey {
    QString key;  // empty: no absolute path
    qsizetype depth = 0;
};

FolderKey KeyOf(QStringView folder) {
    FolderKey key;
    Folders folders(folder);
    while (folders.Next())
        ++key.depth;
    key.key = folders.key();
    return key;
}

// What follows `length` letters of `path`, put below `folder` with the separators of that; a
// Windows path has "\\" only, as Windows itself tells it.
QString Below(const QString& folder, const QString& path, qsizetype length) {
    const Folders folders(path);
    qsizetype start = length;
    while (start < path.size() && folders.IsSeparator(path[start]))
        ++start;
    const bool is_slash = RootOf(folder) == Root::kSlash;
    const QChar separator = is_slash ? u'/' : u'\\';
    const bool is_folder_itself = start == length && start == path.size();
    QString begun = is_folder_itself ? folder : WithTrailingSeparator(folder);
    if (!is_slash) begun.replace(u'/', separator);
    QString rest = path.sliced(start);
    for (QChar& c : rest)
        if (folders.IsSeparator(c)) c = separator;
    return begun + rest;
}

base::Status Wrong(const QString& text, const QString& folder) {
    constexpr qsizetype kShownLetters = 100;
    return {base::StatusCode::kInvalidArgument, text.arg(folder.left(kShownLetters)).toStdString()};
}

base::Status CheckFolder(const QString& folder) {
    if (folder.size() > kMaxFolderLength)
        return Wrong(CatalogueTexts::tr("\"%1\" is too long."), folder);
    if (folder.contains(QChar(0)))
        return Wrong(CatalogueTexts::tr("\"%1\" is not the name of a folder."), folder);
    return {};
}

base::Status CheckPair(const PathPair& pair) {
    RETURN_IF_ERROR(CheckFolder(pair.stored));
    RETURN_IF_ERROR(CheckFolder(pair.here));
    if (KeyOf(pair.stored).key.isEmpty())
        return Wrong(CatalogueTexts::tr("\"%1\" is not a whole path."), pair.stored);
    if (!QDir::isAbsolutePath(pair.here) || KeyOf(pair.here).key.isEmpty())
        return Wrong(CatalogueTexts::tr("\"%1\" is not a whole path of this system."), pair.here);
    return {};
}

}  // namespace

base::Status CheckPairs(const std::vector<PathPair>& pairs) {
    if (std::ssize(pairs) > kMaxPathPairs)
        return {base::StatusCode::kInvalidArgument,
                CatalogueTexts::tr("The path map has too many lines.").toStdString()};
    QSet<QString> keys;
    for (const PathPair& pair : pairs) {
        RETURN_IF_ERROR(CheckPair(pair));
        const QString key = KeyOf(pair.stored).key;
        if (keys.contains(key))
            return Wrong(CatalogueTexts::tr("The path map has \"%1\" already."), pair.stored);
        keys.insert(key);
    }
    return {};
}

PathMap::PathMap(std::vector<PathPair> pairs) : pairs_(std::move(pairs)) {
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
        const FolderKey key = KeyOf(pairs_[i].stored);
        by_stored_.insert(key.key, i);
        depth_ = std::max(depth_, key.depth);
    }
}

std::optional<PathMap::Match> PathMap::Find(const QString& stored) const {
    if (is_empty()) return std::nullopt;
    std::optional<Match> found;
    Folders folders(stored);
    for (qsizetype i = 0; i < depth_ && folders.Next(); ++i) {
        const auto pair = by_stored_.constFind(folders.key());
        if (pair != by_stored_.constEnd()) found = {*pair, folders.length()};
    }
    return found;
}

std::optional<std::size_t> PathMap::PairOf(const QString& stored) const {
    const auto found = Find(stored);
    return found ? std::optional(found->pair) : std::nullopt;
}

QString PathMap::Local(const QString& stored) const {
    const auto found = Find(stored);
    return found ? Below(pairs_[found->pair].here, stored, found->length) : stored;
}

QString PathMap::Stored(const QString& local) const {
    QString best = local;
    qsizetype best_length = -1;
    for (const PathPair& pair : pairs_) {
        const QString wanted = KeyOf(pair.here).key;
        Folders folders(local);
        while (folders.key().size() < wanted.size() && folders.Next())
            continue;
        if (folders.key() != wanted || folders.length() <= best_length) continue;
        const QString candidate = Below(pair.stored, local, folders.length());
        // Not the other way round: "\" may be a letter of the name, the folder may differ in letter
        // case, or another pair may count for the candidate.
        const auto letters =
            RootOf(pair.here) == Root::kSlash ? Qt::CaseSensitive : Qt::CaseInsensitive;
        if (Local(candidate).compare(local, letters) != 0) continue;
        best = candidate;
        best_length = folders.length();
    }
    return best;
}

}  // namespace catalogue
