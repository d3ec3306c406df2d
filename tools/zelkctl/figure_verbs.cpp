// Balances, turnover, budget values and report structures.
#include <algorithm>
#include <cstdio>
#include <map>

#include "vlba98/encoding.h"
#include "vlfn98/fiscal_year.h"
#include "vlfn98/periods.h"
#include "vlfn98/structure_lines.h"
#include "zelk98/zelk98.h"
#include "zelkctl/amounts.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

constexpr int32_t kPlainAmounts = 2;
constexpr size_t kAmountSize = 16;
constexpr size_t kLineWidth = 120;
using vlfn98::kMonths;
constexpr int kMonthsPerRow = 6;

struct KindName {
  const char *name;
  int32_t kind;
};
constexpr KindName kKinds[] = {
    {"sako", ZELK_SACHKONTO}, {"kred", ZELK_KREDITOR}, {"debi", ZELK_DEBITOR}, {"kost", ZELK_KOSTENSTELLE}};

/// What was asked for, in Windows-1252.
struct Question {
  std::string account, reference, date, from;
  int32_t kind = ZELK_SACHKONTO;
  int32_t dimension = 0;
};

// The first kind of which there is such an account, where none was named.
int32_t kindOf(int32_t client, const FigureQuery &query, const Question &question) {
  for (const KindName &each : kKinds)
    if (query.kind == each.name) return each.kind;
  for (const KindName &each : kKinds)
    if (!question.account.empty() && ZELK_ExistiertKonto(client, question.account.c_str(), each.kind,
                                                         question.dimension, question.reference.c_str()) == ZELK_OK)
      return each.kind;
  return ZELK_SACHKONTO;
}

// \return false when an option holds characters that the books have not, which was said then
bool understand(int32_t client, const FigureQuery &query, Question &question) {
  struct Given {
    const char *option;
    const std::string &value;
    std::string &target;
  };
  for (auto [option, value, target] : {Given{"KONTO", query.account, question.account},
                                       {"--kostref", query.reference, question.reference},
                                       {"--datum", query.date, question.date},
                                       {"--ab", query.from, question.from}}) {
    auto text = vlba98::toWindows1252(value);
    if (!text) {
      complainOfCharacters(option, value);
      return false;
    }
    target = *text;
  }
  question.dimension = query.dimension.value_or(0);
  question.kind = kindOf(client, query, question);
  return true;
}

/// An account as the walk over its kind delivers it.
struct WalkedAccount {
  std::string number, shortName, name, reference; // Windows-1252
  int32_t dimension = 0;
};

template <class Record> void take(WalkedAccount &account, const Record &record) {
  account.number = record.Kontonummer;
  account.shortName = record.Kuerzel;
  account.name = record.Name;
}

ZelkResult nextAccount(int32_t kind, WalkedAccount &account) {
  ZelkResult result;
  if (kind == ZELK_SACHKONTO) {
    ZELK_SAKO record;
    if ((result = ZELK_HoleSako(&record)) > 0) take(account, record);
  } else if (kind == ZELK_KOSTENSTELLE) {
    ZELK_KOST record;
    if ((result = ZELK_HoleKost(&record)) > 0) {
      take(account, record);
      account.dimension = record.Dimension;
      account.reference = record.Kostref;
    }
  } else {
    ZELK_PEKO record;
    if ((result = ZELK_HolePeko(&record)) > 0) take(account, record);
  }
  return result;
}

// Hands every account of a kind over. \return what the walk came to; 0 when there is none
template <class Each> ZelkResult forEachAccount(int32_t client, int32_t kind, const char *from, Each &&each) {
  ZelkResult result = ZELK_InitHoleKonto(client, kind, 0, from, 0);
  while (result == ZELK_OK) {
    WalkedAccount account;
    result = nextAccount(kind, account);
    if (result > 0 && !each(account)) break;
  }
  ZELK_BeendeHolen();
  return result;
}

void print(const TextTable &table, bool csv) {
  csv ? table.printCsv() : table.print();
}

// An amount in a table or a CSV file.
std::string amount(const char *plain, bool csv) {
  return csv || !*plain ? plain : grouped(hundredths(plain));
}

std::string monthName(int month, int32_t beginsIn) {
  static const char *const names[kMonths] = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                                             "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
  return names[(month - 1 + std::clamp(beginsIn, 1, kMonths) - 1) % kMonths];
}

} // namespace

int showBalances(int32_t client, const FigureQuery &query) {
  Question asked;
  if (!understand(client, query, asked)) return kFailed;
  const bool centres = asked.kind == ZELK_KOSTENSTELLE;
  std::vector<TextTable::Column> columns{{"Konto"}, {"Kürzel"}, {"Name"}, {"Saldo", true}, {"Euro-Saldo", true}};
  if (centres) columns.insert(columns.begin() + 1, {{"Dim.", true}, {"Ref."}});
  TextTable table(columns);
  struct Sum {
    int64_t own = 0, euro = 0;
  };
  std::map<int32_t, Sum> sums; // what a cost posting costs stands in every dimension that it names
  ZelkResult failure = ZELK_OK;
  auto add = [&](const WalkedAccount &account) {
    if (centres && ((query.dimension && account.dimension != *query.dimension) ||
                    (!asked.reference.empty() && account.reference != asked.reference)))
      return true;
    char balance[kAmountSize], euro[kAmountSize];
    ZelkResult result = ZELK_HoleSaldo(client, account.number.c_str(), asked.kind, 0, kPlainAmounts, balance, euro,
                                       asked.date.c_str(), account.dimension, account.reference.c_str());
    // An account of the current year need not exist in that of the day.
    const bool missing = result == ZELKERR_uzl_Kontonr || result == ZELKERR_uzl_Kostenstelle;
    if (missing && asked.account.empty()) return true;
    if (result < 0) {
      failure = result;
      return false;
    }
    std::vector<std::string> row{shown(account.number.c_str()), shown(account.shortName.c_str()),
                                 shown(account.name.c_str()), amount(balance, query.csv), amount(euro, query.csv)};
    if (centres) row.insert(row.begin() + 1, {std::to_string(account.dimension), shown(account.reference.c_str())});
    table.add(std::move(row));
    Sum &sum = sums[account.dimension];
    sum.own += hundredths(balance);
    sum.euro += hundredths(euro);
    return true;
  };
  ZelkResult walked = ZELK_OK;
  if (asked.account.empty())
    walked = forEachAccount(client, asked.kind, nullptr, add);
  else {
    // Names stand in the current year, where the account may be missing.
    WalkedAccount account{asked.account, "", "", asked.reference, asked.dimension};
    forEachAccount(client, asked.kind, asked.account.c_str(), [&](const WalkedAccount &each) {
      const bool found = each.number == asked.account && (!centres || each.dimension == asked.dimension) &&
                         (asked.reference.empty() || each.reference == asked.reference);
      if (found) {
        account.shortName = each.shortName;
        account.name = each.name;
      }
      return !found && each.number == asked.account;
    });
    add(account);
  }
  if (walked < 0) return complainOf("saldo", walked);
  if (failure < 0) return complainOf("saldo", failure);
  if (!query.csv && table.rows() == 0) {
    std::puts("Es gibt keine Konten.");
    return kDone;
  }
  if (!query.csv && table.rows() > 1)
    for (const auto &[dimension, sum] : sums) {
      std::vector<std::string> row(columns.size());
      row.front() = "Summe";
      if (centres) row[1] = std::to_string(dimension);
      row[columns.size() - 2] = grouped(sum.own);
      row.back() = grouped(sum.euro);
      table.add(std::move(row));
    }
  print(table, query.csv);
  return kDone;
}

int showTurnover(int32_t client, const FigureQuery &query) {
  Question asked;
  if (!understand(client, query, asked)) return kFailed;
  const bool centre = asked.kind == ZELK_KOSTENSTELLE;
  ZELK_MANDANTENINFO info{};
  if (ZelkResult read = ZELK_HoleMandantenInfo(client, &info, 0); read < 0) return complainOf("umsatz", read);
  TextTable table(centre ? std::vector<TextTable::Column>{{"Zeitraum"}, {"Kosten", true}, {"Euro-Kosten", true}}
                         : std::vector<TextTable::Column>{{"Zeitraum"},
                                                          {"Soll", true},
                                                          {"Haben", true},
                                                          {"Saldo", true},
                                                          {"Euro-Soll", true},
                                                          {"Euro-Haben", true},
                                                          {"Euro-Saldo", true}});
  struct Period {
    std::string name;
    int32_t code;
  };
  std::vector<Period> periods;
  for (int32_t quarter = 1; quarter <= 4; ++quarter) {
    for (int32_t month = 3 * quarter - 2; month <= 3 * quarter; ++month)
      periods.push_back({std::to_string(month) + " " + monthName(month, info.Gejabeginn), month});
    periods.push_back({std::to_string(quarter) + ". Quartal", vlfn98::kFirstQuarter + quarter - 1});
  }
  if (!centre) {
    periods.insert(periods.begin(), {"Eröffnung", vlfn98::kOpeningOnly});
    periods.push_back({"Abschluss", vlfn98::kClosingOnly});
  }
  periods.push_back({"Jahr", vlfn98::kWholeYear});
  for (const Period &period : periods) {
    char values[6][kAmountSize] = {};
    ZelkResult result = ZELK_HoleUmsatz(client, asked.account.c_str(), asked.kind, period.code, query.year.value_or(-1),
                                        0, kPlainAmounts, values[0], values[1], values[2], values[3], values[4],
                                        values[5], asked.dimension, asked.reference.c_str());
    if (result < 0) return complainOf("umsatz", result);
    std::vector<std::string> row{period.name};
    for (size_t i = 0; i < std::size(values); ++i)
      if (!centre || i == 2 || i == 5) row.push_back(amount(values[i], query.csv));
    table.add(std::move(row));
  }
  print(table, query.csv);
  return kDone;
}

int showBudgets(int32_t client, const FigureQuery &query) {
  Question asked;
  if (!understand(client, query, asked)) return kFailed;
  std::vector<TextTable::Column> columns{{"Konto"}, {"Kürzel"}, {"Gesamt", true}, {"Währung"}};
  if (query.csv) columns.insert(columns.begin() + 2, {"Name"});
  for (int month = 1; month <= (query.csv ? kMonths : kMonthsPerRow); ++month)
    columns.push_back(
        {"Monat " + std::to_string(month) + (query.csv ? "" : "/" + std::to_string(month + kMonthsPerRow)), true});
  ZELK_MANDANTENINFO info{};
  if (ZelkResult read = ZELK_HoleMandantenInfo(client, &info, 0); read < 0) return complainOf("sollwerte", read);
  TextTable table(columns);
  ZelkResult result = ZELK_InitHoleSollwerte(client, asked.kind, query.year.value_or(0), query.order,
                                             asked.from.c_str(), asked.dimension, asked.reference.c_str(), 0);
  while (result == ZELK_OK) {
    char number[8], shortName[9], name[41], v[kMonths + 1][kAmountSize];
    int32_t inEuro = 0;
    result = ZELK_HoleSollwerte(number, shortName, name, kPlainAmounts, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7],
                                v[8], v[9], v[10], v[11], v[12], &inEuro);
    if (result < 0) break;
    const bool planned = std::any_of(std::begin(v), std::end(v), [](const char *each) { return hundredths(each); });
    if (!planned && !query.all) continue;
    std::vector<std::string> row{shown(number), shown(shortName), amount(v[kMonths], query.csv),
                                 inEuro ? "EUR" : shown(info.Waehrung)};
    if (query.csv) row.insert(row.begin() + 2, shown(name));
    for (int month = 0; month < kMonths; ++month) {
      if (!query.csv && month == kMonthsPerRow) {
        table.add(std::move(row));
        row.assign(columns.size() - kMonthsPerRow, "");
      }
      row.push_back(amount(v[month], query.csv));
    }
    table.add(std::move(row));
  }
  if (result < 0) return complainOf("sollwerte", result);
  if (!query.csv && table.rows() == 0)
    std::puts("Es gibt keine Sollwerte.");
  else
    print(table, query.csv);
  return kDone;
}

int showStructure(int32_t client, int32_t structure, const FigureQuery &query) {
  std::map<std::string, std::string> names;
  ZelkResult result = forEachAccount(client, ZELK_SACHKONTO, nullptr, [&](const WalkedAccount &account) {
    names[account.number] = account.name;
    return true;
  });
  if (result < 0) return complainOf("aufbau", result);
  TextTable table(
      query.csv ? std::vector<TextTable::Column>{{"Ebene", true}, {"Art", true}, {"Name"}, {"Kennung"}, {"Bezeichnung"}}
                : std::vector<TextTable::Column>{{"Zeile"}, {"Kennung"}});
  // A class that has this bit already would pass for another one.
  const int32_t asked =
      query.all && structure >= 0 && structure < vlfn98::kHiddenToo ? structure + vlfn98::kHiddenToo : structure;
  result = ZELK_InitHoleAufbau(client, asked, 0);
  if (result == ZELK_keinKonto && !query.csv) {
    std::puts("Der Aufbau hat keine Zeilen.");
    return kDone;
  }
  while (result == ZELK_OK) {
    int32_t kind, level;
    char name[41], identifier[41];
    result = ZELK_HoleAufbauID(&kind, name, &level, identifier);
    if (result < 0) break;
    const bool account = kind & vlfn98::kAccountLine;
    const auto known = account ? names.find(name) : names.end();
    const std::string title = known == names.end() ? "" : shown(known->second.c_str());
    if (query.csv) {
      table.add({std::to_string(level), std::to_string(kind), shown(name), shown(identifier), title});
      continue;
    }
    const int depth = std::max(0, level - (account ? 0 : 1));
    std::string line = std::string(size_t(2 * depth), ' ') + shown(name);
    if (!title.empty()) line += "  " + title;
    if (kind & vlfn98::kHidden) line += "  (verborgen)";
    table.add({line, account ? "" : shown(identifier)});
  }
  if (result < 0) return complainOf("aufbau", result);
  print(table, query.csv);
  return kDone;
}

} // namespace zelkctl
