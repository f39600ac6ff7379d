#ifndef ZMCONFIGCHECK_VIEWS_H
#define ZMCONFIGCHECK_VIEWS_H

#include <string>

#include "ZmConfigCheck.h"

// Each prints what it is asked for and gives the status of the program.

// Where the values of a section, or of SECTION.OPTION, come from.
int explain(const std::string& file, const ZmConfigCheck& check, const std::string& name);
// How two sections differ.
int diff(const std::string& file, const ZmConfigCheck& check, const std::string& first,
         const std::string& second);

#endif
