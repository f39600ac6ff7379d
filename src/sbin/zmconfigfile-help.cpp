#include "zmconfigfile-help.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "ZmVersion.h"

namespace {

// The tab and the blank at the ends of lines belong to it: tests/help.txt holds it to the byte.
constexpr std::string_view kHelp =
    "ZM(1)\n"
    "\t\t\tTorvel - Command Line API\n"
    "\n"
    "NAME\n"
    "\tzmconfigfile - parses config file and displays results\n"
    "\n"
    "SYNOPSIS\n"
    "\tzmconfigfile <file>\n"
    "\n"
    "DESCRIPTION\n"
    "\tzmconfigfile is used to double check settings.\n"
    "\n"
    "\tExample:\n"
    "\t\tzmconfigfile /etc/zmwrk.conf\n"
    "\n"
    "OPTIONS\n"
    "\tDISPLAY\n"
    "\t\tSwitch\t\t\tDescription\n"
    "\t\t--help\t\t\thelp for zmconfigfile\n"
    "\t\t--version\t\tversion of Torvel\n"
    "\t\n"
    "\n"
    "SEE ALSO\n"
    "\tTorvel \n"
    "\n"
    "REPORT BUGS\n"
    "\tbugs@torvel.example\n"
    "\n"
    "COPYRIGHT\n"
    "\tCopyright (c) 2026 the Torvel developers.\n"
    "\tFree software under the MIT licence; there is no warranty.\n"
    "\n"
    "VERSION:\n";

}  // namespace

// Standard output is taken over as well: std::cerr is tied to it, so that a warning of the library
// comes behind what was printed before.
ZmWriter& output() {
  static ZmWriter* const writer = [] {
    auto* made = new ZmWriter(STDOUT_FILENO);  // never destroyed: std::cout uses it to the end
    std::cout.rdbuf(made);
    return made;
  }();
  return *writer;
}

void finish(int status) {
  if (!output().flush()) {
    std::cerr << "ERROR: cannot write to standard output.\n";
    std::exit(1);
  }
  std::exit(status);
}

// Ends the process by itself, as display_version() does: ZmParam would end it with 0 even when
// nothing could be written.
void display_help() {
  ZmWriter& out = output();
  out.write("Torvel - version: ");
  out.write(kZmVersion);
  out.write("\n");
  out.write(kHelp);
  out.write("\t");
  out.write(kZmVersion);
  out.write("\n\nBUILD:\n\t");
  out.write(kZmBuild);
  out.write("\n\n");
  finish(0);
}

void display_version() {
  ZmWriter& out = output();
  out.write("Torvel - version: ");
  out.write(kZmVersion);
  out.write("  build: ");
  out.write(kZmBuild);
  out.write("\n");
  finish(0);
}
