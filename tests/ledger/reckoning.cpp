#include "ledger/reckoning.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "vlba98/csv.h"

namespace test {
namespace {

constexpr int kLedger = 0, kCreditor = 2, kDebtor = 3;

// Half away from zero.
int64_t quotient(int64_t a, int64_t b) {
  const int64_t magnitude = (2 * std::llabs(a) + b) / (2 * b);
  return a < 0 ? -magnitude : magnitude;
}

Day dayOf(const std::string &text) { // TT.MM.JJJJ
  return std::stoi(text.substr(6, 4)) * 10000 + std::stoi(text.substr(3, 2)) * 100 + std::stoi(text.substr(0, 2));
}

int64_t millionths(const std::string &text) {
  const size_t comma = text.find(',');
  if (comma == std::string::npos) return std::stoll(text) * 1'000'000;
  std::string decimals = text.substr(comma + 1);
  decimals.resize(6, '0');
  return std::stoll(text.substr(0, comma)) * 1'000'000 + std::stoll(decimals);
}

int tableOf(const std::string &account) {
  return account.size() < 5 ? kLedger : account[0] == '7' ? kCreditor : kDebtor;
}

std::vector<Row> readRows(const std::string &path) {
  const vlba98::CsvFile file = vlba98::readCsv(path);
  if (!file.problem.empty()) throw std::runtime_error(path + ": " + file.problem);
  std::vector<Row> rows;
  for (const vlba98::CsvRow &values : file.rows) {
    Row &row = rows.emplace_back();
    for (size_t i = 0; i < file.columns.size(); ++i)
      row[file.columns[i]] = values.values[i];
  }
  return rows;
}

const std::string &at(const Row &row, const char *column) {
  static const std::string none;
  auto found = row.find(column);
  return found == row.end() ? none : found->second;
}

int number(const Row &row, const char *column) {
  const std::string &text = at(row, column);
  return text.empty() ? 0 : std::stoi(text);
}

} // namespace

int64_t cents(const std::string &text) {
  bool negative = false;
  std::string digits;
  size_t decimals = 0;
  bool afterComma = false;
  for (char c : text) {
    if (c >= '0' && c <= '9') {
      digits += c;
      if (afterComma) ++decimals;
    } else if (c == '-') {
      negative = true;
      afterComma = !digits.empty(); // the minus sign takes the comma's place in the stored form
    } else if (c == ',') {
      afterComma = true;
    }
  }
  digits.append(2 - decimals, '0');
  const int64_t value = std::stoll(digits);
  return negative ? -value : value;
}

Reckoning::Reckoning(const std::string &folder) {
  client_ = readRows(folder + "/firmenstamm.csv").front();
  for (const char *file : {"/sachkonto.csv", "/kreditor.csv", "/debitor.csv"})
    for (Row &row : readRows(folder + file))
      accounts_[row.at("Nr")] = row;
  taxKeys_ = readRows(folder + "/steuerschluessel.csv");
  rates_ = readRows(folder + "/kurs.csv");
  fiscalYears_ = readRows(folder + "/geschaeftsjahr.csv");
}

std::vector<int> Reckoning::years() const {
  std::vector<int> all;
  for (const Row &year : fiscalYears_)
    all.push_back(number(year, "Jahr"));
  return all;
}

const Row *Reckoning::latest(const std::vector<Row> &rows, const char *name, const std::string &value,
                             const char *since, Day day) const {
  const Row *found = nullptr;
  for (const Row &row : rows)
    if (row.at(name) == value && dayOf(row.at(since)) <= day &&
        (!found || dayOf(found->at(since)) < dayOf(row.at(since))))
      found = &row;
  return found;
}

int64_t Reckoning::toEuro(int64_t own) const {
  return at(client_, "Euro") == "1" ? own : quotient(own * 1'000'000, millionths(client_.at("Eurokurs")));
}

int64_t Reckoning::toOwn(int64_t foreign, const Head &head) const {
  if (head.currency.empty()) return foreign;
  const Row *rate = latest(rates_, "Waehrung", head.currency, "Datum", head.day);
  return quotient(foreign * millionths(rate->at("Kurs")), int64_t{1'000'000} * number(*rate, "Einheiten"));
}

void Reckoning::post(const std::string &file) {
  std::vector<Row> rows = readRows(file);
  for (size_t first = 0, end; first < rows.size(); first = end) {
    const std::string &split = at(rows[first], "Split");
    end = first + 1;
    while (!split.empty() && end < rows.size() && at(rows[end], "Split") == split)
      ++end;
    const Row &top = rows[first];
    Head head;
    head.day = dayOf(top.at("Belegdatum"));
    head.kind = at(top, "Eröffnungsbuchung") == "1" ? 1 : at(top, "Abschlussbuchung") == "1" ? 2 : 0;
    head.currency = at(top, "Währung");
    head.item = at(top, "OP-Belegnummer").empty() ? top.at("Belegnummer") : at(top, "OP-Belegnummer");
    for (const Row &year : fiscalYears_) {
      const Day begin = dayOf(year.at("Beginn"));
      if (head.day < begin || dayOf(year.at("Ende")) < head.day) continue;
      head.year = number(year, "Jahr");
      head.month = (head.day / 10000 - begin / 10000) * 12 + head.day / 100 % 100 - begin / 100 % 100 + 1;
    }
    std::vector<ItemMove> itemMoves;
    const Row *line = nullptr;
    for (size_t i = first; i < end; ++i) {
      if (!at(rows[i], "Bruttobetrag").empty()) {
        postLine(head, *(line = &rows[i]), itemMoves);
        costsSoFar_ = euroSoFar_ = 0;
      }
      if (!at(rows[i], "Kostenstelle").empty()) postCosts(head, rows[i], *line);
    }
    for (const ItemMove &itemMove : itemMoves)
      postItem(head, itemMove);
  }
}

void Reckoning::move(const Head &head, const std::string &account, bool debit, int64_t own, int64_t euro) {
  const int table = tableOf(account);
  moves[{table, account}].push_back({head.day, head.year, head.month, head.kind, debit, own, euro});
  if (table != kLedger) move(head, accounts_.at(account).at("Sammelkonto"), debit, own, euro);
}

void Reckoning::postLine(const Head &head, const Row &line, std::vector<ItemMove> &itemMoves) {
  std::string account[2] = {at(line, "Habenkonto"), at(line, "Sollkonto")}; // 1 is debit
  for (int side : {0, 1})
    if (account[side].empty()) {
      const int other = tableOf(account[1 - side]);
      account[side] = client_.at(other == kLedger ? "VortragSako" : other == kCreditor ? "VortragKred" : "VortragDebi");
    }
  const int64_t gross = cents(line.at("Bruttobetrag"));
  const std::string &rateText = at(line, "Steuersatz");
  const int taxSide = number(accounts_.at(account[1]), "Steuerschluessel") ? 1 : 0;
  int64_t tax = 0;
  const Row *key = nullptr;
  if (!rateText.empty()) {
    key = latest(taxKeys_, "Schluessel", at(accounts_.at(account[taxSide]), "Steuerschluessel"), "GueltigAb", head.day);
    const int kind = number(*key, "Art"), share = number(*key, "Anteil") ? number(*key, "Anteil") : 100;
    const int64_t rate = cents(rateText);
    const bool five = !head.currency.empty() && (number(client_, "Optionen") & 8192);
    auto rounded = [&](int64_t amount) { return five ? quotient(amount, 5) * 5 : amount; };
    if (kind == 1 || kind == 2)
      tax = rounded(quotient((gross - rounded(quotient(gross * 10000, 10000 + rate))) * share, 100));
    if (kind == 3 || kind == 4) {
      const int64_t own = toOwn(gross, head), owed = quotient(own * rate, 10000);
      const int64_t deducted = quotient(owed * share, 100);
      // Only in books in Euro.
      move(head, key->at("Gegenkonto"), taxSide == 1, deducted, deducted);
      move(head, key->at("Steuerkonto"), taxSide == 0, owed, owed);
      if (owed != deducted) move(head, account[taxSide], taxSide == 1, owed - deducted, owed - deducted);
    }
  }
  const int64_t ownGross = toOwn(gross, head), ownTax = toOwn(tax, head);
  const bool inEuro = head.currency == "EUR";
  const int64_t euroGross = inEuro ? gross : toEuro(ownGross), euroTax = inEuro ? tax : toEuro(ownTax);
  for (int side : {0, 1}) {
    const bool taxed = key && side == taxSide;
    move(head, account[side], side == 1, taxed ? ownGross - ownTax : ownGross, taxed ? euroGross - euroTax : euroGross);
  }
  if (ownTax != 0) move(head, key->at("Steuerkonto"), taxSide == 1, ownTax, euroTax);

  for (int side : {0, 1}) {
    const int table = tableOf(account[side]);
    if (table == kLedger) continue;
    const ItemKey itemKey{table, account[side], head.item};
    auto known = std::find_if(itemMoves.begin(), itemMoves.end(), [&](const ItemMove &m) { return m.key == itemKey; });
    if (known == itemMoves.end()) {
      known = itemMoves.emplace(known);
      known->key = itemKey;
    }
    const int64_t sign = (side == 1) == (table == kDebtor) ? 1 : -1;
    known->amount += sign * ownGross;
    known->foreign += sign * gross;
    if (tableOf(account[1 - side]) == kLedger && number(accounts_.at(account[1 - side]), "GuV"))
      known->income += sign * ownGross;
    else
      known->balance = true;
  }
}

void Reckoning::postCosts(const Head &head, const Row &row, const Row &line) {
  const std::string &debit = at(line, "Sollkonto"), &credit = at(line, "Habenkonto");
  const bool onDebit = number(accounts_.at(debit), "Kostenart") != 0;
  const int64_t own = cents(at(row, "Kostenbetrag")), whole = cents(line.at("Bruttobetrag"));
  // In Euro the lines with costs, which are free of tax, are shared out up to each place.
  const int64_t euroUpTo = quotient(toEuro(whole) * (costsSoFar_ += own), whole), euro = euroUpTo - euroSoFar_;
  euroSoFar_ = euroUpTo;
  const int sign = onDebit ? 1 : -1;
  CostMove cost{head.day, head.year, head.month, onDebit ? debit : credit, {}, sign * own, sign * euro};
  for (const char *column : {"Kostenstelle", "Kostenträger"})
    if (!at(row, column).empty()) cost.centres.push_back(at(row, column));
  costs.push_back(cost);
}

void Reckoning::postItem(const Head &head, const ItemMove &itemMove) {
  const bool firstYear = head.year == number(client_, "StartJahr");
  if (head.kind == 2 || (head.kind == 1 && !firstYear) || itemMove.amount == 0) return;
  auto open = items.find(itemMove.key);
  if (open == items.end()) {
    Item item;
    item.gross = item.left = itemMove.amount;
    item.currency = head.currency;
    if (!head.currency.empty()) item.foreignGross = item.foreignLeft = itemMove.foreign;
    items[itemMove.key] = item;
    return;
  }
  Item &item = open->second;
  auto positive = [](int64_t amount) { return amount > 0; };
  const bool grows =
      positive(itemMove.amount) == positive(item.gross) && positive(itemMove.amount) == positive(item.left);
  const int64_t left = item.left + itemMove.amount;
  if (!item.currency.empty()) {
    auto changed = [&](int64_t foreign, int64_t own) {
      if (head.currency == item.currency) return foreign + itemMove.foreign;
      // The products have 15 digits at most here.
      const int64_t product = foreign * (own + itemMove.amount);
      return own < 0 ? quotient(-product, -own) : quotient(product, own);
    };
    item.foreignLeft = changed(item.foreignLeft, item.left);
    if (grows) item.foreignGross = changed(item.foreignGross, item.gross);
  }
  item.left = left;
  if (grows) {
    item.gross += itemMove.amount;
  } else {
    const int64_t discount = itemMove.balance ? itemMove.income : 0;
    payments.push_back(
        {head.year, ++item.payments, itemMove.key, discount - itemMove.amount, -discount, left, item.foreignLeft});
  }
  if (left == 0) items.erase(open);
}

} // namespace test
