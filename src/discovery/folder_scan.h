// FindTables and modsearch: the search for new table files. FolderScan walks a folder tree breadth
// first and adds every table file (.vpt) that the catalogue does not hold yet. Folders wait in a
// queue and not on the call stack, so the depth of the tree is not limited. Links are followed
// after all real folders, so that a file is found under its real path first; a file that the
// catalogue holds under its real path, or that another link has led to, is not added again. Each
// folder is listed once, although links may form cycles. Skipped: folders that cannot be listed,
// folders of pseudo file systems (processes, devices), and files that cannot be read or whose path
// is too long for its column. A file that a row names by the path map is held by the catalogue; a
// new one below a folder of the map is stored as the others there. Threads: the
// user-interface thread; pending events are processed before each directory entry but the first of
// its folder.
#pragma once

#include "base/marked_text.h"
#include "base/run_steps.h"
#include "catalogue/catalogue.h"
#include "catalogue/passed_over.h"
#include "checksum/clsCRC.h"
#include "discovery/known_names.h"
#include "platform/files.h"
#include "platform/user_events.h"

#include <QtCore/QSet>
#include <QtCore/QString>

#include <cstdint>
#include <deque>
#include <vector>

namespace discovery {

// What a scan reports while it runs, on the thread of Run.
class ScanObserver {
public:
    virtual ~ScanObserver() = default;
    // The folder has gone to the end of the queue.
    virtual void FolderQueued(const QString& folder) = 0;
    // The first folder of the queue is about to be listed.
    virtual void ListingFolder(const QString& folder) = 0;
    // The first folder has left the queue.
    virtual void FolderListed() = 0;
    virtual void TableAdded(const QString& display_name, const QString& checksum_text) = 0;
};

// For scans whose progress nobody watches.
class UnwatchedScan final : public ScanObserver {
public:
    void FolderQueued(const QString&) override {}
    void ListingFolder(const QString&) override {}
    void FolderListed() override {}
    void TableAdded(const QString&, const QString&) override {}
};

// What a scan is called among the changes, with the update from the table files that follows it.
inline constexpr const char16_t* kScanName = MARKED_TEXT("HistoryTexts", "Scan for New Tables");

class FolderScan {
public:
    // All three are borrowed and outlive the scan.
    FolderScan(catalogue::Catalogue& catalogue, platform::UserEvents& events,
               ScanObserver& observer);

    // Walks `folder` and all folders below it. An empty text is the root folder of the current
    // drive. A failure of the database ends the walk, as a stop does; tables added
    // before stay.
    base::Status Run(const QString& folder, const std::stop_token& stop = {});
    // Adds one table file, unless the catalogue has it, under this path or under the one that links
    // in it lead to. kInvalidArgument: it is not called as table files are, or the catalogue cannot
    // hold its path. A file that cannot be read is an error.
    base::Status AddFile(const QString& path);
    // Tables that the last run, or the last AddFile, has added, and their IDs.
    std::int64_t found_count() const { return found_count_; }
    const std::vector<std::int64_t>& added_ids() const { return added_ids_; }
    // Why the folder of the last run could not be listed itself, which Run passes over as it does
    // with any other; ok: it was.
    const base::Status& start_listing() const { return start_listing_; }
    // Folders and files that the last run has skipped as they cannot be read, or not be stored.
    const catalogue::PassedOver& passed_over() const { return passed_over_; }

private:
    struct Folder {
        QString path;
        bool is_behind_link = false;
    };
    struct Link {
        QString path;
        bool is_folder = false;
    };

    struct NewRow {
        QString file_name;
        QString display_name;
        QString file_date;
        QString checksum_text;
    };

    void Queue(const Folder& folder);
    base::Status FollowNextLink();
    base::Status ListFolder(const Folder& folder);
    base::Status HandleEntry(const Folder& folder, const platform::FolderEntry& entry);
    base::Status HandleLinkedFile(const QString& path);
    base::Status HandleFile(const QString& path);
    base::Result<QString> ChecksumOf(const QString& path);
    base::Status Store(const QString& path, const QString& checksum_text);
    base::Status NoteId();
    base::Status Insert(const NewRow& row);

    catalogue::Catalogue& catalogue_;
    platform::UserEvents& events_;
    ScanObserver& observer_;
    std::deque<Folder> queue_;
    std::deque<Link> links_;
    QSet<QString> met_folders_, met_linked_files_;  // by identity
    KnownNames known_;
    checksum::clsCRC crc_;
    std::stop_token stop_;  // of the last run
    std::int64_t found_count_ = 0;
    std::vector<std::int64_t> added_ids_;
    base::Status start_listing_;
    catalogue::PassedOver passed_over_;
};

// The name of a file without its folder and its last extension: "Game.final" for
// C:\Tables\Game.final.vpt .
QString BaseName(const QString& path);
// True for a path that ends in .vpt, in any letter case.
bool IsTableFileName(const QString& path);
// `folder` as the scan lists it: without spaces at its ends, ending in a separator.
QString ListedFolder(const QString& folder);

}  // namespace discovery
