#include "postings/in_progress.h"

#include "vlba98/money.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace postings {

const PostingAccount &PostingAccounts::find(const char (&number)[8]) {
  auto known = known_.find(std::string_view(number));
  if (known == known_.end()) {
    DATENBANK record{};
    uint8_t kind;
    int32_t table;
    must(store_.UsedAndGetKnr(number, kind, record, table));
    PostingAccount account;
    if (kind == ZELK_SACHKONTO) {
      account = {kind, record.Sachkonto.Gesperrt != 0, record.Sachkonto.Waehrung, 0, record.Sachkonto};
    } else if (isPersonal(kind)) {
      const PERSONENKONTO &personal = record.Personenkonto;
      account = {kind, personal.Gesperrt != 0, personal.Waehrung, personal.Zahlungsziel, {}};
    }
    known = known_.emplace(number, std::move(account)).first;
  }
  return known->second;
}

LineInProgress::LineInProgress(size_t at, const PostingLine &line) : index(at), given(&line) {
  vlba98::strncpy2(debit.number, line.Sollkonto);
  vlba98::strncpy2(credit.number, line.Habenkonto);
  debit.kind = line.Sollart;
  credit.kind = line.Habenart;
}

const FISTA_EXT &PostingInProgress::clientExtension() {
  if (!extension_) extension_ = find<FISTA_EXT>(store, uint16_t(client().Nummer)).value_or(FISTA_EXT{});
  return *extension_;
}

bool isBlank(std::string_view text) {
  return vlba98::trimmed(text).empty();
}

bool currenciesAgree(const PostingInProgress &posting, const LineInProgress &line) {
  const char *currency = posting.stored.Waehrung;
  auto agrees = [&](const PostingAccount *account) {
    return account->currency.empty() || account->currency == currency;
  };
  return !*currency || (agrees(line.debit.found) && agrees(line.credit.found));
}

std::optional<int64_t> readAmount(const char *text, size_t width, bool optional) {
  char internal[vlba98::moneyWidth + 1];
  const bool negative = width != vlba98::rateWidth;
  if (!vlba98::IsGeld(text, int(width), optional, negative, internal)) return std::nullopt;
  return vlba98::parseMoney(internal);
}

} // namespace postings
