#include "platform/linux/windows_program.h"

#include "platform/files.h"
#include "platform/linux/file_names.h"

#include <QtCore/QStandardPaths>

#include <array>
#include <fstream>

namespace platform {
namespace {

std::string FirstBytes(const QString& path) {
    std::array<char, 4> bytes{};
    std::ifstream file(ToPath(path), std::ios::binary);
    file.read(bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

bool IsNativePath(QStringView text, bool after_option_sign) {
    if (!text.startsWith(u'/')) return false;
    return after_option_sign || text.sliced(1).contains(u'/');
}

}  // namespace

bool IsWindowsProgram(const QString& path) {
    const std::string bytes = FirstBytes(path);
    if (bytes.starts_with("MZ")) return true;
    const bool is_native = bytes.starts_with("#!") || bytes == "\x7F"
                                                               "ELF";
    return !is_native && path.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive);
}

QString FindWine() {
    for (const char* name : {"wine", "wine-stable", "wine64"}) {
        QString loader = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!loader.isEmpty()) return loader;
    }
    return {};
}

std::vector<std::string> WineEnvironment() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const QString locale = qEnvironmentVariable(name).toUpper();
        if (locale.isEmpty()) continue;
        if (locale.contains(QLatin1String("UTF-8")) || locale.contains(QLatin1String("UTF8")))
            return {};
        break;
    }
    return {"LC_ALL=C.UTF-8"};
}

QString ArgumentForWindows(const QString& argument) {
    const bool is_option = argument.startsWith(u'-');
    QString path = is_option ? argument.sliced(1) : argument;
    if (!IsNativePath(path, is_option)) return argument;
    path.replace(u'/', u'\\');
    return (is_option ? QStringLiteral("-Z:") : QStringLiteral("Z:")) + path;
}

}  // namespace platform
