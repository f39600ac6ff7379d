#ifndef ZMCONFIGCHECK_JSON_H
#define ZMCONFIGCHECK_JSON_H

#include <memory>
#include <string>
#include <vector>

#include "ZmConfigCheck.h"

// Collects what is told of each file for programs, and writes it as one document.
class JsonReport {
 public:
  using Findings = std::vector<const ZmConfigCheck::Finding*>;

  // With `sarif` in the Static Analysis Results Interchange Format 2.1.0, which has findings only;
  // else with all sections and their options.
  explicit JsonReport(bool sarif);
  ~JsonReport();
  JsonReport(const JsonReport&) = delete;
  JsonReport& operator=(const JsonReport&) = delete;

  void add(const std::string& file, const ZmConfigCheck& check, const Findings& findings);
  // `errors` and `warnings` are all there are, those that were not added included.
  std::string text(std::size_t errors, std::size_t warnings) const;

 private:
  struct Content;
  std::unique_ptr<Content> content_;
};

#endif
