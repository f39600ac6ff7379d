#ifndef ZMCONFIGCHECK_JSON_H
#define ZMCONFIGCHECK_JSON_H

#include <cstddef>
#include <string>
#include <vector>

#include "ZmConfigCheck.h"

// Writes what is told of each file for programs, as one document: piece by piece, since all of it
// may take many times the memory of the files.
class JsonReport {
 public:
  using Findings = std::vector<const ZmConfigCheck::Finding*>;

  // With `sarif` in the Static Analysis Results Interchange Format 2.1.0, which has findings only;
  // else with all sections and their options.
  explicit JsonReport(bool sarif);
  void tell(const std::string& file, const ZmConfigCheck& check, const Findings& findings);
  // `errors` and `warnings` are all there are, those that were not added included.
  void complete(std::size_t errors, std::size_t warnings);

 private:
  void piece(const std::string& text);

  bool sarif_;
  bool first_ = true;  // of an array
};

#endif
