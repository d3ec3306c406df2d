// The selection dialogs, played by scripts.
#include <algorithm>
#include <cstring>

#include "support/books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

using Event = DialogEvent;
constexpr char kAsks[] = "Bitte wählen Sie einen Eintrag aus der Listbox aus.";

/// Does something else while the dialog is open, before the script goes on.
class Meanwhile : public Recorder {
public:
  explicit Meanwhile(std::function<void()> work) : work_(std::move(work)) {}
  void choose(platform::Selection &selection, void *parent) override {
    work_();
    Recorder::choose(selection, parent);
  }

private:
  std::function<void()> work_;
};

class Selections : public Books {
protected:
  Selections() {
    uint8_t found;
    EXPECT_TRUE(other->SetzeFista(1, found) && found);
  }

  /// The lines of the dialog shown last, "|" for the tabs.
  std::string lines() {
    std::string all;
    for (const std::string &line : recorder.dialogs.at(0).lines)
      all += (all.empty() ? "" : "\n") + line;
    std::replace(all.begin(), all.end(), '\t', '|');
    return all;
  }

  void insertCentre(const std::string &number, int16_t dimension, const std::string &reference, const char *name) {
    DATENBANK record{};
    put(record.Kost.Nr, number + std::string(7 - number.size(), ' '));
    record.Kost.Dimension = dimension;
    put(record.Kost.Kostref, reference + std::string(7 - reference.size(), ' '));
    put(record.Kost.Name, name);
    ASSERT_TRUE(other->Insert(record, kKost));
  }

  std::unique_ptr<Store> other = session(std::chrono::milliseconds(0));
};

TEST_F(Selections, FollowTheScript) {
  static const struct {
    std::vector<Event> script; ///< from number order on; its last event ends the dialog
    int32_t kind;
    const char *number; ///< null: cancelled
    const char *name, *shortName;
    int asked = 0;
  } rows[] = {
      {{{Event::DoubleClick, 13}}, 4, "10130", "Nordwind Steuerkanzlei PartG mbB", "NORDWIND"},
      {{{Event::Select, 0}, {Event::Select, 12}, {Event::Ok}}, 4, "10120", "Mustermann", "MUSTERM"},
      {{{Event::Select, 3}, {Event::Cancel}}, 4, nullptr, "", ""},
      // The search takes the first line that begins so, whatever the case.
      {{{Event::Type, 0, "1013"}, {Event::Ok}}, 4, "10130", "Nordwind Steuerkanzlei PartG mbB", "NORDWIND"},
      {{{Event::Order, 1}, {Event::Type, 0, "öLm"}, {Event::Ok}}, 4, "10140", "Ölmühle Sonnenfeld eG", "OELMUEHL"},
      {{{Event::Order, 1}, {Event::Type, 0, "MUSTERMANN\t1"}, {Event::Ok}}, 4, "10120", "Mustermann", "MUSTERM"},
      // A new order keeps the text of the search and nothing else.
      {{{Event::Type, 0, "1012"}, {Event::Order, 1}, {Event::Order, 0}, {Event::Ok}},
       4,
       "10120",
       "Mustermann",
       "MUSTERM"},
      {{{Event::Select, 3}, {Event::Order, 1}, {Event::Ok}, {Event::Cancel}}, 4, nullptr, "", "", 1},
      // Without a selection the dialog asks for one and stays.
      {{{Event::Ok}, {Event::Ok}, {Event::DoubleClick, 12}}, 4, "10120", "Mustermann", "MUSTERM", 2},
      {{{Event::Select, 3}, {Event::Type, 0, "nirgends"}, {Event::Ok}, {Event::Cancel}}, 4, nullptr, "", "", 1},
      {{{Event::Type, 0, "漢"}, {Event::Ok}, {Event::Cancel}}, 4, nullptr, "", "", 1},
      {{{Event::Type, 0, "1"}, {Event::Type}, {Event::Ok}, {Event::Cancel}}, 4, nullptr, "", "", 1},
      {{{Event::DoubleClick, 25}, {Event::Cancel}}, 4, nullptr, "", "", 1},
      // Every kind is read from its own table.
      {{{Event::Type, 0, "1000"}, {Event::Ok}}, 1, "1000", "Hauptkasse", "KASSE"},
      {{{Event::DoubleClick, 1}}, 2, "70010", "Papierfabrik Mohnfeld GmbH", "MOHNFELD"},
      {{{Event::DoubleClick, 7}}, 8, "600", "Umbau Lager", "UMBAU"},
  };
  for (const auto &row : rows)
    // The flag of another call does not hide what the dialog asks for.
    for (int32_t flag : {0, 1}) {
      SCOPED_TRACE(std::to_string(&row - rows));
      ASSERT_EQ(ZELK_InitHoleStapel(1, flag), ZELK_OK);
      recorder.dialogs.clear();
      recorder.script = row.script;
      recorder.script.insert(recorder.script.begin(), {Event::Order, 0});
      recorder.script.push_back({Event::DoubleClick, 0}); // comes too late
      char number[9] = "????????", name[42] = "", shortName[10] = "";
      EXPECT_EQ(ZELK_HoleKonto(&recorder, 1, row.kind, nullptr, nullptr, number, name, shortName, 0, nullptr),
                row.number ? ZELK_OK : ZELK_keinKonto);
      EXPECT_STREQ(number, row.number ? row.number : "????????");
      EXPECT_EQ(vlba98::toUtf8(name), row.name);
      EXPECT_STREQ(shortName, row.shortName);
      EXPECT_EQ(recorder.dialogs.at(0).played, row.script.size() + 1);
      EXPECT_EQ(recorder.dialogs[0].parent, &recorder);
      EXPECT_EQ(recorder.takeText(), row.asked == 0   ? ""
                                     : row.asked == 1 ? std::string(kAsks)
                                                      : std::string(kAsks) + " | " + kAsks);
    }
}

TEST_F(Selections, ListWhatIsAskedFor) {
  insertCentre("700", 5, "R1", "Rot");
  insertCentre("700", 5, "R2", "Blau\tgrau");
  insertCentre("800", 5, "", "Allein");
  static const struct {
    int32_t kind;
    const char *from, *to;
    int32_t dimension;
    const char *reference;
    int order;
    const char *title, *lines;
  } rows[] = {
      {4, "10120", "10140", 0, nullptr, 0, "Debitorenkontenauswahl",
       "10120  |Mustermann\n10130  |Nordwind Steuerkanzlei PartG mbB\n10140  |Ölmühle Sonnenfeld eG"},
      {4, "10120", "10140", 0, nullptr, 1, "Debitorenkontenauswahl",
       "Mustermann|10120\nNordwind Steuerkanzlei PartG mbB|10130\nÖlmühle Sonnenfeld eG|10140"},
      {4, nullptr, "10000   9", 7, "R1", 0, "Debitorenkontenauswahl", "10000  |Barverkauf Ladengeschäft"},
      {4, "10235", "", 0, nullptr, 0, "Debitorenkontenauswahl", "10240  |Yonder Sample Stationery Inc."},
      {4, "10140", "10120", 0, nullptr, 0, "Debitorenkontenauswahl", ""},
      {4, "10140", "10120", 0, nullptr, 1, "Debitorenkontenauswahl", ""},
      {2, "7", "70000", 0, nullptr, 1, "Kreditorenkontenauswahl", "Diverse Lieferanten|70000"},
      {1, "1000", "1010", 0, nullptr, 0, "Sachkontenauswahl", "1000   |Hauptkasse\n1010   |Ladenkasse"},
      {8, "420", "500", 0, nullptr, 0, "Kostenstellenauswahl",
       "420    |Onlinehandel\n500    |Verwaltung und Buchhaltung"},
      {8, nullptr, nullptr, 1, nullptr, 1, "Kostenstellenauswahl",
       "Büromöbel und Technik|5002\nPapier und Schreibwaren|5001"},
      {8, nullptr, nullptr, 5, "", 0, "Kostenstellenauswahl", "700    |Rot\n700    |Blau|grau\n800    |Allein"},
      {8, nullptr, nullptr, 5, "R2", 1, "Kostenstellenauswahl", "Blau grau|700"},
      {8, nullptr, nullptr, 5, "R3", 0, "Kostenstellenauswahl", ""},
      {8, nullptr, nullptr, 65536, nullptr, 0, "Kostenstellenauswahl", ""},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::to_string(&row - rows));
    recorder.dialogs.clear();
    recorder.script = {{Event::Order, row.order}};
    EXPECT_EQ(
        ZELK_HoleKonto(nullptr, 1, row.kind, row.from, row.to, nullptr, nullptr, nullptr, row.dimension, row.reference),
        ZELK_keinKonto);
    EXPECT_EQ(recorder.dialogs.at(0).title, row.title);
    EXPECT_EQ(lines(), row.lines);
  }
  // A name with a tab in it does not hide the number.
  char number[8], name[41];
  recorder.script = {{Event::Order, 1}, {Event::Type, 0, "blau g"}, {Event::Ok}};
  EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 8, nullptr, nullptr, number, name, nullptr, 5, "R2"), ZELK_OK);
  EXPECT_STREQ(number, "700");
  EXPECT_STREQ(name, "Blau\tgrau");
}

TEST_F(Selections, ThreadKeepsItsOrder) {
  recorder.script = {{Event::Order, 1}};
  EXPECT_EQ(ZELK_HoleMandantenNr(nullptr), 0);
  recorder.script = {};
  EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 2, nullptr, "70000", nullptr, nullptr, nullptr, 0, nullptr), 0);
  EXPECT_EQ(recorder.dialogs.at(1).order, 1);
  EXPECT_EQ(recorder.dialogs[1].lines, std::vector<std::string>{"Diverse Lieferanten\t70000"});
}

TEST_F(Selections, AreRefusedWithoutADialog) {
  static const struct {
    int32_t client, kind;
    ZelkResult result;
  } rows[] = {{1, 0, ZELKERR_uzl_Kontoart},
              {99, 3, ZELKERR_uzl_Kontoart},
              {1, 16, ZELKERR_uzl_Kontoart},
              {99, 1, ZELKERR_uzl_Mandnr}};
  ASSERT_EQ(ZELK_InitHoleStapel(1, 1), ZELK_OK);
  for (const auto &row : rows)
    EXPECT_EQ(ZELK_HoleKonto(nullptr, row.client, row.kind, nullptr, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
              row.result);
  EXPECT_EQ(recorder.dialogs.size(), 0u);
  EXPECT_EQ(recorder.takeText(), "");
}

TEST_F(Selections, WorkWhileTheHostGoesOn) {
  char number[8] = "", name[41] = "";
  const std::vector<Event> script = {{Event::Order, 1}, {Event::Order, 0}, {Event::Type, 0, "10120"}, {Event::Ok}};
  {
    // Its windows use the library in the same thread: another client, a walk, a new connection.
    Meanwhile ui([&] {
      EXPECT_TRUE(nothingLocked(*other, 1));
      EXPECT_EQ(ZELK_InitHoleKonto(2, 1, 0, nullptr, 0), ZELK_OK);
      EXPECT_EQ(ZELK_SQLInit(0, 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr), ZELK_OK);
    });
    ui.script = script;
    EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 4, nullptr, nullptr, number, name, nullptr, 0, nullptr), ZELK_OK);
    EXPECT_STREQ(name, "Mustermann");
  }
  DATENBANK record{};
  uint8_t found;
  {
    // Somebody deletes the account that is picked.
    Meanwhile ui([&] {
      ASSERT_TRUE(other->UsedGet(record, KeyBuilder().account("10120"), found, kDebitor));
      ASSERT_TRUE(other->Delete(kDebitor));
    });
    ui.script = {{Event::Type, 0, "10120"}, {Event::Ok}};
    EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 4, nullptr, nullptr, number, name, nullptr, 0, nullptr), ZELKERR_Datenbank);
    ASSERT_TRUE(other->Insert(record, kDebitor));
    EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 4, nullptr, nullptr, number, nullptr, nullptr, 0, nullptr), ZELK_OK)
        << "nothing else is read for the number alone";
    ASSERT_TRUE(other->Insert(record, kDebitor));
  }
  // The whole client goes: the list cannot be filled again.
  Meanwhile ui([&] {
    ASSERT_TRUE(other->UsedGet(record, KeyBuilder().number(uint16_t(1)), found, kFirmenstamm));
    ASSERT_TRUE(other->Delete(kFirmenstamm));
  });
  ui.script = script;
  EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 4, nullptr, nullptr, number, name, nullptr, 0, nullptr), ZELKERR_uzl_Mandnr);
  EXPECT_EQ(ui.dialogs.at(0).played, 1u);
}

TEST_F(Selections, DeliverTheClientPicked) {
  static const struct {
    std::vector<Event> script;
    ZelkResult result;
    const char *lines;
  } rows[] = {
      {{{Event::DoubleClick, 2}}, 10, "1      |Musterhandel KG\n2      |Alpenwerk Muster AG\n10     |Zehn"},
      {{{Event::Order, 1}, {Event::Type, 0, "m"}, {Event::Ok}}, 1, "Alpenwerk Muster AG|2\nMusterhandel KG|1\nZehn|10"},
      {{{Event::Order, 0}, {Event::Cancel}}, 0, "1      |Musterhandel KG\n2      |Alpenwerk Muster AG\n10     |Zehn"}};
  FIRMENSTAMM client = other->HoleFista();
  client.Nummer = 10;
  put(client.Name, "Zehn");
  ASSERT_TRUE(other->SaveFista(client));
  for (const auto &row : rows) {
    recorder.dialogs.clear();
    recorder.script = row.script;
    EXPECT_EQ(ZELK_HoleMandantenNr(&recorder), row.result);
    EXPECT_EQ(recorder.dialogs.at(0).title, "Mandantenauswahl");
    EXPECT_EQ(recorder.dialogs[0].parent, &recorder);
    EXPECT_EQ(lines(), row.lines);
  }
}

using SelectionOfEmptyBooks = Environment;

TEST_F(SelectionOfEmptyBooks, HasNoClients) {
  provision();
  EXPECT_EQ(ZELK_HoleMandantenNr(nullptr), ZELKERR_keine_Mandanten);
  EXPECT_EQ(recorder.dialogs.size(), 0u);
}

#ifndef _WIN32 // where a dialog would wait for somebody
TEST_F(Books, SelectionIsCancelledWhereNobodySits) {
  platform::setUi(nullptr);
  EXPECT_EQ(ZELK_HoleKonto(nullptr, 1, 4, nullptr, nullptr, nullptr, nullptr, nullptr, 0, nullptr), ZELK_keinKonto);
}
#endif

} // namespace
} // namespace test
