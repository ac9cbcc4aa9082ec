// A BMP file, through a file as the program reads it.
#include "pictures/dib_section.h"

#include <QtCore/QTemporaryFile>

#include <cstdlib>

namespace {

class SilentPrompts final : public platform::UserPrompts {
public:
    platform::MessageAnswer Ask(const platform::Message&) override {
        return platform::MessageAnswer::kOk;
    }
    QString ChooseFileToOpen(const platform::FileDialog&) override { return {}; }
    QString ChooseFileToSave(const platform::FileDialog&) override { return {}; }
    QString ChooseFolder(const QString&, const QString&) override { return {}; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryFile file;
    if (!file.isOpen() && !file.open()) return 0;
    file.resize(0);
    file.seek(0);
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.flush();
    SilentPrompts prompts;
    pictures::cDIBSection section;
    if (section.Load(file.fileName(), prompts) == section.empty()) std::abort();
    return 0;
}
