// Reads whole files, for every class that loads one. Internal.
#ifndef ZM_FILE_READER_H
#define ZM_FILE_READER_H

#include "ZmString.h"

// Whether the path names an existing regular file; symbolic links are followed.
bool zm_regular_file(const ZmString& path);

// Puts the whole contents of a regular file into `text`, byte for byte. False, with `text` left
// alone, when it is none or can't be opened; a read error ends the contents there.
bool zm_read_file(const ZmString& path, ZmString& text);

#endif
