// Reads INI files with SimpleIni (Debian: libsimpleini-dev) and prints them sorted, in the form of
// zmconfigfile, which is measured beside it. SetUnicode() keeps SimpleIni from asking the locale
// about each character; output leaves in pieces of 64 KB from one buffer.
#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <unistd.h>

#include <cstring>
#include <string>

int main(int argc, char** argv) {
  std::string out;
  const auto flush = [&out](size_t above) {
    if (out.size() <= above) return true;
    const bool written = write(STDOUT_FILENO, out.data(), out.size()) == ssize_t(out.size());
    out.clear();
    return written;
  };
  for (int i = 1; i < argc; ++i) {
    CSimpleIniCaseA ini;
    ini.SetUnicode();
    ini.SetQuotes();
    if (ini.LoadFile(argv[i]) < 0) return 1;
    CSimpleIniCaseA::TNamesDepend sections;
    ini.GetAllSections(sections);  // in name order, as the keys of a section are
    for (const auto& section : sections) {
      out.append("[").append(section.pItem).append("]\n");
      for (const auto& [key, value] : *ini.GetSection(section.pItem)) {
        const char* quote = strchr(value, ' ') ? "\"" : "";
        out.append(key.pItem).append(" = ").append(quote).append(value).append(quote).append("\n");
        if (!flush(65536)) return 1;
      }
    }
  }
  return flush(0) ? 0 : 1;
}
