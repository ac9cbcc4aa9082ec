#include "support/faulty_file_system.h"

#include <algorithm>
#include <cstring>

namespace test_support {

using base::Result;
using base::Status;
using base::StatusCode;

constexpr std::uint64_t kSector = 512;

class FaultyFile final : public jet::File {
public:
    FaultyFile(FaultyFileSystem& files, std::shared_ptr<FaultyFileSystem::Inode> inode,
               bool can_write)
        : files_(files), inode_(std::move(inode)), can_write_(can_write) {}
    ~FaultyFile() override {
        const std::lock_guard lock(files_.mutex_);
        inode_->locks.erase(this);
    }

    Result<std::uint64_t> Size() const override {
        const std::lock_guard lock(files_.mutex_);
        const auto verdict = files_.Count();
        if (!verdict.status.ok()) return verdict.status;
        return std::uint64_t{inode_->live.size()};
    }

    Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        const std::lock_guard lock(files_.mutex_);
        const auto verdict = files_.Count();
        if (!verdict.status.ok()) return verdict.status;
        if (offset > inode_->live.size() || inode_->live.size() - offset < bytes.size())
            return {StatusCode::kIoError, "the file ends too early"};
        const auto& bad = inode_->unreadable;
        if (bad && offset <= *bad && *bad - offset < bytes.size())
            return {StatusCode::kIoError, "a bad block"};
        if (!bytes.empty()) std::memcpy(bytes.data(), inode_->live.data() + offset, bytes.size());
        return {};
    }

    Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        const std::lock_guard lock(files_.mutex_);
        if (!can_write_) return {StatusCode::kPermissionDenied, "opened for reading"};
        const auto verdict = files_.Count();
        // Less than a sector is written whole or not at all.
        if (verdict.do_half && bytes.size() >= kSector)
            FaultyFileSystem::Write(*inode_, offset, bytes.first(bytes.size() / 2));
        if (verdict.do_all) FaultyFileSystem::Write(*inode_, offset, bytes);
        files_.bytes_written_ += bytes.size();
        return verdict.status;
    }

    Status Truncate(std::uint64_t size) override {
        const std::lock_guard lock(files_.mutex_);
        if (!can_write_) return {StatusCode::kPermissionDenied, "opened for reading"};
        const auto verdict = files_.Count();
        if (verdict.do_half) FaultyFileSystem::Resize(*inode_, (size + inode_->live.size()) / 2);
        if (verdict.do_all) FaultyFileSystem::Resize(*inode_, size);
        return verdict.status;
    }

    Status Sync() override {
        const std::lock_guard lock(files_.mutex_);
        const auto verdict = files_.Count();
        if (verdict.do_all) {
            for (const auto& change : inode_->changes)
                FaultyFileSystem::Apply(change, inode_->durable);
            inode_->changes.clear();
        }
        if (verdict.do_forget) inode_->changes.clear();
        return verdict.status;
    }

    Status Lock(jet::FileLock wanted, std::uint64_t) override {
        const std::lock_guard lock(files_.mutex_);
        for (const auto& [holder, held] : inode_->locks) {
            const bool conflicts =
                held == jet::FileLock::kExclusive || wanted == jet::FileLock::kExclusive;
            if (holder != this && wanted != jet::FileLock::kNone && conflicts)
                return {StatusCode::kBusy, "in use"};
        }
        inode_->locks.erase(this);
        if (wanted != jet::FileLock::kNone) inode_->locks[this] = wanted;
        return {};
    }

    bool IsAt(const std::filesystem::path& path) const override {
        const std::lock_guard lock(files_.mutex_);
        const auto found = files_.live_.find(path);
        return found != files_.live_.end() && found->second == inode_;
    }

private:
    FaultyFileSystem& files_;
    std::shared_ptr<FaultyFileSystem::Inode> inode_;
    bool can_write_;
};

void FaultyFileSystem::Put(const std::filesystem::path& path, Bytes bytes) {
    const std::lock_guard lock(mutex_);
    auto inode = std::make_shared<Inode>();
    inode->live = bytes;
    inode->durable = std::move(bytes);
    live_[path] = inode;
    durable_[path] = inode;
}

FaultyFileSystem::Bytes FaultyFileSystem::Get(const std::filesystem::path& path) const {
    const std::lock_guard lock(mutex_);
    const auto found = live_.find(path);
    return found == live_.end() ? Bytes() : found->second->live;
}

void FaultyFileSystem::SetUnreadable(const std::filesystem::path& path, std::uint64_t offset) {
    const std::lock_guard lock(mutex_);
    live_.at(path)->unreadable = offset;
}

void FaultyFileSystem::SetPlan(FaultPlan plan) {
    const std::lock_guard lock(mutex_);
    plan_ = plan;
    calls_ = 0;
    fault_happened_ = false;
}

std::uint64_t FaultyFileSystem::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

bool FaultyFileSystem::fault_happened() const {
    const std::lock_guard lock(mutex_);
    return fault_happened_;
}

std::uint64_t FaultyFileSystem::bytes_written() const {
    const std::lock_guard lock(mutex_);
    return bytes_written_;
}

FaultyFileSystem::Verdict FaultyFileSystem::Count() {
    ++calls_;
    const bool stops =
        plan_.stop_behind != 0 && fault_happened_ && calls_ == plan_.call + plan_.stop_behind;
    if (stops) plan_ = {calls_, FaultKind::kStop, plan_.code, 0};
    const bool is_planned = plan_.call != 0 && calls_ == plan_.call;
    const bool is_gone = fault_happened_ && calls_ > plan_.call &&
                         (plan_.kind == FaultKind::kLost || plan_.kind == FaultKind::kStop);
    if (!is_planned && !is_gone) return {};
    Verdict verdict;
    verdict.status = Status(plan_.code, "planned failure");
    verdict.do_all = is_planned && plan_.kind == FaultKind::kDoneButFail;
    verdict.do_half =
        is_planned && (plan_.kind == FaultKind::kHalf || plan_.kind == FaultKind::kStop);
    verdict.do_forget = is_planned && plan_.kind == FaultKind::kForgotten;
    fault_happened_ = true;
    return verdict;
}

void FaultyFileSystem::Apply(const Change& change, Bytes& bytes) {
    if (change.is_truncation) return bytes.resize(change.offset);
    if (bytes.size() < change.offset + change.bytes.size())
        bytes.resize(change.offset + change.bytes.size());
    std::memcpy(bytes.data() + change.offset, change.bytes.data(), change.bytes.size());
}

void FaultyFileSystem::Write(Inode& inode, std::uint64_t offset, std::span<const std::byte> bytes) {
    if (bytes.empty()) return;
    if (inode.live.size() < offset + bytes.size()) inode.live.resize(offset + bytes.size());
    std::memcpy(inode.live.data() + offset, bytes.data(), bytes.size());
    inode.changes.push_back({false, offset, Bytes(bytes.begin(), bytes.end())});
}

void FaultyFileSystem::Resize(Inode& inode, std::uint64_t size) {
    inode.live.resize(size);
    inode.changes.push_back({true, size, {}});
}

FaultyFileSystem::Bytes FaultyFileSystem::Surviving(const Inode& inode, std::mt19937& random) {
    Bytes bytes = inode.durable;
    for (const Change& change : inode.changes) {
        if (change.is_truncation) {
            if (random() % 2 == 0) bytes.resize(change.offset);
            continue;
        }
        const std::uint64_t end = change.offset + change.bytes.size();
        for (std::uint64_t at = change.offset; at < end;) {
            const std::uint64_t next = std::min(end, (at / kSector + 1) * kSector);
            if (random() % 4 != 0) {
                if (bytes.size() < next) bytes.resize(next);
                std::memcpy(bytes.data() + at, change.bytes.data() + (at - change.offset),
                            next - at);
            }
            at = next;
        }
    }
    return bytes;
}

std::unique_ptr<FaultyFileSystem> FaultyFileSystem::Kill() const {
    const std::lock_guard lock(mutex_);
    auto next = std::make_unique<FaultyFileSystem>();
    std::map<std::shared_ptr<Inode>, std::shared_ptr<Inode>> copies;
    const auto copy = [&](const std::shared_ptr<Inode>& inode) {
        auto& copied = copies[inode];
        if (copied == nullptr) {
            copied = std::make_shared<Inode>(*inode);
            copied->locks.clear();
        }
        return copied;
    };
    const auto copy_folder = [&](const Folder& folder) {
        Folder copied;
        for (const auto& [path, inode] : folder)
            copied[path] = copy(inode);
        return copied;
    };
    next->live_ = copy_folder(live_);
    next->durable_ = copy_folder(durable_);
    for (const Folder& state : folder_states_)
        next->folder_states_.push_back(copy_folder(state));
    return next;
}

std::unique_ptr<FaultyFileSystem> FaultyFileSystem::CutPower(std::uint32_t seed) const {
    const std::lock_guard lock(mutex_);
    std::mt19937 random(seed);
    // Folders keep the order of their changes: some of the first ones are there.
    const std::size_t kept = random() % (folder_states_.size() + 1);
    const Folder& folder = kept == 0 ? durable_ : folder_states_[kept - 1];
    auto next = std::make_unique<FaultyFileSystem>();
    for (const auto& [path, inode] : folder)
        next->Put(path, Surviving(*inode, random));
    return next;
}

Result<std::unique_ptr<jet::File>> FaultyFileSystem::Open(const std::filesystem::path& path,
                                                          jet::OpenMode mode) {
    const std::lock_guard lock(mutex_);
    const auto found = live_.find(path);
    const bool may_create = mode == jet::OpenMode::kCreate || mode == jet::OpenMode::kOpenOrCreate;
    if (found == live_.end() && !may_create) return Status(StatusCode::kNotFound, path.string());
    const Verdict verdict = Count();
    std::shared_ptr<Inode> inode = found == live_.end() ? nullptr : found->second;
    if (verdict.do_all || verdict.do_half) {
        if (inode == nullptr) {
            inode = std::make_shared<Inode>();
            live_[path] = inode;
            folder_states_.push_back(live_);
        }
        if (mode == jet::OpenMode::kCreate && !inode->live.empty()) Resize(*inode, 0);
    }
    if (!verdict.status.ok()) return verdict.status;
    return std::unique_ptr<jet::File>(
        std::make_unique<FaultyFile>(*this, std::move(inode), mode != jet::OpenMode::kRead));
}

bool FaultyFileSystem::Exists(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    return std::ranges::any_of(live_, [&](const auto& entry) {
        return entry.first == path || entry.first.parent_path() == path;
    });
}

Status FaultyFileSystem::Remove(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    const auto found = live_.find(path);
    if (found == live_.end()) return {StatusCode::kNotFound, path.string()};
    const Verdict verdict = Count();
    if (verdict.do_all) {
        live_.erase(found);
        folder_states_.push_back(live_);
    }
    return verdict.status;
}

Status FaultyFileSystem::Rename(const std::filesystem::path& from,
                                const std::filesystem::path& to) {
    const std::lock_guard lock(mutex_);
    const auto found = live_.find(from);
    if (found == live_.end()) return {StatusCode::kNotFound, from.string()};
    const Verdict verdict = Count();
    if (verdict.do_all) {
        live_[to] = found->second;
        live_.erase(from);
        folder_states_.push_back(live_);
    }
    return verdict.status;
}

Status FaultyFileSystem::SyncFolder(const std::filesystem::path&) {
    const std::lock_guard lock(mutex_);
    const Verdict verdict = Count();
    if (verdict.do_all) {
        durable_ = live_;
        folder_states_.clear();
    }
    return verdict.status;
}

Result<std::vector<std::string>> FaultyFileSystem::FileNames(const std::filesystem::path& folder) {
    const std::lock_guard lock(mutex_);
    const Verdict verdict = Count();
    if (!verdict.status.ok()) return verdict.status;
    std::vector<std::string> names;
    for (const auto& [path, inode] : live_)
        if (path.parent_path() == folder) names.push_back(path.filename().string());
    if (names.empty()) return Status(StatusCode::kNotFound, folder.string());
    return names;
}

Status FaultyFileSystem::MakeFolder(const std::filesystem::path&) {
    const std::lock_guard lock(mutex_);
    return Count().status;
}

}  // namespace test_support
