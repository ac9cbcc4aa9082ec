// FileIcons: the icons of folders and files in the file dialogs, of the program's own family.
#pragma once

#include <QtGui/QAbstractFileIconProvider>

namespace dialogs {

class FileIcons final : public QAbstractFileIconProvider {
public:
    QIcon icon(IconType type) const override;
    QIcon icon(const QFileInfo& info) const override;
};

}  // namespace dialogs
