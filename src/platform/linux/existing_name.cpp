#include "platform/linux/existing_name.h"

#include "platform/linux/directory.h"
#include "platform/linux/file_names.h"

#include <QtCore/QHash>

#include <algorithm>
#include <ctime>
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

// The names in the folder that was read last, by their case-folded text. Consecutive rows of a
// catalogue mostly name files of the same folder.
class FolderNames {
public:
    // nullopt when no name in `folder` matches `name`.
    std::optional<std::string> Find(const std::string& folder, std::string_view name) {
        struct stat facts {};
        if (stat(folder.c_str(), &facts) != 0) return std::nullopt;
        if (!IsOf(facts)) Read(folder, facts);
        const auto found = names_.constFind(Folded(name));
        if (found == names_.constEnd()) return std::nullopt;
        return *found;
    }

private:
    // Two changes within one tick of the file system's clock leave the same modification time, so
    // a time as recent as this does not prove that the names are still those that were read.
    static constexpr std::time_t kClockSeconds = 3;

    bool IsOf(const struct stat& facts) const {
        return is_settled_ && facts.st_dev == facts_.st_dev && facts.st_ino == facts_.st_ino &&
               facts.st_mtim.tv_sec == facts_.st_mtim.tv_sec &&
               facts.st_mtim.tv_nsec == facts_.st_mtim.tv_nsec;
    }

    void Read(const std::string& folder, const struct stat& facts) {
        names_.clear();
        facts_ = facts;
        is_settled_ = std::time(nullptr) - facts.st_mtim.tv_sec > kClockSeconds;
        const Directory directory(opendir(folder.c_str()));
        if (!directory) return;
        while (const dirent* entry = readdir(directory.get())) {
            std::string& name = names_[Folded(entry->d_name)];
            if (name.empty() || entry->d_name < name) name = entry->d_name;
        }
    }

    struct stat facts_ {};
    bool is_settled_ = false;
    QHash<QString, std::string> names_;
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
