// What tavolo-cli says of itself, all of it made of the table of commands. UTF-8.
#pragma once

#include "cli/command_table.h"

#include <string>

namespace cli {

std::string VersionText();
std::string GeneralHelp();
std::string CommandHelp(const Command& command);

// The manual page, for man(7)'s macros.
std::string ManPage();
std::string BashCompletion();
std::string ZshCompletion();
std::string FishCompletion();
// The examples of the manual page, one a line.
std::string ExampleLines();

}  // namespace cli
