#include <filesystem>
#include <iostream>

#include "ZmFile.h"

int main() {
  const ZmString directory(std::filesystem::temp_directory_path().c_str());
  const ZmString path = directory + "/" + ZmFile::uniquefile();  // a new name; no file yet
  std::cout << int{ZmFile::exists(path)} << " [" << ZmFile::load(path) << "]\n";

  ZmFile::save(path, "frame 1\n");
  ZmFile::append(path, "frame 2\n");
  std::cout << ZmFile::size(path) << " bytes\n" << ZmFile::load(path);

  ZmString news;
  const int end = ZmFile::loadpos(path, 8, 5, news);  // from byte 8, 5 bytes
  std::cout << news << ", up to " << end << "\n";

  ZmFile file(path);  // contents, name and path in an object, which can be packed
  std::cout << int{file.name() == ZmFile::filename(path)} << " " << file.data().length() << "\n";

  ZmFile::remove(path);
  file.read(path);  // can't be read: the object stays as it is
  std::cout << file.data().length() << " " << ZmFile::dirbase("/var/log/farm.log") << "\n";
}
