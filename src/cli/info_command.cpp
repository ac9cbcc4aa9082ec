// info: what a table file says of itself.
#include "cli/commands.h"
#include "cli/program.h"
#include "cli/terminal_text.h"

#include "catalogue/table_info_names.h"
#include "discovery/folder_scan.h"
#include "exchange/cell.h"
#include "exchange/row_writer.h"
#include "platform/application_folder.h"
#include "platform/files.h"
#include "platform/text_view.h"
#include "tableinfo/storage_tools.h"

#include <vector>

namespace cli {
namespace {

struct Field {
    QString name;
    QString text;
};

struct Picture {
    QString stream;
    QByteArray bytes;
    QString extension;  // of the format; "bin" for an unknown one
};

struct TableFileInfo {
    std::vector<Field> fields;         // the standard ones
    std::vector<Field> custom_fields;  // in the file's order
    std::vector<Picture> pictures;
};

constexpr QStringView kScreenshot = u"Screenshot";

// By the first bytes; empty: none of the known picture formats.
QString PictureExtension(const QByteArray& bytes) {
    struct Signature {
        QByteArrayView start;
        const char* extension;
    };
    static constexpr Signature kSignatures[] = {{QByteArrayView("\xFF\xD8\xFF", 3), "jpg"},
                                                {QByteArrayView("\x89PNG", 4), "png"},
                                                {QByteArrayView("GIF8", 4), "gif"},
                                                {QByteArrayView("BM", 2), "bmp"}};
    for (const Signature& signature : kSignatures)
        if (bytes.startsWith(signature.start)) return QString::fromLatin1(signature.extension);
    return {};
}

TableFileInfo Read(tableinfo::TableInfoFile& file) {
    TableFileInfo info;
    for (const QStringView name : catalogue::TableInfoStreamNames)
        if (name != kScreenshot)
            info.fields.push_back({name.toString(), file.ReadStream(name.toString())});
    if (auto screenshot = file.Screenshot()) {
        const QString extension = PictureExtension(*screenshot);
        info.pictures.push_back({kScreenshot.toString(), *screenshot,
                                 extension.isEmpty() ? QStringLiteral("bin") : extension});
    }
    QStringList custom;
    file.ListCustomStreams(custom);
    for (const QString& name : custom)
        info.custom_fields.push_back({name, file.ReadStream(name)});
    return info;
}

std::string Json(const QString& text) {
    std::string json;
    exchange::AppendJsonText(json, platform::View(text));
    return json;
}

std::string JsonObject(const std::vector<Field>& fields) {
    std::string json = "{";
    for (const Field& field : fields)
        json += (&field == fields.data() ? "\n    " : ",\n    ") + Json(field.name) + ": " +
                Json(field.text);
    return json + (fields.empty() ? "}" : "\n  }");
}

std::string JsonText(const QString& path, const TableFileInfo& info) {
    std::string json =
        "{\n  \"schema\": " + std::to_string(exchange::kSchemaVersion) +
        ",\n  \"file\": " + Json(path) + ",\n  \"fields\": " + JsonObject(info.fields) +
        ",\n  \"custom\": " + JsonObject(info.custom_fields) + ",\n  \"pictures\": [";
    for (const Picture& picture : info.pictures)
        json += (&picture == info.pictures.data() ? "\n    " : ",\n    ") +
                std::string("{\"stream\": ") + Json(picture.stream) +
                ", \"format\": " + Json(picture.extension) +
                ", \"bytes\": " + std::to_string(picture.bytes.size()) + "}";
    return json + (info.pictures.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

void PrintText(Console& console, const TableFileInfo& info) {
    for (const auto* fields : {&info.fields, &info.custom_fields})
        for (const Field& field : *fields)
            if (!field.text.isEmpty())
                console.Print(ShownText(field.name) + QStringLiteral(": ") + ShownText(field.text));
    for (const Picture& picture : info.pictures)
        console.Print(QStringLiteral("%1: a picture (%2), %3 bytes")
                          .arg(picture.stream, picture.extension)
                          .arg(picture.bytes.size()));
}

base::Status CheckIsNew(const QString& path) {
    if (platform::FileExists(path) || platform::FolderExists(path))
        return {base::StatusCode::kAlreadyExists, path.toStdString() + ": it is there already"};
    return {};
}

base::Status Extract(Program& program, const QString& table, const TableFileInfo& info) {
    const QString folder = platform::AbsolutePath(program.arguments.Value("extract"));
    if (!platform::FolderExists(folder))
        return {base::StatusCode::kNotFound, folder.toStdString() + ": there is no such folder"};
    for (const Picture& picture : info.pictures) {
        const QString name =
            discovery::BaseName(table) + u'-' + picture.stream + u'.' + picture.extension;
        const QString path = platform::FileIn(folder, name);
        RETURN_IF_ERROR(CheckIsNew(path));
        if (!program.is_dry_run()) RETURN_IF_ERROR(platform::SaveFile(path, picture.bytes));
        if (!program.arguments.Has("json")) program.console.Print(path);
    }
    return {};
}

}  // namespace

int RunInfo(Program& program) {
    const QString path = platform::AbsolutePath(program.arguments.operands.front());
    if (!platform::FileExists(path))
        return Fail(program,
                    {base::StatusCode::kNotFound, path.toStdString() + ": there is no such file"});
    tableinfo::TableInfoFile file(path);
    if (!file.HasTableInfo())
        return Fail(program,
                    {base::StatusCode::kNotFound, "There is no table Information for this table"});
    const TableFileInfo info = Read(file);
    if (program.arguments.Has("json"))
        program.console.Write(JsonText(path, info)).Ignore();
    else if (!program.arguments.Has("extract"))
        PrintText(program.console, info);
    if (!program.arguments.Has("extract")) return kDone;
    const base::Status extracted = Extract(program, path, info);
    return extracted.ok() ? kDone : Fail(program, extracted);
}

}  // namespace cli
