#include "dialogs/about_text.h"

#include "dialogs/texts.h"

namespace dialogs {

QString WebSiteAddress() {
    return {};
}

QString CreditsText() {
    return DialogsTexts::tr("Thanks to everybody who tried the early versions on their own "
                            "collection, to the authors of the tables, who "
                            "fill them with life and with the descriptions that this catalogue "
                            "shows, and to the makers of "
                            "Qt, libjpeg-turbo, mdbtools and libgsf.\n\n"
                            "Tavolo is free software under the MIT licence.");
}

}  // namespace dialogs
