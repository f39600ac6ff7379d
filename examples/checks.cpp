#include <iostream>

#include "ZmConfigCheck.h"

int main() {
  const ZmConfigCheck check(R"([base]
root = /opt/farm
[node[1-2]] : base
label = fast box
log = "${base.root}/${_}.log"
)");  // ZmConfigCheck::frompath(path) reads a file instead

  for (const auto& finding : check.findings())
    std::cout << finding.place.line << ":" << finding.place.column << " " << finding.text << " ["
              << finding.rule->name << "]\n";

  const ZmConfigCheck::History log = check.history("node2", "log");
  std::cout << "log = " << log.value << "\n";
  for (const auto& set : log.assignments)
    std::cout << "  line " << set.label.line << ", under [" << set.header << "]: " << set.raw
              << "\n";
  for (const auto& reference : log.references)
    std::cout << "  " << reference.section << "." << reference.option << " = " << reference.value
              << "\n";
}
