/*
 * A host program in plain C: lists the clients, inserts a posting, reads the batch back. Needs books that zelkctl has
 * made: zelkctl einrichten VERZEICHNIS, zelkctl anlegen samples/musterhandel.
 *
 *   host MANDANT STAPEL
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zelk98/zelk98.h"

static int failed(const char *what, ZelkResult result) {
  char name[50], text[250];
  if (ZELK_HoleFehlertext(result, name, text) != ZELK_OK) strcpy(name, "?");
  fprintf(stderr, "%s: %d %s\n", what, (int)result, name);
  return 1;
}

static int list_clients(void) {
  uint32_t number;
  char name[41];
  ZelkResult result = ZELK_InitHoleMandant();
  while (result == ZELK_OK) {
    result = ZELK_HoleMandant(&number, name, NULL);
    if (result > 0) printf("client %u: %s\n", (unsigned)number, name);
  }
  return result < 0 ? failed("clients", result) : 0;
}

static int insert(int client, int batch) {
  ZELK_BUCHUNG posting;
  ZelkResult result;
  memset(&posting, 0, sizeof posting);
  posting.Mandantennummer = client;
  posting.Stapelnummer = batch;
  posting.Sollart = ZELK_SACHKONTO;
  posting.Habenart = ZELK_SACHKONTO;
  strcpy(posting.Belegdatum, "210126");
  strcpy(posting.Belegnummer, "HOST-1");
  strcpy(posting.Text, "Bareinzahlung");
  strcpy(posting.Sollkonto, "1200");
  strcpy(posting.Habenkonto, "1000");
  strcpy(posting.Bruttobetrag, "1234,50");
  result = ZELK_BuchungEinfuegen(&posting, 0);
  return result == ZELK_OK ? 0 : failed("insert", result);
}

static int show(int client, int batch) {
  ZELK_SPLITBUCHUNG posting;
  ZelkResult result = ZELK_InitHoleBatch(client, batch, 0);
  while (result == ZELK_OK) {
    result = ZELK_HoleBatch(&posting);
    if (result > 0)
      printf("%s %s %s an %s %s\n", posting.Belegdatum, posting.Belegnummer, posting.Teilbuchung[0].Sollkonto,
             posting.Teilbuchung[0].Habenkonto, posting.Teilbuchung[0].Bruttobetrag);
  }
  return result < 0 ? failed("batch", result) : 0;
}

int main(int argc, char **argv) {
  if (argc != 3) {
    fprintf(stderr, "host MANDANT STAPEL\n");
    return 2;
  }
  return list_clients() || insert(atoi(argv[1]), atoi(argv[2])) || show(atoi(argv[1]), atoi(argv[2]));
}
