// The walk through report structures.
#include <map>
#include <thread>

#include "support/figure_books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

/// A line as the walk delivers it: "kind|name|level|identifier".
std::string fetched(ZelkResult &result) {
  int32_t kind = -9, level = -9;
  char name[41] = "?", identifier[41] = "?";
  result = ZELK_HoleAufbauID(&kind, name, &level, identifier);
  return result < 0 ? "" : std::to_string(kind) + "|" + name + "|" + std::to_string(level) + "|" + identifier;
}

std::vector<std::string> walk(int32_t client, int32_t structure, ZelkResult &result) {
  std::vector<std::string> lines;
  result = ZELK_InitHoleAufbau(client, structure, 0);
  while (result == ZELK_OK) {
    std::string line = fetched(result);
    if (result > 0) lines.push_back(line);
  }
  return lines;
}

class Structures : public FigureBooks {
protected:
  static constexpr int32_t kAll = 32768, kClass = 5;

  struct Line {
    int32_t flags = 0, flags2 = 0;
    std::string name, identifier, second;
    std::vector<int32_t> children;
  };

  /// Draws a tree of some lines below line 1, by their numbers.
  std::map<int32_t, Line> draw(int lines) {
    std::map<int32_t, Line> tree;
    std::vector<int32_t> headings{1};
    tree[1] = {int32_t(random() % 8), 0, "Wurzel", "W", "", {}};
    for (int i = 0; i < lines; ++i) {
      int32_t number;
      do
        number = 2 + int32_t(random() % 100000);
      while (tree.count(number));
      const bool account = random() % 2;
      const std::string text = std::to_string(number);
      Line line{
          int32_t(account) | (random() % 5 ? 0 : 4) | (random() % 4 ? 0 : 2), random() % 2 ? 4 : 3, "", "", "", {}};
      line.name = account ? " 4 " + text.substr(0, 3) + " " : "Zeile " + text;
      line.identifier = "A " + text;
      line.second = "B " + text;
      tree[headings[random() % headings.size()]].children.push_back(number);
      if (!account || random() % 10 == 0) headings.push_back(number);
      tree[number] = line;
    }
    return tree;
  }

  void store(int table, const std::map<int32_t, Line> &tree) {
    ASSERT_TRUE(other->Transaktion(1, 0));
    ASSERT_TRUE(other->DeleteTable(table));
    for (const auto &[number, line] : tree)
      storeLine(table, tree, number, line);
    ASSERT_TRUE(other->Transaktion(2, 0));
  }
  void storeLine(int table, const std::map<int32_t, Line> &tree, int32_t number, const Line &line) {
    AUFBAU row{};
    row.Nr = number;
    row.Flags = line.flags;
    row.Flags2 = line.flags2;
    row.Kind = line.children.empty() ? 0 : line.children.front();
    for (const auto &[above, heading] : tree)
      for (size_t i = 0; i < heading.children.size(); ++i)
        if (heading.children[i] == number) {
          row.Vater = above;
          row.Naechste = i + 1 < heading.children.size() ? heading.children[i + 1] : 0;
        }
    put(row.Name, line.name);
    put(row.Kennung, line.identifier);
    put(row.Kennung2, line.second);
    insert(&DATENBANK::Aufbau, row, table);
  }

  static std::string without(const std::string &text) {
    std::string rest;
    for (char c : text)
      if (c != ' ') rest += c;
    return rest;
  }

  /// The lines below a heading in the order of a report.
  static void expect(const std::map<int32_t, Line> &tree, int32_t above, int level, bool all,
                     std::vector<std::string> &lines) {
    for (int32_t number : tree.at(above).children) {
      const Line &line = tree.at(number);
      const bool account = line.flags & 1;
      const std::string identifier = account ? line.name : line.flags2 & 4 ? line.second : line.identifier;
      if (all || !(line.flags & 4))
        lines.push_back(std::to_string(line.flags & 7) + "|" + (account ? without(line.name) : line.name) + "|" +
                        std::to_string(account ? level - 1 : level) + "|" + without(identifier));
      expect(tree, number, level + 1, all, lines);
    }
  }
};

TEST_F(Structures, AreWalkedAsTheyArePrinted) {
  for (int lines : {0, 1, 2, 3, 5, 8, 13, 40, 40, 40, 300}) {
    const auto tree = draw(lines);
    store(kStructureTables[kClass], tree);
    for (bool all : {false, true}) {
      std::vector<std::string> expected;
      expect(tree, 1, 1, all, expected);
      ZelkResult result;
      EXPECT_EQ(walk(1, kClass + (all ? kAll : 0), result), expected) << lines;
      EXPECT_EQ(result, expected.empty() ? ZELK_keinKonto : ZELK_letzterDatensatz);
      fetched(result);
      EXPECT_EQ(result, ZELKERR_keinInit);
    }
  }
}

TEST_F(Structures, OfTheSamples) {
  ZelkResult result;
  const std::vector<std::string> lines = walk(1, 0, result);
  ASSERT_GT(lines.size(), 20u);
  static const char *const beginning[] = {"0|Aktiva|1|AKTIVA", "0|Anlageverm\xF6gen|2|A.A",
                                          "0|Immaterielle Verm\xF6gensgegenst\xE4nde|3|A.A.I", "1|0027|3|0027"};
  for (size_t i = 0; i < std::size(beginning); ++i)
    EXPECT_EQ(lines[i], beginning[i]);
  EXPECT_GT(walk(1, kAll, result).size(), lines.size());
}

TEST_F(Structures, OfEveryClass) {
  for (int32_t i = 0; i <= 32; ++i) {
    std::map<int32_t, Line> tree;
    tree[1].children = {2};
    tree[2].name = "Klasse " + std::to_string(i);
    store(kStructureTables[size_t(i)], tree);
  }
  // The table of each class, as it was laid down.
  static const int tables[] = {7,  10, 13, 18, 19, 20, 21, 22, 23, 38, 39, 40, 41, 42, 43, 32, 33,
                               34, 35, 36, 37, 44, 45, 46, 47, 48, 49, 8,  9,  11, 12, 14, 15};
  for (int32_t i = 0; i <= 32; ++i) {
    EXPECT_EQ(findTable(tables[i])->name, "Aufbau" + std::to_string(i));
    ZelkResult result;
    const std::vector<std::string> one{"0|Klasse " + std::to_string(i) + "|1|"};
    EXPECT_EQ(walk(1, i, result), one);
    EXPECT_EQ(walk(1, i + kAll, result), one);
  }
  static const struct {
    int32_t client, structure;
    ZelkResult result;
    const char *message;
  } refused[] = {
      {99, 33, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
      {1, 33, ZELKERR_uzl_Klasse, "Es wurde ein unzulässige Klasse für das Holen der Aufbauten angegeben."},
      {1, 33 + kAll, ZELKERR_uzl_Klasse, "Es wurde ein unzulässige Klasse für das Holen der Aufbauten angegeben."},
      {1, -1, ZELKERR_uzl_Klasse, "Es wurde ein unzulässige Klasse für das Holen der Aufbauten angegeben."},
      {1, 65536, ZELKERR_uzl_Klasse, "Es wurde ein unzulässige Klasse für das Holen der Aufbauten angegeben."}};
  for (const auto &row : refused)
    expectRefused([&](int32_t flag) { return ZELK_InitHoleAufbau(row.client, row.structure, flag); }, row.result,
                  row.message);
  EXPECT_EQ(ZELK_HoleAufbau(nullptr, nullptr, nullptr), ZELKERR_keinInit);
  ASSERT_EQ(ZELK_InitHoleAufbau(2, 5, 1), ZELK_keinKonto); // no line at all
  ASSERT_EQ(ZELK_InitHoleAufbau(1, 5, 0), ZELK_OK);
  EXPECT_EQ(ZELK_HoleAufbau(nullptr, nullptr, nullptr), ZELK_letzterDatensatz);
}

TEST_F(Structures, ThatAreDamagedEndWithAnError) {
  struct Link {
    int32_t number, above, next, child;
  };
  static const struct {
    const char *what;
    std::vector<Link> lines;
    size_t delivered;
    ZelkResult result;
  } rows[] = {{"siblings beside the root", {{1, 0, 2, 0}, {2, 0, 3, 0}, {3, 0, 0, 0}}, 2, ZELK_letzterDatensatz},
              {"root that is its own child", {{1, 0, 0, 1}}, 0, ZELKERR_Datenbank},
              {"no such first line", {{1, 0, 0, 7}}, 0, ZELK_keinKonto},
              {"no root", {{2, 1, 0, 0}}, 0, ZELK_keinKonto},
              {"no such sibling", {{1, 0, 0, 2}, {2, 1, 3, 0}}, 0, ZELKERR_Datenbank},
              {"no such child", {{1, 0, 0, 2}, {2, 1, 0, 3}}, 0, ZELKERR_Datenbank},
              {"no such parent", {{1, 0, 0, 2}, {2, 1, 0, 3}, {3, 9, 0, 0}}, 1, ZELKERR_Datenbank},
              {"circle of siblings", {{1, 0, 0, 2}, {2, 1, 3, 0}, {3, 1, 4, 0}, {4, 1, 3, 0}}, 2, ZELKERR_Datenbank},
              {"child that is an ancestor", {{1, 0, 0, 2}, {2, 1, 0, 3}, {3, 2, 0, 2}}, 1, ZELKERR_Datenbank},
              {"circle of parents", {{1, 0, 0, 2}, {2, 3, 0, 3}, {3, 2, 0, 0}}, 1, ZELKERR_Datenbank},
              {"a parent with a sibling before", {{1, 0, 0, 2}, {2, 1, 3, 0}, {3, 2, 0, 0}}, 1, ZELKERR_Datenbank}};
  for (const auto &row : rows) {
    const int table = kStructureTables[kClass];
    ASSERT_TRUE(other->DeleteTable(table));
    for (const Link &link : row.lines) {
      AUFBAU line{};
      line.Nr = link.number;
      line.Vater = link.above;
      line.Naechste = link.next;
      line.Kind = link.child;
      insert(&DATENBANK::Aufbau, line, table);
    }
    ZelkResult result;
    EXPECT_EQ(walk(1, kClass, result).size(), row.delivered) << row.what;
    EXPECT_EQ(result, row.result) << row.what;
    EXPECT_EQ(ZELK_HoleAufbau(nullptr, nullptr, nullptr), ZELKERR_keinInit) << row.what;
  }
}

TEST_F(Structures, AreNotDisturbed) {
  const auto tree = draw(30);
  std::vector<std::string> expected;
  expect(tree, 1, 1, true, expected);
  store(kStructureTables[kClass], tree);
  ASSERT_EQ(ZELK_InitHoleAufbau(1, kClass + kAll, 0), ZELK_OK);
  EXPECT_TRUE(nothingLocked(*other, 1));
  ZelkResult result = ZELK_OK;
  for (const std::string &line : expected) {
    char balance[16];
    ASSERT_EQ(ZELK_HoleSaldo(2, "1020", 1, 0, 1, balance, nullptr, "", 0, ""), ZELK_OK);
    ASSERT_EQ(ZELK_InitHoleKonto(2, 1, 0, "", 0), ZELK_OK);
    ASSERT_EQ(ZELK_BeendeHolen(), ZELK_OK);
    ASSERT_EQ(fetched(result), line);
  }
  EXPECT_EQ(result, ZELK_letzterDatensatz);

  // A walk of another thread makes the levels wrong, and nothing else.
  ASSERT_EQ(ZELK_InitHoleAufbau(1, kClass + kAll, 0), ZELK_OK);
  for (size_t i = 0; i < expected.size(); ++i) {
    std::thread([&] { EXPECT_EQ(ZELK_InitHoleAufbau(1, kClass, 0), ZELK_OK); }).join();
    auto withoutLevel = [](std::string text) {
      const size_t last = text.rfind('|'), before = text.rfind('|', last - 1);
      return text.erase(before, last - before);
    };
    ASSERT_EQ(withoutLevel(fetched(result)), withoutLevel(expected[i]));
  }
}

TEST_F(Structures, ThatChangeUnderTheWalk) {
  const int table = kStructureTables[kClass];
  std::map<int32_t, Line> tree;
  for (int32_t number : {2, 3, 4, 5}) {
    tree[1].children.push_back(number);
    tree[number].name = std::to_string(number);
  }
  store(table, tree);
  auto fetchName = [] {
    char name[41] = "";
    ZelkResult result = ZELK_HoleAufbau(nullptr, name, nullptr);
    return std::to_string(result) + " " + name;
  };
  ASSERT_EQ(ZELK_InitHoleAufbau(1, kClass, 0), ZELK_OK);
  // Line 3 is taken out before it is reached, line 2 while the walk stands on it.
  tree[1].children = {2, 4, 5};
  tree.erase(3);
  store(table, tree);
  EXPECT_EQ(fetchName(), "1 2");
  tree[1].children = {2, 5};
  tree.erase(4);
  store(table, tree);
  EXPECT_EQ(fetchName(), "1 4");
  EXPECT_EQ(fetchName(), "2 5");
  // Where the line and the one after it are gone, nothing leads on.
  ASSERT_EQ(ZELK_InitHoleAufbau(1, kClass, 0), ZELK_OK);
  ASSERT_TRUE(other->DeleteTable(table));
  EXPECT_EQ(fetchName(), "-3 ");
  EXPECT_EQ(fetchName(), "-40 ");
}

} // namespace
} // namespace test
