// The floor of listing and finding: reads each card of a folder and prints the name in it; with a text, of those alone
// that contain it, whatever the case. read_names FOLDER [TEXT]

#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static void print_name(const char *card) {
  const char *name = strstr(card, "\nFN:");
  if (name == NULL) return;
  name += 4;
  fwrite(name, 1, strcspn(name, "\r\n"), stdout);
  putchar('\n');
}

int main(int argc, char **argv) {
  DIR *folder = argc > 1 ? opendir(argv[1]) : NULL;
  if (folder == NULL) return 2;
  char *card = NULL;
  size_t capacity = 0;
  for (struct dirent *entry; (entry = readdir(folder)) != NULL;) {
    const size_t length = strlen(entry->d_name);
    if (length < 4 || strcmp(entry->d_name + length - 4, ".vcf") != 0) continue;
    const int file = openat(dirfd(folder), entry->d_name, O_RDONLY | O_CLOEXEC);
    struct stat state;
    if (file < 0 || fstat(file, &state) != 0) return 1;
    const size_t size = (size_t)state.st_size;
    if (size + 1 > capacity) card = realloc(card, capacity = 2 * (size + 1));
    if (card == NULL || read(file, card, size) != (ssize_t)size) return 1;
    close(file);
    card[size] = '\0';
    if (argc < 3 || strcasestr(card, argv[2]) != NULL) print_name(card);
  }
  return 0;
}
