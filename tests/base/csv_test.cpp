// CSV files as people write them.
#include <gtest/gtest.h>

#include "vlba98/csv.h"

namespace vlba98 {
namespace {

std::string flat(const CsvFile &file) {
  std::string text = file.problem;
  for (const CsvRow &row : file.rows) {
    text += std::to_string(row.line) + ":";
    if (!row.problem.empty())
      text += "!" + row.problem;
    else
      for (const std::string &value : row.values)
        text += "[" + value + "]";
    text += " ";
  }
  return text;
}

TEST(Csv, Reads) {
  struct Case {
    const char *text, *expected;
  };
  const Case cases[] = {
      {"a;b\n1;2\n", "2:[1][2] "},
      {"a;b\n1;2", "2:[1][2] "},
      {"a;b\r\n1;2\r\n\r\n3;4\r\n", "2:[1][2] 4:[3][4] "},
      {"\xEF\xBB\xBF"
       "a;b\n1;2\n",
       "2:[1][2] "},
      {"a;b\n\"x;y\";\"say \"\"no\"\"\"\n", "2:[x;y][say \"no\"] "},
      {"a;b\n\"two\nlines\";2\n3;4\n", "2:[two\nlines][2] 4:[3][4] "},
      {"a;b\n;\n", "2:[][] "},
      {"a;b\n\xC3\xA4;\xE2\x82\xAC\n", "2:[\xC3\xA4][\xE2\x82\xAC] "},
      {"a;b\n1\n1;2;3\n5;6\n",
       "2:!Die Zeile hat 1 Feld, die Kopfzeile 2. 3:!Die Zeile hat 3 Felder, die Kopfzeile 2. 4:[5][6] "},
      {"a;b\n\"open;2\n", "2:!Ein Anführungszeichen wird nicht geschlossen. "},
      {"a;b\n\"x\"y;2\n3;4\n", "2:!Hinter einem Anführungszeichen steht weiterer Text. 3:[3][4] "},
      {"a;b\nGr\xFC\xDF"
       "e;2\n3;4\n",
       "2:!Ein Feld ist kein UTF-8 oder hat ein Zeichen, das es in Windows-1252 nicht gibt. 3:[3][4] "},
      {"a;b\n\xCE\xB1;2\n", "2:!Ein Feld ist kein UTF-8 oder hat ein Zeichen, das es in Windows-1252 nicht gibt. "},
      {"", "Die Datei ist leer."},
      {"a;b;a\n1;2;3\n", "Die Spalte \"a\" kommt zweimal vor."},
  };
  for (const Case &c : cases)
    EXPECT_EQ(flat(parseCsv(c.text)), c.expected) << c.text;
}

} // namespace
} // namespace vlba98
