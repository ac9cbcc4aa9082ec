#include "catalogue/path_names.h"

#include "base/path_pieces.h"
#include "platform/files.h"
#include "platform/text_view.h"

namespace catalogue {

using platform::ToQString;
using platform::View;

QString GetFileName(const QString& path) {
    return ToQString(base::GetFileName(View(path)));
}

QString GetFolder(const QString& path) {
    return ToQString(base::GetFolder(View(path)));
}

QString StripExtension(const QString& file_name) {
    return ToQString(base::StripExtension(View(file_name)));
}

QString WithTrailingSeparator(const QString& folder) {
    return ToQString(
        base::WithTrailingSeparator(View(folder), platform::NativeSeparator().unicode()));
}

}  // namespace catalogue
