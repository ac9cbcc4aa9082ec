#include "example/example_tables.h"

namespace example {
namespace {

constexpr ExampleTable kTables[] = {
    {u"Clockwork Orchard", u"Ada Marlow", u"Brightball", u"1978", u"1.2",
     u"Brass apples, ticking bumpers, and a tree that strikes twelve.",
     u"Hit the twelve hours in order. Each full hour lights an apple.\r\n"
     u"Three apples open the orchard gate: every bumper counts double until the ball is lost.\r\n"
     u"At midnight, shoot the tree for the bonus ball.",
     17, u"3/14/2026 9:30:00 PM", true, false, 0x23402B, 0xC9963B, 0xF6E27A},
    {u"Copper Comet", u"J\u00fcrgen Br\u00fcckner", u"Kugelwerk", u"1981", u"2.0",
     u"Once around the sun in three balls.",
     u"The left ramp is the near orbit, the right ramp the far one.\r\n"
     u"Four orbits light the tail. With the tail lit, the comet lane scores its year times ten.",
     4, u"11/2/2025 6:12:00 PM", false, false, 0x1B1F3B, 0xB5622E, 0xFFD9A0},
    {u"Glacier Express", u"Milo Vance", u"North Pier Games", u"1986", u"1.0",
     u"A night train through the ice.",
     u"Stop at all five stations: the drop targets show which are left.\r\n"
     u"Between stations the tunnel locks the ball; two locked balls start the express.",
     0, u"", false, false, 0x123A52, 0x8FC7DE, 0xFFFFFF},
    {u"Harbour Lights", u"In\u00e8s Perrault", u"Brightball", u"1972", u"3.1",
     u"Bring the ships home before the fog comes.",
     u"Light the seven lamps of the pier from left to right.\r\n"
     u"The lighthouse turns faster with each ship; hit it while its lamp is towards you.",
     31, u"5/1/2026 8:05:00 PM", true, false, 0x14304A, 0xD7543F, 0xFFE9A8},
    {u"Hollow Hills", u"Otto Ash-Weber", u"Silver & Sons", u"1969", u"1.4",
     u"Something lives under the hills. It collects silver.",
     u"Each of the three holes keeps a ball until the hill above it is lit.\r\n"
     u"All three lit: the hills open, and the specials count five thousand.",
     2, u"8/19/2025 10:41:00 PM", false, false, 0x2F3B1F, 0x9DB36A, 0xE4F0B5},
    {u"Midnight Railway", u"Zo\u00eb Lindqvist", u"Kugelwerk", u"1992", u"1.1",
     u"The last train leaves at twelve. You have the signals.",
     u"Set the signals with the upper flipper. A green line takes the train through.\r\n"
     u"Three trains in time start the timetable: thirty seconds, all ramps lit.\r\n"
     u"A collision ends the night.",
     9, u"2/22/2026 11:58:00 PM", false, true, 0x171421, 0x6B5CA5, 0xFF5A4F},
    {u"Paper Dragons", u"S\u00f8ren O'Dell", u"\u00c9lan", u"1984", u"2.2",
     u"Fold them, fly them, keep them dry.",
     u"Spell D-R-A-G-O-N at the standing targets. Each dragon flies one ramp for you.\r\n"
     u"Five dragons in the air start the festival.",
     12, u"4/7/2026 7:20:00 PM", true, false, 0x5A1A22, 0xE8A33D, 0xFFF1CF},
    {u"Sea Of Lanterns", u"Ada Marlow", u"Brightball", u"1996", u"1.0",
     u"A thousand lanterns on the water, and one of them is yours.",
     u"The current changes direction with every ball: follow the arrows.\r\n"
     u"Lanterns that you light stay lit. Light all forty and the sea turns to gold.",
     6, u"1/30/2026 9:15:00 PM", false, true, 0x0F2F3D, 0x2E8C8A, 0xFFC857},
    {u"Seventh Wave", u"Milo Vance", u"North Pier Games", u"1989", u"1.3",
     u"Six waves to learn, one to ride.",
     u"Count the waves at the left lane. The seventh opens the pipe.\r\n"
     u"In the pipe every bumper adds one second; come out before it breaks.",
     0, u"", false, false, 0x0B4F6C, 0x01BAEF, 0xFBFBFF},
    {u"Solar Circus", u"Zo\u00eb Lindqvist", u"Silver & Sons", u"1994", u"2.5",
     u"Nine planets, three rings, one ringmaster.",
     u"Each planet is a mode; the ringmaster names the next.\r\n"
     u"Play all nine to stand in the middle ring: three balls, no kickback.",
     22, u"4/28/2026 10:02:00 PM", true, true, 0x3B1C47, 0xE4572E, 0xF3C969},
    {u"Wandering Castle", u"Otto Ash-Weber", u"\u00c9lan", u"1975", u"1.0",
     u"It was on the other hill yesterday.",
     u"The castle stands behind the target that is lit. Hit it and it moves on.\r\n"
     u"Seven moves in one ball bring it home for the special.",
     1, u"12/24/2025 4:30:00 PM", false, false, 0x3A3A55, 0x8D99AE, 0xEDF2F4},
    {u"Windmill Valley", u"J\u00fcrgen Br\u00fcckner", u"Kugelwerk", u"1966", u"4.0",
     u"Four sails, two balls, and a quiet afternoon.",
     u"Each turn of the mill adds a hundred to the bonus.\r\n"
     u"The four corners stop the wind; start it again at the top lane.",
     0, u"", false, false, 0x3E5C3A, 0xD9C27E, 0xF7F4E3},
};

}  // namespace

std::span<const ExampleTable> ExampleTables() {
    return kTables;
}

}  // namespace example
