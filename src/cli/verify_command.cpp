// verify: the rules of the database file, and the table files of its rows.
#include "cli/commands.h"
#include "cli/opened_catalogue.h"
#include "cli/terminal_text.h"

#include "catalogue/field_text.h"
#include "catalogue/progress_meter.h"
#include "checksum/checksum_text.h"
#include "checksum/clsCRC.h"
#include "exchange/cell.h"
#include "exchange/row_writer.h"
#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "platform/files.h"
#include "platform/text_view.h"

#include <algorithm>
#include <vector>

namespace cli {
namespace {

enum class Verdict { kSound, kMissing, kUnreadable, kChanged, kNoChecksum };

struct FileFinding {
    Verdict verdict = Verdict::kSound;
    QString id;
    QString path;
    std::string reason = {};  // why an unreadable one is so
    bool is_fault() const { return verdict != Verdict::kSound && verdict != Verdict::kNoChecksum; }
};

const char* NameOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::kMissing:
        return "missing";
    case Verdict::kUnreadable:
        return "unreadable";
    case Verdict::kChanged:
        return "changed";
    case Verdict::kNoChecksum:
        return "no checksum";
    case Verdict::kSound:
        break;
    }
    return "sound";
}

struct Report {
    jet::CheckReport database;
    std::vector<FileFinding> files;  // that are not sound
    std::int64_t tables = 0;
    bool is_sound() const {
        return database.sound() &&
               std::none_of(files.begin(), files.end(),
                            [](const FileFinding& finding) { return finding.is_fault(); });
    }
};

// `path`: where the file of the finding is on this system. Texts of checksums are compared as the
// database compares them: without regard to letter case.
void Judge(checksum::clsCRC& crc, const QString& path, FileFinding& finding, const QString& known,
           bool is_quick) {
    if (!platform::FileExists(path)) {
        finding.verdict = Verdict::kMissing;
    } else if (!is_quick && known.isEmpty()) {
        finding.verdict = Verdict::kNoChecksum;
    } else if (!is_quick) {
        const auto value = crc.CalculateFile(platform::ToPath(path));
        if (!value.ok()) {
            finding.verdict = Verdict::kUnreadable;
            finding.reason = value.status().message();
            return;
        }
        const QString now = QString::fromStdU16String(checksum::ChecksumText(*value));
        const bool is_same = now.compare(known, Qt::CaseInsensitive) == 0;
        finding.verdict = is_same ? Verdict::kSound : Verdict::kChanged;
    }
}

base::Status CheckFiles(Program& program, OpenedCatalogue& opened, Report& report) {
    jet::Recordset rows;
    RETURN_IF_ERROR(
        rows.Open(u"Select * from Tables", opened.connection(), jet::CursorType::kStatic));
    const bool is_quick = program.arguments.Has("quick");
    // Catalogues of the first versions have no checksums.
    const bool has_checksums = exchange::ColumnPlaces(rows, {QStringLiteral("CRC")}).ok();
    const catalogue::LocalPaths& paths = opened.get().values->paths;
    checksum::clsCRC crc;
    const catalogue::Progress progress = [&](std::int64_t done, std::int64_t total) {
        program.console.ShowProgress(done, total);
    };
    catalogue::ProgressMeter meter(progress, rows.RecordCount());
    while (!rows.Eof()) {
        FileFinding finding;
        ASSIGN_OR_RETURN(finding.id, catalogue::FieldText(rows, u"ID"));
        ASSIGN_OR_RETURN(finding.path, catalogue::FieldText(rows, u"FileName"));
        QString known;
        if (has_checksums) {
            ASSIGN_OR_RETURN(known, catalogue::FieldText(rows, u"CRC"));
        }
        Judge(crc, paths.Of(finding.path), finding, known, is_quick);
        if (finding.verdict != Verdict::kSound) report.files.push_back(finding);
        ++report.tables;
        meter.Step();
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return {};
}

void PrintText(Console& console, const Report& report) {
    for (const jet::Finding& finding : report.database.findings)
        console.Print(QStringLiteral("pinball.mdb: ") +
                      QString::fromStdString(jet::Describe(finding)));
    for (const FileFinding& finding : report.files) {
        std::string line = finding.id.toStdString() + "\t" + NameOf(finding.verdict) + "\t";
        AppendTerminalText(line, platform::View(finding.path));
        if (!finding.reason.empty()) {
            line += '\t';
            AppendTerminalText(line, platform::View(QString::fromStdString(finding.reason)));
        }
        console.Write(line + "\n").Ignore();
    }
    std::int64_t faults = 0;
    for (const FileFinding& finding : report.files)
        faults += finding.is_fault() ? 1 : 0;
    console.Print(QStringLiteral("%1 tables, %2 of them with a fault; %3 faults and %4 warnings in "
                                 "the database file")
                      .arg(report.tables)
                      .arg(faults)
                      .arg(report.database.faults)
                      .arg(report.database.warnings));
}

std::string Json(std::u16string_view text) {
    std::string json;
    exchange::AppendJsonText(json, text);
    return json;
}

void PrintJson(Console& console, const Report& report) {
    std::string json = "{\"schema\": " + std::to_string(exchange::kSchemaVersion) +
                       ", \"sound\": " + (report.is_sound() ? "true" : "false") +
                       ", \"tables\": " + std::to_string(report.tables) +
                       ", \"faults\": " + std::to_string(report.database.faults) +
                       ", \"warnings\": " + std::to_string(report.database.warnings) +
                       ", \"findings\": [";
    const char* separator = "\n";
    for (const jet::Finding& finding : report.database.findings) {
        const std::string text = jet::Describe(finding);
        json += separator + Json(platform::View(QString::fromStdString(text)));
        separator = ",\n";
    }
    json += "], \"files\": [";
    separator = "\n";
    for (const FileFinding& finding : report.files) {
        json += separator + std::string("{\"ID\": ") + finding.id.toStdString() +
                ", \"state\": \"" + NameOf(finding.verdict) +
                "\", \"FileName\": " + Json(platform::View(finding.path));
        if (!finding.reason.empty())
            json += ", \"reason\": " + Json(platform::View(QString::fromStdString(finding.reason)));
        json += "}";
        separator = ",\n";
    }
    console.Write(json + "]}\n").Ignore();
}

}  // namespace

int RunVerify(Program& program) {
    auto opened = OpenedCatalogue::Open(program, Access::kRead);
    if (!opened.ok()) return Fail(program, opened.status());
    Report report;
    report.database = jet::CheckIntegrity((*opened)->connection().database()->pages());
    const base::Status checked = CheckFiles(program, **opened, report);
    // A database that is damaged may not be readable; that is said first.
    if (program.arguments.Has("json"))
        PrintJson(program.console, report);
    else
        PrintText(program.console, report);
    if (!checked.ok()) return Fail(program, checked);
    return report.is_sound() ? kDone : kFailed;
}

}  // namespace cli
