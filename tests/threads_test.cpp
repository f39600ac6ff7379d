// Objects share nothing, so that threads may work on their own at the same time: each gives what
// one thread alone gives. ThreadSanitizer sees what the results don't show.

#include <thread>

#include "ZmConfigFile.h"
#include "ZmExpression.h"
#include "ZmRange.h"
#include "ZmStringHash.h"
#include "ZmTest.h"

namespace {

ZmString texts() {
  ZmStringHash hash;
  for (int i = 0; i < 300; ++i) hash.set(new ZmString(i), "key" + ZmString(i * 7));
  ZmStringList keys;
  hash.copykeys(keys);
  keys.sort();
  return keys.join(",").toupper();
}

ZmString sections() {
  ZmConfig section;
  section.parse("a = 1\nb = {two\nlines}\n");
  const ZmConfig copy(section);
  return copy.convert() + section.usetemplate("#a = 0\n");
}

ZmString readers() {
  ZmConfigFile file;
  file.parse("[base]\nroot = /opt\n[node[001-040]] : base\nlog = \"${base.root}/${_}\"\n");
  return file.config("node001")->convert() + file.config("node040")->convert();
}

ZmString expressions() {
  ZmExpression expression;
  expression.parse("(1 + 2 * 3 > 6) and not 2 > 3", 0);
  ZmScalar result;
  expression.eval(result);
  ZmStringList names;
  ZmRange::patternsplit(1, "n[1-9]", names);
  return result.stringvalue() + names.join(" ");
}

ZmString packs() {
  ZmConfig section, read, again;
  section.option("a", "1");
  unpack(read, record(section));
  unpackxml(again, xml(read));
  return again.convert();
}

ZmString everything() { return texts() + sections() + readers() + expressions() + packs(); }

}  // namespace

TEST(Threads, WorkOnObjectsOfTheirOwn) {
  std::vector<ZmString> results(4);
  std::vector<std::thread> threads;
  threads.reserve(results.size());
  for (ZmString& result : results)
    threads.emplace_back([&result] {
      for (int i = 0; i < 20; ++i) result = everything();
    });
  for (std::thread& thread : threads) thread.join();
  const ZmString alone = everything();
  EXPECT_NE(alone.length(), 0);
  for (const ZmString& result : results) EXPECT_EQ(zm_view(result), zm_view(alone));
}
