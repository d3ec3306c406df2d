// The notification of dependent applications, with a real process at the other end.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "frame/messages.h"
#include "support/dependants.h"

namespace test {
namespace {

using namespace std::string_literals;
using namespace vldb98;
using Notification = Dependants;

const char kNotStarted[] = "Der ZELKOUT-Prozess kann nicht gestartet werden. Veränderungen im Datenbestand können "
                           "nicht an die abhängigen Anwendungen mitgeteilt werden.",
           kIncomplete[] = "Es konnten nicht alle Daten an die abhängigen ZELKOUT Callback-DLLs geschickt werden. Die "
                           "Veränderungen im Datenbestand konnten nicht vollständig den abhängigen Anwendungen "
                           "mitgeteilt werden.";

ZelkResult post(const std::string &document) {
  ZELK_BUCHUNG posting = validPosting();
  put(posting.Belegnummer, document);
  return ZELK_BuchungEinfuegen(&posting, 0);
}

/// The offset of the first byte in which two blocks differ; their size when there is none.
size_t firstDifference(const ZELK_OUT_BLOCK &a, const ZELK_OUT_BLOCK &b) {
  auto bytes = reinterpret_cast<const char *>(&a);
  return size_t(std::mismatch(bytes, bytes + sizeof a, reinterpret_cast<const char *>(&b)).first - bytes);
}

TEST_F(Notification, StartsNothingWhereNobodyIsRegistered) {
  install();
  EXPECT_EQ(post("A"), ZELK_OK);
  ZELK_Out(1, 99, 0, nullptr, 0);
  ZELK_Detach();
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_FALSE(std::filesystem::exists(output()));
}

TEST_F(Notification, HandsPostingsOverTenLinesAtATime) {
  registerApplications();
  install();
  ZELK_InitDLLs(); // the very first call of the process
  std::vector<std::string> expected;
  for (int count : {1, 10, 12, 25}) {
    std::string document = "B-" + std::to_string(count);
    EXPECT_EQ(postLines(document, count), ZELK_OK);
    for (const std::string &line : printedFor(document, count))
      expected.push_back(line);
  }
  EXPECT_EQ(postLines("refused", 0), ZELKERR_uzl_Teilbuchungsanzahl);
  ZELK_Detach();
  expected.push_back("Ende");
  EXPECT_EQ(lines(), expected);
  // Once more, in the same process.
  EXPECT_EQ(post("C"), ZELK_OK);
  ZELK_InitDLLs();
  EXPECT_EQ(post("D"), ZELK_OK);
  ZELK_FreeDLLs();
  EXPECT_EQ(post("unnoticed"), ZELK_OK);
  ZELK_Detach();
  for (const char *document : {"C", "D"}) {
    expected.push_back(std::string("neu Buchung 1/3 ") + document +
                       " 210126 EUR: 1200 an 1000 000000100,00 Bareinzahlung");
    expected.push_back("Ende");
  }
  EXPECT_EQ(lines(), expected);
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_FALSE(hasZombie());
}

// Fields of the first line unless they are the header's. Amounts with a minus reach into the reserved byte.
struct PostingCase {
  int client;
  const char *currency, *debit;
  int debitKind;
  const char *credit, *gross, *rate, *tax;
  const char *sentCurrency, *sentGross, *sentRate, *sentTax;
};

const PostingCase kPostings[] = {
    {1, "", "10010", 4, "8400", "119,00", "19,00", "", "EUR", "000000119,00", "19,00", "000000019,00"},
    {1, "", "10010", 4, "8400", "-119,00", "19,00", "", "EUR", "-000000119,00", "19,00", "-000000019,00"},
    // The tax is reckoned from the rate, also where the posting carries one that differs a little.
    {1, "", "10010", 4, "8400", "119,00", "19,00", "19,02", "EUR", "000000119,00", "19,00", "000000019,00"},
    {1, "", "10010", 4, "8400", "119,00", "", "", "EUR", "000000119,00", "", ""},
    {1, "CHF", "10010", 4, "8400", "119,00", "19,00", "", "CHF", "000000119,00", "19,00", "000000019,00"},
    {2, "", "10010", 4, "3200", "100,00", "8,10", "", "CHF", "000000100,00", "08,10", "000000007,49"},
    {2, "EUR", "10010", 4, "3200", "100,00", "8,10", "", "EUR", "000000100,00", "08,10", "000000007,50"},
};

TEST_F(Notification, CarriesAPostingAsItIsStored) {
  registerApplications();
  installStubborn("abschrift");
  size_t read = 0;
  for (const PostingCase &row : kPostings) {
    SCOPED_TRACE(std::to_string(&row - kPostings));
    ZELK_BUCHUNG posting = validPosting();
    posting.Mandantennummer = row.client;
    posting.Sollart = row.debitKind;
    posting.Zahlungsziel = 2;
    posting.Umbuchung = 1;
    put(posting.Valutadatum, "220126");
    put(posting.OPBelegnummer, "OP-7");
    put(posting.DMSID, "DMS-4711");
    put(posting.Text, "Gr\xFC\xDF"
                      "e");
    put(posting.Text2, "zwei");
    put(posting.Waehrung, row.currency);
    put(posting.Sollkonto, row.debit);
    put(posting.Habenkonto, row.credit);
    put(posting.Bruttobetrag, row.gross);
    put(posting.Steuersatz, row.rate);
    put(posting.Steuerbetrag, row.tax);
    ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK) << recorder.takeText();
    ZELK_OUT_BLOCK block, expected{};
    ASSERT_TRUE(eventually([&] { return outputText().size() == (read + 1) * sizeof block; }));
    std::memcpy(&block, outputText().data() + read++ * sizeof block, sizeof block);
    expected.Befehl = 1;
    expected.Aktion = 1;
    expected.Art = 16;
    ZELK_SPLITBUCHUNG &sent = expected.Nutzlast.Buchung;
    sent.Mandantennummer = row.client;
    sent.Stapelnummer = 3;
    sent.Teilbuchungsanzahl = 1;
    sent.Zahlungsziel = 2;
    sent.Umbuchung = 1;
    put(sent.Belegdatum, "210126");
    put(sent.Belegnummer, "B-1");
    put(sent.OPBelegnummer, "OP-7");
    put(sent.Valutadatum, "220126");
    put(sent.Waehrung, row.sentCurrency);
    put(sent.DMSID, "DMS-4711");
    ZELK_TEILBUCHUNG &line = sent.Teilbuchung[0];
    line.Sollart = row.debitKind;
    line.Habenart = ZELK_SACHKONTO;
    put(line.Sollkonto, row.debit);
    put(line.Habenkonto, row.credit);
    std::memcpy(line.Bruttobetrag, row.sentGross, std::strlen(row.sentGross));
    put(line.Steuersatz, row.sentRate);
    std::memcpy(line.Steuerbetrag, row.sentTax, std::strlen(row.sentTax));
    put(line.Text, "Gr\xFC\xDF"
                   "e");
    put(line.Text2, "zwei");
    EXPECT_STREQ(block.Nutzlast.Buchung.Waehrung, row.sentCurrency);
    EXPECT_STREQ(block.Nutzlast.Buchung.Teilbuchung[0].Bruttobetrag, row.sentGross);
    EXPECT_STREQ(block.Nutzlast.Buchung.Teilbuchung[0].Steuerbetrag, row.sentTax);
    EXPECT_EQ(firstDifference(block, expected), sizeof block);
  }
}

TEST_F(Notification, CarriesAccountsAndPartsOfPostings) {
  registerApplications();
  install();
  ASSERT_EQ(postLines("B-12", 12), ZELK_OK);
  DATENBANK account{};
  put(account.Sachkonto.Nr, "1200   ");
  put(account.Sachkonto.Kuerzel, "BANK");
  put(account.Sachkonto.Name, "Gesch\xE4"
                              "ftskonto \x80");
  account.Sachkonto.Steuerschluessel = 3;
  account.Sachkonto.Kostenschablone = 7;
  ZELK_Out(3, ZELK_SACHKONTO, 1, &account, 0);
  DATENBANK person{};
  put(person.Personenkonto.Nr, "10010  ");
  put(person.Personenkonto.Kuerzel, "AHORN");
  put(person.Personenkonto.Name, "Ahorn\nblatt");
  put(person.Personenkonto.Ort, "Berlin");
  put(person.Personenkonto.Sammelkonto, "1400   ");
  ZELK_Out(1, ZELK_DEBITOR, 2, &person, 0);
  ZELK_Out(2, ZELK_KREDITOR, -1, &person, 0);
  ZELK_Out(7, 8, 5, &person, 0);
  // The posting whose lines the session has in memory, from a line on; and another one, to which they do not belong.
  // Then one that has to be read, since another client's has taken its place or the thread is new.
  auto lineOf = [](int32_t number, int16_t start, int32_t client = 1) {
    DATENBANK posting{};
    posting.Batchbuchung.Stapel = 3;
    posting.Batchbuchung.Nr = number;
    put(posting.Batchbuchung.Belegnummer, "X");
    put(posting.Batchbuchung.Belegdatum, "460121");
    ZELK_Out(2, 16, client, &posting, start);
  };
  lineOf(1, 10);
  lineOf(1, 11);
  lineOf(1, 12);
  lineOf(2, 0);
  ZELK_BUCHUNG other = validPosting();
  other.Mandantennummer = 2;
  put(other.Sollkonto, "1020");
  ASSERT_EQ(ZELK_BuchungEinfuegen(&other, 0), ZELK_OK);
  lineOf(1, 11);
  lineOf(1, 0, 2);
  std::thread(lineOf, 1, 11, 1).join();
  ASSERT_EQ(ZELK_Stapel(1, 1, 50, "Shop", 0, 0, 0, 0), ZELK_OK);
  for (int32_t withBatch : {0, 1})
    EXPECT_EQ(ZELK_LoescheStapel(1, 50, withBatch, 0), ZELK_OK);
  EXPECT_EQ(ZELK_LoescheStapel(1, 50, 1, 0), ZELKERR_uzl_Stapelnr);
  ZELK_Detach();
  std::vector<std::string> expected = printedFor("B-12", 12);
  for (const char *line :
       {"gelöscht Sachkonto 1 1200 [BANK] Geschäftskonto €",
        "neu Debitor 2 10010 [AHORN] Ahorn blatt, Berlin, Sammelkonto 1400",
        "geändert Kreditor -1 10010 [AHORN] Ahorn blatt, Berlin, Sammelkonto 1400", "Aktion 7 Art 8",
        "geändert Buchung 1/3 X 210126 EUR: 1200 an 1000 000000011,00 Teil 11; 1200 an 1000 "
        "000000012,00 Teil 12",
        "geändert Buchung 1/3 X 210126 EUR: 1200 an 1000 000000012,00 Teil 12", "geändert Buchung 1/3 X 210126 EUR:",
        "geändert Buchung 1/3 X 210126 EUR:", "neu Buchung 2/3 B-1 210126 CHF: 1020 an 1000 000000100,00 Bareinzahlung",
        "geändert Buchung 1/3 X 210126 EUR: 1200 an 1000 000000012,00 Teil 12",
        "geändert Buchung 2/3 X 210126 CHF: 1020 an 1000 000000100,00 Bareinzahlung",
        "geändert Buchung 1/3 X 210126 EUR: 1200 an 1000 000000012,00 Teil 12", "gelöscht alle Buchungen 1/50",
        "gelöscht alle Buchungen 1/50", "Ende"})
    expected.push_back(line);
  EXPECT_EQ(lines(), expected);
}

TEST_F(Notification, LaysAccountsOutForThePeer) {
  registerApplications();
  installStubborn("abschrift");
  ASSERT_EQ(ZELK_Attach(true), 1);
  DATENBANK record{};
  record.Sachkonto.Steuerschluessel = 3;
  record.Sachkonto.Kostenschablone = 7;
  ZELK_Out(3, ZELK_SACHKONTO, 1, &record, 0);
  record = {};
  record.Personenkonto.Zahlungsziel = 4;
  record.Personenkonto.Mahnkennziffer = -2;
  record.Personenkonto.Gesperrt = 1;
  put(record.Personenkonto.IBAN, "DE67999000100015917190");
  put(record.Personenkonto.Kreditlimit, "000025000,00");
  ZELK_Out(1, ZELK_DEBITOR, 9, &record, 0);
  ZELK_Detach();
  std::vector<ZELK_OUT_BLOCK> blocks(outputText().size() / sizeof(ZELK_OUT_BLOCK));
  std::memcpy(blocks.data(), outputText().data(), blocks.size() * sizeof(ZELK_OUT_BLOCK));
  ZELK_OUT_BLOCK ledger{1, 3, 1, {}}, person{1, 1, 4, {}};
  std::memset(&ledger.Nutzlast, 0, sizeof ledger.Nutzlast);
  std::memset(&person.Nutzlast, 0, sizeof person.Nutzlast);
  ledger.Nutzlast.Sachkonto.Wert = 1;
  ledger.Nutzlast.Sachkonto.Kontoart = 2;
  ledger.Nutzlast.Sachkonto.Steuerschluessel = 3;
  ledger.Nutzlast.Sachkonto.Kostenschablone = 7;
  ZELK_OUT_PERSONENKONTO &fields = person.Nutzlast.Personenkonto;
  fields.Wert = 9;
  fields.Zahlungsziel = 4;
  fields.Mahnkennziffer = -2;
  fields.Gesperrt = 1;
  put(fields.IBAN, "DE67999000100015917190");
  put(fields.Kreditlimit, "000025000,00");
  put(fields.Steuersatz, "00,00");
  ASSERT_EQ(blocks.size(), 3u);
  EXPECT_EQ(firstDifference(blocks[0], ledger), sizeof ledger);
  EXPECT_EQ(firstDifference(blocks[1], person), sizeof person);
  EXPECT_EQ(blocks[2].Befehl, 0);
  EXPECT_TRUE(eventually([&] { return !processRuns(peerId()); })) << "which does not end by itself";
  EXPECT_FALSE(hasZombie());
}

TEST_F(Notification, TellsOfAMissingProgramOnceAndPostsOn) {
  registerApplications();
  EXPECT_EQ(post("A"), ZELK_OK);
  EXPECT_EQ(recorder.takeText(), kNotStarted);
  EXPECT_EQ(post("B"), ZELK_OK);
  ZELK_Detach();
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_EQ(postingsOf(1, 3).size(), 2u);
  EXPECT_EQ(recorder.takeText(), kNotStarted) << "the next attach tries again";
}

TEST_F(Notification, GivesUpOnAProcessThatDoesNotAnswer) {
  registerApplications(2);
  setTimeout("10");
  size_t stored = 0;
  for (const char *kind : {"stumm", "einmal"}) {
    SCOPED_TRACE(kind);
    installStubborn(kind);
    ZELK_Attach(true);
    ASSERT_TRUE(eventually([&] { return peerId() != 0; }));
    if (std::strcmp(kind, "einmal") == 0) {
      EXPECT_EQ(post("heard"), ZELK_OK);
      EXPECT_EQ(recorder.takeText(), "");
      ++stored;
    }
    for (const char *message : {kIncomplete, "", ""}) {
      EXPECT_EQ(postLines("unheard", 25), ZELK_OK);
      EXPECT_EQ(recorder.takeText(), message);
      EXPECT_TRUE(processRuns(peerId()));
      ++stored;
    }
    ZELK_Detach();
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_TRUE(eventually([&] { return !processRuns(peerId()); }));
    EXPECT_FALSE(hasZombie());
  }
  std::filesystem::remove(installed());
  EXPECT_EQ(postingsOf(1, 3).size(), stored);
}

TEST_F(Notification, WaitsForEachApplicationAsLongAsTheSettingSays) {
  // Where a text that means nothing counted as 0, the first change would find the process still starting.
  registerApplications(40);
  install();
  size_t printed = 0;
  for (const char *setting : {"0", "bald", "-5", ""}) {
    MFWritePrivateProfileString("ZELK", "ZelkOutTimeout", setting, nullptr);
    EXPECT_EQ(post("A"), ZELK_OK);
    ZELK_Detach();
    EXPECT_EQ(recorder.takeText(), "") << setting;
    EXPECT_EQ(lines().size(), printed += 2) << setting;
  }
}

TEST_F(Notification, LeavesTheProcessThatDoesNotAnswerRunning) {
  registerApplications();
  setTimeout("10");
  static const struct {
    const char *kind;
    bool posts;
    const char *message;
  } rows[] = {{"stumm", false, kIncomplete}, {"einmal", false, ""}, {"taub", true, ""}, {"einmal", true, kIncomplete}};
  for (const auto &row : rows) {
    SCOPED_TRACE(row.kind);
    installStubborn(row.kind);
    ZELK_Attach(true);
    ASSERT_TRUE(eventually([&] { return peerId() != 0; }));
    if (row.posts) {
      EXPECT_EQ(post("A"), ZELK_OK);
    }
    EXPECT_EQ(recorder.takeText(), "");
    ZELK_Detach();
    EXPECT_EQ(recorder.takeText(), row.message);
    EXPECT_TRUE(processRuns(peerId()));
    ZELK_Out(1, 99, 0, nullptr, 0);
    EXPECT_EQ(recorder.takeText(), "") << "nobody is left to be told";
    endProcess(peerId());
    EXPECT_TRUE(eventually([&] { return !processRuns(peerId()) && !hasZombie(); }));
  }
}

TEST_F(Notification, LeavesTheBlockToAProcessThatReadsIt) {
  registerApplications();
  setTimeout("10");
  const std::filesystem::path go = output().string() + ".weiter";
  auto letGo = [&] {
    std::ofstream(go, std::ios::binary) << "x";
    EXPECT_TRUE(eventually([&] { return !std::filesystem::exists(go); }));
  };
  std::string expected;
  for (bool inTime : {false, true}) {
    installStubborn("langsam");
    ZELK_Attach(true);
    ASSERT_TRUE(eventually([&] { return peerId() != 0; }));
    EXPECT_EQ(post("A"), ZELK_OK);
    if (inTime) recorder.whileShown = letGo;
    ZELK_Detach();
    EXPECT_EQ(recorder.takeText(), kIncomplete);
    if (!inTime) {
      letGo();
      endProcess(peerId());
    }
    EXPECT_TRUE(eventually([&] { return !processRuns(peerId()); }));
    // The change as it was handed over, and the end only after it.
    expected += inTime ? "\1\0"s : "\1"s;
    std::string commands, text = outputText();
    for (size_t i = 0; i < text.size(); i += sizeof(ZELK_OUT_BLOCK))
      commands += text[i];
    EXPECT_EQ(commands, expected);
  }
}

struct ChildBooks : Environment {
  void TestBody() override {}
};

ChildRole dyingHost("dying host", [](const std::string &) {
  auto *books = new ChildBooks;
  (void)books;
  std::_Exit(post("last words") == ZELK_OK ? 0 : 1);
  return 1;
});

TEST_F(Notification, ProcessEndsWithItsHost) {
  registerApplications();
  install();
  EXPECT_EQ(runChild("dying host"), 0);
  EXPECT_TRUE(eventually([&] { return lines().size() == 2; }));
  EXPECT_EQ(lines().back(), "Das Programm, das die Änderungen meldet, ist beendet.");
}

#if !defined(_WIN32)
TEST_F(Notification, EndsNoProcessByItsNumber) {
  registerApplications();
  install();
  // A sanitizer needs descriptors for the first look at a class: once all goes well.
  ZELK_Attach(false);
  ZELK_Status();
  frame::showMessage(resources::kCompanionNotStarted);
  recorder.takeText();
  ZELK_Detach();
  // One descriptor more each time: once it is started, and the handle of the process is what is wanting.
  bool started = false;
  for (int count = 4; !started && count < 200; ++count) {
    ASSERT_TRUE(limitDescriptors(count));
    ZELK_Attach(false);
    started = recorder.takeText().empty() && ZELK_Status() == ZELK_OK;
    limitDescriptors(0);
    ZELK_Detach();
  }
  EXPECT_TRUE(started);
  EXPECT_TRUE(eventually([&] { return lines() == std::vector<std::string>{"Ende", "Ende", "Ende"}; }));
}

TEST_F(Notification, ProcessInheritsNothingElse) {
  registerApplications();
  setTimeout("10");
  installStubborn("taub");
  std::ofstream own(folder() / "des Hosts");
  ZELK_Attach(true);
  ASSERT_TRUE(eventually([&] { return peerId() != 0; }));
  std::vector<std::string> open;
  for (const auto &entry : std::filesystem::directory_iterator("/proc/" + std::to_string(peerId()) + "/fd"))
    open.push_back(std::filesystem::read_symlink(entry).string());
  EXPECT_EQ(open.size(), 7u);
  EXPECT_EQ(std::count(open.begin(), open.end(), "/dev/null"), 3);
  EXPECT_EQ(std::count(open.begin(), open.end(), (folder() / "des Hosts").string()), 0);
}
#endif

} // namespace
} // namespace test
