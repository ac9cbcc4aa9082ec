#include "widgets/program_palette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace widgets {
namespace {

// The steps in which a colour is moved, each a part of what there is left to black or white.
constexpr int kSteps = 100;
constexpr int kDark = 128;  // of 255
// Between a selection and what is not selected.
constexpr double kLeastSeen = 1.5;

double Luminance(const QColor& colour) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor Mixed(const QColor& from, const QColor& to, double part) {
    const auto mix = [part](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * part));
    };
    return QColor(mix(from.red(), to.red()), mix(from.green(), to.green()),
                  mix(from.blue(), to.blue()));
}

struct Pair {
    QPalette::ColorRole text;
    QPalette::ColorRole ground;
};

constexpr std::array kTexts = {
    Pair{QPalette::WindowText, QPalette::Window},
    Pair{QPalette::Text, QPalette::Base},
    Pair{QPalette::Text, QPalette::AlternateBase},
    Pair{QPalette::ButtonText, QPalette::Button},
    Pair{QPalette::ToolTipText, QPalette::ToolTipBase},
    Pair{QPalette::PlaceholderText, QPalette::Base},
    Pair{QPalette::Link, QPalette::Base},
    Pair{QPalette::Link, QPalette::Window},
    Pair{QPalette::LinkVisited, QPalette::Base},
    Pair{QPalette::LinkVisited, QPalette::Window},
};

}  // namespace

double ContrastOf(const QColor& a, const QColor& b) {
    constexpr double kFlare = 0.05;
    const auto [less, more] = std::minmax({Luminance(a), Luminance(b)});
    return (more + kFlare) / (less + kFlare);
}

QColor Blended(const QColor& text, const QColor& ground) {
    QColor opaque = text;
    opaque.setAlpha(255);
    return text.alpha() == 255 ? text : Mixed(ground, opaque, text.alphaF());
}

QColor MovedAwayFrom(const QColor& colour, const QColor& other) {
    if (ContrastOf(colour, other) >= kLeastContrast) return colour;
    // To the side on which it is; where that does not reach, to the other one.
    const bool is_lighter = Luminance(colour) >= Luminance(other);
    for (const bool to_white : {is_lighter, !is_lighter}) {
        const QColor end = to_white ? Qt::white : Qt::black;
        for (int step = 1; step <= kSteps; ++step) {
            const QColor moved = Mixed(colour, end, double(step) / kSteps);
            if (ContrastOf(moved, other) >= kLeastContrast) return moved;
        }
    }
    return colour;  // does not happen: black or white has it on every ground
}

namespace {

// Windows marks the selection in a window without the keyboard by a grey that is all but white.
void MakeSelectionSeen(QPalette& palette) {
    const QColor marked = palette.color(QPalette::Inactive, QPalette::Highlight);
    const QColor ground = palette.color(QPalette::Inactive, QPalette::Base);
    if (ContrastOf(marked, ground) >= kLeastSeen) return;
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText})
        palette.setColor(QPalette::Inactive, role, palette.color(QPalette::Active, role));
}

}  // namespace

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < kDark;
}

void MakeReadable(QPalette& palette) {
    MakeSelectionSeen(palette);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const auto color = [&](QPalette::ColorRole role) { return palette.color(group, role); };
        for (const Pair& pair : kTexts) {
            const QColor ground = color(pair.ground);
            palette.setColor(group, pair.text,
                             MovedAwayFrom(Blended(color(pair.text), ground), ground));
        }
        // The ground and not the text, so that what is selected stays what stands out.
        palette.setColor(
            group, QPalette::Highlight,
            MovedAwayFrom(color(QPalette::Highlight), color(QPalette::HighlightedText)));
    }
}

QPalette DarkPalette() {
    const QColor text(0xe6, 0xe6, 0xe6);
    const QColor faint(0x80, 0x80, 0x80);
    QPalette palette(QColor(0x3a, 0x3d, 0x42), QColor(0x2b, 0x2e, 0x32));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Base, QColor(0x1e, 0x20, 0x23));
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x29, 0x2c));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3d, 0x42));
    palette.setColor(QPalette::PlaceholderText, QColor(0xa0, 0xa0, 0xa0));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x6f, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x45, 0x48, 0x4d));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, faint);
    palette.setColor(QPalette::Link, QColor(0x6a, 0xb4, 0xf0));
    palette.setColor(QPalette::LinkVisited, QColor(0xc0, 0x9c, 0xf0));
    return palette;
}

}  // namespace widgets
