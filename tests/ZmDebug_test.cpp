#include "ZmDebug.h"

#include <unistd.h>

#include <ctime>
#include <iostream>
#include <locale>

#include "ZmFile.h"
#include "ZmTest.h"

namespace {

struct ZmDebugTest : Directory {
  ~ZmDebugTest() override { zm_debug_filename("", 0); }
};

void log(const char* message) {
  zm_debug_obj() << message;
  zm_debug_obj().unlock();
}

std::string shown(int mode) {
  return printed([=] {
    zm_debug_obj().mode(mode);
    zm_debug_obj() << "text " << ZmString("s") << -1 << 4000000000u << -5000000000LL << 1.5F << 'c';
  });
}

struct Grouped : std::numpunct<char> {
  std::string do_grouping() const override { return "\3"; }
};

std::string mark() {
  const std::time_t now = std::time(nullptr);
  const std::string form = "[%b %-d, %Y %-H:%M:%S] ";
  char time[64], host[1024] = {};
  std::strftime(time, sizeof time, form.c_str(), std::localtime(&now));
  ::gethostname(host, sizeof host - 1);
  return std::string(time) + host + "[" + std::to_string(::getpid()) + "]: ";
}

}  // namespace

TEST_F(ZmDebugTest, WritesToStandardOutputWithoutAFile) {
  EXPECT_EQ(zm_debug_verb(), -4097);  // all bits but one
  const std::string all = "text s-14000000000-50000000001.5c";
  EXPECT_EQ(shown(0), all);
  EXPECT_EQ(shown(1), all);
  zm_debug_obj().filename(in("log"));
  std::cout << std::hex;
  const std::locale before = std::cout.imbue(std::locale(std::locale(), new Grouped));
  EXPECT_EQ(shown(2), all);
  std::cout.imbue(before);
  std::cout << std::dec;
}

TEST_F(ZmDebugTest, KeepsItsFileUntilUnlock) {
  ZmFile::save(in("a"), "old ");
  zm_debug_filename(in("a"), 0);
  zm_debug_obj() << "one ";
  EXPECT_NE(std::system(("ls -l /proc/self/fd | grep -q " + in("a")).value()), 0);
  zm_debug_filename(in("b/log"), 0);
  log("two");
  EXPECT_STREQ(ZmFile::load(in("a")).value(), "old one two");
  zm_debug_obj() << "lost";  // and not on standard output
  std::filesystem::create_directory(in("b").value());
  log("lost");
  log("kept");
  EXPECT_STREQ(ZmFile::load(in("b/log")).value(), "kept");
}

TEST_F(ZmDebugTest, NamesWeeklyFiles) {
  const std::time_t now = std::time(nullptr);
  zm_debug_filename(in("log"), 1);
  log("text");
  EXPECT_STREQ(ZmFile::load(in("log.") + std::localtime(&now)->tm_yday / 7).value(), "text");
  for (const char* name : {"w.7", "w.0", "w.52", "w.53", "w.01"}) ZmFile::touch(in(name));
  ZmStringList found;
  zm_debug_logfiles(in("w"), found);
  EXPECT_EQ(found.join(" "), in("w.0") + " " + in("w.7") + " " + in("w.52"));
}

TEST_F(ZmDebugTest, MarksMessages) {
  const auto now = std::time(nullptr);
  const int west = static_cast<int>((now - 14703) % 86400);  // where it is 4:05:03
  const ZmString zone = ZmString("X") + west / 3600 + ":" + west / 60 % 60 + ":" + west % 60;
  ::setenv("TZ", zone.value(), 1);
  ::tzset();
  zm_debug_filename(in("log"), 0);
  const std::string before = mark();
  zm_debug_obj().mark();
  log("");
  const std::string found = content(in("log").value());
  EXPECT_TRUE(found == before || found == mark()) << found;
  ::unsetenv("TZ");
  ::tzset();
}
