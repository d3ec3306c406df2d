/// Open and historical items for tests: written through the store, read through the exports.
#pragma once

#include <array>
#include <cstring>
#include <optional>
#include <type_traits>
#include <utility>

#include "support/drafts.h"

namespace test {

/// What a fetch filled, one text for each parameter; "~" where it wrote nothing.
using ItemRow = std::vector<std::string>;

/// Parameters that the tests look at, by their place from 0.
enum ItemColumn : size_t { kKonto = 0, kBelegnummer = 3, kOPBelegnummer = 4, kBelegdatum = 5, kBrutto = 14 };

struct FetchedItem {
  ZelkResult result;
  ItemRow row;
};

/// Calls a fetch with a buffer for each parameter, or for the wanted one only.
template <class... Out>
FetchedItem fetchItem(ZelkResult(ZELK_CALL *fetch)(Out...), int32_t form = 1, std::optional<size_t> only = {}) {
  struct Buffer {
    char text[64] = "~";
    int32_t number = INT32_MIN;
  };
  std::array<Buffer, sizeof...(Out)> buffers;
  auto argument = [&]<class T>(std::type_identity<T>, size_t i) -> T {
    if constexpr (std::is_same_v<T, int32_t>)
      return form;
    else if constexpr (std::is_same_v<T, char *>)
      return only.value_or(i) == i ? buffers[i].text : nullptr;
    else
      return only.value_or(i) == i ? &buffers[i].number : nullptr;
  };
  FetchedItem fetched = [&]<size_t... I>(std::index_sequence<I...>) {
    return FetchedItem{fetch(argument(std::type_identity<Out>(), I)...), {}};
  }
  (std::index_sequence_for<Out...>());
  for (const Buffer &buffer : buffers)
    fetched.row.push_back(buffer.number == INT32_MIN ? buffer.text : std::to_string(buffer.number));
  return fetched;
}

/// An item of an account with the fields that a record cannot lack.
inline vldb98::OPBELEG itemOf(int32_t number, const std::string &account, const std::string &document = "R-1") {
  vldb98::OPBELEG item{};
  item.Nr = number;
  put(item.Konto, (account + "       ").substr(0, 7));
  put(item.Gegenkonto, "8400   ");
  put(item.Skontokonto1, "       ");
  put(item.Skontokonto2, "       ");
  put(item.Belegnummer, document);
  put(item.OPBelegnummer, document);
  put(item.Belegdatum, "460121");
  put(item.Brutto, "000000100,00");
  put(item.Ausstand, "000000100,00");
  return item;
}

inline vldb98::OPHISTORIE paymentOf(const vldb98::OPBELEG &item, int32_t line) {
  vldb98::OPHISTORIE history{};
  history.OP = item;
  history.Zeile = line;
  put(history.Zahlung, "000000100,00");
  put(history.Zahldatum, "460221");
  return history;
}

class ItemBooks : public PostingBooks {
protected:
  void insert(int table, const vldb98::OPBELEG &item, uint16_t client = 1) {
    vldb98::DATENBANK record{};
    record.Opbeleg = item;
    insertRecord(table, record, client, nullptr);
  }
  /// \param year fiscal-year code
  void insert(int table, const vldb98::OPHISTORIE &item, const char *year = "46", uint16_t client = 1) {
    vldb98::DATENBANK record{};
    record.Ophistorie = item;
    insertRecord(table, record, client, year);
  }
  void insertRecord(int table, vldb98::DATENBANK &record, uint16_t client = 1, const char *year = nullptr) {
    uint8_t found = 0;
    ASSERT_TRUE(other_->SetzeFista(client, found) && found);
    if (year) {
      ASSERT_TRUE(other_->SetzeOpenJahr(year)) << year;
    }
    ASSERT_TRUE(other_->Insert(record, vldb98::FileNumber(table)));
  }
  /// What a call returns and shows.
  std::string outcome(ZelkResult result) {
    std::string text = recorder.takeText();
    return std::to_string(result) + (text.empty() ? "" : " " + text);
  }
};

} // namespace test
