// The probe as a part of the program: nothing is loaded into one that is linked statically.
#include <QtCore/QtPlugin>

Q_IMPORT_PLUGIN(ProbePlugin)

// Wine keeps variables of Qt from its programs.
[[maybe_unused]] const bool g_is_asked_for = qputenv("QT_QPA_GENERIC_PLUGINS", "tavolo_probe");
