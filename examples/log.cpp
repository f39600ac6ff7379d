#include <filesystem>
#include <iostream>

#include "ZmDebug.h"
#include "ZmFile.h"

int main() {
  ZmDebug& log = zm_debug_obj();                       // the one log of the process
  log << "hosts: " << 3 << ", load " << 0.5F << "\n";  // to standard output, until it has a file

  const ZmString directory(std::filesystem::temp_directory_path().c_str());
  const ZmString path = directory + "/" + ZmFile::uniquefile();
  zm_debug_filename(path, 0);  // to this file; with 1 to one a week: path.0 to path.52
  log.mark() << "started\n";   // "[Mar 3, 2026 7:04:09] host[pid]: started"

  constexpr int kNetwork = 2;  // the bits of the verbosity are the program's own
  zm_debug_verbosity(zm_debug_verb() & ~kNetwork);
  if (zm_debug_verb() & kNetwork) log.mark() << "not written\n";
  log.unlock();  // closes the file; the next message opens it again

  const ZmString written = ZmFile::load(path);
  std::cout << int{written.get(0) == '['} << int{written.find("]: started\n")}
            << int{written.find("not written")} << "\n";
  ZmFile::remove(path);
}
