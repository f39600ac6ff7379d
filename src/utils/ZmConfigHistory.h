// Watches how options get their values. Internal, under ZmConfigCheck.
#ifndef ZM_CONFIG_HISTORY_H
#define ZM_CONFIG_HISTORY_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmConfigSurvey.h"

class ZmConfigHistory : private ZmConfigSurvey {
 public:
  using Name = std::pair<std::string, std::string>;  // a section and an option
  struct Watched {
    ZmConfigCheck::History history;
    std::vector<Name> later;  // for each reference: what has to be watched to follow it, or nothing
  };

  // Borrows everything, and fills in what is watched.
  ZmConfigHistory(std::string_view source, std::map<Name, Watched>& watched)
      : ZmConfigSurvey(source), watched_(watched) {}
  void run(bool lowercase) { ZmConfigSurvey::run(lowercase); }

  // The history of one option: reads the text until nothing is left to follow.
  static ZmConfigCheck::History of(std::string_view source, bool lowercase, const Name& name);

 private:
  void stored(const ZmConfig& section, const ZmString& value, const ZmConfig* parent,
              std::size_t number) override;
  void expand(const ZmConfig& section, const ZmString& value) override;
  void expanded(const ZmConfig& section, const ZmString& value, std::string_view result) override;
  Watched* watched(const ZmConfig& section, const ZmString& value);
  ZmConfigCheck::Place place(std::size_t at, std::size_t length) const;
  bool gone(const ZmString& option) const;

  std::map<Name, Watched>& watched_;
};

#endif
