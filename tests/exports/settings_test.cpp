// The settings store: the three functions that keep profile-style sections in the registry.
#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/files.h"
#include "platform/registry.h"
#include "support/books.h"
#include "support/process.h"

namespace test {
namespace {

using platform::Hive;

const char kKey[] = "Software\\Velta\\settings\\";

using Settings = Environment;

/// What a read delivers into a buffer of a size, the buffer being filled with '?' before.
struct Delivered {
  uint32_t length;
  std::string buffer;
};

Delivered read(const char *section, const char *key, const char *missing, uint32_t size) {
  std::string buffer(size + 4, '?');
  uint32_t length = MFGetPrivateProfileString(section, key, missing, buffer.data(), size, "MFIBU.INI");
  EXPECT_EQ(buffer.substr(size), "????") << "written beyond the buffer of " << size;
  return {length, buffer.substr(0, size)};
}

std::string value(const char *section, const char *key) {
  Delivered delivered = read(section, key, "(fehlt)", 300);
  return delivered.buffer.c_str();
}

std::string z(const char *text, size_t size) {
  return std::string(text, size);
}

TEST_F(Settings, AreDeliveredIntoTheBuffer) {
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Name", "abcdefgh", "MFIBU.INI"));
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Leer", nullptr, nullptr));
  static const struct {
    const char *key, *missing;
    uint32_t size, length;
    std::string buffer;
  } rows[] = {// A default that is too long leaves room for two terminators.
              {"fehlt", "abcdefgh", 5, 3, z("abc\0\0", 5)},
              {"fehlt", "abcde", 5, 3, z("abc\0\0", 5)},
              {"fehlt", "abcd", 5, 4, z("abcd\0", 5)},
              {"fehlt", "", 5, 0, z("\0????", 5)},
              {"fehlt", nullptr, 5, 0, z("\0????", 5)},
              {"fehlt", "abcdefgh", 2, 0, z("\0\0", 2)},
              {"fehlt", "abcdefgh", 1, 0, z("\0", 1)},
              {"fehlt", "abcdefgh", 0, 0, ""},
              // A value is cut after what the buffer holds.
              {"Name", "x", 9, 8, z("abcdefgh\0", 9)},
              {"Name", "x", 8, 7, z("abcdefg\0", 8)},
              {"Name", nullptr, 2, 1, z("a\0", 2)},
              {"Name", "x", 1, 0, z("\0", 1)},
              {"Name", "x", 0, 0, ""},
              // Names do not regard case; a value that is there and empty counts.
              {"NAME", "x", 9, 8, z("abcdefgh\0", 9)},
              {"Leer", "x", 3, 0, z("\0??", 3)}};
  for (const auto &row : rows) {
    Delivered delivered = read("MFIBU", row.key, row.missing, row.size);
    EXPECT_EQ(delivered.length, row.length) << row.key << ' ' << row.size;
    EXPECT_EQ(delivered.buffer, row.buffer) << row.key << ' ' << row.size;
  }
  EXPECT_EQ(MFGetPrivateProfileString("MFIBU", "Name", "x", nullptr, 10, nullptr), 0u);
  EXPECT_FALSE(MFWritePrivateProfileString(nullptr, "Name", "x", nullptr));
  EXPECT_FALSE(MFWritePrivateProfileString("MFIBU", nullptr, "x", nullptr));
}

TEST_F(Settings, SectionsAreNotListed) {
  char buffer[8] = "?";
  EXPECT_EQ(MFGetPrivateProfileString(nullptr, "Name", "x", buffer, sizeof buffer, nullptr), 0u);
  EXPECT_STREQ(buffer, "?");
  ASSERT_EQ(recorder.shown.size(), 1u);
  EXPECT_EQ(recorder.shown[0].caption, "Fehler");
  EXPECT_EQ(recorder.shown[0].text,
            "Es wurde versucht die Sektionsnamen aus der Registry abzurufen. Dies ist jedoch nicht möglich.");
}

TEST_F(Settings, NamesOfASectionAreListed) {
  for (const char *name : {"Drei", "Eins", "Zw\xF6lf"})
    ASSERT_TRUE(MFWritePrivateProfileString("Liste", name, "1", nullptr));
  Delivered delivered = read("Liste", nullptr, "x", 40);
  EXPECT_EQ(delivered.length, 16u);
  EXPECT_EQ(delivered.buffer.substr(0, 18), z("Drei\0Eins\0Zw\xF6lf\0\0?", 18));
  delivered = read("Liste", nullptr, "x", 9);
  EXPECT_EQ(delivered.length, 7u);
  EXPECT_EQ(delivered.buffer, z("Drei\0Ei\0\0", 9));
  EXPECT_EQ(read("Keine", nullptr, "x", 9).length, 0u);
}

TEST_F(Settings, NumbersAreTextsOfTenCharacters) {
  static const struct {
    const char *stored;
    int32_t number;
  } rows[] = {{"42", 42},   {"-42", -42}, {" 7", 7}, {"12 Monate", 12},         {"", 0},
              {"keine", 0}, {"0x10", 0},  {"+5", 5}, {"2147483647", INT32_MAX}, {"12345678901", 1234567890}};
  for (const auto &row : rows) {
    ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Zahl", row.stored, nullptr));
    EXPECT_EQ(MFGetPrivateProfileInt("ZELK", "Zahl", 99, nullptr), row.number) << row.stored;
  }
  for (int32_t missing : {0, 99, -1, INT32_MAX, -999999999})
    EXPECT_EQ(MFGetPrivateProfileInt("ZELK", "fehlt", missing, nullptr), missing);
}

TEST_F(Settings, SurviveWithEveryCharacter) {
  std::string all;
  for (int c = 1; c < 256; ++c)
    if (c != '\n' && c != '\r') all += char(c);
  for (const std::string &text :
       {all, std::string("; [x] = \"y\""), std::string("innen  und \t aussen"), std::string(" vorn"),
        std::string("hinten\t "), std::string(" "), std::string("\" x\""), std::string("\"\"x \"\""),
        std::string("\"x\""), std::string("\""), std::string("\xC4\xD6\xDC\xE4\xF6\xFC\xDF\x80")}) {
    ASSERT_TRUE(MFWritePrivateProfileString("Zeichen", "Wert", text.c_str(), nullptr));
    EXPECT_EQ(value("Zeichen", "Wert"), text);
  }
  ASSERT_TRUE(MFWritePrivateProfileString("Gr\xF6\xDF"
                                          "en",
                                          "H\xF6he", "1", nullptr));
  EXPECT_EQ(value("Gr\xF6\xDF"
                  "en",
                  "H\xF6he"),
            "1");
}

TEST_F(Settings, SectionsCountHundredCharacters) {
  for (const char *letter : {"s", "\xFC"}) {
    std::string name;
    for (int i = 0; i < 99; ++i)
      name += letter;
    ASSERT_TRUE(MFWritePrivateProfileString((name + "a weg").c_str(), "Wert", "a", nullptr));
    ASSERT_TRUE(MFWritePrivateProfileString((name + "b weg").c_str(), "Wert", "b", nullptr));
    EXPECT_EQ(value((name + "a").c_str(), "Wert"), "a");
    EXPECT_EQ(value((name + "b other").c_str(), "Wert"), "b");
    EXPECT_EQ(value(name.c_str(), "Wert"), "(fehlt)");
  }
}

// By the value of the switch; empty: it is missing.
class SettingsHive : public Environment, public ::testing::WithParamInterface<std::string> {};

TEST_P(SettingsHive, IsChosenOnce) {
  std::string switchValue = GetParam();
  bool userSpecific = switchValue == "J";
  std::string section = std::string(kKey) + "MFIBU";
  if (!switchValue.empty()) platform::writeRegistry(Hive::LocalMachine, kKey, "RegUserSpecific", switchValue);
  platform::writeRegistry(Hive::LocalMachine, section, "Beide", "Rechner");
  platform::writeRegistry(Hive::LocalMachine, section, "NurRechner", "Rechner");
  platform::writeRegistry(Hive::CurrentUser, section, "Beide", "Benutzer");
  platform::writeRegistry(Hive::CurrentUser, section, "NurBenutzer", "Benutzer");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(value("MFIBU", "Beide"), userSpecific ? "Benutzer" : "Rechner");
    EXPECT_EQ(value("MFIBU", "NurRechner"), "Rechner");
    EXPECT_EQ(value("MFIBU", "NurBenutzer"), userSpecific ? "Benutzer" : "(fehlt)");
    // What is decided stays for the process.
    platform::writeRegistry(Hive::LocalMachine, kKey, "RegUserSpecific", userSpecific ? "N" : "J");
  }
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Neu", "hier", nullptr));
  EXPECT_EQ(platform::readRegistry(Hive::CurrentUser, section, "Neu").value_or(""), userSpecific ? "hier" : "");
  EXPECT_EQ(platform::readRegistry(Hive::LocalMachine, section, "Neu").value_or(""), userSpecific ? "" : "hier");
}

INSTANTIATE_TEST_SUITE_P(ByTheSwitch, SettingsHive, ::testing::Values("", "J", "j", "N"));

#if !defined(_WIN32)

/// The text file that stands in for the registry where there is none.
class SettingsFile : public Environment {
protected:
  std::filesystem::path path() const { return folder() / "settings.ini"; }
  std::string content() const {
    std::ostringstream text;
    text << std::ifstream(path(), std::ios::binary).rdbuf();
    return text.str();
  }
};

TEST_F(SettingsFile, KeepsHivesAndKeysApart) {
  platform::writeRegistry(Hive::LocalMachine, "A", "Wert", "1");
  platform::writeRegistry(Hive::CurrentUser, "A", "Wert", "2");
  platform::writeRegistry(Hive::LocalMachine, "A\\B", "Wert", "3");
  EXPECT_EQ(platform::readRegistry(Hive::LocalMachine, "A", "Wert"), "1");
  EXPECT_EQ(platform::readRegistry(Hive::CurrentUser, "A", "Wert"), "2");
  EXPECT_EQ(platform::readRegistry(Hive::LocalMachine, "A\\B", "Wert"), "3");
  EXPECT_EQ(platform::readRegistry(Hive::CurrentUser, "A\\B", "Wert"), std::nullopt);
  EXPECT_EQ(platform::registrySubkeyCount(Hive::LocalMachine, "A"), 1);
  EXPECT_NE(content().find("[HKEY_LOCAL_MACHINE\\A\\B]"), std::string::npos);
}

TEST_F(SettingsFile, ThatIsDamagedCountsAsFarAsItGoes) {
  std::ofstream(path(), std::ios::binary)
      << "Unsinn\n[halb\nx=1\n\n[HKEY_LOCAL_MACHINE\\Software\\Velta\\settings\\MFIBU]\nName = da\n=\n";
  EXPECT_EQ(value("MFIBU", "Name"), "da");
  EXPECT_EQ(value("MFIBU", "x"), "(fehlt)");
  EXPECT_TRUE(MFWritePrivateProfileString("MFIBU", "Neu", "1", nullptr));
  EXPECT_EQ(value("MFIBU", "Name"), "da");
  EXPECT_EQ(value("MFIBU", "Neu"), "1");
}

TEST_F(SettingsFile, ThatCannotBeWrittenRefuses) {
  // Below a file there can be no folder.
  std::ofstream(folder() / "datei") << "x";
  ::setenv("ZELK_SETTINGS", (folder() / "datei" / "settings.ini").c_str(), 1);
  EXPECT_FALSE(MFWritePrivateProfileString("MFIBU", "Name", "x", nullptr));
  EXPECT_EQ(value("MFIBU", "Name"), "(fehlt)");
}

TEST_F(SettingsFile, RefusesNamesThatCannotStandInIt) {
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Name", "x", nullptr));
  const std::string before = content();
  static const char *const rows[][2] = {{"MFIBU", ""},       {"MFIBU", "a=b"},   {"MFIBU", "[a"}, {"MFIBU", ";a"},
                                        {"MFIBU", "#a"},     {"MFIBU", " a"},    {"MFIBU", "a "}, {"MFIBU", "a\tb"},
                                        {"MFIBU", "a\nb=c"}, {"MFIBU", "a\x7F"}, {"MFIBU ", "a"}, {"MFIBU]", "a"},
                                        {"MFIBU\n[b", "a"},  {"MF\x01", "a"},    {"MFIBU\t", "a"}};
  for (const auto &[section, name] : rows)
    EXPECT_FALSE(MFWritePrivateProfileString(section, name, "1", nullptr)) << section << ", " << name;
  EXPECT_FALSE(MFWritePrivateProfileString("MFIBU", "a", "1\nName=y", nullptr));
  EXPECT_EQ(content(), before);
}

TEST_F(SettingsFile, KeepsItsModeOwnerAndLink) {
  namespace fs = std::filesystem;
  const fs::path target = folder() / "woanders" / "fibu.ini";
  fs::create_directory(target.parent_path());
  fs::create_symlink("woanders/fibu.ini", path());
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Name", "x", nullptr)) << "to where the link leads";
  EXPECT_EQ(fs::status(target).permissions(), fs::perms(0600));
  fs::permissions(target, fs::perms(0640));
  const bool given = runProgram("/bin/chown", "65534:65534 '" + target.string() + "'", "/dev/null") == 0;
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Name", "y", nullptr));
  EXPECT_TRUE(fs::is_symlink(path()));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
  EXPECT_EQ(value("MFIBU", "Name"), "y");
  const std::string owner = (folder() / "owner").string();
  ASSERT_EQ(runProgram("/usr/bin/stat", "-c %u:%g '" + target.string() + "'", owner), 0);
  EXPECT_TRUE(!given || platform::readFile(owner) == "65534:65534\n");
}

TEST_F(SettingsFile, StaysWholeOnAFullDisk) {
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Name", "x", nullptr));
  const std::string before = content();
  for (uint64_t room : {1, 20, int(before.size())}) {
    ASSERT_TRUE(limitFileSize(room));
    EXPECT_FALSE(MFWritePrivateProfileString("MFIBU", "Neu", "y", nullptr)) << room;
    limitFileSize(0);
    EXPECT_EQ(content(), before);
  }
  EXPECT_FALSE(std::filesystem::exists(path().string() + ".new"));
  EXPECT_TRUE(MFWritePrivateProfileString("MFIBU", "Neu", "y", nullptr));
}

TEST_F(SettingsFile, LiesInTheFolderOfTheUserOtherwise) {
  ::unsetenv("ZELK_SETTINGS");
  ::setenv("HOME", folder().c_str(), 1);
  ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "Name", "x", nullptr));
  EXPECT_TRUE(std::filesystem::exists(folder() / ".config" / "velta" / "settings.ini"));
  EXPECT_EQ(value("MFIBU", "Name"), "x");
}

#endif

} // namespace
} // namespace test
