#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ZmTest.h"

namespace {

// Runs the tool by way of the shell, in a directory of its own.
struct Tool : Directory {
  // The exit status, then what went to standard output, then to standard error.
  std::string run(const std::string& arguments, const std::string& before = "") const {
    const std::string command =
        "cd '" + path + "' && { " + before + R"( ")" ZM_TOOL R"(" )" + arguments + "; } >out 2>err";
    const int status = std::system(command.c_str());
    return std::to_string(WEXITSTATUS(status)) + " " + content(path + "/out") +
           content(path + "/err");
  }
  void file(const std::string& name, const std::string& all) const {
    std::ofstream(path + "/" + name, std::ios::binary) << all;
  }
};

}  // namespace

TEST_F(Tool, PrintsHelpAndVersion) {
  const std::string help = "0 " + content(ZM_SOURCE_DIR "/tests/help.txt");
  const std::string version = "0 Torvel - version: 6.10-1  build: rel-6.10-0014\n";
  EXPECT_EQ(run("--help"), help);
  EXPECT_EQ(run("-v -h missing"), help);  // help wins
  EXPECT_EQ(run("--version missing"), version);
}

TEST_F(Tool, WantsAFile) {
  for (const char* arguments : {"", "--nope x.conf", "--help --nope"})
    EXPECT_EQ(run(arguments), "1 ERROR: you must specify at least one macro configuration file.\n");
}

// In the order of names, file by file.
TEST_F(Tool, PrintsSections) {
  file("a.conf", "[base]   # farm settings\nlabel = \"fast box\"\n[a] : base\nowner = $_\n");
  file("b.conf", "[z]\n[node[2,10]]\nempty = \"\"\nlines = {1\n2}\n[default] : none\n");
  file("empty", "");
  const auto missing = [](const std::string& name) {
    return "WARNING: file " + name + " is unreadable or doesn't exist.\n";
  };
  EXPECT_EQ(run("a.conf missing . empty b.conf -5"),
            "0 [a]\nlabel = \"fast box\"\nowner = a\n[base]\nlabel = \"fast box\"\n" +
                missing("missing") + missing(".") +
                "[default]\n[node10]\nempty = \nlines = \"1\n2\"\n"
                "[node2]\nempty = \nlines = \"1\n2\"\n[z]\n" +
                missing("-5") + "WARNING: default missing parent none... skipping.\n");
}

TEST_F(Tool, PrintsMoreThanItsBufferOrAPipeHolds) {
  std::string all = "[a]\n";
  for (int i = 0; i < 20000; ++i) all += "option" + std::to_string(i) + " = value\n";
  all += "long = " + std::string(200000, 'x') + "\n";
  file("long.conf", all);
  EXPECT_EQ(run("long.conf"), "0 " + all);
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
  run("long.conf >&" + std::to_string(ends[1]) + " & sleep 0.2");  // and waits for a reader
  ::close(ends[1]);
  EXPECT_EQ(content("/dev/fd/" + std::to_string(ends[0])), all);
  ::close(ends[0]);
}

TEST_F(Tool, TellsWhenItCannotWriteOrHasNoMemory) {
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
  const std::string cannot = "1 ERROR: cannot write to standard output.\n";
  for (const char* arguments : {"--help", "--version", "", "missing"})
    EXPECT_EQ(run(arguments + std::string(" >/dev/full")), cannot) << arguments;
  EXPECT_EQ(run("missing >&-"), cannot);
  const char* const limit = "ulimit -v 400000;";
  if (run("--help", limit)[0] != '0') GTEST_SKIP() << "a sanitizer reserves more than that";
  std::string laughs = "[a]\nn0 = ha\n";
  for (int i = 1; i < 12; ++i)
    laughs += "n" + std::to_string(i) + " = \"" +
              repeated("${a.n" + std::to_string(i - 1) + "}", 10, "\"\n");
  file("laughs.conf", laughs);
  EXPECT_EQ(run("laughs.conf", limit), "1 ERROR: out of memory.\n");
}
