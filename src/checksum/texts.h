// The texts of this room that users read: ChecksumTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace checksum {

struct ChecksumTexts {
    Q_DECLARE_TR_FUNCTIONS(ChecksumTexts)
};

}  // namespace checksum
