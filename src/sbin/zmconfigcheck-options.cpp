#include "zmconfigcheck-options.h"

#include <getopt.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "ZmConfigCheck.h"
#include "ZmVersion.h"

namespace {

constexpr std::string_view kHelp =
    "Usage: zmconfigcheck [OPTION...] FILE...\n"
    "       zmconfigcheck --explain NAME [OPTION...] FILE\n"
    "       zmconfigcheck --diff A B [OPTION...] FILE\n"
    "       zmconfigcheck --graph[=connected] [OPTION...] FILE\n"
    "Tells what is wrong in macro configuration files, where, and where each value comes from.\n"
    "\n"
    "  --explain NAME        where the values of a section, or of SECTION.OPTION, come from\n"
    "  --diff A B            how two sections differ; then the status is 1\n"
    "  --graph               who inherits from and refers to whom, for Graphviz\n"
    "  --json                findings and sections for programs\n"
    "  --sarif               findings for code scanning services\n"
    "  --ignore RULE[,RULE]  silences rules\n"
    "  --only RULE[,RULE]    silences all other rules\n"
    "  --strict              warnings make the status 1, too\n"
    "  --lowercase           names of sections in headers and of parents are lower-cased\n"
    "  --limit N             shows N findings a file, 0 for all (default: 1000, for programs all)\n"
    "  --color WHEN          auto, always or never\n"
    "  --rules               lists every rule with an example and its remedy\n"
    "  -h, --help            prints this text\n"
    "  --version             prints the version of Torvel\n"
    "\n"
    "Options and files may stand in any order; \"--\" ends options; \"-\" is standard input.\n"
    "Status: 0 nothing wrong, 1 errors were found, 2 a file or section could not be read.\n";

// Above all bytes: getopt_long() gives these and "h", ":" and "?" in one variable.
enum Code {
  kExplain = 256,
  kDiff,
  kGraph,
  kJson,
  kSarif,
  kIgnore,
  kOnly,
  kStrict,
  kLowercase,
  kLimit,
  kColor,
  kRules,
  kVersion
};

const option kOptions[] = {{"explain", required_argument, nullptr, kExplain},
                           {"diff", required_argument, nullptr, kDiff},
                           {"graph", optional_argument, nullptr, kGraph},
                           {"json", no_argument, nullptr, kJson},
                           {"sarif", no_argument, nullptr, kSarif},
                           {"ignore", required_argument, nullptr, kIgnore},
                           {"only", required_argument, nullptr, kOnly},
                           {"strict", no_argument, nullptr, kStrict},
                           {"lowercase", no_argument, nullptr, kLowercase},
                           {"limit", required_argument, nullptr, kLimit},
                           {"color", required_argument, nullptr, kColor},
                           {"rules", no_argument, nullptr, kRules},
                           {"help", no_argument, nullptr, 'h'},
                           {"version", no_argument, nullptr, kVersion},
                           {nullptr, 0, nullptr, 0}};

[[noreturn]] void usage(const std::string& message) {
  fail(message + " (see zmconfigcheck --help)");
}

[[noreturn]] void print(std::string_view text) {
  output().write(text);
  finish(0);
}

// Every line of a text with blanks before it.
std::string indented(std::string_view text) {
  std::string all;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at) + 1;
    all += "        ";
    all += text.substr(at, end - at);
    at = end;
  }
  return all;
}

[[noreturn]] void print_rules() {
  for (const auto* rule : ZmConfigCheck::rules()) {
    const bool error = rule->severity == ZmConfigCheck::Severity::kError;
    output().write(std::string(rule->name) + " (" + (error ? "error" : "warning") + ")\n    " +
                   std::string(rule->sentence) + "\n" + indented(rule->example) + "    " +
                   std::string(rule->remedy) + "\n");
  }
  finish(0);
}

// An empty list and a comma too many hold an empty name, which is refused as any wrong one: an
// --only without rules would silence nothing.
void add_rules(std::set<std::string_view>& rules, std::string_view list) {
  for (std::size_t at = 0; at <= list.size();) {
    const std::size_t end = std::min(list.find(',', at), list.size());
    const std::string_view name = list.substr(at, end - at);
    const auto* rule = ZmConfigCheck::rule(name);
    if (!rule) usage("there is no rule \"" + std::string(name) + "\"");
    rules.insert(rule->name);
    at = end + 1;
  }
}

// std::from_chars takes no sign for an unsigned number; std::strtoul would make a huge one of "-1".
std::size_t number(std::string_view text) {
  std::size_t n = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (error != std::errc() || end != text.data() + text.size())
    usage("\"" + std::string(text) + "\" is no number of findings");
  return n;
}

void set_view(Options& options, View view, std::string_view value) {
  if (options.view != View::kFindings)
    usage("only one of --explain, --diff, --graph, --json and --sarif can be given");
  options.view = view;
  options.name = value;
  if (view == View::kGraph && !value.empty() && value != "connected")
    usage("the value of --graph can only be \"connected\"");
  options.connected = value == "connected";
}

// The second argument of --diff. getopt_long() knows options with one argument only, and would take
// this one for a file.
std::string another(int argc, char** argv) {
  if (::optind >= argc) usage("option --diff needs two sections");
  return argv[::optind++];
}

// NO_COLOR counts as no-color.org has it: unless it is empty, and only where --color is not given.
bool color(std::string_view when) {
  const char* no_color = std::getenv("NO_COLOR");
  if (when == "auto") return ::isatty(STDOUT_FILENO) && !(no_color && *no_color);
  if (when != "always" && when != "never") usage("\"" + std::string(when) + "\" is no WHEN");
  return when == "always";
}

}  // namespace

Options read_options(int argc, char** argv) {
  constexpr std::size_t kScreens = 1000;  // findings that somebody may want to read
  Options options;
  std::optional<std::size_t> limit;
  options.color = color("auto");
  // Messages are usage()'s. The ":" in front tells an option without its value from an unknown one.
  ::opterr = 0;
  for (int code; (code = ::getopt_long(argc, argv, ":h", kOptions, nullptr)) != -1;) {
    const std::string_view value = ::optarg ? ::optarg : "";
    const std::string given = argv[::optind - 1];
    if (code == kExplain) set_view(options, View::kExplain, value);
    if (code == kGraph) set_view(options, View::kGraph, value);
    if (code == kJson) set_view(options, View::kJson, value);
    if (code == kSarif) set_view(options, View::kSarif, value);
    if (code == kDiff) {
      set_view(options, View::kDiff, value);
      options.other = another(argc, argv);
    }
    if (code == kIgnore) add_rules(options.ignored, value);
    if (code == kOnly) add_rules(options.only, value);
    if (code == kStrict) options.strict = true;
    if (code == kLowercase) options.lowercase = true;
    if (code == kLimit) limit = number(value);
    if (code == kColor) options.color = color(value);
    if (code == kRules) print_rules();
    if (code == 'h') print(kHelp);
    if (code == kVersion)
      print(std::string("Torvel - version: ") + kZmVersion + "  build: " + kZmBuild + "\n");
    if (code == ':') usage("option " + given + " needs a value");
    // Of several letters in one argument only this one is wrong; of a long option it is none.
    const std::string letter{'-', static_cast<char>(::optopt)};
    if (code == '?')
      usage("there is no option " + (::optopt > 0 && ::optopt < 128 ? letter : given));
  }
  // Settled only here, since --limit may stand before the option that chooses the view.
  options.limit = limit.value_or(options.view == View::kFindings ? kScreens : 0);
  options.files.assign(argv + ::optind, argv + argc);
  if (options.files.empty()) usage("no file is given");
  if (options.view >= View::kExplain && options.files.size() > 1)
    usage("--explain, --diff and --graph want one file");
  return options;
}

ZmWriter& output() {
  static auto* const writer = new ZmWriter(STDOUT_FILENO);  // never destroyed: used to the end
  return *writer;
}

void finish(int status) {
  if (!output().flush()) {
    std::cerr << "zmconfigcheck: cannot write to standard output\n";
    status = kUsage;
  }
  std::_Exit(status);
}

// May be called when memory is out, even from inside a destructor: std::_Exit runs nothing more.
void fail(const std::string& message) {
  // Where both streams go to one place, the message stands behind what came before it.
  output().flush();
  std::cerr << "zmconfigcheck: " + message + "\n";
  std::_Exit(kUsage);
}
