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
  // The references of an option in one scope.
  using Steps = std::vector<ZmConfigCheckTypes::Reference>;
  struct Watched {
    ZmConfigCheckTypes::History history;
    std::map<std::string, Steps> scopes;
    std::string last;  // scope that it was read in
  };
  using Names = std::map<Name, Watched>;

  // Borrows everything, and fills in what is watched.
  ZmConfigHistory(std::string_view source, Names& watched)
      : ZmConfigSurvey(source), watched_(watched) {}
  void run(bool lowercase) { ZmConfigSurvey::run(lowercase); }

  // The history of one option: reads the text until nothing is left to follow.
  static ZmConfigCheckTypes::History of(std::string_view source, bool lowercase, const Name& name);

 private:
  struct Open {
    Steps* steps;  // null: it is not watched
    std::size_t step;
  };
  void stored(const ZmConfig& section, int label, const ZmConfig* parent,
              std::size_t number) override;
  void use(const ZmConfigUse& use) override;
  void leave(std::string_view result) override;
  void expanded(const ZmConfig& section, const ZmString& value, std::string_view result) override;
  Watched* watched(std::string_view section, std::string_view label);
  std::string_view label(const ZmString& option) const;
  std::string joined(const ZmConfig& section, const ZmString& value) const;
  ZmConfigCheckTypes::Place place(std::size_t at, std::size_t length) const;

  Names& watched_;
  std::vector<Open> open_;  // the references whose options are being expanded, by their depth
};

#endif
