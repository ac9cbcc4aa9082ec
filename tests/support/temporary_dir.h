// TemporaryDir: Qt's folder of a test, removed with everything in it at the end, with its paths
// written as the system writes them, as everything that the program is given has them.
#pragma once

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

namespace test_support {

class TemporaryDir {
public:
    TemporaryDir() = default;
    explicit TemporaryDir(const QString& name_template) : folder_(name_template) {}

    bool isValid() const { return folder_.isValid(); }
    QString path() const { return QDir::toNativeSeparators(folder_.path()); }
    // What the path of each file in it begins with.
    QString prefix() const { return QDir::toNativeSeparators(folder_.path() + u'/'); }
    QString filePath(const QString& name) const {
        return QDir::toNativeSeparators(folder_.filePath(name));
    }

private:
    QTemporaryDir folder_;
};

}  // namespace test_support
