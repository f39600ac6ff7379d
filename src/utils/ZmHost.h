// The machine that the program runs on. Internal.
#ifndef ZM_HOST_H
#define ZM_HOST_H

#include <unistd.h>

#include "ZmString.h"

// Its name; "" when the system doesn't tell it.
inline ZmString zm_hostname() {
  char name[1024] = {};
  ::gethostname(name, sizeof name - 1);
  return name;
}

#endif
