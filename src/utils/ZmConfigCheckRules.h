// The rules of ZmConfigCheck: one table, one small function each. Internal.
#ifndef ZM_CONFIG_CHECK_RULES_H
#define ZM_CONFIG_CHECK_RULES_H

#include <span>

#include "ZmConfigCheckRule.h"

std::span<const ZmConfigCheckRule> zm_config_check_rules();

#endif
