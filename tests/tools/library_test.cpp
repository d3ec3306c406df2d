// The library as a file: header, export list and what is really exported agree.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>

#include "platform/files.h"
#include "support/books.h"
#include "support/process.h"

namespace test {
namespace {

std::set<std::string> matches(const std::string &text, const std::regex &pattern) {
  std::set<std::string> found;
  for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it)
    found.insert((*it)[1]);
  return found;
}

std::string read(const std::filesystem::path &path) {
  return platform::readFile(path.string()).value_or("");
}

TEST(Library, ExportsWhatTheHeaderDeclares) {
  auto declared = matches(read(sourceFolder() / "include/zelk98/zelk98.h"), std::regex(R"(ZELK_CALL\s+(\w+)\()"));
  auto listed = matches(read(sourceFolder() / "cmake/zelk98.def"), std::regex(R"(\n\s+(\w+)(?=\s*\n))"));
  EXPECT_GT(declared.size(), 20u);
  EXPECT_EQ(declared, listed);
  LoadedLibrary library(ZELK_LIBRARY);
  for (const std::string &name : declared)
    EXPECT_TRUE(library.function(name)) << name;
  EXPECT_FALSE(library.function("ZELK_GibtEsNicht"));
  // For hosts that link the C++ names of a Microsoft compiler.
  if (std::string(ZELK_LIBRARY).find(".dll") == std::string::npos) return;
  for (const char *name : {"?ZELK_Attach@@YGH_N@Z", "?ZELK_Detach@@YGHXZ", "?ZELK_InitDLLs@@YGXXZ",
                           "?ZELK_FreeDLLs@@YGXXZ", "?ZELK_Out@@YGXHHHPBXF@Z"})
    EXPECT_TRUE(library.function(name)) << name;
}

using LibraryOfAHost = Books;

// More rounds than a process has thread-local slots on Windows.
TEST_F(LibraryOfAHost, IsLoadedAndFreedAgainAndAgain) {
  const struct {
    const char *what;
    bool calls, detaches;
    int rounds;
  } rows[] = {{"loads", false, false, 10000}, {"calls", true, false, 10000}, {"calls and detaches", true, true, 1200}};
  for (const auto &row : rows) {
    SCOPED_TRACE(row.what);
    int before = 0;
    for (int round = 0; round < row.rounds; ++round) {
      LoadedLibrary library(ZELK_LIBRARY);
      ASSERT_TRUE(library) << round;
      using Call = int(ZELK_CALL *)();
      if (row.calls) {
        ASSERT_EQ(reinterpret_cast<Call>(library.function("ZELK_InitHoleMandant"))(), ZELK_OK) << round;
      }
      if (row.detaches) reinterpret_cast<Call>(library.function("ZELK_Detach"))();
      if (round == 10) before = openHandles();
    }
    EXPECT_EQ(openHandles(), before);
  }
}

#if !defined(_WIN32)
using LibraryFile = Environment;

TEST_F(LibraryFile, NeedsAndShowsNothingElse) {
  const std::string output = (folder() / "library").string();
  ASSERT_EQ(runProgram("/usr/bin/objdump", "-pT " ZELK_LIBRARY, output), 0);
  const std::string told = read(output);
  EXPECT_EQ(matches(told, std::regex(R"(SONAME +(\S+))")), std::set<std::string>{"libzelk98.so.0"});
  EXPECT_EQ(matches(told, std::regex(R"(NEEDED +\S*(odbc)\S*)")), std::set<std::string>{}) << "loaded where it is used";
  EXPECT_EQ(matches(told, std::regex(R"(\n[0-9a-f]+ +[gwu]\w* .* \.\w+\s+[0-9a-f]+ +(?:Base +)?(\S+))")),
            matches(read(sourceFolder() / "cmake/zelk98.def"), std::regex(R"(\n\s+(\w+)(?=\s*\n))")));
}
#endif

/// The project's own sources and headers, with their text.
std::vector<std::pair<std::filesystem::path, std::string>> sources() {
  std::vector<std::pair<std::filesystem::path, std::string>> files;
  for (const auto &folder : std::filesystem::directory_iterator(sourceFolder())) {
    const std::string name = folder.path().filename().string();
    if (!folder.is_directory() || name == "build" || name[0] == '.') continue;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
      std::string extension = entry.path().extension().string();
      if (extension == ".cpp" || extension == ".h" || extension == ".c")
        files.emplace_back(std::filesystem::relative(entry.path(), sourceFolder()), read(entry.path()));
    }
  }
  return files;
}

using Style = Environment;

TEST_F(Style, KeepsTheSystemAndTheEnginesInTheirFolders) {
  struct Rule {
    const char *what, *pattern;
    std::vector<std::string> allowed; // beginnings of paths
  };
  const Rule rules[] = {
      {"Windows",
       R"(#include <(windows|objbase|commctrl|commdlg|shellapi)\.h>)",
       {"platform/win32/", "examples/zelkout"}},
      {"POSIX",
       R"(#include <(unistd|fcntl|pthread|spawn|dlfcn|sys/\w+)\.h>)",
       {"platform/posix/", "tools/mutation/", "bench/", "examples/zelkout", "tests/support/process_posix",
        "tests/support/proxy_posix", "tests/store/damage_test", "tests/exports/protocol_test",
        "family/vldb98/odbc/posix/"}},
      {"SQLite", R"(#include <sqlite3\.h>)", {"family/vldb98/sqlite/", "bench/"}},
      {"ODBC", R"(#include <sql(ext)?\.h>)", {"family/vldb98/odbc/"}},
      {"conditional code for a system",
       R"(#\s*if.*(_WIN32|__linux__))",
       {"platform/", "examples/zelkout", "include/zelk98/zelk98.h", "tests/"}},
      {"floating point", R"(\b(double|float)\b)", {"family/vlba98/", "bench/", "tests/"}},
      {"unbounded text functions", R"(\b(strcpy|strcat|sprintf|gets)\()", {"examples/", "tests/"}},
      {"leftovers",
       "\\b(TO"
       "DO|FIX"
       "ME|XX"
       "X)\\b",
       {}},
      {"pasted SQL values", R"(VALUES \('|= ?'" ?\+)", {"tests/"}},
  };
  for (const auto &[path, text] : sources())
    for (const Rule &rule : rules) {
      bool allowed =
          std::any_of(rule.allowed.begin(), rule.allowed.end(), [&, &file = path](const std::string &beginning) {
            return file.generic_string().rfind(beginning, 0) == 0;
          });
      EXPECT_TRUE(allowed || !std::regex_search(text, std::regex(rule.pattern))) << path << ": " << rule.what;
    }
}

#if !defined(_WIN32)
TEST_F(Style, IsThatOfClangFormat) {
  std::string arguments = "--dry-run -Werror";
  for (const auto &[path, text] : sources())
    arguments += " '" + (sourceFolder() / path).string() + "'";
  const std::string output = (folder() / "clang-format").string(), program = "/usr/bin/clang-format";
  ASSERT_TRUE(platform::isFile(program)) << program << " is missing: tools/setup native installs it";
  EXPECT_EQ(runProgram(program, arguments, output), 0) << read(output) << "clang-format -i mends it";
}

// Words and texts that it does not break, too.
TEST_F(Style, HasNoLineOfMoreThan120Columns) {
  for (const auto &[path, text] : sources()) {
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
      auto columns = std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; }); // of UTF-8
      EXPECT_LE(columns, 120) << path.string() << ":" << number;
    }
  }
}
#endif

} // namespace
} // namespace test
