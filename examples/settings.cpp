#include <iostream>

#include "ZmConfigFile.h"

int main() {
  ZmConfigFile file;  // ZmConfigFile(path, 0) reads a file instead
  file.parse(R"(
[base]
threads = 4
root = /opt/farm
[node[1-2]] : base
log = "${base.root}/${_}.log"
node2 . threads = 8
)");

  ZmStringList names;
  file.keys(names);  // copies, in no particular order
  names.sort();
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig& section = *file.config(*names.get(i));  // lent by the file
    ZmStringList labels;
    section.labels(labels);  // in the order in which they were first set
    std::cout << section.name() << ":";
    for (int k = 0; k < labels.length(); ++k)
      std::cout << " " << *labels.get(k) << "=" << section.option(*labels.get(k));
    std::cout << "\n";
  }

  ZmConfig& node = *file.config("node1");
  std::cout << "[" << node.option("owner") << "] " << int{node.exists("owner")} << "\n";
  node.option("owner", "render team");  // sections can be changed, and written as text
  std::cout << node.convert();
}
