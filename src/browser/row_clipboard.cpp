#include "browser/row_clipboard.h"

#include "platform/files.h"

#include <QtCore/QUrl>

#include <numeric>

namespace browser {
namespace {

QString OneField(QString text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control) c = u' ';
    return text;
}

}  // namespace

std::vector<std::size_t> TablesOf(const TableTreeModel& model, const QModelIndex& node) {
    if (!node.isValid() || !model.has_nodes()) return {};
    if (const auto table = model.TableOfNode(node)) return {*table};
    std::vector<std::size_t> all(model.table_count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

QString RowsAsText(const TableTreeModel& model, const std::vector<std::size_t>& tables) {
    QString text;
    for (const std::size_t table : tables) {
        const QModelIndex node = model.IndexOfTable(table);
        text += OneField(node.data().toString());
        for (const int detail : {kAuthorDetail, kCompanyDetail, kYearDetail}) {
            const QString line = model.index(detail, 0, node).data().toString();
            text += u'\t' + OneField(line.mid(DetailLabel(detail).size()));
        }
        text += u'\t' + OneField(TableTreeModel::Tag(node)) + u'\n';
    }
    return text;
}

std::unique_ptr<QMimeData> RowsAsFiles(const TableTreeModel& model,
                                       const std::vector<std::size_t>& tables,
                                       const catalogue::LocalPaths& paths) {
    QList<QUrl> urls;
    for (const std::size_t table : tables) {
        const QString path = paths.Of(TableTreeModel::Tag(model.IndexOfTable(table)));
        if (platform::FileExists(path))
            urls.append(QUrl::fromLocalFile(platform::ExistingName(path)));
    }
    if (urls.isEmpty()) return nullptr;
    auto files = std::make_unique<QMimeData>();
    files->setUrls(urls);
    // Without it the file managers of GNOME and its relatives see no files.
    QByteArray copied = "copy";
    for (const QUrl& url : urls)
        copied += '\n' + url.toEncoded();
    files->setData(QStringLiteral("x-special/gnome-copied-files"), copied);
    return files;
}

}  // namespace browser
