// ScriptFolder: a folder for the scripts of a test, and what a script has written there.
#pragma once

#include "support/wait_for.h"

#include <QtCore/QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace test_support {

class ScriptFolder {
public:
    QString Folder() const { return folder_.path(); }
    std::string Path(const std::string& name) const {
        return folder_.path().toStdString() + "/" + name;
    }
    // The content of the file "out", for which it waits; a script moves it there when it is
    // complete.
    std::string Output() const {
        if (!WaitFor([&] { return std::filesystem::exists(Path("out")); })) return "<none>";
        std::ostringstream text;
        text << std::ifstream(Path("out")).rdbuf();
        return text.str();
    }

private:
    QTemporaryDir folder_;
};

}  // namespace test_support
