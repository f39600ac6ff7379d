// Tells what is wrong in macro configuration files, where, and where each value comes from.
#include "ZmConfigCheck.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>

#include "zmconfigcheck-json.h"
#include "zmconfigcheck-options.h"
#include "zmconfigcheck-text.h"
#include "zmconfigcheck-views.h"

namespace {

const std::string kFault = ": what is told is not what is read: this is a fault of zmconfigcheck";

std::string shown(const std::string& path) { return path == "-" ? "<stdin>" : path; }

// Null when it can't be read.
std::unique_ptr<ZmConfigCheck> checked(const Options& options, const std::string& path) {
  const unsigned char lowercase = options.lowercase;
  std::unique_ptr<ZmConfigCheck> check = path == "-" ? ZmConfigCheck::fromfile(stdin, lowercase)
                                                     : ZmConfigCheck::frompath(path, lowercase);
  if (check && !check->consistent()) fail(shown(path) + kFault);
  return check;
}

bool wanted(const Options& options, const ZmConfigCheck::Finding& finding) {
  const std::string_view rule = finding.rule->name;
  return !options.ignored.contains(rule) && (options.only.empty() || options.only.contains(rule));
}

std::string counted(std::size_t n, const std::string& one) {
  return std::to_string(n) + " " + one + (n == 1 ? "" : "s");
}

// Tells what is wrong in one file after the other.
class Run {
 public:
  explicit Run(const Options& options) : options_(options) {
    if (options.view != View::kFindings) report_.emplace(options.view == View::kSarif);
  }

  int run() {
    for (const std::string& path : options_.files) file(path);
    if (report_) report_->complete(errors_, warnings_);
    // The summary goes to standard error, and has to stand last where both are one terminal.
    output().flush();
    summary();
    static_cast<void>(check_.release());
    // A file that can't be read outweighs what was found: the others must not pass for all.
    if (files_ < options_.files.size()) return kUsage;
    return errors_ > 0 || (options_.strict && warnings_ > 0) ? 1 : 0;
  }

 private:
  void file(const std::string& path) {
    // Before the next one is read: only one file at a time is in memory.
    check_.reset();
    check_ = checked(options_, path);
    if (!check_) {
      output().flush();
      std::cerr << "zmconfigcheck: " + shown(path) + " can't be read\n";
      return;
    }
    ++files_;
    JsonReport::Findings findings;
    std::size_t more = 0;
    for (const auto& finding : check_->findings()) {
      if (!wanted(options_, finding)) continue;
      // What is not shown counts, too: the status does not depend on --limit.
      ++(finding.severity == ZmConfigCheck::Severity::kError ? errors_ : warnings_);
      if (options_.limit == 0 || findings.size() < options_.limit) {
        findings.push_back(&finding);
      } else {
        ++more;
      }
    }
    if (report_) {
      report_->tell(shown(path), *check_, findings);
    } else {
      print(shown(path), findings, more);
    }
  }

  void print(const std::string& file, const JsonReport::Findings& findings, std::size_t more) {
    const FindingText text(file, *check_, options_.color);
    for (const auto* finding : findings) output().write(text.text(*finding));
    if (more > 0)
      output().write(file + ": note: " + counted(more, "more finding") + ", --limit 0 shows all\n");
  }

  void summary() const {
    if (errors_ + warnings_ == 0) return;
    std::string text;
    if (errors_ > 0) text = counted(errors_, "error");
    if (errors_ > 0 && warnings_ > 0) text += ", ";
    if (warnings_ > 0) text += counted(warnings_, "warning");
    std::cerr << text + " in " + counted(files_, "file") + "\n";
  }

  const Options& options_;
  std::optional<JsonReport> report_;      // for programs
  std::unique_ptr<ZmConfigCheck> check_;  // the last one goes with the process, all at once
  std::size_t files_ = 0;                 // that could be read
  std::size_t errors_ = 0;
  std::size_t warnings_ = 0;
};

// One of the other forms, for the only file.
int view(const Options& options) {
  const std::string file = shown(options.files.front());
  const auto check = checked(options, options.files.front());
  if (!check) fail(file + " can't be read");
  if (options.view == View::kExplain) return explain(file, *check, options.name);
  if (options.view == View::kDiff) return diff(file, *check, options.name, options.other);
  output().write(check->graph(options.connected));
  return 0;
}

int run(int argc, char** argv) {
  const Options options = read_options(argc, argv);
  return options.view >= View::kExplain ? view(options) : Run(options).run();
}

}  // namespace

int main(int argc, char** argv) {
  // Destructors of the JSON library take memory. What they throw can't be caught below.
  std::set_terminate([] { fail("out of memory"); });
  try {
    finish(run(argc, argv));
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {  // a container asked for more than there can be
  }
  fail("out of memory");
}
