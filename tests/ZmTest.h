// What several tests share.
#ifndef ZM_TEST_H
#define ZM_TEST_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmConfig.h"
#include "ZmStringList.h"
#include "ZmText.h"

inline std::string text(const ZmString& s) { return std::string(zm_view(s)); }

inline std::string joined(const ZmStringList& list, const char* separator = " ") {
  return text(list.join(separator));
}

// The options of a section, "label=value;" in their order.
inline std::string held(const ZmConfig& section) {
  std::string all;
  const ZmStringList labels = section.optionlist();
  for (int i = 0; i < labels.length(); ++i) {
    const ZmString& label = *labels.get(i);
    EXPECT_TRUE(section.exists(label) && &section.value(i) == &section.option(label));
    all += text(label) + "=" + text(section.option(label)) + ";";
  }
  return all;
}

inline std::string repeated(std::string_view piece, int n, std::string_view last = "") {
  std::string all;
  for (int i = 0; i < n; ++i) all += piece;
  return all += last;
}

template <class Print>
std::string printed(Print print) {
  testing::internal::CaptureStdout();
  print();
  return testing::internal::GetCapturedStdout();
}

template <class Warn>
std::string warned(Warn warn) {
  testing::internal::CaptureStderr();
  warn();
  return testing::internal::GetCapturedStderr();
}

inline std::string content(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A row is "input => what `give` makes of it".
template <class Give>
void checkrow(const std::string& row, Give give) {
  const std::string input = row.substr(0, row.find(" => "));
  EXPECT_EQ(input + " => " + std::string(give(input.c_str())), row);
}

template <class Give>
void check(std::initializer_list<std::string> rows, Give give) {
  for (const std::string& row : rows) checkrow(row, give);
}

// The rows are the lines of tests/cases/NAME, but for those that begin with "//".
template <class Give>
void checklines(const std::string& name, Give give) {
  std::ifstream in(ZM_SOURCE_DIR "/tests/cases/" + name);
  int rows = 0;
  for (std::string row; std::getline(in, row);)
    if (!row.starts_with("//")) checkrow(row, give), ++rows;
  EXPECT_GT(rows, 0) << name;
}

// The same for longer texts, in tests/cases/NAME: each a text, a line "=>", what `give` makes of it
// and a line "----".
template <class Give>
void checkcases(const std::string& name, Give give) {
  const std::string all = content(ZM_SOURCE_DIR "/tests/cases/" + name);
  std::size_t cases = 0, at = 0;
  for (std::size_t end; (end = all.find("\n----\n", at)) != all.npos; at = end + 6, ++cases) {
    const std::size_t middle = all.find("\n=>\n", at);
    const std::string input = all.substr(at, middle - at);
    EXPECT_EQ(give(input), all.substr(middle + 4, end - middle - 4)) << input;
  }
  EXPECT_TRUE(cases > 0 && at == all.size()) << name;
}

// A record of the pack, or its XML, as bytes.
inline std::string record(ZmPack& pack, void (ZmPack::*write)() = &ZmPack::pack) {
  (pack.*write)();
  return {pack.packContents(), static_cast<std::size_t>(pack.packSize())};
}

inline std::string xml(ZmPack& pack) { return record(pack, &ZmPack::packXML); }

inline int unpack(ZmPack& pack, const std::string& data) {
  const std::vector<char> exact(data.begin(), data.end());  // so that reading past it is seen
  return pack.unpack(exact.data(), static_cast<int>(exact.size()));
}

inline int unpackxml(ZmPack& pack, std::string_view data) {
  return pack.unpackXML(data.data(), static_cast<int>(data.size()));
}

struct Counted {
  explicit Counted(int of = 0) : number(of) { ++live; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  virtual ~Counted() { --live; }
  virtual void copy(const Counted& other) { number = other.number; }

  int number;
  static inline int live = 0;
};

struct Directory : testing::Test {  // for files, and gone with the test
  ~Directory() override { std::filesystem::remove_all(path); }
  ZmString in(const char* name) const { return (path + "/" + name).c_str(); }

  std::string path = testing::TempDir() + "zm-XXXXXX";
  const char* made = ::mkdtemp(path.data());
};

#endif
