// Reads macro configuration files and prints what a worker will see.

#include "ZmConfigFile.h"

#include <iostream>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "ZmFile.h"
#include "ZmParam.h"
#include "ZmStringList.h"
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
  std::vector<std::pair<const ZmString*, const ZmConfig*>> sections;
  file._sections()._table().each([&sections](const ZmString* name, const void* section) {
    sections.emplace_back(name, static_cast<const ZmConfig*>(section));
  });
  zm_sort_texts(sections.data(), static_cast<int>(sections.size()),
                [](const auto& section) { return section.first; });
  for (const auto& [name, section] : sections) {
    output().write('[');
    output().write(zm_view(*name));
    output().write("]\n");
    print(*section);
  }
}

[[noreturn]] void run(int argc, char** argv) {
  ZmParam param;
  param.setVersion(display_version);
  param.setHelp(display_help);
  param.parse(argc, argv);
  std::unique_ptr<ZmConfigFile> file;
  for (int i = 0; i < param.length(); ++i) {
    const ZmString& path = param.arg(i);
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
