// Lets every allocation, and every call of a file function, fail once in every operation: it throws
// std::bad_alloc or gives what it says it gives, leaks nothing, and the object is sound.
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <memory>
#include <new>
#include <streambuf>

#include "../ZmTest.h"
#include "ZmConfigCheck.h"
#include "ZmConfigFile.h"
#include "ZmConfigList.h"
#include "ZmDebug.h"
#include "ZmExpressionList.h"
#include "ZmFile.h"
#include "ZmPackObj.h"
#include "ZmParam.h"
#include "ZmRange.h"
#include "faults.h"

namespace {

const char* const kLong = "a text of more bytes than a string holds in itself";
const ZmString kConfig =
    "top = a\n[base]\nroot = /opt/farm/with/a/long/path\nlabel = \"the fast box of them\"\n"
    "[node[01-12]] : base missing\nlog = \"$base.root/$_ of the farm\"\nself = $self.label\n"
    "[loop]\na = \"x $loop.b x\"\nb = \"y $loop.a y\"\nbase . later = 1\n";
std::string directory;  // of the test that runs

ZmString in(const char* name) { return (directory + "/" + name).c_str(); }

// What an operation gives: the usual, or after a failure what it has for that.
std::string told(const std::string& given, const std::string& usual, const std::string& otherwise) {
  return faults::failed() && given == otherwise ? usual : given;
}

template <class Hash, class T>
void put(Hash& hash, const ZmString& key, std::unique_ptr<T> value) {
  hash.set(value.get(), key);  // takes nothing when it throws
  static_cast<void>(value.release());
}
void put(ZmStringHash& hash, const ZmString& key) {
  put(hash, key, std::make_unique<ZmString>(key));
}

// All that is listed is found.
template <class Hash>
std::string keys(const Hash& hash) {
  ZmStringList list;
  hash.copykeys(list);
  list.sort();
  for (int i = 0; i < list.length(); ++i) EXPECT_NE(hash.get(*list.get(i)), nullptr);
  EXPECT_EQ(list.length(), hash.length());
  return joined(list);
}

// For each class: fill() puts something into a new object, run() tries its operations, and use()
// then makes the object one that shows the same whatever has failed.

void fill(ZmString& s) { s = kLong; }
std::string run(ZmString& s) {
  const std::unique_ptr<const char[]> copied(s.copyvalue());
  std::string all = copied.get() + text(s.substr(0, 40) + s.tolower() + s.toupper() + s.LFtoCRLF());
  all += text(s.removecontrolchars() + s.replacevalue("t", kLong, 1) + ZmString(kLong, 20));
  for (int i = 0; i < 200; ++i) s.append('x');
  s += s;
  s += 3e38F;
  s.integervalue(1, 300, '.');
  s.integervalue(-1, 900);
  s.secure(1);
  s.copy(text(s + s).c_str());
  s.copy(s + kLong + -1 + 'c' + 1.5F);
  return all + text(s);
}
std::string use(ZmString& s) {
  s += "!";
  s = kLong;
  return text(s + s);
}

void fill(ZmStringList& list) {  // there is no room for a fourth
  for (const char* one : {"2", kLong, "1"}) list._push(new ZmString(one));
}
std::string run(ZmStringList& list) {
  ZmStringList other(list);
  list._push(new ZmString(kLong));
  other = list;
  list.copy(other);
  list.sort();
  // What a list holds is lost to it when it can't grow: whoever has kept it must destroy it.
  std::unique_ptr<ZmString> held[] = {std::make_unique<ZmString>("x"),
                                      std::make_unique<ZmString>()};
  ZmStringList lossy;
  for (auto& one : held) {
    if (lossy.push(one.get())) continue;
    EXPECT_EQ(lossy.length(), 0);
    throw std::bad_alloc();
  }
  lossy.release();
  return joined(list);
}

void fill(ZmStringHash& hash) {
  for (int i = 0; i < 9; ++i) put(hash, kLong + ZmString(i));
}
std::string run(ZmStringHash& hash) {
  struct Lent : ZmStringList {
    ~Lent() override { release(); }
  } lent;
  hash.keys(lent);
  const std::unique_ptr<ZmString> removed(hash.remove(kLong + ZmString(3)));
  for (int i = 0; i < 50; ++i) put(hash, kLong + ZmString(i % 45));
  for (int i = 0; i < 45; ++i) {  // keys of one hash: no table has places for so many
    ZmString key;
    for (int bit = 0; bit < 6; ++bit) key += i >> bit & 1 ? "ab" : "ha";
    put(hash, key);
  }
  hash.resize();
  const ZmStringHash other(hash);
  hash = other;
  return keys(hash) + std::to_string(lent.length());
}

void fill(ZmConfig& config) {
  config.name(kLong);
  config.address(ZmAddress("10.0.0.1"));
  for (const char* label : {"a", "b", "c", "a long label, too long for a string"})
    config.option(label, kLong);
}
std::string run(ZmConfig& config) {
  for (int i = 0; i < 20; ++i) config.option("label " + ZmString(i) + kLong, kLong);
  config.option("a", ZmString(kLong) + kLong);
  config.option("b", "");
  config.remove("c");
  config.option(ZmString("zero\0", 5), kLong);  // from here on the labels are kept apart
  const ZmConfig other(config);
  ZmConfig heir;
  heir.inherit(other);
  config = heir;
  config.display();
  const ZmString merged = config.usetemplate("# a = 1\n#c =\nold = 2\n");
  std::string all = text(config.host() + config.convert() + merged) + held(heir);
  EXPECT_TRUE(config.loadtemplate(in("section")).find("#new") || faults::failed());
  config.load(in("section"));
  EXPECT_TRUE(config.option("new").length() > 0 || faults::failed());
  return all;
}

void fill(ZmConfigList& list) { fill(*(list._push(new ZmConfig), list.top())); }
std::string run(ZmConfigList& list) { return std::to_string(ZmConfigList(list).length()); }

void fill(ZmConfigHash& hash) {
  auto config = std::make_unique<ZmConfig>();
  fill(*config);
  put(hash, kLong, std::move(config));
}
std::string run(ZmConfigHash& hash) {
  const ZmConfigHash other(hash);
  hash = other;
  return keys(hash);
}

void fill(ZmAddress& address) { address.copy("10.0.0.1"); }
std::string run(ZmAddress& address) {
  const ZmAddress found = ZmAddress::hostname("127.0.0.1");
  return text(address.stringvalue() + address.hexvalue()) +
         told(text(found.stringvalue()), "127.0.0.1", "0.0.0.0");
}

void fill(ZmFile& file) { file.name() = file.source() = file.data() = kLong; }
std::string run(ZmFile& file) {
  ZmFile::remove(in("saved"));
  std::string all = told(std::to_string(file.write(in("saved"))), "1", "0");
  ZmFile::append(in("saved"), "!");
  const std::string written = text(file.data()) + "!";
  const auto some = [](const ZmString& found, const std::string& usual) {
    return faults::failed() && usual.find(zm_view(found)) != usual.npos ? usual : text(found);
  };
  all += some(ZmFile::load(in("saved")), written);
  file.read(in("saved"));
  all += some(file.data(), written);
  ZmString part;
  const int at = ZmFile::loadpos(in("saved"), 3, 40, part);
  EXPECT_TRUE(at == 43 || faults::failed());
  all += some(part, written.substr(3, 40));
  ZmFile::touch(in("touched"));
  const bool there = ZmFile::writable(in("touched")) && ZmFile::modified(in("touched")) > 0;
  EXPECT_TRUE(there || faults::failed());
  return all + text(ZmFile::filename(in("x")) + ZmFile::dirbase(in("y"))) +
         std::to_string(ZmFile::uniquefile().length() > 0);
}

// For whatever can be packed.
template <class Pack>
std::string again(Pack& pack) {
  Pack fresh;
  fill(fresh);
  if constexpr (requires { pack.resize(); }) keys(pack);  // a hash
  if constexpr (requires { pack.copy(fresh); }) {
    pack.copy(fresh);
  } else {
    fill(pack);
  }
  return record(pack) + xml(pack);
}
template <class Pack>
std::string use(Pack& pack) {
  return again(pack);
}
std::string use(ZmConfig& config) {
  held(config);
  return again(config);
}
std::string use(ZmFile& file) {  // which is the old one or the new one
  EXPECT_TRUE(file.source() != kLong || (file.name() == kLong && file.data() == kLong));
  return again(file);
}

template <class Pack>
struct Packed : Pack {};  // tried for what all packs do
template <class Pack>
std::string use(Packed<Pack>& pack) {
  return again(static_cast<Pack&>(pack));
}
template <class Pack>
std::string run(Packed<Pack>& pack) {
  try {
    pack.pack();
  } catch (const std::bad_alloc&) {
    EXPECT_EQ(pack.packSize(), 0);
    throw;
  }
  const std::string binary = record(pack), marked = xml(pack);
  Pack other;
  EXPECT_EQ(unpack(other, binary), 0);
  EXPECT_EQ(unpackxml(pack, marked), 0);
  const std::size_t size = record(pack).size();
  const bool archived = pack.archive(in("record")) == static_cast<int>(size);
  EXPECT_EQ(archived, !faults::failed());
  EXPECT_TRUE(pack.archive(in("record")) > 0 || faults::failed());
  return told(std::to_string(pack.recover(in("record")) > 0), "1", "0") + record(other);
}

void fill(ZmConfigFile& file) { file.parse(kConfig); }
std::string run(ZmConfigFile& file) {
  const ZmConfigFile read(in("conf"), 1);
  EXPECT_TRUE(read.sections().length() > 0 || faults::failed());
  const ZmConfigHash copied = file.export_hash();
  ZmStringList tokens;
  file.keys(tokens);
  file.tokenize(kConfig, tokens);
  file.stringtokenize(kLong, tokens);
  file.display();
  file.parse(kConfig + "[new[1-3]] : base\nx = $_\n");
  return joined(tokens) + keys(copied) + keys(file.sections()) +
         text(file._localvalue(kLong, "$self.long") + file._value("base", kLong, "$loop.a $_"));
}
std::string use(ZmConfigFile& file) {
  keys(file.sections());
  file.parse("[again] : base\nlog = $_.log\n");
  return held(*file.config("again"));
}

struct Check {};
void fill(Check&) {}
std::string run(Check&) {
  const ZmConfigCheck check(kConfig.value());
  std::string all = check.graph(1);
  for (const auto& finding : check.findings()) all += finding.text;
  return all + check.history("node02", "log").value;
}
std::string use(Check&) { return {}; }

void fill(ZmRange& range) { range.parse("1-5,9"); }
std::string run(ZmRange& range) {
  range.add("7-70x7,1-9X2");
  range.add(3);
  ZmRange other(range);
  other = range;
  other.binary();
  ZmStringList out;
  range.chunk(3, out);
  range.partition(3, out);
  for (const char* pattern : {"1-3", "node[01-40].with.a.long.name,b[1", "plain"})
    ZmRange::patternsplit(1, pattern, out);
  return text(other.value()) + joined(out) + std::to_string(range.has("1-5"));
}
std::string use(ZmRange& range) {
  range.parse("3,1-2,007");
  return text(range.value());
}

struct Variables : ZmReference {
  void value(const ZmString&, ZmString& out) override { out = kLong; }
  unsigned char valid(const ZmString&) override { return 1; }
  unsigned char variable(const ZmString&) override { return 1; }
};
void fill(ZmExpression& tree) {
  tree.reference(new Variables);
  tree.parse("not a + (b * -3 in c)", 0);
}
std::string run(ZmExpression& tree) {
  ZmScalar result;
  ZmStringList out;
  tree.eval(result);
  tree.variables(out);
  tree.display(0);
  EXPECT_TRUE(tree.isvalid());
  const ZmExpression other(tree);
  for (const int notation : {0, 1, 2}) {
    ZmExpression made;
    made.parse(
        "+ * 'a much longer operand than others' 3 4" + ZmString(repeated(" + 1", 70).c_str()),
        notation);
    tree.copy(made);
  }
  ZmExpression called, valued;
  called.callbackparse(ZmString("'") + kLong + "' and b");
  valued.valueparse(ZmString("{") + kLong + "} and b");
  for (const auto cut :
       {ZmExpression::tokenize, ZmExpression::callbacktokenize, ZmExpression::valuetokenize,
        ZmExpression::rangetokenize, ZmExpression::commandtokenize, ZmExpression::splitcomma,
        ZmExpression::splitslash, ZmExpression::splittab, ZmExpression::splitspace})
    cut("(a[1, 2] / a_much_longer_token_than_others)", out);
  ZmStringHash hash;
  ZmExpression::split("a, {b, a much longer token than others}", out);
  ZmExpression::split("a, {b, a much longer token than others}", hash);
  ZmString left, right;
  ZmExpression::splitequal(kLong + ZmString("=") + kLong, left, right);
  ZmExpression leaf;
  leaf.name(kLong);
  tree.copy(leaf);
  return joined(out) + keys(hash) + text(called.a()->name() + valued.a()->name() + left + right);
}
std::string use(ZmExpression& tree) {
  EXPECT_NE(tree.op().length() > 0, tree.name().length() > 0);
  tree.copy(ZmExpression());
  tree.parse("1 + 2 * max", 0);
  ZmScalar result;
  tree.eval(result);
  return text(result.stringvalue());
}

void fill(ZmPackObj& element) {
  for (int i = 0; i < 3; ++i) element.push(new ZmPackObj);
}
std::string run(ZmPackObj& element) {
  for (ZmPackObj* at = &element; at->length() < 9; at = at->get(1)) {
    for (int i = 0; i < 9; ++i) {
      auto one = std::make_unique<ZmPackObj>();
      one->name(kLong);
      at->push(one.get());  // takes nothing when it throws
      static_cast<void>(one.release());
    }
    if (at != &element) break;
  }
  for (int i = 0; i < 20; ++i) element.find(kLong);
  const ZmPackObj other(element);
  return std::to_string(other.length()) + text(other.get(4)->name());
}
std::string use(ZmPackObj& element) {
  element = ZmPackObj();
  fill(element);
  return std::to_string(element.length());
}

void fill(ZmParam& param) { param.defineStringOption("file"); }
std::string run(ZmParam& param) {
  int defined = param.defineFlag(kLong) + param.defineIntegerOption("number");
  for (int i = 0; i < 9; ++i) defined += param.defineDiffOption(ZmString("flag") + i);
  EXPECT_TRUE(param.defined("file") && param.defined("version"));
  std::string all = told(std::to_string(defined), "11", "10");
  param.displayHelp();
  for (const char* wrong : {"-f", "-unknown_option_of_the_command_line", "-file"}) {
    ZmStringList args;
    args._push(new ZmString(wrong));
    param.parse(args);
    all += param.error().substr(0, 6).value();
  }
  return all + std::to_string(ZmParam().defined("version"));
}
std::string use(ZmParam& param) {
  ZmStringList args;
  for (const char* one : {"-file", kLong, kLong, "rest"}) args._push(new ZmString(one));
  param.parse(args);
  ZmString file;
  param.get("file", file);
  return text(file + param.arg(0) + param.arg(1));
}

struct Log {  // that of the process, and its file
  ~Log() { zm_debug_obj().unlock(); }
};
void fill(Log&) {
  zm_debug_filename(in("log"), 0);
  zm_debug_obj() << "first";
}
std::string run(Log&) {
  zm_debug_obj().mark() << kLong << 1 << ZmAddress("10.0.0.1");
  zm_debug_obj().unlock();
  ZmStringList weekly;
  zm_debug_logfiles(in("log"), weekly);
  return told(std::to_string(ZmFile::load(in("log")).find(kLong)), "1", "0");
}
std::string use(Log&) {
  zm_debug_obj().unlock();
  ZmFile::remove(in("log"));
  zm_debug_filename(in("log"), 0);
  zm_debug_obj() << kLong;
  zm_debug_obj().unlock();
  return text(ZmFile::load(in("log")));
}

int descriptors() {
  const int next = ::dup(0);
  ::close(next);
  return next;
}

// What run() gives while the n-th call fails. Gives whether there was one.
template <class T>
bool attempt(faults::Kind kind, long n, std::string& given) {
  T object;
  fill(object);
  std::srand(1);  // hashes grow by random steps
  bool thrown = false;
  faults::arm(kind, n);
  try {
    given = run(object);
  } catch (const std::bad_alloc&) {
    thrown = true;
  }
  const bool hit = faults::failed();
  faults::disarm();
  std::cout.clear();
  EXPECT_TRUE(!thrown || (hit && kind == faults::kMemory));
  T other;
  fill(other);
  EXPECT_EQ(use(object), use(other));
  return hit;
}

struct Silent : std::streambuf {
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

template <class T>
class Failures : public Directory {
 protected:
  Failures() { directory = path; }
  ~Failures() override {
    std::cout.rdbuf(out_);
    std::cerr.rdbuf(err_);
  }
  void tryall(faults::Kind kind, const std::string& usual) {
    bool hit = true;
    for (long n = 1; hit && !HasFailure(); ++n) {
      SCOPED_TRACE((kind == faults::kMemory ? "memory " : "file ") + std::to_string(n));
      std::string given = usual;
      const long live = faults::live();
      const int open = descriptors();
      hit = attempt<T>(kind, n, given);
      EXPECT_EQ(given, usual);
      given = usual;
      EXPECT_TRUE(faults::live() == live && descriptors() == open) << faults::live() - live;
    }
  }

 private:
  Silent silent_;
  std::streambuf* out_ = std::cout.rdbuf(&silent_);
  std::streambuf* err_ = std::cerr.rdbuf(&silent_);
};

using Types =
    testing::Types<ZmString, ZmStringList, ZmStringHash, ZmConfig, ZmConfigList, ZmConfigHash,
                   ZmAddress, ZmFile, Packed<ZmStringList>, Packed<ZmStringHash>, Packed<ZmConfig>,
                   Packed<ZmConfigList>, Packed<ZmConfigHash>, Packed<ZmFile>, Packed<ZmAddress>,
                   ZmConfigFile, Check, ZmRange, ZmExpression, ZmPackObj, ZmParam, Log>;

}  // namespace

TYPED_TEST_SUITE(Failures, Types);

TYPED_TEST(Failures, ThrowOrAreToldAndLeakNothing) {
  ZmFile::save(in("conf"), kConfig);
  ZmFile::save(in("section"), "a = 1\nb = {x\ny}\nnew = \"a value of many letters\"\n");
  std::string usual;
  // What is made once and kept, as by the first exception, is no leak.
  EXPECT_THROW(throw std::bad_alloc(), std::bad_alloc);
  for (int i = 0; i < 2; ++i) attempt<TypeParam>(faults::kMemory, 0, usual);
  this->tryall(faults::kMemory, usual);
  this->tryall(faults::kFiles, usual);
}

// Linked so that it arms itself. It ends as usual, or says what it could not do; what it can't read
// is left out, and so is a warning that can't be written.
using Tool = Directory;
TEST_F(Tool, SaysWhatFails) {
  ZmFile::save(in("a.conf"), kConfig);
  const std::string command = "cd '" + path + "' && '" ZM_FAULTY_TOOL "' a.conf >out 2>err 3>hit";
  std::string usual;
  for (const std::string kind : {"memory", "files"}) {
    for (long n = 0; n == 0 || (!HasFailure() && !content(path + "/hit").empty()); ++n) {
      ::setenv("ZM_FAULT", (kind + std::to_string(n)).c_str(), 1);
      const int status = std::system(command.c_str());
      const std::string out = content(path + "/out"), err = content(path + "/err");
      if (n == 0) usual = out;
      const bool said = err.ends_with("ERROR: out of memory.\n") ||
                        err.ends_with("ERROR: cannot write to standard output.\n");
      const bool unread = out.empty() || out.starts_with("WARNING: file a.conf is unreadable");
      const bool fine = WIFEXITED(status) && WEXITSTATUS(status) == (said ? 1 : 0);
      EXPECT_TRUE(fine && (said || unread || out == usual)) << kind << n << out << err;
    }
  }
  ::unsetenv("ZM_FAULT");
}
