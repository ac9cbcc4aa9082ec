// tavolo-new-example FOLDER: makes the example collection that is delivered with the program: table
// files, pictures, and a catalogue of them whose paths begin at the collection's own folder. Run by
// the build; FOLDER must not have a catalogue yet.
#include "base/status.h"
#include "catalogue/catalogue.h"
#include "catalogue/date_texts.h"
#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/program_files.h"
#include "catalogue/quoting.h"
#include "catalogue/start_up.h"
#include "checksum/checksum_text.h"
#include "checksum/clsCRC.h"
#include "example/compound_file_writer.h"
#include "example/example_folder.h"
#include "example/example_pictures.h"
#include "example/example_tables.h"
#include "jet/connection.h"
#include "jet/pages/file_mark.h"
#include "platform/application_folder.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/files.h"
#include "platform/program_arguments.h"
#include "platform/settings_store.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <array>
#include <cstdint>
#include <cstdio>

namespace {

using example::ExampleTable;

constexpr int kJpegQuality = 88;

constexpr std::uint32_t kPageBytes = 4096;  // of a new catalogue

// The same for every build.
class FixedClock final : public platform::Clock {
public:
    QDateTime Now() override { return QDateTime(QDate(2026, 5, 17), QTime(12, 0), Qt::UTC); }
};

QString Text(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// As texts stand in table files: 16-bit units, little endian.
std::vector<std::byte> TextBytes(std::u16string_view text) {
    std::vector<std::byte> bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::byte>(unit & 0xFF));
        bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    return bytes;
}

QByteArray Jpeg(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    const bool is_written =
        buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "JPG", kJpegQuality);
    return is_written ? bytes : QByteArray();
}

base::Result<std::vector<std::byte>> TableFile(const ExampleTable& table,
                                               const QByteArray& picture) {
    example::CompoundFileWriter writer;
    writer.Add(u"GameStg/Version", {std::byte{0x58}, std::byte{2}, std::byte{0}, std::byte{0}});
    writer.Add(u"GameStg/GameData", TextBytes(table.rules));
    const auto add = [&](std::u16string_view stream, std::u16string_view text) {
        writer.Add(u"TableInfo/" + std::u16string(stream), TextBytes(text));
    };
    add(u"TableName", table.name);
    add(u"AuthorName", table.author);
    add(u"TableVersion", table.version);
    add(u"ReleaseDate", table.year);
    add(u"AuthorWebSite", u"http://www.example.org");
    add(u"TableBlurb", table.blurb);
    add(u"TableDescription", table.blurb);
    add(u"TableRules", table.rules);
    add(u"CompanyName", table.company);
    add(u"CompanyYear", table.year);
    const auto* const first = reinterpret_cast<const std::byte*>(picture.constData());
    writer.Add(u"TableInfo/Screenshot", {first, first + picture.size()});
    return writer.Bytes();
}

// A text of a statement; the engine takes line ends only as characters by number.
QString Quoted(std::u16string_view text) {
    QString quoted = catalogue::QuoteSqlExpr(Text(text));
    quoted.replace(QLatin1String("\r\n"), QLatin1String("' & Chr(13) & Chr(10) & '"));
    return u'\'' + quoted + u'\'';
}

class Maker {
public:
    explicit Maker(const QString& folder) : folder_(folder) {
        values_.ApplicationFolder = folder;
        catalogue_ = {&connection_, &values_, &settings_, &clock_};
    }

    base::Status Make() {
        for (const QStringView part : {example::kTablesFolder, example::kPicturesFolder})
            RETURN_IF_ERROR(platform::MakeFolder(PathOf(part.toString())));
        RETURN_IF_ERROR(catalogue::CreateEmptyCatalogue(
            *files_, platform::ToPath(PathOf(catalogue::kCatalogueFile.toString())),
            catalogue::ToOleDate(clock_.Now())));
        RETURN_IF_ERROR(catalogue::Main(catalogue_));
        std::size_t number = 0;
        for (const ExampleTable& table : example::ExampleTables())
            RETURN_IF_ERROR(Add(table, number++));
        RETURN_IF_ERROR(connection_.Close());
        return RemoveFileMark();
    }

private:
    QString PathOf(const QString& name) const { return platform::FileIn(folder_, name); }

    base::Status Save(const QString& name, QByteArrayView bytes) const {
        if (bytes.isEmpty())
            return {base::StatusCode::kUnsupported, "cannot make " + name.toStdString()};
        return platform::SaveFile(PathOf(name), bytes);
    }

    // It is random, and the same collection is to have the same bytes whenever it is made.
    base::Status RemoveFileMark() const {
        QFile file;
        const QString name = catalogue::kCatalogueFile.toString();
        if (!platform::OpenFile(file, PathOf(name), QIODevice::ReadWrite))
            return {base::StatusCode::kIoError,
                    name.toStdString() + ": " + file.errorString().toStdString()};
        const QByteArray first_page = file.read(kPageBytes);
        std::array<std::byte, jet::kFileMarkBytes> words{};
        jet::StoreFileMark(words, 0);
        const auto at = static_cast<qint64>(jet::FileMarkOffset(kPageBytes));
        const bool stored = first_page.size() == kPageBytes && file.seek(at) &&
                            file.write(reinterpret_cast<const char*>(words.data()),
                                       std::ssize(words)) == std::ssize(words) &&
                            file.flush();
        if (stored) return {};
        return {base::StatusCode::kIoError, name.toStdString() + ": cannot be written"};
    }

    // Two of three have their screenshot in a file, too; every second one has a flyer.
    base::Status Add(const ExampleTable& table, std::size_t number) {
        const QString name = Text(table.name);
        const QString picture_part = example::kPicturesFolder.toString() + u'/' + name;
        const QByteArray playfield = Jpeg(example::DrawPlayfield(table, number));
        ASSIGN_OR_RETURN(const auto file, TableFile(table, playfield));
        const QString file_name =
            example::kTablesFolder.toString() + u'/' + name + QStringLiteral(".vpt");
        RETURN_IF_ERROR(
            Save(file_name, QByteArrayView(file.data(), static_cast<qsizetype>(file.size()))));
        QString image, flyer;
        if (number % 3 != 1) {
            image = picture_part + QStringLiteral(".jpg");
            RETURN_IF_ERROR(Save(image, playfield));
        }
        if (number % 2 == 0) {
            flyer = picture_part + QStringLiteral(" flyer.jpg");
            RETURN_IF_ERROR(Save(flyer, Jpeg(example::DrawFlyer(table, number))));
        }
        return Insert(table, file_name, image, flyer);
    }

    base::Status Insert(const ExampleTable& table, const QString& file_name, const QString& image,
                        const QString& flyer) {
        checksum::clsCRC crc;
        ASSIGN_OR_RETURN(const auto sum, crc.CalculateFile(platform::ToPath(PathOf(file_name))));
        const auto quoted = [](const QString& text) {
            return text.isEmpty() ? QStringLiteral("Null")
                                  : u'\'' + catalogue::QuoteSql(text) + u'\'';
        };
        const auto flag = [](bool on) {
            return on ? QStringLiteral("true") : QStringLiteral("false");
        };
        const QStringList cells = {
            Quoted(table.name),
            quoted(file_name),
            Quoted(table.author),
            Quoted(table.company),
            Quoted(table.year),
            Quoted(table.version),
            quoted(image),
            quoted(flyer),
            Quoted(std::u16string(table.blurb) + u"\r\nAn example: the simulator cannot play it."),
            Quoted(table.rules),
            flag(table.needs_pinmame),
            flag(table.is_favourite),
            QString::number(table.times_played),
            quoted(Text(table.last_played)),
            QStringLiteral("'5/17/2026 12:00:00 PM'"),
            QStringLiteral("'17-May-26'"),
            Quoted(checksum::ChecksumText(sum))};
        const QString sql =
            QStringLiteral(
                "INSERT INTO Tables (DisplayName, FileName, Author, Company, Year, Version, "
                "ImageFile, FlyerFile, Notes, RulesText, PinMame, Favorite, TimesPlayed, "
                "LastPlayed, FileDate, DateAdded, CRC) VALUES (") +
            cells.join(QLatin1String(", ")) + u')';
        return connection_.Execute(sql.toStdU16String()).status();
    }

    QString folder_;
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    FixedClock clock_;
    platform::NoSettings settings_;
    catalogue::ProcessValues values_;
    jet::Connection connection_{*files_, [this] { return catalogue::ToOleDate(clock_.Now()); }};
    catalogue::Catalogue catalogue_;
};

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const std::vector<std::string> words = platform::ProgramArguments(argc, argv);
    if (words.size() != 1) {
        std::fputs("usage: tavolo-new-example FOLDER\nMakes the example collection.\n", stderr);
        return 2;
    }
    const base::Status made =
        Maker(platform::AbsolutePath(platform::ArgumentText(words[0].c_str()))).Make();
    if (made.ok()) return 0;
    std::fprintf(stderr, "tavolo-new-example: %s\n", made.message().c_str());
    return 1;
}
