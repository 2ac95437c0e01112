// The ways to print what a command line offers.
#ifndef ORV_PACKAGING_REFERENCE_PRINT_H
#define ORV_PACKAGING_REFERENCE_PRINT_H

#include <string>

#include "command.h"

namespace reference {

// A manual page. A paragraph of the program's footer that begins with "Label:" becomes a section.
std::string man_page(const command& program, const std::string& section,
                     const std::string& version);

// The tables that the completion scripts read, in words that bash and zsh share: for each place in
// a command line, what may stand there, as lines "word:description"; for each option that takes a
// value, that value's kind: any, file, directory, or "one of" and the choices.
std::string completion_tables(const command& program);

}  // namespace reference

#endif
