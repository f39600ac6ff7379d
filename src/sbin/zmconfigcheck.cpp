// Tells what is wrong in macro configuration files, where, and where each value comes from.
#include "ZmConfigCheck.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
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

struct Count {
  std::size_t errors = 0;
  std::size_t warnings = 0;
};

// The contents of a file, or of standard input for "-"; nothing when it can't be read.
std::optional<std::string> content(const std::string& path) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(nullptr, std::fclose);
  if (path != "-") opened.reset(std::fopen(path.c_str(), "rb"));
  std::FILE* file = path == "-" ? stdin : opened.get();
  if (!file) return std::nullopt;
  std::string text;
  struct stat status {};
  if (::fstat(::fileno(file), &status) == 0 && status.st_size > 0 && status.st_size < INT_MAX)
    text.reserve(static_cast<std::size_t>(status.st_size) + 1);
  char block[65536];
  for (std::size_t n; (n = std::fread(block, 1, sizeof block, file)) > 0;) {
    text.append(block, n);
    if (text.size() >= INT_MAX) return std::nullopt;
  }
  if (std::ferror(file)) return std::nullopt;
  return text;
}

bool wanted(const Options& options, const ZmConfigCheck::Finding& finding) {
  const std::string_view rule = finding.rule->name;
  return !options.ignored.contains(rule) && (options.only.empty() || options.only.contains(rule));
}

void print(const Options& options, const std::string& file, const ZmConfigCheck& check,
           const JsonReport::Findings& findings) {
  const FindingText text(file, check, options.color);
  const std::size_t all = findings.size();
  const std::size_t shown = options.limit > 0 ? std::min(options.limit, all) : all;
  for (std::size_t i = 0; i < shown; ++i) output().write(text.text(*findings[i]));
  if (shown < all)
    output().write(file + ": note: " + std::to_string(all - shown) +
                   " more findings, --limit 0 shows all\n");
}

std::string counted(std::size_t n, const std::string& one) {
  return std::to_string(n) + " " + one + (n == 1 ? "" : "s");
}

void summary(const Count& count, std::size_t files) {
  if (count.errors + count.warnings == 0) return;
  std::string text;
  if (count.errors > 0) text = counted(count.errors, "error");
  if (count.errors > 0 && count.warnings > 0) text += ", ";
  if (count.warnings > 0) text += counted(count.warnings, "warning");
  std::cerr << text + " in " + counted(files, "file") + "\n";
}

// One of the other forms, for the only file.
int view(const Options& options) {
  const std::string file = shown(options.files.front());
  std::optional<std::string> text = content(options.files.front());
  if (!text) fail(file + " can't be read");
  const ZmConfigCheck check(std::move(*text), options.lowercase);
  if (!check.consistent()) fail(file + kFault);
  if (options.view == View::kExplain) return explain(file, check, options.name);
  if (options.view == View::kDiff) return diff(file, check, options.name, options.other);
  output().write(check.graph(options.connected));
  return 0;
}

int run(int argc, char** argv) {
  const Options options = read_options(argc, argv);
  if (options.view >= View::kExplain) return view(options);
  Count count;
  JsonReport report(options.view == View::kSarif);
  bool failed = false;
  std::unique_ptr<ZmConfigCheck> check;  // the last one goes with the process, all at once
  for (const std::string& path : options.files) {
    const std::string name = shown(path);
    check.reset();
    std::optional<std::string> text = content(path);
    if (!text) {
      output().flush();
      std::cerr << "zmconfigcheck: " + name + " can't be read\n";
      failed = true;
      continue;
    }
    check = std::make_unique<ZmConfigCheck>(std::move(*text), options.lowercase);
    if (!check->consistent()) fail(name + kFault);
    JsonReport::Findings findings;
    for (const auto& finding : check->findings()) {
      if (!wanted(options, finding)) continue;
      findings.push_back(&finding);
      ++(finding.severity == ZmConfigCheck::Severity::kError ? count.errors : count.warnings);
    }
    if (options.view == View::kFindings) {
      print(options, name, *check, findings);
    } else {
      report.add(name, *check, findings);
    }
  }
  if (options.view != View::kFindings) output().write(report.text());
  output().flush();
  summary(count, options.files.size());
  if (failed) return kUsage;
  const bool wrong = count.errors > 0 || (options.strict && count.warnings > 0);
  static_cast<void>(check.release());
  return wrong ? 1 : 0;
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
