#include "platform/linux/windows_program.h"

#include "platform/files.h"
#include "platform/linux/file_names.h"
#include "platform/linux/system_error.h"

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

#include <algorithm>
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

// The first start of Wine creates its folder, which takes this long on slow machines.
constexpr int kWineTimeoutMs = 120'000;

// Source: "Naming Files, Paths, and Namespaces" (Microsoft), reserved characters.
bool HasReservedCharacter(const QString& path) {
    static constexpr QStringView kReserved = u"\"*:<>?|";
    return std::any_of(path.begin(), path.end(), [](QChar c) { return kReserved.contains(c); });
}

// The output of Wine's tool for path names; empty on failure.
QString AskWinePath(const QStringList& arguments) {
    QProcess process;
    QStringList environment = QProcess::systemEnvironment();
    for (const std::string& variable : WineEnvironment())
        environment << QString::fromStdString(variable);
    process.setEnvironment(environment);
    process.start(QStandardPaths::findExecutable(QStringLiteral("winepath")), arguments);
    if (!process.waitForFinished(kWineTimeoutMs) || process.exitCode() != 0) return {};
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
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

// Keeps the file name if possible: WindowControl finds Wine's windows by it.
base::Result<QString> ProgramForWine(const QString& program) {
    if (!HasReservedCharacter(program)) return program;
    const QFileInfo file(program);
    const bool keeps_name = !HasReservedCharacter(file.fileName());
    QString path =
        QStringLiteral("Z:") + (keeps_name ? file.absolutePath() : file.absoluteFilePath());
    path.replace(u'/', u'\\');
    const QString short_name = AskWinePath({QStringLiteral("-s"), path});
    if (!short_name.isEmpty())
        return keeps_name ? short_name + u'\\' + file.fileName() : short_name;
    return FileError(base::StatusCode::kUnsupported, "Wine cannot start a program with such a name",
                     program, kInvalidProcedureCall);
}

QString ArgumentForWindows(const QString& argument) {
    const bool is_option = argument.startsWith(u'-');
    QString path = is_option ? argument.sliced(1) : argument;
    if (!IsNativePath(path, is_option)) return argument;
    path.replace(u'/', u'\\');
    return (is_option ? QStringLiteral("-Z:") : QStringLiteral("Z:")) + path;
}

}  // namespace platform
