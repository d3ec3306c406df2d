/// A posting as the library takes it in, whichever way it came: a head and any number of lines.
///
/// Numbers and texts are as they were handed over, the texts in the widths of the exported records. What is checked
/// later stays a text until then: of two faults, the one that is checked first names the code.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace postings {

/// What a posting has once.
struct PostingHead {
  int32_t Mandantennummer;
  int32_t Stapelnummer;
  int32_t Teilbuchungsanzahl; ///< lines that are announced; there may be fewer
  int32_t UStDirekt;
  int32_t Zahlungsziel;
  int32_t Eroeffnungsbuchung;
  int32_t Abschlussbuchung;
  int32_t Umbuchung;
  char Belegdatum[7];
  char Belegnummer[17];
  char OPBelegnummer[17];
  char Valutadatum[7];
  char Waehrung[4];
  char ESR[50];
  char DMSID[51];
};

/// Amounts of a line in the client's own currency.
struct PostingOwnAmounts {
  char BruttobetragEigen[13];
  char SteuerbetragEigen[13];
};

struct PostingCost {
  char Kostenstelle1[8];
  char Kostenstelle2[8];
  char Kostenstelle3[8];
  char Kostenstelle4[8];
  char Kostenstelle5[8];
  char Kostenstelle6[8];
  int32_t Kostenkennung;
  char Betrag[13];
  char Menge[13];
  char Einheit[4];
  char Bemerkung[41];
  char Bemerkung2[41];
};

struct PostingLine {
  int32_t Sollart;
  int32_t Habenart;
  int32_t Kostenschablone;
  char Sollkonto[8];
  char Habenkonto[8];
  char Bruttobetrag[13];
  char Steuersatz[6];
  char Steuerbetrag[13];
  char Text[36];
  char Text2[36];
  std::optional<PostingOwnAmounts> own;
  std::vector<PostingCost> costs;
  int32_t movementKind; ///< of fixed assets, 0 = none
  int32_t document;     ///< identifier of a document of this line, 0 = none
};

struct Posting {
  PostingHead head{};
  std::vector<PostingLine> lines;
  bool inPieces = false; ///< cost postings could be handed over with it

  void add(const PostingLine &line) {
    lines.push_back(line);
    head.Teilbuchungsanzahl = int32_t(lines.size());
  }
};

} // namespace postings
