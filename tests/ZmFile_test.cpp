#include "ZmFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <new>
#include <sstream>
#include <string>

#include "ZmText.h"

namespace {

struct ZmFileTest : testing::Test {  // in a directory of its own
  ~ZmFileTest() override { std::filesystem::remove_all(directory); }
  ZmString in(const char* name) const { return (directory + "/" + name).c_str(); }

  std::string directory = testing::TempDir() + "zmfile-XXXXXX";
  const char* made = ::mkdtemp(directory.data());
  ZmString path = in("file");
};

std::string bytes(int n) {
  std::string text;
  for (int i = 0; i < n; ++i) text += static_cast<char>(i * 7);
  return text;
}

}  // namespace

TEST_F(ZmFileTest, LoadGivesBackWhatWasSaved) {
  for (const int n : {0, 1022, 1023, 1024, 2047, 3000, 200000}) {
    EXPECT_TRUE(ZmFile::save(path, zm_string(bytes(n))));
    EXPECT_EQ(zm_view(ZmFile::load(path)), bytes(n));
    EXPECT_EQ(ZmFile::size(path), n);
  }
  ZmFile::append(path, "end");
  std::stringstream system;  // files that report no size
  system << std::ifstream("/proc/filesystems").rdbuf();
  EXPECT_EQ(ZmFile::load("/proc/filesystems"), system.str().c_str());
  EXPECT_EQ(zm_view(ZmFile::load(path)), bytes(200000) + "end");
}

TEST_F(ZmFileTest, MissesAreResults) {
  for (const ZmString& miss : {in("missing"), in("missing/file"), in("."), ZmString()}) {
    EXPECT_FALSE(ZmFile::exists(miss) || ZmFile::remove(miss) || ZmFile::hidden(miss));
    EXPECT_EQ(ZmFile::load(miss).length(), 0);
    EXPECT_EQ(ZmFile::loadpos(miss, 0, path), -1);
  }
  EXPECT_EQ(ZmFile::size(path) + ZmFile::modified(path), 0);
  EXPECT_FALSE(ZmFile::chmod(path, 0600) || ZmFile::chown(path, ::getuid(), ::getgid()));
  EXPECT_FALSE(ZmFile::save(in("missing/file"), "x") || ZmFile::writable(in("missing/file")));
  ::mkfifo(path.value(), 0600);  // and nobody waits for a reader
  EXPECT_FALSE(ZmFile::exists(path) || ZmFile::writable(path) || !ZmFile::touch(path));
}

TEST_F(ZmFileTest, ReadsAPart) {
  const struct {
    int pos, len;
    const char* part;
    int result;
  } rows[] = {{2, 3, "cde", 5}, {2, 6, "cdefgh", 8},  {2, -1, "cdefgh", -1}, {-9, 2, "ab", 2},
              {4, 0, "", 4},    {2, 7, "cdefgh", -1}, {100, 1, "", -1},      {100, 0, "", 100}};
  ZmFile::save(path, "abcdefgh");
  for (const auto& [pos, len, part, result] : rows) {
    ZmString out("+");
    EXPECT_EQ(ZmFile::loadpos(path, pos, len, out), result) << pos << " " << len;
    EXPECT_EQ(out, ZmString("+") + part) << pos << " " << len;
  }
  ZmFile::save(path, zm_string(bytes(10000)));
  ZmString out;
  EXPECT_EQ(ZmFile::loadpos(path, 1, 9000, out), 9001);
  EXPECT_EQ(zm_view(out), bytes(10000).substr(1, 9000));
}

TEST_F(ZmFileTest, TestsAndTouchesCreateFiles) {
  EXPECT_TRUE(ZmFile::writable(path) && ZmFile::exists(path) && ZmFile::remove(path));
  EXPECT_TRUE(ZmFile::touch(path) && ZmFile::exists(path));
  ZmFile::save(path, "text");
  std::filesystem::last_write_time(path.value(), {});
  EXPECT_TRUE(ZmFile::touch(path) && ZmFile::writable(path));
  EXPECT_STREQ(ZmFile::load(path).value(), "text");
  EXPECT_LE(std::time(nullptr) - ZmFile::modified(path), 60);
  EXPECT_TRUE(ZmFile::touch(in("missing/file")));
}

TEST_F(ZmFileTest, ReadKeepsTheOldFileWhenItFails) {
  ZmFile::save(path, "text");
  ZmFile file(path);
  file.read(in("missing"));
  file.read(in("."));
  ZmFile::save(in("large"), "");
  std::filesystem::resize_file(in("large").value(), 1LL << 31);
  EXPECT_THROW(file.read(in("large")), std::bad_alloc);
  const auto held = [](const ZmFile& f) { return f.name() + " " + f.source() + " " + f.data(); };
  EXPECT_EQ(held(file), "file " + path + " text");
  file.data() = path;
  file.read(file.data());  // the path is overwritten while it is in use
  EXPECT_EQ(held(file), "file " + path + " text");
  file.pack();
  ZmFile unpacked;
  EXPECT_EQ(unpacked.unpack(file.packContents(), file.packSize()), 0);
  EXPECT_EQ(held(unpacked), held(file));
}

TEST(ZmFile, SplitsPathsAndMakesNames) {
  const char* const rows[][3] = {{"dir/sub/file.conf", "dir/sub", "file.conf"},
                                 {"file.conf", "", "file.conf"},
                                 {"/file.conf", "", "file.conf"},
                                 {"dir/", "dir", ""}};
  for (const auto& [path, base, name] : rows) {
    EXPECT_STREQ(ZmFile::dirbase(path).value(), base);
    EXPECT_STREQ(ZmFile::filename(path).value(), name);
  }
  const ZmString prefix = ZmString("torvel") + static_cast<int>(::getpid()) + "u";
  const ZmString first = ZmFile::uniquefile();
  const int n = first.substr(prefix.length(), first.length()).integervalue();
  EXPECT_EQ(first, prefix + n + ".tmp");
  EXPECT_EQ(ZmFile::uniquefile(), prefix + (n + 1) + ".tmp");
}
