// What a rule of ZmConfigCheck is, and what it is asked about. Internal.
#ifndef ZM_CONFIG_CHECK_RULE_H
#define ZM_CONFIG_CHECK_RULE_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "ZmConfigCheckTypes.h"
#include "ZmConfigObserver.h"

class ZmConfigSurvey;

// A token, and what it is to the line that it stands in.
struct ZmConfigPart {
  enum Kind { kPlain, kBraced, kOpen, kContent, kClose };  // the last three: of a quoted text
  ZmConfigToken token;
  Kind kind;
};

// An option line with what a rule may want to look at.
struct ZmConfigStatement {
  const ZmConfigLine& line;
  std::span<const ZmConfigPart> value;  // its tokens, the quotes included
  std::size_t end;                      // of the value: the token behind it
  std::uint32_t number;                 // among the lines
  bool quoted() const { return value.front().kind == ZmConfigPart::kOpen; }
};

// A rule is asked for each thing of one kind. It tells the survey what it finds.
using ZmTokenRule = void (*)(ZmConfigSurvey&, const ZmConfigPart&);
using ZmHeadingRule = void (*)(ZmConfigSurvey&, const ZmConfigHeading&);
using ZmLineRule = void (*)(ZmConfigSurvey&, const ZmConfigStatement&);
using ZmStopRule = void (*)(ZmConfigSurvey&, const ZmConfigStop&);
using ZmEndRule = void (*)(ZmConfigSurvey&);  // when everything has been read and expanded
// Judges a reference, in each section anew; the survey makes one finding of it. For one at fault,
// and unless `text` is null, why.
enum class ZmVerdict { kSilent, kFault, kFine };  // fine here, but maybe not in another section
using ZmUseRule = ZmVerdict (*)(const ZmConfigSurvey&, const ZmConfigUse&, std::string* text);

struct ZmConfigCheckRule {
  ZmConfigCheckTypes::Rule rule;
  std::variant<ZmTokenRule, ZmHeadingRule, ZmLineRule, ZmStopRule, ZmUseRule, ZmEndRule> find;
};

// A text in quotes for a message: cut when it is long, and without bytes that are not printed.
std::string zm_shown(std::string_view text);

#endif
