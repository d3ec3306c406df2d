#include "openitems/outputs.h"

#include <cstring>

#include "frame/money_output.h"
#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/dates.h"
#include "vlfn98/documents.h"
#include "vlfn98/items.h"

using namespace vldb98;

namespace openitems {
namespace {

/// How a field of the record becomes an output.
enum class Form : uint8_t {
  AmountForm, ///< the parameter that names the form of the amounts
  Text,
  KeyText,        ///< without its blanks
  Date,           ///< stored reversed
  PlainDate,      ///< stored in normal order
  Amount,         ///< zero where there is none
  CheckedAmount,  ///< the same, and refused in a form that there is not
  OptionalAmount, ///< empty where there is none
  Number,
  PaymentBlocked, ///< marks, as 0 or 1
  InCollection,
  DunningBlocked,
  DunningLevel, ///< of debtors only
  Currency,
  Claim, ///< numbers of the debt collection
  ClaimCosts,
  User, ///< what stands in other tables
  Document,
};

enum class Items : uint8_t { All, Historical };

struct Field {
  const char *label;
  Form form;
  uint16_t offset, size; // in the record
  Items items = Items::All;
};

using R = OPHISTORIE;
#define OF_ITEM(label, form, member)                                                                                   \
  { label, Form::form, offsetof(OPBELEG, member), sizeof(OPBELEG::member) }
#define OF_PAYMENT(label, form, member)                                                                                \
  { label, Form::form, offsetof(R, member), sizeof(R::member), Items::Historical }

// The parameters in their order; the labels stand in the call protocol as they are.
constexpr Field kFields[] = {
    OF_ITEM("Kontonummer:", KeyText, Konto),
    OF_ITEM("Kürzel:", Text, Kuerzel),
    OF_ITEM("Name:", Text, Name),
    OF_ITEM("Belegnummer:", Text, Belegnummer),
    OF_ITEM("OP-Belegnummer:", Text, OPBelegnummer),
    OF_ITEM("Belegdatum:", Date, Belegdatum),
    OF_ITEM("Valutadatum:", Date, Valutadatum),
    OF_ITEM("Skontodatum1:", Date, Skontodatum1),
    OF_ITEM("Skontosatz1:", Text, Skontosatz1),
    OF_ITEM("Skontodatum2:", Date, Skontodatum2),
    OF_ITEM("Skontosatz2:", Text, Skontosatz2),
    OF_ITEM("Fälligkeitsdatum:", Date, Faelligkeit),
    OF_ITEM("Text:", Text, Text),
    {"Ausgabeart:", Form::AmountForm, 0, 0},
    OF_ITEM("Bruttobetrag:", CheckedAmount, Brutto),
    OF_ITEM("Ausstand:", CheckedAmount, Ausstand),
    OF_ITEM("Währung:", Currency, Waehrung),
    OF_ITEM("Mahnstufe:", DunningLevel, Mahnstufe),
    OF_ITEM("Mahndatum:", PlainDate, Mahndatum),
    OF_ITEM("Bemerkung:", Text, Bemerkung),
    OF_ITEM("Gegenkonto:", KeyText, Gegenkonto),
    OF_ITEM("Zahlziel:", Number, Zahlungsziel),
    OF_ITEM("Zahungssperre:", PaymentBlocked, Flags),
    OF_ITEM("Skontokonto1:", KeyText, Skontokonto1),
    OF_ITEM("Skontokonto2:", KeyText, Skontokonto2),
    OF_ITEM("Steuersatz1:", Text, Steuersatz1),
    OF_ITEM("Steuersatz2:", Text, Steuersatz2),
    OF_ITEM("Ausstand2:", Amount, Ausstand2),
    OF_ITEM("GW-Betrag:", OptionalAmount, BetragFW),
    OF_ITEM("Mahnsperre:", DunningBlocked, Mahnstufe),
    OF_PAYMENT("Zahlung:", Amount, Zahlung),
    OF_PAYMENT("Zahldatum:", Date, Zahldatum),
    OF_PAYMENT("Benutzer:", User, Benutzer),
    OF_PAYMENT("Skontobetrag:", Amount, Skontobetrag),
    OF_PAYMENT("Zahlbelegnr.:", Text, Zahlbelegnummer),
    OF_PAYMENT("Zahltext:", Text, Zahltext),
    OF_PAYMENT("Zahlungsart:", Number, Zahlungsart),
    OF_ITEM("Text 2:", Text, Text2),
    OF_PAYMENT("Zahltext 2:", Text, Zahltext2),
    OF_ITEM("DMS-ID:", Document, DMSNr),
    OF_ITEM("Inkasso:", InCollection, Flags),
    OF_ITEM("Inkasso-Akte:", Number, InkassoAkte),
    OF_ITEM("Inkasso-Forderung:", Claim, InkassoForderung),
    OF_ITEM("Inkasso-Mahnkosten:", ClaimCosts, InkassoMahnkosten),
};
#undef OF_ITEM
#undef OF_PAYMENT

constexpr size_t countOf(Items items) {
  size_t count = 0;
  for (const Field &field : kFields)
    count += field.items == items;
  return count;
}
static_assert(countOf(Items::All) == Outputs::kOpen);
static_assert(countOf(Items::All) + countOf(Items::Historical) == Outputs::kHistorical);

int32_t numberAt(const DATENBANK &item, const Field &field) {
  if (field.size == sizeof(int16_t)) {
    int16_t number;
    std::memcpy(&number, item.bytes + field.offset, sizeof number);
    return number;
  }
  int32_t number;
  std::memcpy(&number, item.bytes + field.offset, sizeof number);
  return number;
}

void putDate(char *target, const char *stored, bool reversed) {
  char date[11];
  vlba98::strncpy2(date, stored);
  if (reversed) vlba98::ReverseDatum(date);
  vlfn98::MakeDatum(date, date);
  std::memcpy(target, date, sizeof date);
}

} // namespace

Outputs::Outputs(bool historical, int32_t form, void *const *pointers) : pointers_(pointers), form_(form) {
  for (const Field &field : kFields) {
    if (field.items == Items::Historical && !historical) continue;
    fields_[count_] = uint8_t(&field - kFields);
    parameters_[count_] =
        field.form == Form::AmountForm ? frame::number(field.label, form) : frame::out(field.label, pointers[count_]);
    ++count_;
  }
}

bool Outputs::formMissing() const {
  if (frame::isAmountForm(form_)) return false;
  for (size_t i = 0; i < count_; ++i)
    if (kFields[fields_[i]].form == Form::CheckedAmount && pointers_[i]) return true;
  return false;
}

void Outputs::lookUp(Store &store, const DATENBANK &item) {
  for (size_t i = 0; i < count_; ++i) {
    if (!pointers_[i]) continue;
    const Field &field = kFields[fields_[i]];
    if (field.form == Form::User) vlfn98::readUserName(store, numberAt(item, field), user_);
    if (field.form == Form::Document) vlfn98::DmsGetDmsID(store, numberAt(item, field), document_);
  }
}

void Outputs::write(const DATENBANK &item, int table, const FIRMENSTAMM &client) const {
  const OPBELEG &common = item.Opbeleg;
  for (size_t i = 0; i < count_; ++i) {
    if (!pointers_[i]) continue;
    const Field &field = kFields[fields_[i]];
    const char *stored = item.bytes + field.offset;
    char *text = static_cast<char *>(pointers_[i]);
    auto put = [&](int32_t number) { std::memcpy(pointers_[i], &number, sizeof number); };
    switch (field.form) {
    case Form::AmountForm:
      break;
    case Form::Text:
      vlba98::strncpy2(text, stored, field.size);
      break;
    case Form::KeyText:
      vlba98::strncpy2(text, vlba98::trimmed(stored), field.size);
      break;
    case Form::Date:
    case Form::PlainDate:
      putDate(text, stored, field.form == Form::Date);
      break;
    case Form::Amount:
    case Form::CheckedAmount:
      frame::formatAmount(form_, text, stored);
      break;
    case Form::OptionalAmount:
      if (*stored)
        frame::formatAmount(form_, text, stored);
      else
        *text = 0;
      break;
    case Form::Number:
      put(numberAt(item, field));
      break;
    case Form::PaymentBlocked:
      put((common.Flags & vlfn98::kPaymentBlocked) != 0);
      break;
    case Form::InCollection:
      put((common.Flags & vlfn98::kInCollection) != 0);
      break;
    case Form::DunningBlocked:
      put(common.Mahnstufe == vlfn98::kDunningBlocked);
      break;
    case Form::DunningLevel:
      // Callers know the level as 16 bits without a sign.
      if (table == kOPDebitor || table == kHistOPDebitor) put(uint16_t(common.Mahnstufe));
      break;
    case Form::Currency:
      vlba98::strncpy2(text, vlfn98::GetWaehrung(client, common.Waehrung, common.Waehrungsindex), field.size);
      break;
    case Form::Claim:
      put(vlfn98::GetInkassoForderungsnummer(common).claim);
      break;
    case Form::ClaimCosts:
      put(vlfn98::GetInkassoForderungsnummer(common).costs);
      break;
    case Form::User:
      vlba98::strncpy2(text, user_, sizeof user_);
      break;
    case Form::Document:
      vlba98::strncpy2(text, document_, sizeof document_);
      break;
    }
  }
}

} // namespace openitems
