#include "platform/linux/existing_name.h"

#include "platform/linux/directory.h"
#include "platform/linux/file_names.h"

#include <QtCore/QHash>

#include <algorithm>
#include <ctime>
#include <list>
#include <optional>
#include <sys/stat.h>

namespace platform {
namespace {

bool Exists(const std::string& name) {
    struct stat facts {};
    return lstat(name.c_str(), &facts) == 0;
}

QString Folded(std::string_view name) {
    return DecodeFileName(name).toCaseFolded();
}

// The names in the folders that were asked for last, by their case-folded text. A catalogue names
// files of a few folders in turn: of tables, of pictures, and those above them.
class FolderNames {
public:
    // nullopt when no name in `folder` matches `name`.
    std::optional<std::string> Find(const std::string& folder, std::string_view name) {
        struct stat facts {};
        if (stat(folder.c_str(), &facts) != 0) return std::nullopt;
        const Names& names = NamesOf(folder, facts);
        const auto found = names.constFind(Folded(name));
        if (found == names.constEnd()) return std::nullopt;
        return *found;
    }

private:
    using Names = QHash<QString, std::string>;
    struct Folder {
        struct stat facts {};
        bool is_settled = false;
        Names names;
    };

    // Two changes within one tick of the file system's clock leave the same modification time, so
    // a time as recent as this does not prove that the names are still those that were read.
    static constexpr std::time_t kClockSeconds = 3;
    // Beyond these the folder that was asked for longest ago is forgotten; the last one is kept,
    // however large it is. Each name takes about 150 bytes.
    static constexpr std::size_t kMaxFolders = 32;
    static constexpr qsizetype kMaxNames = 250'000;

    static bool IsSame(const struct stat& facts, const struct stat& other) {
        return facts.st_dev == other.st_dev && facts.st_ino == other.st_ino;
    }
    static bool IsOf(const Folder& folder, const struct stat& facts) {
        return folder.is_settled && facts.st_mtim.tv_sec == folder.facts.st_mtim.tv_sec &&
               facts.st_mtim.tv_nsec == folder.facts.st_mtim.tv_nsec;
    }

    const Names& NamesOf(const std::string& folder, const struct stat& facts) {
        const auto known = std::ranges::find_if(
            folders_, [&](const Folder& each) { return IsSame(each.facts, facts); });
        if (known == folders_.end())
            folders_.emplace_front();
        else
            folders_.splice(folders_.begin(), folders_, known);
        if (known == folders_.end() || !IsOf(folders_.front(), facts))
            Read(folder, facts, folders_.front());
        return folders_.front().names;
    }

    void Read(const std::string& folder, const struct stat& facts, Folder& read) {
        name_count_ -= read.names.size();
        read = {facts, std::time(nullptr) - facts.st_mtim.tv_sec > kClockSeconds, {}};
        if (const Directory directory(opendir(folder.c_str())); directory) {
            while (const dirent* entry = readdir(directory.get())) {
                std::string& name = read.names[Folded(entry->d_name)];
                if (name.empty() || entry->d_name < name) name = entry->d_name;
            }
        }
        name_count_ += read.names.size();
        while (folders_.size() > 1 && (folders_.size() > kMaxFolders || name_count_ > kMaxNames)) {
            name_count_ -= folders_.back().names.size();
            folders_.pop_back();
        }
    }

    std::list<Folder> folders_;  // the last one first
    qsizetype name_count_ = 0;
};

// The existing spelling of `wanted` below `folder`, which is "" or ends in "/".
std::optional<std::string> Find(std::string folder, std::string_view wanted) {
    thread_local FolderNames names;
    while (!wanted.empty()) {
        const std::size_t end = std::min(wanted.find('/'), wanted.size());
        const std::string_view name = wanted.substr(0, end);
        const char* const separator = end < wanted.size() ? "/" : "";
        wanted.remove_prefix(std::min(end + 1, wanted.size()));
        std::string next = folder + std::string(name);
        if (!name.empty() && !Exists(next)) {
            const auto found = names.Find(folder.empty() ? "." : folder, name);
            if (!found) return std::nullopt;
            next = folder + *found;
        }
        folder = next + separator;
    }
    return folder;
}

}  // namespace

std::string ExistingSystemPath(const QString& path) {
    std::string name = SystemPath(path);
    if (name.empty() || Exists(name)) return name;
    const bool from_root = name.starts_with('/');
    const auto found = Find(from_root ? "/" : "", std::string_view(name).substr(from_root ? 1 : 0));
    return found ? *found : name;
}

}  // namespace platform
