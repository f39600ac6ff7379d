#include <iostream>

#include "ZmConfigFile.h"
#include "ZmRange.h"

int main(int argc, char** argv) {
  ZmConfigFile file(argc > 1 ? argv[1] : "examples/farm.conf", 0);
  ZmStringList names;  // owns the copies that keys() gives
  file.keys(names);
  names.sort();
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig* section = file.config(*names.get(i));  // lent by the file
    std::cout << *names.get(i) << ": " << section->option("threads") << "\n";
  }

  ZmStringList hosts;
  ZmRange::patternsplit(0, "node[001-003]", hosts);
  std::cout << hosts.join(" ") << "\n";
}
