// Reads macro configuration files and prints what a worker will see.

#include "ZmConfigFile.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmFile.h"
#include "ZmParam.h"
#include "ZmText.h"
#include "zmconfigfile-help.h"

namespace {

// Quotes show where a value with blanks ends. Nothing in it is escaped: the output is to be looked
// at, not to be read back.
void print(const ZmConfig& section) {
  ZmWriter& out = output();
  for (int i = 0; i < section.length(); ++i) {
    const ZmString& value = section.value(i);
    const std::string_view quote("\"", value.hasspace() ? 1 : 0);
    out.write(zm_view(section.label(i)));
    out.write(" = ");
    out.write(quote);
    out.write(zm_view(value));
    out.write(quote);
    out.write('\n');
  }
}

// Names are unique, so that the pointers beside them never decide about the order.
void print(const ZmConfigFile& file) {
  const ZmConfigHash& held = file.sections();
  std::vector<std::pair<std::string_view, const ZmConfig*>> sections;
  sections.reserve(static_cast<std::size_t>(held.length()));
  for (int i = 0; i < held.length(); ++i)
    sections.emplace_back(zm_view(held.key(i)), held.value(i));
  std::sort(sections.begin(), sections.end());
  for (const auto& [name, section] : sections) {
    output().write('[');
    output().write(name);
    output().write("]\n");
    print(*section);
  }
}

[[noreturn]] void run(int argc, char** argv) {
  ZmParam param;
  param.setVersion(display_version);
  param.setHelp(display_help);
  // Its result says nothing more: after an error there are no arguments, which is told below.
  param.parse(argc, argv);
  std::unique_ptr<ZmConfigFile> file;
  for (int i = 0; i < param.length(); ++i) {
    const ZmString& path = param.arg(i);
    // Asked first, since ZmConfigFile takes a missing file for an empty one. The warning is a part
    // of the listing and does not change the status.
    if (ZmFile::exists(path)) {
      file.reset();  // before the next one is read
      file = std::make_unique<ZmConfigFile>(path, 0);
      print(*file);
    } else {
      output().write("WARNING: file ");
      output().write(zm_view(path));
      output().write(" is unreadable or doesn't exist.\n");
    }
  }
  if (param.length() > 0) finish(0);  // the last file goes with the process, all at once
  output().write("ERROR: you must specify at least one macro configuration file.\n");
  finish(1);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(argc, argv);
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {  // a container asked for more than there can be
  }
  std::cerr << "ERROR: out of memory.\n";
  return 1;
}
