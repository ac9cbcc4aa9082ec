#include "tableinfo/storage_tools.h"

#include "catalogue/table_info_names.h"
#include "cfb/compound_file.h"
#include "platform/files.h"
#include "platform/text_view.h"
#include "tableinfo/table_text.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace tableinfo {
namespace {

constexpr std::u16string_view kStorageName = u"TableInfo";
// The most that a picture may take in memory anyway (widgets/picture_loader.h).
constexpr std::uint64_t kMaxScreenshotBytes = std::uint64_t{256} * 1024 * 1024;

}  // namespace

class TableInfoFile::Impl {
public:
    explicit Impl(const QString& path) { Open(path); }

    std::vector<cfb::Element> RootElements() {
        return file_ ? file_->ListReadable(file_->root()) : std::vector<cfb::Element>();
    }
    std::vector<cfb::Element> InfoElements() {
        return storage_ ? file_->ListReadable(*storage_) : std::vector<cfb::Element>();
    }
    std::vector<std::byte>
    Read(std::u16string_view stream_name,
         std::uint64_t most_bytes = std::numeric_limits<std::uint64_t>::max()) {
        if (!storage_) return {};
        const auto stream = file_->Find(*storage_, stream_name);
        if (!stream.ok()) Note(stream.status());
        if (!stream.ok() || stream->size_bytes > most_bytes) return {};
        auto content = file_->Read(*stream);
        if (content.ok()) return std::move(*content);
        Note(content.status());
        return {};
    }
    const base::Status& failure() const { return failure_; }

private:
    void Open(const QString& path) {
        auto opened = cfb::CompoundFile::Open(platform::ToPath(path));
        if (!opened.ok()) return Note(opened.status());
        file_ = std::move(*opened);
        const auto storage = file_->Find(file_->root(), kStorageName);
        if (!storage.ok()) return Note(storage.status());
        storage_ = *storage;  // a stream of this name has no members
    }
    void Note(const base::Status& failure) {
        if (failure_.ok() && failure.code() != base::StatusCode::kNotFound) failure_ = failure;
    }

    std::unique_ptr<cfb::CompoundFile> file_;
    std::optional<cfb::Element> storage_;
    base::Status failure_;
};

TableInfoFile::TableInfoFile(const QString& path) : impl_(std::make_unique<Impl>(path)) {}
TableInfoFile::~TableInfoFile() = default;
TableInfoFile::TableInfoFile(TableInfoFile&&) noexcept = default;
TableInfoFile& TableInfoFile::operator=(TableInfoFile&&) noexcept = default;

bool TableInfoFile::HasTableInfo() {
    const auto elements = impl_->RootElements();
    return std::any_of(elements.begin(), elements.end(),
                       [](const cfb::Element& element) { return element.name == kStorageName; });
}

QString TableInfoFile::ReadStream(const QString& stream_name) {
    return DecodeTableText(impl_->Read(platform::View(stream_name)));
}

int TableInfoFile::ListCustomStreams(QStringList& names) {
    const auto elements = impl_->InfoElements();
    for (const cfb::Element& element : elements) {
        const QString name = platform::ToQString(element.name);
        if (element.type == cfb::ElementType::kStream && !IsStandardInfoStream(name))
            names.append(name);
    }
    return static_cast<int>(elements.size());
}

std::optional<QByteArray> TableInfoFile::Screenshot() {
    const auto bytes = impl_->Read(u"Screenshot", kMaxScreenshotBytes);
    if (bytes.empty()) return std::nullopt;
    return QByteArray(reinterpret_cast<const char*>(bytes.data()),
                      static_cast<qsizetype>(bytes.size()));
}

const base::Status& TableInfoFile::failure() const {
    return impl_->failure();
}

QString ReadTableInfoStream(const QString& path, const QString& stream_name) {
    return TableInfoFile(path).ReadStream(stream_name);
}

bool HasTableInfo(const QString& path) {
    return TableInfoFile(path).HasTableInfo();
}

int ListCustomInfoStreams(const QString& path, QStringList& names) {
    return TableInfoFile(path).ListCustomStreams(names);
}

bool IsStandardInfoStream(const QString& name) {
    const auto& standard = catalogue::TableInfoStreamNames;
    return std::find(standard.begin(), standard.end(), QStringView(name)) != standard.end();
}

std::optional<QByteArray> LoadTableScreenshot(const QString& path) {
    return TableInfoFile(path).Screenshot();
}

}  // namespace tableinfo
