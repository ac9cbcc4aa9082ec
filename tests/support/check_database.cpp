#include "support/check_database.h"

#include "platform/file_system.h"

namespace test_support {

testing::AssertionResult PagesAreSound(jet::PageStore& store, jet::CheckOptions options) {
    const jet::CheckReport report = jet::CheckIntegrity(store, options);
    if (report.sound()) return testing::AssertionSuccess();
    auto result = testing::AssertionFailure() << report.faults << " faults:\n";
    for (const jet::Finding& finding : report.findings)
        if (finding.severity == jet::Severity::kFault) result << jet::Describe(finding) << "\n";
    return result;
}

testing::AssertionResult DatabaseIsSound(const std::filesystem::path& path,
                                         jet::CheckOptions check) {
    const auto files = platform::MakeFileSystem();
    jet::PageStoreOptions options;
    options.read_only = true;
    const auto store = jet::OpenPageStore(*files, path, options);
    if (!store.ok()) return testing::AssertionFailure() << store.status().message();
    return PagesAreSound(*store.value(), check);
}

}  // namespace test_support
