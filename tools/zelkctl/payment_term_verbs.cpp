// Verbs that create, change and show payment terms.
#include <cstdio>
#include <cstring>

#include "vlba98/encoding.h"
#include "vlba98/text.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/values.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

constexpr int32_t kCreate = 1, kChange = 2;

/// Reads the term of a number or a short name.
ZelkResult readTerm(int32_t client, const std::string &which, ZELK_ZAHLUNGSZIEL &term) {
  auto number = wholeNumber<int32_t>(which, 1);
  if (!number) {
    auto shortName = vlba98::toWindows1252(which);
    ZelkResult found = shortName ? ZELK_HoleZZnr(client, shortName->c_str()) : 0;
    if (found < 0) return found;
    number = found;
  }
  return *number == 0 ? ZELKERR_uzl_Zahlungsziel : ZELK_HoleZahlungsziel(client, *number, &term, 0);
}

// The fields of the record are wider than any text that counts, but what is too long must not be cut unsaid.
template <size_t N> bool take(char (&field)[N], const char *option, const std::optional<std::string> &value) {
  if (!value) return true;
  auto ansi = vlba98::toWindows1252(*value);
  if (ansi && vlba98::strncpy2(field, *ansi)) return true;
  if (ansi)
    complain(std::string(option) + " " + *value + ": höchstens " + std::to_string(N - 1) + " Zeichen.");
  else
    complainOfCharacters(option, *value);
  return false;
}

int write(const char *verb, int32_t action, int32_t client, ZELK_ZAHLUNGSZIEL &term, const TermValues &values) {
  if (!take(term.Name, "KUERZEL", values.shortName) || !take(term.Skontosatz1, "--skontosatz1", values.rate1) ||
      !take(term.Skontosatz2, "--skontosatz2", values.rate2) || !take(term.Bemerkung, "--bemerkung", values.remark))
    return kFailed;
  // Copies of the fields, since the record is packed.
  ZelkResult result = ZELK_Zahlungsziel(
      client, action, term.Zahlzielnummer, term.Name, values.days1.value_or(int32_t(term.Skontotage1)),
      term.Skontosatz1, values.days2.value_or(int32_t(term.Skontotage2)), term.Skontosatz2,
      values.days.value_or(int32_t(term.Zahltage)), values.dayOfMonth.value_or(int32_t(term.TagInMonat)),
      values.months.value_or(int32_t(term.MonatePlus)), term.Bemerkung,
      values.method.value_or(int32_t(term.Zahlungsart)), 0);
  if (result < 1) return complainOf(verb, result);
  std::printf("Zahlungsziel %d %s.\n", int(result), action == kCreate ? "angelegt" : "geändert");
  return kDone;
}

std::string numberOrEmpty(int32_t number) {
  return number ? std::to_string(number) : "";
}

std::string discount(int32_t days, std::string rate) {
  vlba98::KillNull(rate.data());
  return days ? vlba98::counted(size_t(days), "Tag ", "Tage ") + rate.c_str() + " %" : "";
}

} // namespace

int createTerm(int32_t client, const TermValues &values) {
  ZELK_ZAHLUNGSZIEL term{};
  return write("zahlungsziel anlegen", kCreate, client, term, values);
}

int changeTerm(int32_t client, const std::string &which, const TermValues &values) {
  ZELK_ZAHLUNGSZIEL term;
  if (ZelkResult result = readTerm(client, which, term); result != ZELK_OK)
    return complainOf("zahlungsziel aendern", result);
  return write("zahlungsziel aendern", kChange, client, term, values);
}

int showTerm(int32_t client, const std::string &which) {
  ZELK_ZAHLUNGSZIEL term;
  if (ZelkResult result = readTerm(client, which, term); result != ZELK_OK)
    return complainOf("zahlungsziel zeigen", result);
  const std::pair<const char *, std::string> lines[] = {{"Nummer:      ", std::to_string(term.Zahlzielnummer)},
                                                        {"Kürzel:      ", shown(term.Name)},
                                                        {"Skonto 1:    ", discount(term.Skontotage1, term.Skontosatz1)},
                                                        {"Skonto 2:    ", discount(term.Skontotage2, term.Skontosatz2)},
                                                        {"Zahltage:    ", std::to_string(term.Zahltage)},
                                                        {"Tag im Monat:", numberOrEmpty(term.TagInMonat)},
                                                        {"Folgemonate: ", numberOrEmpty(term.MonatePlus)},
                                                        {"Zahlungsart: ", std::to_string(term.Zahlungsart)},
                                                        {"Bemerkung:   ", shown(term.Bemerkung)}};
  for (const auto &[title, value] : lines)
    if (!value.empty()) std::printf("%s %s\n", title, value.c_str());
  return kDone;
}

int listTerms(int32_t client) {
  TextTable table({{"Nr", true},
                   {"Kürzel"},
                   {"Skonto 1"},
                   {"Skonto 2"},
                   {"Zahltage", true},
                   {"Tag im Monat", true},
                   {"Folgemonate", true},
                   {"Zahlungsart", true},
                   {"Bemerkung"}});
  ZELK_ZAHLUNGSZIEL term;
  int32_t next = 0;
  do {
    ZelkResult result = ZELK_HoleZahlungsziel(client, next, &term, 0);
    if (result == ZELKERR_keine_Zahlungsziele) {
      std::puts("Der Mandant hat keine Zahlungsziele.");
      return kDone;
    }
    if (result != ZELK_OK) return complainOf("zahlungsziel liste", result);
    table.add({std::to_string(term.Zahlzielnummer), shown(term.Name), discount(term.Skontotage1, term.Skontosatz1),
               discount(term.Skontotage2, term.Skontosatz2), std::to_string(term.Zahltage),
               numberOrEmpty(term.TagInMonat), numberOrEmpty(term.MonatePlus), std::to_string(term.Zahlungsart),
               shown(term.Bemerkung)});
  } while ((next = term.Naechstes) != 0);
  table.print();
  return kDone;
}

} // namespace zelkctl
