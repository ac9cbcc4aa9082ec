#include "jet/tables/storage_support.h"

#include "base/file_names.h"
#include "base/unicode.h"
#include "jet/values/conversions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numeric>

namespace jet::test {
namespace {

// No file holds these.
const std::string kFieldEnd = "<~F~>";
const std::string kRowEnd = "<~R~>";
const std::string kNullMark = "<~N~>";

// The pieces of `text` that `end` ends.
std::vector<std::string> SplitEnded(const std::string& text, const std::string& end) {
    std::vector<std::string> pieces;
    std::size_t from = 0;
    for (std::size_t at = text.find(end); at != std::string::npos; at = text.find(end, from)) {
        pieces.push_back(text.substr(from, at - from));
        from = at + end.size();
    }
    return pieces;
}

std::string Hex(std::span<const std::byte> bytes) {
    std::string text;
    std::array<char, 3> digits{};
    for (const std::byte byte : bytes) {
        std::snprintf(digits.data(), digits.size(), "%02X", std::to_integer<unsigned>(byte));
        text += digits.data();
    }
    return text;
}

std::string GuidText(const Guid& guid) {
    std::array<std::byte, 16> b = guid.bytes;
    std::reverse(b.begin(), b.begin() + 4);
    std::reverse(b.begin() + 4, b.begin() + 6);
    std::reverse(b.begin() + 6, b.begin() + 8);
    std::string hex = Hex(b);
    for (const std::size_t at : {20U, 16U, 12U, 8U})
        hex.insert(at, "-");
    return "{" + hex + "}";
}

std::string DateText(double days) {
    const auto civil = CivilFromDays(days);
    if (!civil) return "?";
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", civil->year,
                  civil->month, civil->day, civil->hour, civil->minute, civil->second);
    return text.data();
}

std::string NumericText(const Numeric& numeric) {
    std::array<std::uint32_t, 4> rest = numeric.magnitude;
    std::string digits;
    while (std::ranges::any_of(rest, [](std::uint32_t w) { return w != 0; })) {
        std::uint64_t carry = 0;
        for (std::uint32_t& word : rest) {
            carry = carry << 32 | word;
            word = static_cast<std::uint32_t>(carry / 10);
            carry %= 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + carry));
    }
    if (digits.size() <= numeric.scale) digits.insert(0, numeric.scale + 1 - digits.size(), '0');
    if (numeric.scale > 0) digits.insert(digits.size() - numeric.scale, ".");
    return (numeric.negative ? "-" : "") + digits;
}

bool SameNumber(double value, const std::string& text, double precision) {
    char* end = nullptr;
    const double other = std::strtod(text.c_str(), &end);
    if (end == text.c_str()) return false;
    return std::abs(value - other) <= precision * std::max(std::abs(value), std::abs(other));
}

}  // namespace

std::vector<std::filesystem::path> WholeDatabases() {
    std::vector<std::filesystem::path> folders = {DataFolder() / "databases"};
    if (const auto samples = SampleFolder())
        folders.insert(folders.end(), {*samples / "catalogue", *samples / "mdb"});
    std::vector<std::filesystem::path> all;
    for (const auto& folder : folders)
        for (const auto& file : test_support::FilesIn(folder, ".mdb"))
            all.push_back(file);
    return all;
}

std::vector<std::filesystem::path> DatabasesWithoutPassword() {
    auto files = WholeDatabases();
    std::erase_if(files, HasPassword);
    return files;
}

bool HasPassword(const std::filesystem::path& path) {
    return path.filename().string().find("password") != std::string::npos;
}

std::vector<std::byte> ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return {first, first + text.size()};
}

void WriteWholeFile(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

std::unique_ptr<PageStore> LoadIntoMemory(const std::filesystem::path& path) {
    std::vector<std::byte> bytes = ReadWholeFile(path);
    const bool jet3 = bytes.size() > 0x14 && bytes[0x14] == std::byte{0};
    return MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes));
}

base::Result<std::unique_ptr<Database>> OpenCopy(const std::filesystem::path& path) {
    return OpenDatabase(LoadIntoMemory(path), base::Utf8Of(path));
}

std::vector<std::byte> AllBytes(PageStore& pages) {
    std::vector<std::byte> bytes;
    for (PageNumber page = 0; page < pages.page_count(); ++page) {
        const auto view = pages.Read(page);
        if (!view.ok()) return {};
        bytes.insert(bytes.end(), view.value().bytes().begin(), view.value().bytes().end());
    }
    return bytes;
}

std::optional<std::vector<TextRow>> ExportedRows(const std::filesystem::path& file,
                                                 const std::string& table) {
    const auto output = OutputOf({"mdb-export", "-H", "-Q", "-b", "hex", "-d", kFieldEnd, "-R",
                                  kRowEnd, "-0", kNullMark, "-D", "%Y-%m-%d %H:%M:%S", "-T",
                                  "%Y-%m-%d %H:%M:%S", base::Utf8Of(file), table});
    if (!output) return std::nullopt;
    std::vector<TextRow> rows;
    for (const std::string& line : SplitEnded(*output, kRowEnd)) {
        TextRow& row = rows.emplace_back();
        for (const std::string& field : SplitEnded(line + kFieldEnd, kFieldEnd))
            row.push_back(field == kNullMark ? std::nullopt : std::optional<std::string>(field));
    }
    return rows;
}

std::vector<std::string> ExportedNames(const std::filesystem::path& file,
                                       const std::string& table) {
    const auto output =
        OutputOf({"mdb-export", "-Q", "-d", kFieldEnd, "-R", kRowEnd, base::Utf8Of(file), table});
    const auto lines = SplitEnded(output.value_or(""), kRowEnd);
    return lines.empty() ? std::vector<std::string>() : SplitEnded(lines[0] + kFieldEnd, kFieldEnd);
}

bool SameAsExported(const Value& value, const std::optional<std::string>& exported) {
    if (value.is_null()) return !exported;
    // It ends a short binary value of version 3 at the first zero byte.
    if (const auto* bytes = value.get_if<Bytes>()) {
        const std::string text = Hex(*bytes);
        const std::string printed = exported.value_or("");
        return text == printed ||
               (text.starts_with(printed) && text.substr(printed.size(), 2) == "00");
    }
    // It prints an empty text like a null.
    if (!exported) return Describe(value).empty();
    if (const auto* single = value.get_if<float>())
        return SameNumber(static_cast<double>(*single), *exported, 1e-6);
    if (const auto* real = value.get_if<double>()) return SameNumber(*real, *exported, 1e-14);
    if (const auto* money = value.get_if<Money>())
        return SameNumber(static_cast<double>(money->units) / 10000, *exported, 1e-15);
    std::string text = Describe(value);
    if (text == *exported) return true;
    // It has no dates before 1900.
    if (const auto* date = value.get_if<Date>(); date != nullptr && date->days < 0)
        return *exported == "1900-01-00 00:00:00";
    // Bytes that code page 1252 leaves open come out as a question mark.
    for (const char* open : {"\xC2\x81", "\xC2\x8D", "\xC2\x8F", "\xC2\x90", "\xC2\x9D"})
        for (auto at = text.find(open); value.is<std::u16string>() && at != std::string::npos;
             at = text.find(open))
            text.replace(at, 2, "?");
    // It prints a GUID as the hexadecimal codes of its text, without the last hyphen, when binary
    // is wanted in hexadecimal.
    if (value.is<Guid>()) {
        text.erase(text.rfind('-'), 1);
        return *exported == Hex(std::as_bytes(std::span(text)));
    }
    return text == *exported;
}

std::string Describe(const Value& value) {
    if (value.is_null()) return "(null)";
    if (const auto* boolean = value.get_if<bool>()) return *boolean ? "1" : "0";
    if (const auto* byte = value.get_if<std::uint8_t>()) return std::to_string(*byte);
    if (const auto* small = value.get_if<std::int16_t>()) return std::to_string(*small);
    if (const auto* number = value.get_if<std::int32_t>()) return std::to_string(*number);
    if (const auto* money = value.get_if<Money>()) return std::to_string(money->units) + "e-4";
    if (const auto* single = value.get_if<float>()) return std::to_string(*single);
    if (const auto* real = value.get_if<double>()) return std::to_string(*real);
    if (const auto* date = value.get_if<Date>()) return DateText(date->days);
    if (const auto* text = value.get_if<std::u16string>()) return base::ToUtf8(*text);
    if (const auto* bytes = value.get_if<Bytes>()) return Hex(*bytes);
    if (const auto* guid = value.get_if<Guid>()) return GuidText(*guid);
    if (const auto* numeric = value.get_if<Numeric>()) return NumericText(*numeric);
    return "?";
}

std::vector<std::vector<Value>> AllRows(Table& table) {
    std::vector<std::size_t> columns(table.design().columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<std::vector<Value>> rows;
    auto cursor = table.Scan();
    EXPECT_TRUE(cursor.ok()) << cursor.status().message();
    while (cursor.ok()) {
        const auto next = cursor.value()->Next();
        EXPECT_TRUE(next.ok()) << next.status().message();
        if (!next.ok() || !next.value()) break;
        auto& row = rows.emplace_back(columns.size());
        const auto status = cursor.value()->Read(columns, row);
        EXPECT_TRUE(status.ok()) << status.message();
    }
    return rows;
}

void CompareWithExport(const std::filesystem::path& path, Table& table, std::size_t left_behind) {
    const std::string name = base::ToUtf8(table.design().name);
    SCOPED_TRACE(path.filename().string() + " " + name);
    const auto names = ExportedNames(path, name);
    const auto exported = ExportedRows(path, name);
    ASSERT_TRUE(exported);
    ASSERT_EQ(names.size(), table.design().columns.size());
    std::vector<std::size_t> column_of;  // mdb-export orders columns by number
    for (const std::string& column : names) {
        const auto found =
            std::ranges::find(table.design().columns, base::ToUtf16(column), &ColumnDesign::name);
        ASSERT_NE(found, table.design().columns.end()) << column;
        column_of.push_back(static_cast<std::size_t>(found - table.design().columns.begin()));
    }
    const auto rows = AllRows(table);
    const std::size_t count = exported->size();
    ASSERT_LE(rows.size(), count);
    ASSERT_LE(count, rows.size() + left_behind);
    // It prints a row that was moved where it was moved to.
    const auto same = [&](const std::vector<Value>& row, const TextRow& other) {
        for (std::size_t c = 0; c < names.size(); ++c)
            if (!SameAsExported(row[column_of[c]], other[c])) return false;
        return true;
    };
    std::vector<bool> used(count);
    for (std::size_t r = 0; r < rows.size(); ++r) {
        std::size_t match = r;
        for (std::size_t tries = 0; tries < count; ++tries, match = (match + 1) % count)
            if (!used[match] && same(rows[r], (*exported)[match])) break;
        EXPECT_FALSE(used[match]);
        used[match] = true;
        for (std::size_t c = 0; c < names.size(); ++c)
            EXPECT_TRUE(SameAsExported(rows[r][column_of[c]], (*exported)[match][c]))
                << "row " << r << " " << names[c] << ": " << Describe(rows[r][column_of[c]])
                << " | " << (*exported)[match][c].value_or("(null)");
    }
}

}  // namespace jet::test
