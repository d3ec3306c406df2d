/// Dependent applications for tests: registered names, and the notification process in the program directory.
#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/registry.h"
#include "platform/system.h"
#include "support/books.h"
#include "support/process.h"

namespace test {

class Dependants : public Books {
protected:
  Dependants() {
    setEnvironment("ZELK_OUT_DATEI", output().string());
    setTimeout("120000");
  }
  ~Dependants() override {
    ZELK_Detach();
    if (stubborn_ && processRuns(peerId())) {
      endProcess(peerId());
      // Its folder can be removed when it has gone.
      EXPECT_TRUE(eventually([&] { return !processRuns(peerId()); }));
    }
    setEnvironment("ZELK_OUT_DATEI", "");
    setEnvironment("ZELK_TEST_PEER", "");
  }

  void setTimeout(const std::string &value) {
    ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "ZelkOutTimeout", value.c_str(), nullptr));
  }

  void registerApplications(int count = 1) {
    for (int i = 1; i <= count; ++i)
      ASSERT_TRUE(platform::writeRegistry(platform::Hive::LocalMachine,
                                          "SOFTWARE\\Velta\\ZELK_Out\\Anwendung" + std::to_string(i), "Dll", "x.dll"));
  }

  /// The reference process.
  void install() { install(ZELK_ZELKOUT); }
  /// One that does not do as it should. \param kind see stubborn_zelkout.c
  void installStubborn(const char *kind) {
    stubborn_ = true;
    setEnvironment("ZELK_TEST_PEER", kind);
    install(ZELK_STUBBORN_ZELKOUT);
    std::filesystem::remove(idFile());
  }

  std::filesystem::path installed() const {
    return folder() / "programm" / (std::string("zelkout") + platform::kProgramExtension);
  }
  std::filesystem::path output() const { return folder() / "ausgabe"; }
  std::string outputText() const {
    std::ifstream file(output(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// What the reference process has printed so far.
  std::vector<std::string> lines() const {
    std::istringstream text(outputText());
    std::vector<std::string> all;
    for (std::string line; std::getline(text, line);)
      all.push_back(line);
    return all;
  }

  /// The process id of the stubborn process; 0 until it has been ready, if it ever is.
  int peerId() const {
    std::ifstream file(idFile());
    int id = 0;
    file >> id;
    return id;
  }

  template <class Condition> static bool eventually(Condition &&condition) {
    for (uint64_t end = platform::steadyMilliseconds() + 60000; platform::steadyMilliseconds() < end;) {
      if (condition()) return true;
      platform::sleepMicroseconds(2000);
    }
    return condition();
  }

private:
  std::filesystem::path idFile() const { return output().string() + ".id"; }

  void install(const std::string &program) {
    // (The standard library of mingw cannot overwrite.)
    std::filesystem::remove(installed());
    std::filesystem::copy_file(program, installed());
  }

  bool stubborn_ = false;
};

/// Inserts a posting of any number of lines into batch 3 of client 1: from 1200 to 1000, the amounts 1,00 and up.
inline ZelkResult postLines(const std::string &document, int lines) {
  ZelkResult result =
      ZELK_SplitStart(1, 3, "210126", document.c_str(), 0, 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr);
  for (int i = 1; i <= lines && result == ZELK_OK; ++i) {
    std::string amount = std::to_string(i) + ",00", text = "Teil " + std::to_string(i);
    result = ZELK_SplitEinfuegen("1200", ZELK_SACHKONTO, "1000", ZELK_SACHKONTO, amount.c_str(), nullptr, nullptr,
                                 text.c_str(), 0, nullptr);
  }
  return result == ZELK_OK ? ZELK_SplitEnde(1, 0) : result;
}

/// The lines that the reference process prints for it.
inline std::vector<std::string> printedFor(const std::string &document, int lines) {
  std::vector<std::string> all;
  for (int i = 1; i <= lines; ++i) {
    if (i % 10 == 1) all.push_back("neu Buchung 1/3 " + document + " 210126 EUR:");
    char amount[16];
    std::snprintf(amount, sizeof amount, "%09d,00", i);
    all.back() += std::string(i % 10 == 1 ? " " : "; ") + "1200 an 1000 " + amount + " Teil " + std::to_string(i);
  }
  return all;
}

} // namespace test
