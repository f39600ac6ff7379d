// Opens files and reads whole ones, for every class that does. Internal.
#ifndef ZM_FILE_READER_H
#define ZM_FILE_READER_H

#include <cstdio>
#include <memory>

#include "ZmString.h"

struct ZmCloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
// Null when it could not be opened; a failure to write the last bytes goes unnoticed.
using ZmOpenFile = std::unique_ptr<std::FILE, ZmCloseFile>;

// Whether the path names an existing regular file; symbolic links are followed.
bool zm_regular_file(const ZmString& path);

// Puts the whole contents of a regular file into `text`, byte for byte. False when it is none or
// can't be opened; a read error ends the contents there. `text` is left alone then, and also when
// std::bad_alloc is thrown, as for a file of more bytes than a text can have.
bool zm_read_file(const ZmString& path, ZmString& text);

#endif
