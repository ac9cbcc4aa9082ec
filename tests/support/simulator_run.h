// SimulatorRun: the surroundings of a stand-in simulator (x11_simulator.cpp, win32_simulator.c):
// its log, the end of its play, and what is said in the log. The environment variables are this
// process's own, which the simulator inherits.
#pragma once

#include "support/wait_for.h"

#include <QtCore/QTemporaryDir>
#include <QtCore/QtGlobal>

#include <chrono>
#include <fstream>
#include <string>
#include <vector>

namespace test_support {

class SimulatorRun {
public:
    SimulatorRun() {
        Set("TAVOLO_SIMULATOR_LOG", Path("log"));
        Set("TAVOLO_SIMULATOR_END_FILE", Path("end"));
    }
    ~SimulatorRun() {
        for (const char* name :
             {"TAVOLO_SIMULATOR_LOG", "TAVOLO_SIMULATOR_END_FILE", "TAVOLO_SIMULATOR_CLASS"})
            qunsetenv(name);
    }
    SimulatorRun(const SimulatorRun&) = delete;
    SimulatorRun& operator=(const SimulatorRun&) = delete;

    static void Set(const char* name, const std::string& value) { qputenv(name, value.c_str()); }

    // Every simulator of this run ends its play.
    void EndPlay() const { std::ofstream(Path("end")) << "x"; }

    std::vector<std::string> LogLines() const {
        std::vector<std::string> lines;
        std::ifstream log(Path("log"));
        for (std::string line; std::getline(log, line);)
            lines.push_back(line);
        return lines;
    }
    int Count(const std::string& line) const {
        int count = 0;
        for (const std::string& logged : LogLines())
            count += logged == line ? 1 : 0;
        return count;
    }
    // Waits until the line has been logged so often.
    bool Logs(const std::string& line, int times = 1) const {
        return WaitFor([&] { return Count(line) >= times; }, std::chrono::seconds(60));
    }
    std::string LogText() const {
        std::string text;
        for (const std::string& line : LogLines())
            text += line + "\n";
        return text;
    }

private:
    std::string Path(const std::string& name) const {
        return folder_.path().toStdString() + "/" + name;
    }

    QTemporaryDir folder_;
};

}  // namespace test_support
