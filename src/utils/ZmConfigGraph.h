// Draws who inherits from and refers to whom. Internal, under ZmConfigCheck.
#ifndef ZM_CONFIG_GRAPH_H
#define ZM_CONFIG_GRAPH_H

#include <compare>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "ZmConfigSurvey.h"

class ZmConfigGraph : private ZmConfigSurvey {
 public:
  explicit ZmConfigGraph(std::string_view source) : ZmConfigSurvey(source) {}  // borrowed
  std::string run(bool lowercase, bool connected);

 private:
  struct Arrow {
    std::string from;
    std::string to;
    bool reference;
    bool wrong;
    auto operator<=>(const Arrow&) const = default;
  };
  void parent(const ZmConfigToken& token, const ZmConfig* found) override;
  void use(const ZmConfigUse& use) override;
  std::string node(const ZmConfig& section) const;
  std::map<std::string, std::size_t> nodes() const;

  std::set<Arrow> arrows_;
};

#endif
