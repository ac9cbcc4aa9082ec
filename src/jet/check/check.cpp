#include "jet/check/check.h"

#include "base/unicode.h"
#include "jet/check/check_catalog.h"
#include "jet/check/check_system.h"
#include "jet/check/check_table.h"
#include "jet/pages/page_header_layout.h"
#include "jet/pages/rc4.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace jet {
namespace check {
namespace {

// Access 2007 and later write this number into files of the older format.
constexpr std::uint32_t kBuildOfLaterEngine = 4518;

// What the steps need of page 0. nullopt (reported): the pages cannot be read.
struct Header {
    std::uint16_t code_page = 1252;
    RowPointer global_map;
    RowPointer second_map;
    std::uint32_t build = 0;  // Jet 4: of the engine that created or compacted the file
    std::array<std::byte, 4> scramble_key{};  // Jet 4: of the names of users in the catalogue
};

// From the low bytes of the plain password, of the build, of the sort order and of the creation
// date. Requires: page 0 of a Jet 4 file, unmasked.
std::array<std::byte, 4> ScrambleKey(std::span<const std::byte> page) {
    const double created = base::LoadDouble(page.data() + kCreated);
    std::uint32_t day = 0;
    if (std::isfinite(created) && std::abs(created) < 4e6)
        day = static_cast<std::uint32_t>(static_cast<std::int32_t>(created));
    std::uint32_t hash = 0;
    for (std::uint32_t unit = 0; unit < 28; ++unit) {
        auto low = std::to_integer<std::uint32_t>(page[kPassword + std::size_t{2} * unit]);
        if (unit < 20) low ^= day >> (unit % 2 == 0 ? 0 : 16) & 0xFF;
        hash ^= low << unit % 24;
    }
    std::array<std::byte, 4> key{};
    base::StoreLittle(key.data(), base::LoadLittle<std::uint32_t>(page.data() + kCreated) ^ hash);
    return key;
}

std::optional<Header> CheckHeader(PageStore& store, CheckReport& report) {
    const auto fault = [&](std::string text) {
        ++report.faults;
        report.findings.push_back({Severity::kFault, 0, -1, "", std::move(text)});
    };
    const auto view = store.Read(0);
    if (!view.ok()) {
        fault("cannot be read: " + view.status().message());
        return std::nullopt;
    }
    std::vector<std::byte> page(view->bytes().begin(), view->bytes().end());
    const bool jet4 = FormatOfPages(store.page_size()).jet4();
    ApplyRc4(kMaskKey, std::span(page).subspan(kMaskStart, jet4 ? kMaskBytesJet4 : kMaskBytesJet3));
    const std::span signature = std::span(page).subspan(kSignatureAt, kSignature.size() + 1);
    if (base::LoadLittle<std::uint32_t>(page.data()) != kHeaderMark ||
        std::memcmp(signature.data(), kSignature.data(), kSignature.size()) != 0 ||
        signature.back() != std::byte{0} ||
        base::LoadLittle<std::uint32_t>(page.data() + kVersionAt) !=
            (jet4 ? kVersionJet4 : kVersionJet3)) {
        fault("is not the header of a database");
        return std::nullopt;
    }
    for (std::uint32_t i = 0; i < kSystemPages; ++i)
        if (base::LoadLittle<std::uint32_t>(page.data() + kSystemPagesAt + std::size_t{4} * i) !=
            kObjectsPage + i)
            fault("the place of a system table is wrong");
    if (LoadRowPointer(page.data() + kGlobalMapAt) != RowPointer{1, 0})
        fault("the place of the map of free pages is wrong");
    const std::size_t words = jet4 ? kCommitWordsJet4 : kCommitWordsJet3;
    for (std::size_t i = 0; i < kCommitWordCount; ++i)
        if (base::LoadLittle<std::uint16_t>(page.data() + words + 2 * i) < kNeutralCommitWord)
            fault("commit word " + std::to_string(i) + " says that a user vanished while writing");
    Header header;
    if (!jet4) header.code_page = base::LoadLittle<std::uint16_t>(page.data() + kCodePage);
    if (jet4) header.build = base::LoadLittle<std::uint32_t>(page.data() + kBuild) & 0xFFFF;
    if (jet4) header.scramble_key = ScrambleKey(page);
    header.global_map = LoadRowPointer(page.data() + kGlobalMapAt);
    header.second_map = LoadRowPointer(page.data() + kSecondMapAt);
    return header;
}

// The logical indexes of relations point at each other.
void CheckRelations(CheckRun& run, const std::map<PageNumber, Definition>& tables) {
    for (const auto& table : tables) {
        const PageNumber page = table.first;
        for (const LogicalIndex& index : table.second.logical) {
            if (index.side == 0) continue;
            const auto other = tables.find(index.partner_table);
            const bool is_answered =
                other != tables.end() &&
                std::ranges::any_of(other->second.logical, [&](const LogicalIndex& back) {
                    return static_cast<std::int64_t>(back.number) == index.partner &&
                           back.partner == static_cast<std::int64_t>(index.number) &&
                           back.partner_table == page && back.side + index.side == 3;
                });
            if (!is_answered)
                run.Fault(page, -1,
                          "the relation of index " + base::ToUtf8(index.name) +
                              " has no other side");
        }
    }
}

void CheckTables(CheckRun& run, const Header& header) {
    std::map<PageNumber, Definition> definitions;
    SystemRows system_rows(run, header.scramble_key);
    const Catalogue catalogue = CheckCatalog(run);
    for (const TableEntry& entry : catalogue.tables) {
        const std::string name = base::ToUtf8(entry.name);
        run.SetTable(name);
        const auto definition = ReadDefinition(run, entry.definition, name);
        if (!definition) continue;
        CheckTable(run, *definition, [&](PageNumber page, int row, const Row& parsed) {
            system_rows.Take(*definition, page, row, parsed);
        });
        ++run.report().tables;
        definitions.emplace(entry.definition, *definition);
    }
    run.SetTable("");
    for (PageNumber page = kAccessPage; page <= kRelationsPage; ++page)
        if (!definitions.contains(page)) run.Fault(page, -1, "is no table of the catalogue");
    CheckRelations(run, definitions);
    system_rows.Check(catalogue, definitions);
}

// Every page is either free or used once; Claim has reported the ones used twice.
void CheckPages(CheckRun& run, PageStore& store, const PageSet& free) {
    for (PageNumber page = 0; page < run.page_count(); ++page) {
        if (free.contains(page)) {
            if (run.IsClaimed(page))
                run.Fault(page, -1, "is in use, but the global map has it as free");
            continue;
        }
        if (run.IsClaimed(page)) continue;
        const auto view = store.Read(page);
        if (view.ok()) run.Warn(page, -1, "is not free, but nothing uses it");
    }
}

}  // namespace
}  // namespace check

CheckReport CheckIntegrity(PageStore& store, CheckOptions options) {
    CheckReport first;
    const auto header = check::CheckHeader(store, first);
    if (!header) return first;
    const Format& format = FormatOfPages(store.page_size());
    check::CheckRun run(store, format, TextCodec(format.version, header->code_page), options);
    if (header->build == check::kBuildOfLaterEngine) run.SetWrittenByLaterEngine();
    run.Claim(0, "the header");
    if (run.page_count() > 1) run.Claim(1, "the global maps");
    const auto free = run.ReadMap(header->global_map, "free pages", true);
    if (free) run.CheckReach(header->global_map);
    const auto second = run.ReadMap(header->second_map, "the second global map", true);
    if (second && !second->empty())
        run.Warn(header->second_map.page, header->second_map.row,
                 "the second global map is not empty");
    check::CheckTables(run, *header);
    if (free) check::CheckPages(run, store, *free);
    CheckReport report = std::move(run.report());
    report.faults += first.faults;
    report.findings.insert(report.findings.begin(), first.findings.begin(), first.findings.end());
    return report;
}

std::string Describe(const Finding& finding) {
    std::string text = finding.severity == Severity::kFault ? "" : "warning: ";
    text += "page " + std::to_string(finding.page);
    if (finding.row >= 0) text += ", row " + std::to_string(finding.row);
    if (!finding.table.empty()) text += ", table " + finding.table;
    return text + ": " + finding.text;
}

}  // namespace jet
