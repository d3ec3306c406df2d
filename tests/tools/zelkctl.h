/// zelkctl as people use it, as a program: what it prints, what it leaves, its exit codes.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/files.h"
#include "support/books.h"
#include "support/process.h"

namespace test {

class Zelkctl : public Environment {
protected:
  void SetUp() override {
    if (!shareSettings()) GTEST_SKIP() << "would change the settings of this machine";
  }

  struct Outcome {
    int code;
    std::string text; ///< standard output and standard error
  };

  Outcome run(const std::string &arguments) {
    std::filesystem::path output = folder() / "output.txt";
    int code = runProgram(ZELK_ZELKCTL, arguments, output.string());
    std::string text = platform::readFile(output.string()).value_or("");
    std::erase(text, '\r'); // of the line ends on Windows
    return {code, text};
  }

  void provisionByProgram() { ASSERT_EQ(run("einrichten " + quoted(folder() / "programm")).code, 0); }

  static std::string quoted(const std::filesystem::path &path) { return "\"" + path.generic_string() + "\""; }
  static std::string sample(const std::string &name) { return quoted(sourceFolder() / "samples" / name); }

  std::string write(const std::string &name, const std::string &text) {
    std::filesystem::create_directories((folder() / name).parent_path());
    std::ofstream(folder() / name, std::ios::binary) << text;
    return quoted(folder() / name);
  }
};

#define EXPECT_OUTCOME(arguments, expectedCode, expectedText)                                                          \
  do {                                                                                                                 \
    Outcome checked = run(arguments);                                                                                  \
    EXPECT_EQ(checked.code, expectedCode) << checked.text;                                                             \
    EXPECT_NE(checked.text.find(expectedText), std::string::npos) << checked.text;                                     \
  } while (false)

} // namespace test
