#include <iostream>

#include "ZmRange.h"

namespace {

void print(const char* what, const ZmRange& range) {
  std::cout << what << ":";
  for (int i = 0; i < range.length(); ++i) std::cout << " " << range.get(i);
  std::cout << "\n";
}

}  // namespace

int main() {
  ZmRange frames("1-9x2, 4, 20-18");
  print("as written", frames);
  std::cout << "compact: " << frames.value() << "\n";  // sorts, and keeps one of each
  print("afterwards", frames);

  ZmRange shot("1-10");
  ZmStringList jobs;
  shot.partition(3, jobs);  // about equal shares for three workers
  std::cout << "jobs: " << jobs.join(" ") << "\n";
  shot.binary();
  print("preview first", shot);

  ZmStringList hosts;
  ZmRange::patternsplit(0, "node[08-10],gpu[1,3].farm", hosts);
  std::cout << "hosts: " << hosts.join(" ") << "\n";
}
