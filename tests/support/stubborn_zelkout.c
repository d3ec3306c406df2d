/* A notification process that does not do as it should. ZELK_TEST_PEER says how:
 *   stumm      is never ready
 *   einmal     is ready once, and then does nothing more
 *   taub       answers every change, but not the end of work
 *   langsam    answers a change only when there is a file ZELK_OUT_DATEI with ".weiter" after it, which it removes
 * then; writes as abschrift does what it has read by then, and ends when it is told to abschrift  answers everything,
 * and appends each block as it is to ZELK_OUT_DATEI; does not end by itself Then it writes its process id to
 * ZELK_OUT_DATEI with ".id" after it. */
#define main reference_main
#include "examples/zelkout.c"
#undef main

#if defined(_WIN32)
#include <io.h>
static int own_id(void) {
  return (int)GetCurrentProcessId();
}
static void nap(void) {
  Sleep(2);
}
#else
static int own_id(void) {
  return (int)getpid();
}
static void nap(void) {
  poll(NULL, 0, 2);
}
#endif

int main(int argc, char **argv) {
  const char *kind = getenv("ZELK_TEST_PEER"), *path = getenv("ZELK_OUT_DATEI");
  char id_path[1024], go_path[1024];
  PEER peer;
  FILE *out;
  int naps;
  if (!kind || !path || !take_arguments(&peer, argc, argv)) return reference_main(argc, argv);
  if (strcmp(kind, "stumm") != 0) signal_ready(&peer);
  snprintf(id_path, sizeof id_path, "%s.id", path);
  snprintf(go_path, sizeof go_path, "%s.weiter", path);
  out = fopen(id_path, "wb");
  if (!out) return 1;
  fprintf(out, "%d", own_id());
  fclose(out);
  while (wait_for_change(&peer) == SUBMITTED) {
    int end = peer.block->Befehl == 0, slow = strcmp(kind, "langsam") == 0;
    for (naps = 0; slow && !end && naps < 30000 && access(go_path, 0) != 0; ++naps)
      nap();
    if (slow || strcmp(kind, "abschrift") == 0) {
      out = fopen(path, "ab");
      if (!out) return 1;
      fwrite(peer.block, sizeof *peer.block, 1, out);
      fclose(out);
      signal_ready(&peer);
      if (slow && end) break;
      remove(go_path);
    } else if (strcmp(kind, "taub") == 0 && !end) {
      signal_ready(&peer);
    }
  }
  return 0;
}
