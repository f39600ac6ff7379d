#include "ZmFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <new>

#include "ZmTest.h"

namespace {

struct ZmFileTest : Directory {
  ZmString file = in("file");
};

std::string bytes(int n) {
  std::string all;
  for (int i = 0; i < n; ++i) all += static_cast<char>(i * 7);
  return all;
}

}  // namespace

TEST_F(ZmFileTest, LoadGivesBackWhatWasSaved) {
  for (const int n : {0, 1022, 1023, 1024, 2047, 3000, 200000}) {
    EXPECT_TRUE(ZmFile::save(file, zm_string(bytes(n))));
    EXPECT_EQ(zm_view(ZmFile::load(file)), bytes(n));
    EXPECT_EQ(ZmFile::size(file), n);
  }
  ZmFile::append(file, "end");
  // Files that report no size.
  EXPECT_EQ(text(ZmFile::load("/proc/filesystems")), content("/proc/filesystems"));
  EXPECT_EQ(zm_view(ZmFile::load(file)), bytes(200000) + "end");
}

TEST_F(ZmFileTest, MissesAreResults) {
  for (const ZmString& miss : {in("missing"), in("missing/file"), in("."), ZmString()}) {
    EXPECT_FALSE(ZmFile::exists(miss) || ZmFile::remove(miss) || ZmFile::hidden(miss));
    EXPECT_EQ(ZmFile::load(miss).length(), 0);
    EXPECT_EQ(ZmFile::loadpos(miss, 0, file), -1);
  }
  EXPECT_EQ(ZmFile::size(file) + ZmFile::modified(file), 0);
  EXPECT_FALSE(ZmFile::chmod(file, 0600) || ZmFile::chown(file, ::getuid(), ::getgid()));
  EXPECT_FALSE(ZmFile::save(in("missing/file"), "x") || ZmFile::writable(in("missing/file")));
  ::mkfifo(file.value(), 0600);  // and nobody waits for a reader
  EXPECT_FALSE(ZmFile::exists(file) || ZmFile::writable(file) || !ZmFile::touch(file));
}

TEST_F(ZmFileTest, ReadsAPart) {
  const struct {
    int pos, len;
    const char* part;
    int result;
  } rows[] = {{2, 3, "cde", 5}, {2, 6, "cdefgh", 8},  {2, -1, "cdefgh", -1}, {-9, 2, "ab", 2},
              {4, 0, "", 4},    {2, 7, "cdefgh", -1}, {100, 1, "", -1},      {100, 0, "", 100}};
  ZmFile::save(file, "abcdefgh");
  for (const auto& [pos, len, part, result] : rows) {
    ZmString out("+");
    EXPECT_EQ(ZmFile::loadpos(file, pos, len, out), result) << pos << " " << len;
    EXPECT_EQ(out, ZmString("+") + part) << pos << " " << len;
  }
  ZmFile::save(file, zm_string(bytes(10000)));
  ZmString out;
  EXPECT_EQ(ZmFile::loadpos(file, 1, 9000, out), 9001);
  EXPECT_EQ(zm_view(out), bytes(10000).substr(1, 9000));
}

TEST_F(ZmFileTest, TestsAndTouchesCreateFiles) {
  EXPECT_TRUE(ZmFile::writable(file) && ZmFile::exists(file) && ZmFile::remove(file));
  EXPECT_TRUE(ZmFile::touch(file) && ZmFile::exists(file));
  ZmFile::save(file, "text");
  std::filesystem::last_write_time(file.value(), {});
  EXPECT_TRUE(ZmFile::touch(file) && ZmFile::writable(file));
  EXPECT_STREQ(ZmFile::load(file).value(), "text");
  EXPECT_LE(std::time(nullptr) - ZmFile::modified(file), 60);
  EXPECT_TRUE(ZmFile::touch(in("missing/file")));
}

TEST_F(ZmFileTest, ReadKeepsTheOldFileWhenItFails) {
  ZmFile::save(file, "text");
  ZmFile object(file);
  object.read(in("missing"));
  object.read(in("."));
  ZmFile::save(in("large"), "");
  std::filesystem::resize_file(in("large").value(), 1LL << 31);
  EXPECT_THROW(object.read(in("large")), std::bad_alloc);
  const auto held = [](const ZmFile& f) { return f.name() + " " + f.source() + " " + f.data(); };
  EXPECT_EQ(held(object), "file " + file + " text");
  object.data() = file;
  object.read(object.data());  // the file is overwritten while it is in use
  EXPECT_EQ(held(object), "file " + file + " text");
  ZmFile unpacked;
  EXPECT_EQ(unpack(unpacked, record(object)), 0);
  EXPECT_EQ(held(unpacked), held(object));
}

TEST(ZmFile, SplitsPathsAndMakesNames) {
  check(
      {"dir/sub/file.conf => dir/sub|file.conf", "file.conf => |file.conf",
       "/file.conf => |file.conf", "dir/ => dir|"},
      [](const char* path) { return text(ZmFile::dirbase(path) + "|" + ZmFile::filename(path)); });
  const ZmString prefix = ZmString("torvel") + static_cast<int>(::getpid()) + "u";
  const ZmString first = ZmFile::uniquefile();
  const int n = first.substr(prefix.length(), first.length()).integervalue();
  EXPECT_EQ(first, prefix + n + ".tmp");
  EXPECT_EQ(ZmFile::uniquefile(), prefix + (n + 1) + ".tmp");
}
