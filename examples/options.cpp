#include <iostream>

#include "ZmParam.h"

int main(int argc, char** argv) {
  ZmParam param;  // knows --help and --version already
  param.defineFlag("verbose");
  param.defineIntegerOption("threads");
  param.defineDiffOption("priority");
  param.setHelp([] { std::cout << "options [--threads N] [--priority [+|-]N] [FILE...]\n"; });
  if (!param.parse(argc, argv)) {
    std::cerr << param.error();
    return 1;
  }

  int threads = 4;
  param.get("threads", threads);  // 0, and 4 stays, when the option was not given
  unsigned char verbose = 0;
  param.get("verbose", verbose);
  std::cout << threads << " threads, verbose " << int{verbose} << "\n";

  int change = 0;
  char sign = '=';
  if (param.get("priority", change, sign))
    std::cout << "priority " << sign << " " << change << "\n";
  for (int i = 0; i < param.length(); ++i) std::cout << "file " << param.arg(i) << "\n";
}
