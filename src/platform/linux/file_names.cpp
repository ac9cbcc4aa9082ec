#include "platform/linux/file_names.h"

#include "base/file_names.h"
#include "platform/text_view.h"

namespace platform {

QString DecodeFileName(std::string_view bytes) {
    return ToQString(base::DecodeFileName(bytes));
}

std::string EncodeFileName(const QString& name) {
    return base::EncodeFileName(View(name));
}

bool IsForeignPath(const QString& path) {
    const bool is_share = path.startsWith(QLatin1String("\\\\"));
    if (is_share || path.size() < 3) return is_share;
    const char16_t drive = path[0].toLower().unicode();
    return drive >= u'a' && drive <= u'z' && path[1] == u':' &&
           (path[2] == u'\\' || path[2] == u'/');
}

std::string SystemPath(const QString& path) {
    if (path.isEmpty() || path.contains(QChar(0)) || IsForeignPath(path)) return {};
    return EncodeFileName(path);
}

}  // namespace platform
