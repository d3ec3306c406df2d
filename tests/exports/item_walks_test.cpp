// Walks of open and historical items beside a model, and what others do between their calls.
#include <algorithm>
#include <map>
#include <random>
#include <thread>

#include "support/items.h"

namespace test {
namespace {

using namespace vldb98;

/// A walk as the numbers of its items ("number" or "number/payment"), in their order.
struct Walk {
  ZelkResult init;
  std::vector<std::string> items;
};

template <class Fetch> Walk walk(ZelkResult init, Fetch fetch) {
  Walk walked{init, {}};
  for (ZelkResult result = init; result == ZELK_OK;) {
    FetchedItem fetched = fetchItem(fetch);
    result = fetched.result;
    EXPECT_GT(result, 0);
    walked.items.push_back(fetched.row[19]); // the remark, in which the tests write what an item is
  }
  return walked;
}

Walk walkOpen(int32_t kind, const char *account = nullptr) {
  return walk(ZELK_InitHoleOP(1, account, kind, 0), ZELK_HoleOP);
}
Walk walkPast(int32_t kind, const char *account, const char *date, const char *document, const char *openItem) {
  return walk(ZELK_InitHoleHistOP(1, account, kind, date, document, openItem, 0), ZELK_HoleHistOP);
}

void name(OPBELEG &item, const std::string &text) {
  put(item.Bemerkung, text);
}

class ItemWalks : public ItemBooks {
protected:
  /// Client 1 begins in 2023, of which it has no year; 2024 to 2026 are there.
  void addYears() {
    DATENBANK year{};
    year.Geschaeftsjahr.Jahr = 2024;
    put(year.Geschaeftsjahr.Beginn, "440101");
    put(year.Geschaeftsjahr.Ende, "441231");
    insertRecord(kGeschaeftsjahr, year);
    FIRMENSTAMM client = other_->HoleFista();
    put(client.StartJahr, "43");
    ASSERT_TRUE(other_->SaveFista(client));
  }
  void openItem(int32_t number, const char *account) {
    OPBELEG item = itemOf(number, account);
    name(item, std::to_string(number));
    insert(kOPDebitor, item);
  }
  void remove(int32_t number) {
    DATENBANK record{};
    uint8_t found = 0;
    ASSERT_TRUE(other_->SetzeFista(1, found) &&
                other_->UsedGet(record, KeyBuilder().number(number), found, kOPDebitor));
    ASSERT_TRUE(found && other_->Delete(kOPDebitor));
  }
};

TEST_F(ItemWalks, OfAnAccountAreThoseOfAllThatAreItsOwn) {
  std::mt19937 random(5);
  const char *const accounts[] = {"10010", "10020", "10030"};
  std::map<int32_t, size_t> items;
  while (items.size() < 120) {
    int32_t number = 1 + int32_t(random() % 1000);
    if (items.try_emplace(number, random() % 3).second) openItem(number, accounts[items[number]]);
  }
  std::vector<std::string> all, own[3];
  for (auto [number, which] : items) {
    all.push_back(std::to_string(number));
    own[which].push_back(all.back());
  }
  EXPECT_EQ(walkOpen(4).items, all);
  EXPECT_EQ(walkOpen(2).init, ZELK_keinKonto);
  for (size_t i = 0; i < 3; ++i)
    EXPECT_EQ(walkOpen(4, accounts[i]).items, own[i]) << "the order of the walk over all, skipping the others";
}

TEST_F(ItemWalks, OverYearsAreThoseOfTheModel) {
  addYears();
  struct Item {
    std::string account, document, openItem, date, name;
    int number, line, year;
  };
  std::mt19937 random(7);
  auto oneOf = [&](std::initializer_list<const char *> texts) {
    return std::string(texts.begin()[random() % texts.size()]);
  };
  std::vector<Item> model;
  for (int number = 1; number <= 120; ++number) {
    Item item{oneOf({"10010", "10020", "10030"}),
              oneOf({"R-1", "R-10", "R-2", " R-1", "R-1 ", "1234567890123456"}),
              oneOf({"O-1", "O-2", "o-1", " O-1"}),
              oneOf({"440131", "441231", "450115", "460121", "460301"}),
              "",
              number,
              1 + int(random() % 3),
              44 + int(random() % 3)};
    item.name = std::to_string(item.year) + ":" + std::to_string(number) + "/" + std::to_string(item.line);
    model.push_back(item);
    OPHISTORIE history = paymentOf(itemOf(number, item.account, item.document), item.line);
    put(history.OP.OPBelegnummer, item.openItem);
    put(history.Zahldatum, item.date);
    name(history.OP, item.name);
    insert(kHistOPDebitor, history, std::to_string(item.year).c_str());
    name(history.OP, "creditor");
    if (number == 1) insert(kHistOPKreditor, history, "45");
  }
  struct Selection {
    const char *account, *date, *document, *openItem;
    std::function<bool(const Item &)> holds;
    std::function<std::string(const Item &)> order; // before the number
  };
  auto unordered = [](const Item &) { return std::string(); };
  const Selection selections[] = {
      {nullptr, nullptr, nullptr, nullptr, [](const Item &) { return true; }, unordered},
      {"10020", "", "", "", [](const Item &item) { return item.account == "10020"; }, unordered},
      {"10020", "", "", "O-1", [](const Item &item) { return item.openItem == "O-1"; }, unordered},
      {"", "", "", " O-1  ", [](const Item &item) { return item.openItem == " O-1"; }, unordered},
      {"", "", " R-1", "O-1", [](const Item &item) { return item.document == " R-1"; }, unordered},
      {"10020", "", "R-1", "O-1",
       [](const Item &item) { return item.document == "R-1" || item.document == "R-1 "; }, // blanks after do not count
       [](const Item &item) { return item.document; }},
      {"", "", "12345678901234567", "", [](const Item &item) { return item.document == "1234567890123456"; },
       unordered},
      {"10020", "15.01.2025", "R-1", "O-1", [](const Item &item) { return item.date >= "450115"; },
       [](const Item &item) { return item.date; }},
      {"", "010180", "", "", [](const Item &) { return true; }, [](const Item &item) { return item.date; }},
      {"", "020326", "", "", [](const Item &) { return false; }, unordered},
      {"", "", "R-", "", [](const Item &) { return false; }, unordered},
  };
  for (const Selection &selection : selections) {
    std::vector<Item> expected;
    std::copy_if(model.begin(), model.end(), std::back_inserter(expected), selection.holds);
    std::sort(expected.begin(), expected.end(), [&](const Item &a, const Item &b) {
      return std::tuple(a.year, selection.order(a), a.number) < std::tuple(b.year, selection.order(b), b.number);
    });
    std::vector<std::string> names;
    for (const Item &item : expected)
      names.push_back(item.name);
    Walk walked = walkPast(4, selection.account, selection.date, selection.document, selection.openItem);
    EXPECT_EQ(walked.items, names);
    EXPECT_EQ(walked.init, names.empty() ? ZELK_keinKonto : ZELK_OK);
  }
  EXPECT_EQ(walkPast(2, nullptr, nullptr, nullptr, nullptr).items, std::vector<std::string>{"creditor"});

  // Without a first year only the current one counts; one that ended before the current year's items is not looked at.
  FIRMENSTAMM client = other_->HoleFista();
  client.StartJahr[0] = 0;
  put(client.AktJahr, "45");
  ASSERT_TRUE(other_->SaveFista(client));
  for (const std::string &item : walkPast(4, nullptr, nullptr, nullptr, nullptr).items)
    EXPECT_EQ(item.substr(0, 3), "45:");
}

TEST_F(ItemWalks, GoOnWhateverHappensInBetween) {
  addYears();
  for (int32_t number : {1, 2, 3, 4, 5, 6}) {
    openItem(number, number == 4 ? "10020" : "10010");
    OPHISTORIE history = paymentOf(itemOf(number, "10010"), 1);
    name(history.OP, std::to_string(number));
    insert(kHistOPDebitor, history, number < 4 ? "44" : "46");
  }
  auto next = [] { return fetchItem(ZELK_HoleOP).row[19]; };
  auto nextPast = [] { return fetchItem(ZELK_HoleHistOP).row[19]; };
  // What leaves the thread's store in another client, year or record.
  const std::function<void()> disturbances[] = {
      [] { EXPECT_EQ(ZELK_ExistiertKonto(2, "1020", 1, 0, nullptr), 1); },
      [] { EXPECT_EQ(ZELK_HoleAktMahnstufe(1, "10020"), 0); },
      [] {
        ZELK_BUCHUNG posting = validPosting();
        EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), 1);
      },
      [] {
        std::thread([] {
          EXPECT_EQ(walkOpen(4, "10020").items, std::vector<std::string>{"4"});
          EXPECT_EQ(walkPast(4, nullptr, nullptr, nullptr, nullptr).items.size(), 6u);
        }).join();
      }};
  for (const auto &disturb : disturbances) {
    std::vector<std::string> open, past;
    ASSERT_EQ(ZELK_InitHoleOP(1, "10010", 4, 0), 1);
    for (int i = 0; i < 5; ++i) {
      disturb();
      open.push_back(next());
    }
    EXPECT_EQ(open, (std::vector<std::string>{"1", "2", "3", "5", "6"}));
    ASSERT_EQ(ZELK_InitHoleHistOP(1, nullptr, 4, nullptr, nullptr, nullptr, 0), 1);
    for (int i = 0; i < 6; ++i) {
      disturb();
      past.push_back(nextPast());
    }
    EXPECT_EQ(past, (std::vector<std::string>{"1", "2", "3", "4", "5", "6"}));
  }
  // Items that somebody settles: the one under the cursor is still delivered, those after it are not.
  ASSERT_EQ(ZELK_InitHoleOP(1, "10010", 4, 0), 1);
  remove(1);
  remove(2);
  EXPECT_EQ(next(), "1");
  remove(5);
  EXPECT_EQ(next(), "3");
  openItem(7, "10010");
  EXPECT_EQ(next(), "6");
  EXPECT_EQ(next(), "7");
  EXPECT_EQ(fetchItem(ZELK_HoleOP).result, ZELKERR_keinDatensatz);
  // A fetch that is abandoned keeps nobody waiting.
  ASSERT_EQ(ZELK_InitHoleOP(1, nullptr, 4, 0), 1);
  ASSERT_EQ(ZELK_InitHoleHistOP(1, nullptr, 4, nullptr, nullptr, nullptr, 0), 1);
  EXPECT_TRUE(nothingLocked(*other_, 1));
}

TEST_F(ItemWalks, FailWithTheStoreAndGoOnFromWhereTheyWere) {
  addYears();
  for (int32_t number : {1, 2, 3}) {
    openItem(number, "10010");
    OPHISTORIE history = paymentOf(itemOf(number, "10010"), 1);
    history.Benutzer = 4;
    history.OP.DMSNr = 1;
    name(history.OP, std::to_string(number));
    insert(kHistOPDebitor, history, number == 1 ? "44" : "46");
  }
  const struct {
    const char *what;
    std::function<ZelkResult()> init;
    std::function<FetchedItem()> fetch;
  } pairs[] = {{"open", [] { return ZELK_InitHoleOP(1, "10010", 4, 1); }, [] { return fetchItem(ZELK_HoleOP); }},
               {"historical", [] { return ZELK_InitHoleHistOP(1, "10010", 4, nullptr, nullptr, nullptr, 1); },
                [] { return fetchItem(ZELK_HoleHistOP); }}};
  Faults faults;
  for (const auto &pair : pairs) {
    SCOPED_TRACE(pair.what);
    const auto [operations, begun] = sweep(
        faults, [] {}, pair.init,
        [&](ZelkResult result) {
          EXPECT_EQ(result, ZELKERR_Datenbank);
          EXPECT_EQ(pair.fetch().result, ZELKERR_keinInit);
        });
    ASSERT_EQ(begun, 1);
    ASSERT_GT(operations, 2);
    // Each operation of each fetch, in a session of its own after a failure; the item is not lost.
    for (const char *expected : {"1", "2", "3"}) {
      const FetchedItem last = sweep(
                                   faults, [] {}, pair.fetch,
                                   [&](const FetchedItem &fetched) {
                                     EXPECT_EQ(fetched.result, ZELKERR_Datenbank);
                                     EXPECT_EQ(fetched.row, ItemRow(fetched.row.size(), "~")) << "nothing is delivered";
                                     EXPECT_TRUE(nothingLocked(*other_, 1));
                                   })
                                   .second;
      EXPECT_EQ(last.result, *expected == '3' ? 2 : 1);
      EXPECT_EQ(last.row[19], expected);
    }
  }
  EXPECT_EQ(recorder.takeText(), "");
}

} // namespace
} // namespace test
