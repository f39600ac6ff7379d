#ifndef ZMCONFIGCHECK_TEXT_H
#define ZMCONFIGCHECK_TEXT_H

#include <string>
#include <string_view>

#include "ZmConfigCheck.h"

// Writes findings as compilers do, so that editors and other programs find the place.
class FindingText {
 public:
  FindingText(std::string_view file, const ZmConfigCheck& check, bool color)
      : file_(file), check_(check), color_(color) {}
  std::string text(const ZmConfigCheck::Finding& finding) const;

 private:
  std::string head(const ZmConfigCheck::Place& place, std::string_view kind,
                   std::string_view paint) const;
  std::string excerpt(const ZmConfigCheck::Place& place) const;
  std::string painted(std::string_view text, std::string_view paint) const;

  std::string_view file_;
  const ZmConfigCheck& check_;
  bool color_;
};

#endif
