#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#define ZM_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZM_ADDRESS_SANITIZER
#endif
#endif

namespace {

std::string content(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Runs the tool by way of the shell, in a directory of its own.
class Tool : public testing::Test {
 protected:
  Tool() {
    std::string name = testing::TempDir() + "zmconfigfile.XXXXXX";
    if (::mkdtemp(name.data())) directory_ = name + "/";
  }
  ~Tool() override { std::system(("rm -rf '" + directory_ + "'").c_str()); }

  // The exit status, then what went to standard output, then to standard error.
  std::string run(const std::string& arguments, const std::string& before = "") {
    const std::string command = "cd '" + directory_ + "' && { " + before + R"( ")" ZM_TOOL R"(" )" +
                                arguments + "; } >out 2>err";
    const int status = std::system(command.c_str());
    return std::to_string(WEXITSTATUS(status)) + " " + content(directory_ + "out") +
           content(directory_ + "err");
  }
  void file(const std::string& name, const std::string& text) {
    std::ofstream(directory_ + name, std::ios::binary) << text;
  }

  std::string directory_;
};

const std::string kNone = "1 ERROR: you must specify at least one macro configuration file.\n";

}  // namespace

TEST_F(Tool, PrintsHelpAndVersion) {
  const std::string help = "0 " + content(ZM_SOURCE_DIR "/tests/help.txt");
  const std::string version = "0 Torvel - version: 6.10-1  build: rel-6.10-0014\n";
  EXPECT_EQ(run("--help"), help);
  EXPECT_EQ(run("-v -h missing"), help);  // help wins
  EXPECT_EQ(run("--version missing"), version);
}

TEST_F(Tool, WantsAFile) {
  EXPECT_EQ(run(""), kNone);
  EXPECT_EQ(run("--nope x.conf"), kNone);
  EXPECT_EQ(run("--help --nope"), kNone);
}

TEST_F(Tool, PrintsSections) {
  file("a.conf",
       "[base]   # farm settings\nthreads = 4\nlabel = \"fast box\"\nroot = /opt/farm\n"
       "[node1] : base\nthreads = 8\nlogdir = $base.root\nowner = $_\n");
  file("b.conf", "[z]\n[node[2,10]]\nempty = \"\"\nlines = {1\n2}\n[default] : none\n");
  EXPECT_EQ(run("a.conf missing b.conf"),
            "0 [base]\nthreads = 4\nlabel = \"fast box\"\nroot = /opt/farm\n"
            "[node1]\nthreads = 8\nlabel = \"fast box\"\nroot = /opt/farm\n"
            "logdir = /opt/farm\nowner = node1\n"
            "WARNING: file missing is unreadable or doesn't exist.\n"
            "[default]\n[node10]\nempty = \nlines = \"1\n2\"\n[node2]\nempty = \nlines = \"1\n2\"\n"
            "[z]\nWARNING: default missing parent none... skipping.\n");
}

TEST_F(Tool, TakesWhatIsNoFileAsMissing) {
  file("empty", "");
  EXPECT_EQ(run("missing . empty -5"),
            "0 WARNING: file missing is unreadable or doesn't exist.\n"
            "WARNING: file . is unreadable or doesn't exist.\n"
            "WARNING: file -5 is unreadable or doesn't exist.\n");
}

TEST_F(Tool, PrintsMoreThanItsBufferOrAPipeHolds) {
  std::string text = "[a]\n";
  for (int i = 0; i < 20000; ++i) text += "option" + std::to_string(i) + " = value\n";
  text += "long = " + std::string(200000, 'x') + "\n";
  file("long.conf", text);
  EXPECT_EQ(run("long.conf"), "0 " + text);
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
  run("long.conf >&" + std::to_string(ends[1]) + " & sleep 0.2");  // and waits for a reader
  ::close(ends[1]);
  EXPECT_EQ(content("/dev/fd/" + std::to_string(ends[0])), text);
  ::close(ends[0]);
}

TEST_F(Tool, TellsWhenItCannotWriteOrHasNoMemory) {
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
  const std::string cannot = "1 ERROR: cannot write to standard output.\n";
  for (const char* arguments : {"--help", "--version", "", "missing"})
    EXPECT_EQ(run(arguments + std::string(" >/dev/full")), cannot) << arguments;
  EXPECT_EQ(run("missing >&-"), cannot);
#ifndef ZM_ADDRESS_SANITIZER  // it reserves more than any limit leaves
  std::string laughs = "[a]\nn0 = ha\n";
  for (int i = 1; i < 12; ++i) {
    laughs += "n" + std::to_string(i) + " = \"";
    for (int n = 0; n < 10; ++n) laughs += "${a.n" + std::to_string(i - 1) + "}";
    laughs += "\"\n";
  }
  file("laughs.conf", laughs);
  EXPECT_EQ(run("laughs.conf", "ulimit -v 400000;"), "1 ERROR: out of memory.\n");
#endif
}
