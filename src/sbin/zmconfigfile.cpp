// Reads macro configuration files and prints what a worker will see.

#include "ZmConfigFile.h"

#include <iostream>
#include <new>
#include <stdexcept>

#include "ZmFile.h"
#include "ZmParam.h"
#include "ZmText.h"
#include "zmconfigfile-help.h"

namespace {

void print(const ZmConfig& section) {
  ZmWriter& out = output();
  for (int i = 0; i < section._count(); ++i) {
    const ZmString& value = section._optionat(i);
    const std::string_view quote("\"", value.hasspace() ? 1 : 0);
    out.write(zm_view(section._labelat(i)));
    out.write(" = ");
    out.write(quote);
    out.write(zm_view(value));
    out.write(quote);
    out.write('\n');
  }
}

void print(const ZmConfigFile& file) {
  ZmStringList names;
  file.keys(names);
  names.sort();
  for (int i = 0; i < names.length(); ++i) {
    output().write('[');
    output().write(zm_view(*names.get(i)));
    output().write("]\n");
    print(*file.config(*names.get(i)));
  }
}

void print(const ZmString& path) {
  // Each file goes before the next one is read; the last one goes with the process, all at once.
  static ZmConfigFile* file;
  delete file;
  file = nullptr;
  file = new ZmConfigFile(path, 0);
  print(*file);
}

int run(int argc, char** argv) {
  ZmParam param;
  param.setVersion(display_version);
  param.setHelp(display_help);
  param.parse(argc, argv);
  for (int i = 0; i < param.length(); ++i) {
    const ZmString& path = param.arg(i);
    if (ZmFile::exists(path)) {
      print(path);
    } else {
      output().write("WARNING: file ");
      output().write(zm_view(path));
      output().write(" is unreadable or doesn't exist.\n");
    }
  }
  if (param.length() > 0) return 0;
  output().write("ERROR: you must specify at least one macro configuration file.\n");
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    finish(run(argc, argv));
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {  // a container asked for more than there can be
  }
  std::cerr << "ERROR: out of memory.\n";
  return 1;
}
