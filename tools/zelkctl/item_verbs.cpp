// Open and historical items, and the dunning level of an account.
#include <cstdio>
#include <cstring>

#include "vlba98/encoding.h"
#include "zelk98/zelk98.h"
#include "zelkctl/amounts.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

constexpr int32_t kPlainAmounts = 2;
constexpr size_t kLineWidth = 120;
constexpr int32_t kBlockedLevel = 65535;

/// An item as a fetch delivers it; what only historical ones have stays empty for the others.
struct Item {
  char account[8] = "", shortName[9] = "", name[41] = "", document[17] = "", openItem[17] = "";
  char date[11] = "", valueDate[11] = "", discountDate1[11] = "", discountRate1[6] = "", discountDate2[11] = "";
  char discountRate2[6] = "", dueDate[11] = "", text[36] = "", gross[16] = "", left[16] = "", currency[4] = "";
  char dunningDate[11] = "", remark[41] = "", contra[8] = "", discountAccount1[8] = "", discountAccount2[8] = "";
  char taxRate1[6] = "", taxRate2[6] = "", foreignLeft[16] = "", foreignGross[16] = "", text2[36] = "", dmsId[51] = "";
  int32_t dunningLevel = 0, term = 0, paymentBlocked = 0, dunningBlocked = 0;
  int32_t collected = 0, file = 0, claim = 0, claimCosts = 0;
  char payment[16] = "", paymentDate[11] = "", user[41] = "", discount[16] = "", paymentDocument[17] = "";
  char paymentText[36] = "", paymentText2[36] = "";
  int32_t paymentMethod = 0;
};

ZelkResult fetch(bool historical, Item &item) {
  Item &i = item;
  if (!historical)
    return ZELK_HoleOP(i.account, i.shortName, i.name, i.document, i.openItem, i.date, i.valueDate, i.discountDate1,
                       i.discountRate1, i.discountDate2, i.discountRate2, i.dueDate, i.text, kPlainAmounts, i.gross,
                       i.left, i.currency, &i.dunningLevel, i.dunningDate, i.remark, i.contra, &i.term,
                       &i.paymentBlocked, i.discountAccount1, i.discountAccount2, i.taxRate1, i.taxRate2, i.foreignLeft,
                       i.foreignGross, &i.dunningBlocked, i.text2, i.dmsId, &i.collected, &i.file, &i.claim,
                       &i.claimCosts);
  return ZELK_HoleHistOP(i.account, i.shortName, i.name, i.document, i.openItem, i.date, i.valueDate, i.discountDate1,
                         i.discountRate1, i.discountDate2, i.discountRate2, i.dueDate, i.text, kPlainAmounts, i.gross,
                         i.left, i.currency, &i.dunningLevel, i.dunningDate, i.remark, i.contra, &i.term,
                         &i.paymentBlocked, i.discountAccount1, i.discountAccount2, i.taxRate1, i.taxRate2,
                         i.foreignLeft, i.foreignGross, &i.dunningBlocked, i.payment, i.paymentDate, i.user, i.discount,
                         i.paymentDocument, i.paymentText, &i.paymentMethod, i.text2, i.paymentText2, i.dmsId,
                         &i.collected, &i.file, &i.claim, &i.claimCosts);
}

std::string amount(const char *plain) {
  return *plain ? grouped(hundredths(plain)) : "";
}

std::string unlessZero(const char *plain) {
  return hundredths(plain) ? amount(plain) : "";
}

std::string shortDate(const char *date) {
  std::string text = date;
  return text.size() == 10 ? text.erase(6, 2) : text; // the century
}

std::string level(const Item &item) {
  if (item.dunningBlocked || item.dunningLevel == kBlockedLevel) return "gesperrt";
  return item.dunningLevel ? std::to_string(item.dunningLevel) : "";
}

/// A column of the CSV output, or of the table.
struct Column {
  const char *title;
  std::string (*value)(const Item &);
  bool right = false;
};

#define TEXT(title, member)                                                                                            \
  {                                                                                                                    \
    title, [](const Item &item) { return shown(item.member); }                                                         \
  }
#define NUMBER(title, member)                                                                                          \
  {                                                                                                                    \
    title, [](const Item &item) { return std::to_string(item.member); }                                                \
  }

const std::vector<Column> kCsv = {
    TEXT("Konto", account),
    TEXT("Kuerzel", shortName),
    TEXT("Name", name),
    TEXT("Belegnummer", document),
    TEXT("OPBelegnummer", openItem),
    TEXT("Belegdatum", date),
    TEXT("Valutadatum", valueDate),
    TEXT("Skontodatum1", discountDate1),
    TEXT("Skontosatz1", discountRate1),
    TEXT("Skontodatum2", discountDate2),
    TEXT("Skontosatz2", discountRate2),
    TEXT("Faelligkeit", dueDate),
    TEXT("Text", text),
    TEXT("Text2", text2),
    TEXT("Brutto", gross),
    TEXT("Ausstand", left),
    TEXT("Waehrung", currency),
    TEXT("BetragFW", foreignGross),
    TEXT("Ausstand2", foreignLeft),
    {"Mahnstufe", [](const Item &item) { return item.dunningBlocked ? "" : std::to_string(item.dunningLevel); }},
    NUMBER("Mahnsperre", dunningBlocked),
    TEXT("Mahndatum", dunningDate),
    TEXT("Bemerkung", remark),
    TEXT("Gegenkonto", contra),
    NUMBER("Zahlungsziel", term),
    NUMBER("Zahlungssperre", paymentBlocked),
    TEXT("Skontokonto1", discountAccount1),
    TEXT("Skontokonto2", discountAccount2),
    TEXT("Steuersatz1", taxRate1),
    TEXT("Steuersatz2", taxRate2),
    TEXT("DMSID", dmsId),
    NUMBER("Inkasso", collected),
    NUMBER("InkassoAkte", file),
    NUMBER("InkassoForderung", claim),
    NUMBER("InkassoMahnkosten", claimCosts)};

const std::vector<Column> kCsvPayment = {TEXT("Zahlung", payment),
                                         TEXT("Zahldatum", paymentDate),
                                         TEXT("Skontobetrag", discount),
                                         TEXT("Zahlbelegnummer", paymentDocument),
                                         NUMBER("Zahlungsart", paymentMethod),
                                         TEXT("Zahltext", paymentText),
                                         TEXT("Zahltext2", paymentText2),
                                         TEXT("Benutzer", user)};

const std::vector<Column> kOpen = {
    TEXT("Konto", account),
    TEXT("Kürzel", shortName),
    TEXT("Beleg", document),
    {"OP", [](const Item &item) { return std::strcmp(item.openItem, item.document) ? shown(item.openItem) : ""; }},
    {"Datum", [](const Item &item) { return shortDate(item.date); }},
    {"Fällig", [](const Item &item) { return shortDate(item.dueDate); }},
    {"Brutto", [](const Item &item) { return amount(item.gross); }, true},
    {"Ausstand", [](const Item &item) { return amount(item.left); }, true},
    {"FW offen", [](const Item &item) { return unlessZero(item.foreignLeft); }, true},
    {"Wä.", [](const Item &item) { return *item.foreignGross ? shown(item.currency) : std::string(); }},
    {"Mahnst.", level},
    TEXT("Text", text)};

const std::vector<Column> kPast = {
    TEXT("Konto", account),
    TEXT("Beleg", document),
    {"OP", [](const Item &item) { return std::strcmp(item.openItem, item.document) ? shown(item.openItem) : ""; }},
    {"Datum", [](const Item &item) { return shortDate(item.date); }},
    {"Brutto", [](const Item &item) { return amount(item.gross); }, true},
    {"Zahldatum", [](const Item &item) { return shortDate(item.paymentDate); }},
    {"Zahlbeleg", [](const Item &item) { return shown(item.paymentDocument); }},
    {"Zahlung", [](const Item &item) { return amount(item.payment); }, true},
    {"Skonto", [](const Item &item) { return unlessZero(item.discount); }, true},
    {"Ausstand", [](const Item &item) { return amount(item.left); }, true},
    TEXT("Zahltext", paymentText)};
#undef TEXT
#undef NUMBER

TextTable tableOf(const std::vector<Column> &columns) {
  std::vector<TextTable::Column> titles;
  for (const Column &column : columns)
    titles.push_back({column.title, column.right});
  return TextTable(titles, kLineWidth);
}

std::vector<std::string> rowOf(const std::vector<Column> &columns, const Item &item) {
  std::vector<std::string> row;
  for (const Column &column : columns)
    row.push_back(column.value(item));
  return row;
}

// The sum below its column, "Summe" in the first one.
std::vector<std::string> sumRow(const std::vector<Column> &columns,
                                const std::vector<std::pair<const char *, int64_t>> &sums) {
  std::vector<std::string> row(columns.size());
  row.front() = "Summe";
  for (auto [title, sum] : sums)
    for (size_t i = 0; i < columns.size(); ++i)
      if (std::strcmp(columns[i].title, title) == 0) row[i] = grouped(sum);
  return row;
}

// What was asked for beside the day, in Windows-1252. The library selects by one of them; all hold.
struct Filter {
  std::string account, document, openItem;

  bool holds(const Item &item) const {
    auto same = [](const std::string &wanted, const char *value) { return wanted.empty() || wanted == value; };
    return same(account, item.account) && same(document, item.document) && same(openItem, item.openItem);
  }
};

// Debtors unless it is said, or the account is a creditor's.
int32_t kindOf(int32_t client, const ItemQuery &query, const std::string &account) {
  if (query.kind == "kred") return ZELK_KREDITOR;
  if (query.kind == "debi" || account.empty()) return ZELK_DEBITOR;
  bool debtor = ZELK_ExistiertKonto(client, account.c_str(), ZELK_DEBITOR, 0, nullptr) == ZELK_OK;
  bool creditor = !debtor && ZELK_ExistiertKonto(client, account.c_str(), ZELK_KREDITOR, 0, nullptr) == ZELK_OK;
  return creditor ? ZELK_KREDITOR : ZELK_DEBITOR;
}

} // namespace

int listItems(int32_t client, const ItemQuery &query) {
  Filter filter;
  struct Given {
    const char *option;
    const std::string &value;
    std::string &target;
  };
  std::string date;
  for (auto [option, value, target] : {Given{"KONTO", query.account, filter.account},
                                       {"--beleg", query.document, filter.document},
                                       {"--op", query.openItem, filter.openItem},
                                       {"--ab", query.from, date}}) {
    auto text = vlba98::toWindows1252(value);
    if (!text) return complainOfCharacters(option, value);
    target = *text;
  }
  const int32_t kind = kindOf(client, query, filter.account);
  ZelkResult result = query.historical ? ZELK_InitHoleHistOP(client, filter.account.c_str(), kind, date.c_str(),
                                                             filter.document.c_str(), filter.openItem.c_str(), 0)
                                       : ZELK_InitHoleOP(client, filter.account.c_str(), kind, 0);
  std::vector<Column> columns = query.historical ? kPast : kOpen;
  if (query.csv) columns = kCsv;
  if (query.csv && query.historical) columns.insert(columns.end(), kCsvPayment.begin(), kCsvPayment.end());
  TextTable table = tableOf(columns);
  int64_t left = 0, paid = 0, discounts = 0;
  while (result == ZELK_OK) {
    Item item;
    result = fetch(query.historical, item);
    if (result < 0 || !filter.holds(item)) continue;
    table.add(rowOf(columns, item));
    left += hundredths(item.left);
    paid += hundredths(item.payment);
    discounts += hundredths(item.discount);
  }
  if (result < 0) return complainOf("op", result);
  if (query.csv) {
    table.printCsv();
    return kDone;
  }
  if (table.rows() == 0) {
    std::puts(query.historical ? "Es gibt keine solchen historischen Posten." : "Es gibt keine offenen Posten.");
    return kDone;
  }
  if (query.historical)
    table.add(sumRow(columns, {{"Zahlung", paid}, {"Skonto", discounts}}));
  else
    table.add(sumRow(columns, {{"Ausstand", left}}));
  table.print();
  return kDone;
}

int showDunningLevel(int32_t client, const std::string &account, bool csv) {
  auto number = vlba98::toWindows1252(account);
  if (!number) return complainOfCharacters("KONTO", account);
  ZelkResult level = ZELK_HoleAktMahnstufe(client, number->c_str());
  if (level < 0) return complainOf("mahnstufe", level);
  ZELK_PEKO debtor{};
  ZelkResult read = ZELK_InitHoleKonto(client, ZELK_DEBITOR, 0, number->c_str(), 0);
  if (read == ZELK_OK) read = ZELK_HolePeko(&debtor);
  if (read <= 0) return complainOf("mahnstufe", read);
  TextTable table({{"Konto"}, {"Name"}, {"Mahnstufe", true}});
  table.add({shown(debtor.Kontonummer), shown(debtor.Name), std::to_string(level)});
  if (csv)
    table.printCsv();
  else
    table.print();
  return kDone;
}

} // namespace zelkctl
