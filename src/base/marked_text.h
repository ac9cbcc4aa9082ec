// MARKED_TEXT: a text of a table of constants, or one that a file stores, that is shown in the
// user's language. The program keeps and compares it as it stands here; where it is shown,
// platform::Shown translates it. `context` is the name of the class of texts that has the
// translation (texts.h of its room); both are string literals.
#pragma once

#define MARKED_TEXT(context, text) u##text
