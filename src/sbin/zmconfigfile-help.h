#ifndef ZMCONFIGFILE_HELP_H
#define ZMCONFIGFILE_HELP_H

#include "ZmWriter.h"

// Where everything goes that the tool says on standard output.
ZmWriter& output();

// Ends the process with this status, or with 1 and a line on standard error when standard output
// could not be written.
[[noreturn]] void finish(int status);

// Each prints its text and ends the process.
void display_help();
void display_version();

#endif
