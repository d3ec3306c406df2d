/*
 * A reference for writers of the notification process: prints each change as one line in UTF-8. The library starts it
 * as zelkout.exe (zelkout on Linux) from the program directory; docs/benachrichtigung.md tells what is expected of it.
 *
 * The lines go to the file that the environment names in ZELK_OUT_DATEI, else to standard output.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zelk98/zelk98.h"

enum { HOST_ENDED = 0, SUBMITTED = 1 };

/* What the library hands down: the last four arguments. */
typedef struct {
  uintptr_t host, submit, ready, memory;
  const ZELK_OUT_BLOCK *block;
} PEER;

/* --- What the two systems do each in its own way ------------------------------------------------------------------ */

#if defined(_WIN32)

#include <windows.h>

static int map_block(PEER *peer) {
  peer->block = MapViewOfFile((HANDLE)peer->memory, FILE_MAP_READ, 0, 0, sizeof(ZELK_OUT_BLOCK));
  return peer->block != NULL;
}

/* Waits for a change or the host's end, whichever comes first. A change is taken from the event. */
static int wait_for_change(const PEER *peer) {
  HANDLE both[2];
  both[0] = (HANDLE)peer->submit;
  both[1] = (HANDLE)peer->host;
  if (WaitForMultipleObjects(2, both, FALSE, INFINITE) != WAIT_OBJECT_0) return HOST_ENDED;
  ResetEvent((HANDLE)peer->submit);
  return SUBMITTED;
}

static void signal_ready(const PEER *peer) {
  SetEvent((HANDLE)peer->ready);
}

#else

#include <errno.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

static int map_block(PEER *peer) {
  void *block = mmap(NULL, sizeof(ZELK_OUT_BLOCK), PROT_READ, MAP_SHARED, (int)peer->memory, 0);
  peer->block = block;
  return block != MAP_FAILED;
}

static int wait_for_change(const PEER *peer) {
  struct pollfd both[2];
  uint64_t count;
  both[0].fd = (int)peer->submit;
  both[1].fd = (int)peer->host;
  both[0].events = both[1].events = POLLIN;
  while (poll(both, 2, -1) < 0)
    if (errno != EINTR) return HOST_ENDED;
  if (!(both[0].revents & POLLIN)) return HOST_ENDED;
  return read((int)peer->submit, &count, sizeof count) == sizeof count ? SUBMITTED : HOST_ENDED;
}

static void signal_ready(const PEER *peer) {
  const uint64_t one = 1;
  if (write((int)peer->ready, &one, sizeof one) != sizeof one) exit(1);
}

#endif

/* --- What both share ---------------------------------------------------------------------------------------------- */

/* The path of the program stands without quotes in front of the numbers and may hold blanks: so they are the last. */
static int take_arguments(PEER *peer, int argc, char **argv) {
  if (argc < 5) return 0;
  peer->host = strtoul(argv[argc - 4], NULL, 16);
  peer->submit = strtoul(argv[argc - 3], NULL, 16);
  peer->ready = strtoul(argv[argc - 2], NULL, 16);
  peer->memory = strtoul(argv[argc - 1], NULL, 16);
  return map_block(peer);
}

/* Windows-1252 to UTF-8; a control character, which could pass for a line's end, becomes a blank. */
static void print_text(FILE *out, const char *text, size_t width) {
  static const uint16_t upper[32] = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                     0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                     0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};
  for (; width > 0 && *text; ++text, --width) {
    unsigned c = (unsigned char)*text;
    if (c >= 0x80 && c < 0xA0) c = upper[c - 0x80];
    if (c < 0x20 || (c >= 0x7F && c < 0xA0)) c = ' ';
    if (c < 0x80) {
      fputc((int)c, out);
    } else if (c < 0x800) {
      fputc((int)(0xC0 | c >> 6), out);
      fputc((int)(0x80 | (c & 0x3F)), out);
    } else {
      fputc((int)(0xE0 | c >> 12), out);
      fputc((int)(0x80 | (c >> 6 & 0x3F)), out);
      fputc((int)(0x80 | (c & 0x3F)), out);
    }
  }
}

#define PRINT(out, record, field) print_text(out, (record)->field, sizeof(record)->field)

static void print_account(FILE *out, const ZELK_OUT_SACHKONTO *account) {
  fprintf(out, " Sachkonto %d ", (int)account->Wert);
  PRINT(out, account, Kontonummer);
  fputs(" [", out);
  PRINT(out, account, Kuerzel);
  fputs("] ", out);
  PRINT(out, account, Name);
}

static void print_person(FILE *out, const char *kind, const ZELK_OUT_PERSONENKONTO *account) {
  fprintf(out, " %s %d ", kind, (int)account->Wert);
  PRINT(out, account, Kontonummer);
  fputs(" [", out);
  PRINT(out, account, Kuerzel);
  fputs("] ", out);
  PRINT(out, account, Name);
  fputs(", ", out);
  PRINT(out, account, Ort);
  fputs(", Sammelkonto ", out);
  PRINT(out, account, Sammelkonto);
}

static void print_posting(FILE *out, const ZELK_SPLITBUCHUNG *posting) {
  int i;
  if (!*posting->Belegdatum) { /* every posting has one: this is all postings of a batch */
    fprintf(out, " alle Buchungen %d/%d", (int)posting->Mandantennummer, (int)posting->Stapelnummer);
    return;
  }
  fprintf(out, " Buchung %d/%d ", (int)posting->Mandantennummer, (int)posting->Stapelnummer);
  PRINT(out, posting, Belegnummer);
  fputc(' ', out);
  PRINT(out, posting, Belegdatum);
  fputc(' ', out);
  PRINT(out, posting, Waehrung);
  fputc(':', out);
  for (i = 0; i < posting->Teilbuchungsanzahl && i < 10; ++i) {
    const ZELK_TEILBUCHUNG *line = &posting->Teilbuchung[i];
    fputs(i ? "; " : " ", out);
    PRINT(out, line, Sollkonto);
    fputs(" an ", out);
    PRINT(out, line, Habenkonto);
    fputc(' ', out);
    /* A negative amount fills its field; the reserved byte ends it. */
    print_text(out, line->Bruttobetrag, sizeof line->Bruttobetrag + 1);
    if (*line->Steuersatz) {
      fputs(" (", out);
      PRINT(out, line, Steuersatz);
      fputs(" %: ", out);
      print_text(out, line->Steuerbetrag, sizeof line->Steuerbetrag + 1);
      fputc(')', out);
    }
    fputc(' ', out);
    PRINT(out, line, Text);
  }
}

static void print_change(FILE *out, const ZELK_OUT_BLOCK *block) {
  static const char *const actions[] = {"neu", "geändert", "gelöscht"};
  if (block->Aktion >= 1 && block->Aktion <= 3)
    fputs(actions[block->Aktion - 1], out);
  else
    fprintf(out, "Aktion %d", (int)block->Aktion);
  switch (block->Art) {
  case 1:
    print_account(out, &block->Nutzlast.Sachkonto);
    break;
  case 2:
    print_person(out, "Kreditor", &block->Nutzlast.Personenkonto);
    break;
  case 4:
    print_person(out, "Debitor", &block->Nutzlast.Personenkonto);
    break;
  case 16:
    print_posting(out, &block->Nutzlast.Buchung);
    break;
  default:
    fprintf(out, " Art %d", (int)block->Art);
  }
  fputc('\n', out);
  fflush(out);
}

int main(int argc, char **argv) {
  const char *path = getenv("ZELK_OUT_DATEI");
  FILE *out = path ? fopen(path, "ab") : stdout;
  PEER peer;
  if (!out || !take_arguments(&peer, argc, argv)) return 1;
  for (;;) {
    /* Once at the start and once after each change: until then, the library waits with the next one. */
    signal_ready(&peer);
    if (wait_for_change(&peer) == HOST_ENDED) {
      fputs("Das Programm, das die Änderungen meldet, ist beendet.\n", out);
      break;
    }
    if (peer.block->Befehl == 0) {
      fputs("Ende\n", out);
      fflush(out);
      signal_ready(&peer);
      break;
    }
    print_change(out, peer.block);
  }
  return fclose(out) == 0 ? 0 : 1;
}
