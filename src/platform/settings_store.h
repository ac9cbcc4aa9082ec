// SettingsStore: texts that are kept for each user, by application, section and key.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <memory>

namespace platform {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    // `fallback` when nothing is stored.
    virtual QString GetSetting(const QString& application, const QString& section,
                               const QString& key, const QString& fallback = {}) = 0;
    // Writes the value at once. kIoError names the file that could not be written; GetSetting
    // returns the new value nevertheless until the program ends, and the next SaveSetting writes it
    // again.
    virtual base::Status SaveSetting(const QString& application, const QString& section,
                                     const QString& key, const QString& value) = 0;
};

// Stores nothing: for programs that must not depend on their user's settings.
class NoSettings final : public SettingsStore {
public:
    QString GetSetting(const QString&, const QString&, const QString&,
                       const QString& fallback) override {
        return fallback;
    }
    base::Status SaveSetting(const QString&, const QString&, const QString&,
                             const QString&) override {
        return {};
    }
};

// The settings in `folder`, or the user's own if that is empty.
std::unique_ptr<SettingsStore> MakeSettingsStore(const QString& folder = {});

}  // namespace platform
