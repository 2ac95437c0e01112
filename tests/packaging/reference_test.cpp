#include <gtest/gtest.h>

#include <string>

#include "command.h"
#include "print.h"

namespace {

// A command line with one of each: nested commands, values of every kind, text that is special in
// roff or in a shell.
struct sample {
  CLI::App app{"Try a lens.", "lens"};
  double speed = 1;
  std::string text;

  sample() {
    app.fallthrough();
    app.require_subcommand(1);
    app.add_option("-s,--speed", speed, "Steps a second")
        ->check(CLI::Range(1, 9))
        ->capture_default_str();
    app.add_option("--secret", text, "For nobody")->group("");
    CLI::App* move = app.add_subcommand("move", "Move a part")->require_subcommand(1);
    CLI::App* ring = move->add_subcommand("ring", "Turn the user's ring");
    ring->add_option("WAY", text, "Which way")->required()->check(CLI::IsMember({"left", "right"}));
    ring->add_option("--log", text, ".lens\\log - or another")->type_name("FILE");
    ring->footer("Slow.\n\n'Tis all.");
    app.footer("Exit status: 0 done,\n1 not.\n\nExamples:\n  lens move ring left");
  }
};

TEST(ManualPage, HasAllThatTheParserKnows) {
  const sample lens;
  EXPECT_EQ(reference::man_page(reference::read(lens.app), "1", "lens 2.0"),
            R"(.TH LENS 1 "" "lens 2.0"
.SH NAME
lens \- try a lens
.SH SYNOPSIS
\fBlens\fR [OPTIONS] SUBCOMMAND
.SH DESCRIPTION
Try a lens.
.SH OPTIONS
.TP
\fB\-h\fR, \fB\-\-help\fR
Print this help message and exit
.TP
\fB\-s\fR, \fB\-\-speed\fR \fIFLOAT\fR
Steps a second
.br
Value: INT in [1 \- 9].
.br
Default: 1.
.SH SUBCOMMANDS
.SS lens move [OPTIONS] SUBCOMMAND
Move a part
.TP
\fB\-h\fR, \fB\-\-help\fR
Print this help message and exit
.SS lens move ring [OPTIONS] WAY
Turn the user's ring
.TP
\fB\-h\fR, \fB\-\-help\fR
Print this help message and exit
.TP
\fIWAY\fR
Which way
.br
One of: left, right.
.TP
\fB\-\-log\fR \fIFILE\fR
\&.lens\elog \- or another
.PP
Slow.
.PP
\&'Tis all.
.SH EXIT STATUS
0 done,
.br
1 not.
.SH EXAMPLES
  lens move ring left
)");
}

TEST(CompletionTables, OfferAtEachPlaceWhatMayStandThere) {
  const sample lens;
  EXPECT_EQ(reference::completion_tables(reference::read(lens.app)), R"(_lens_words=(
  'lens' '-h:Print this help message and exit
--help:Print this help message and exit
-s:Steps a second
--speed:Steps a second
move:Move a part
'
  'lens move' '-h:Print this help message and exit
--help:Print this help message and exit
-s:Steps a second
--speed:Steps a second
ring:Turn the user'\''s ring
'
  'lens move ring' '-h:Print this help message and exit
--help:Print this help message and exit
left:Which way
right:Which way
--log:.lens\log - or another
-s:Steps a second
--speed:Steps a second
'
)
_lens_values=(
  'lens -s' 'any'
  'lens --speed' 'any'
  'lens move -s' 'any'
  'lens move --speed' 'any'
  'lens move ring --log' 'file'
  'lens move ring -s' 'any'
  'lens move ring --speed' 'any'
)
)");
}

}  // namespace
