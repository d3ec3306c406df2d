/// Files of postings by chance, of which the exports accept every one.
#pragma once

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace test {

/// The accounts of a client that play a part.
struct Cast {
  struct Taxed {
    const char *account, *rate;
  };
  const char *folder;
  int client, batch;
  int firstYear, firstMonth;
  std::vector<Taxed> income, expenses;
  Taxed discountGiven, discountTaken;
  std::vector<const char *> banks, debtors, creditors, costTypes, centres, units;
  std::vector<std::pair<const char *, const char *>> foreign; ///< personal account and the currency that it takes
};

inline const Cast kGermanCast{
    "musterhandel",
    1,
    3,
    2025,
    1,
    {{"8400", "19,00"}, {"8300", "7,00"}, {"8125", ""}, {"8100", ""}},
    {{"3400", "19,00"}, {"3300", "7,00"}, {"3425", "19,00"}, {"4535", "19,00"}, {"4930", "19,00"}},
    {"8736", "19,00"},
    {"3736", "19,00"},
    {"1200", "1000", "1210"},
    {"10010", "10020", "10200"},
    {"70010", "70020", "70180"},
    {"4910", "4120"},
    {"100", "200", "400", "410"},
    {"5001", "5002"},
    {{"10240", "USD"}, {"10230", "CHF"}, {"70190", "CHF"}, {"70170", "JPY"}}};

inline const Cast kSwissCast{"alpenwerk",
                             2,
                             2,
                             2025,
                             7,
                             {{"3200", "8,10"}, {"3210", "2,60"}, {"3410", "3,80"}, {"3600", ""}},
                             {{"4200", "8,10"}, {"4210", "2,60"}, {"6500", "8,10"}, {"6200", "8,10"}},
                             {"3200", "8,10"},
                             {"4200", "8,10"},
                             {"1020", "1000"},
                             {"10010", "10020", "10060"},
                             {"70010", "70020"},
                             {"6000", "5000"},
                             {"10", "20", "30"},
                             {"801", "802"},
                             {{"10070", "EUR"}, {"10010", "USD"}, {"70060", "EUR"}, {"70010", "EUR"}}};

class RandomPostings {
public:
  RandomPostings(const Cast &cast, std::mt19937_64 &random) : cast_(cast), random_(random) {}

  /// A file of so many postings, which go on from those of earlier files.
  std::string file(int postings) {
    text_.str("");
    text_ << "Belegdatum;Belegnummer;Split;Text;Sollkonto;Habenkonto;Bruttobetrag;Steuersatz;Währung;OP-Belegnummer;"
             "Kostenstelle;Kostenträger;Kostenbetrag;Eröffnungsbuchung;Abschlussbuchung\n";
    for (int i = 0; i < postings; ++i)
      posting();
    return text_.str();
  }

private:
  struct Invoice {
    std::string account, number, currency;
    int64_t amount;
  };
  struct Line {
    std::string debit, credit, amount, rate = "", currency = "", item = "", flags = ";";
  };

  int below(size_t limit) { return int(random_() % limit); }
  template <class T> const T &oneOf(const std::vector<T> &all) { return all[size_t(below(all.size()))]; }
  int64_t anyAmount() { return 1 + int64_t(random_() % (below(4) ? 500'000 : 90'000'000)); }

  static std::string money(int64_t amount) {
    const std::string sign = amount < 0 ? "-" : "";
    if (amount < 0) amount = -amount;
    const std::string decimals = std::to_string(100 + amount % 100).substr(1);
    return sign + std::to_string(amount / 100) + ',' + decimals;
  }

  std::string anyDay() {
    const int month = cast_.firstMonth - 1 + below(24);
    auto two = [](int value) { return std::to_string(100 + value).substr(1); };
    // The first day has no rates of exchange.
    const int first = month == cast_.firstMonth - 1 ? 2 : 1;
    return two(first + below(28)) + '.' + two(month % 12 + 1) + '.' + std::to_string(cast_.firstYear + month / 12);
  }

  static bool isCreditor(const std::string &account) { return account[0] == '7'; }

  void head() {
    day_ = anyDay();
    number_ = "B-" + std::to_string(++count_);
  }

  void write(const Line &line, const std::string &split = "", const std::string &costs = ";;") {
    text_ << day_ << ';' << number_ << ';' << split << ";;" << line.debit << ';' << line.credit << ';' << line.amount
          << ';' << line.rate << ';' << line.currency << ';' << line.item << ';' << costs << ';' << line.flags << '\n';
  }

  void posting() {
    head();
    switch (below(12)) {
    case 0:
    case 1:
    case 2:
      return invoice();
    case 3:
    case 4:
    case 5:
      return payment();
    case 6:
      return paymentLessDiscount();
    case 7:
      return carriedForward();
    case 8:
      return closed();
    case 9:
      return withCosts();
    case 10:
      return write({cast_.banks[0], cast_.banks[1], money(below(5) ? anyAmount() : -anyAmount())});
    default:
      return between();
    }
  }

  void invoice() {
    Invoice invoice{"", "", "", anyAmount()};
    if (below(3) == 0) {
      const auto &[account, currency] = oneOf(cast_.foreign);
      invoice.account = account;
      invoice.currency = currency;
    } else {
      invoice.account = oneOf(below(2) ? cast_.debtors : cast_.creditors);
    }
    const bool bill = isCreditor(invoice.account);
    const Cast::Taxed &other = oneOf(bill ? cast_.expenses : cast_.income);
    // Some invoices go under the number of the document, some raise an earlier one or credit it.
    if (below(4)) invoice.number = "OP-" + std::to_string(count_);
    if (below(8) == 0 && !invoices_.empty() && oneOf(invoices_).account == invoice.account)
      invoice.number = invoices_.back().number;
    const bool credited = below(6) == 0;
    write({bill != credited ? other.account : invoice.account, bill != credited ? invoice.account : other.account,
           money(invoice.amount), other.rate, invoice.currency, invoice.number});
    if (credited) invoice.amount = -invoice.amount;
    if (invoice.number.empty()) invoice.number = number_;
    invoices_.push_back(invoice);
  }

  Line paymentOf(const Invoice &invoice, int64_t amount, const std::string &currency) {
    const std::string bank = oneOf(cast_.banks);
    const bool toUs = !isCreditor(invoice.account);
    return {toUs ? bank : invoice.account, toUs ? invoice.account : bank, money(amount), "", currency, invoice.number};
  }

  void payment() {
    if (invoices_.empty()) return invoice();
    const Invoice &paid = oneOf(invoices_);
    static constexpr int kPercent[] = {100, 100, 100, 50, 30, 110, 99};
    // Accounts that are kept in a currency are paid in it or in the client's.
    write(paymentOf(paid, paid.amount * kPercent[below(7)] / 100, below(4) ? paid.currency : ""));
  }

  void paymentLessDiscount() {
    if (invoices_.empty()) return invoice();
    const Invoice &paid = oneOf(invoices_);
    const int64_t discount = paid.amount / 50;
    if (discount == 0) return payment();
    const bool bill = isCreditor(paid.account);
    const Cast::Taxed &account = bill ? cast_.discountTaken : cast_.discountGiven;
    Line line = paymentOf(paid, paid.amount - discount, paid.currency);
    write(line, "S" + number_);
    (bill ? line.credit : line.debit) = account.account;
    line.amount = money(discount);
    line.rate = account.rate;
    write(line, "S" + number_);
  }

  void carriedForward() {
    std::string account = oneOf(below(2) ? cast_.banks : below(2) ? cast_.debtors : cast_.creditors);
    Line line{account, "", money(anyAmount())};
    if (below(3) == 0) std::swap(line.debit, line.credit);
    line.item = below(2) ? "OLD-" + std::to_string(below(9)) : "";
    line.flags = "1;";
    write(line);
  }

  void closed() {
    Line line{oneOf(cast_.income).account, oneOf(cast_.banks), money(anyAmount())};
    if (below(3) == 0) line.credit = oneOf(cast_.debtors);
    line.flags = ";1";
    write(line);
  }

  void withCosts() {
    Line line{oneOf(cast_.costTypes), oneOf(cast_.banks), money(anyAmount())};
    if (below(4) == 0) std::swap(line.debit, line.credit);
    std::string unit = below(2) ? oneOf(cast_.units) : "";
    if (below(2)) return write(line, "", std::string(oneOf(cast_.centres)) + ';' + unit + ';' + line.amount);
    const int64_t first = anyAmount(), second = anyAmount();
    line.amount = money(first + second);
    write(line, "S" + number_, std::string(oneOf(cast_.centres)) + ';' + unit + ';' + money(first));
    text_ << ";;S" << number_ << ";;;;;;;;" << oneOf(cast_.centres) << ";;" << money(second) << ";;\n";
  }

  void between() {
    std::string number = invoices_.empty() || below(2) ? "" : oneOf(invoices_).number;
    write({oneOf(cast_.creditors), oneOf(cast_.debtors), money(anyAmount()), "", "", number});
  }

  const Cast &cast_;
  std::mt19937_64 &random_;
  std::ostringstream text_;
  std::string day_, number_;
  std::vector<Invoice> invoices_;
  int count_ = 0;
};

} // namespace test
