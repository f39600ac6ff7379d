#ifndef ZMCONFIGCHECK_OPTIONS_H
#define ZMCONFIGCHECK_OPTIONS_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ZmWriter.h"

constexpr int kUsage = 2;  // and unreadable files, and everything else that keeps from checking

enum class View { kFindings, kJson, kSarif, kExplain, kDiff, kGraph };

struct Options {
  View view = View::kFindings;
  std::string name;        // to explain, or the first of two to compare
  std::string other;       // the second one
  bool connected = false;  // the graph without what has no arrows
  std::set<std::string_view> ignored;
  std::set<std::string_view> only;  // empty: all
  bool strict = false;
  bool lowercase = false;
  bool color = false;
  std::size_t limit = 0;  // findings of a file; 0: all
  std::vector<std::string> files;
};

// What the command line asks for. Ends the process when it is wrong, or asks for a text about the
// program.
Options read_options(int argc, char** argv);

// Where everything goes that the program says on standard output.
ZmWriter& output();

// Ends the process with this status, or with 2 and a line on standard error when standard output
// could not be written.
[[noreturn]] void finish(int status);

// Ends the process with 2 and a line on standard error.
[[noreturn]] void fail(const std::string& message);

#endif
