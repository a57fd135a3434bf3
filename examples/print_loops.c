// Prints the root key, the loops and the markers of WAV and AIFF files:
//   print_loops FILE...
#include <corvana/corvana.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

// The content of a file, which the caller frees; null where it cannot be read.
static unsigned char* read_content(const char* path, size_t* size) {
  unsigned char* content = NULL;
  FILE* stream = fopen(path, "rb");
  if (stream == NULL) return NULL;
  if (fseek(stream, 0, SEEK_END) == 0) {
    const long end = ftell(stream);
    rewind(stream);
    if (end >= 0) content = malloc((size_t)end + 1);
    if (content != NULL) *size = fread(content, 1, (size_t)end, stream);
  }
  fclose(stream);
  return content;
}

static const char* kind_name(uint32_t kind) {
  switch (kind) {
    case CORVANA_LOOP_FORWARD:
      return "forward";
    case CORVANA_LOOP_ALTERNATING:
      return "alternating";
    case CORVANA_LOOP_BACKWARD:
      return "backward";
    default:
      return "unknown";
  }
}

static void print_file(const corvana_file* file) {
  corvana_file_info info = {.struct_size = sizeof info};
  if (corvana_file_get_info(file, &info) != CORVANA_OK) return;
  if (info.has_root_key)
    printf("  root key %" PRId64 " (%+g ct)\n", info.root_key, info.root_cents);

  corvana_loop loop = {.struct_size = sizeof loop};
  for (size_t i = 0; corvana_file_get_loop(file, i, &loop) == CORVANA_OK; ++i) {
    printf("  %s loop", kind_name(loop.kind));
    if (loop.start == CORVANA_NONE || loop.end == CORVANA_NONE)
      printf(", its markers are missing\n");
    else
      printf(" from frame %" PRId64 " to %" PRId64 "\n", loop.start, loop.end);
  }

  corvana_marker marker = {.struct_size = sizeof marker};
  for (size_t i = 0; corvana_file_get_marker(file, i, &marker) == CORVANA_OK; ++i)
    printf("  marker at frame %" PRId64 " %s\n", marker.position, marker.name);
}

int main(int count, char** paths) {
  int status = EXIT_SUCCESS;
  for (int i = 1; i < count; ++i) {
    size_t size = 0;
    unsigned char* content = read_content(paths[i], &size);
    corvana_file* file = NULL;
    corvana_error error = {.struct_size = sizeof error};
    printf("%s\n", paths[i]);
    if (content == NULL) {
      perror(paths[i]);
      status = EXIT_FAILURE;
    } else if (corvana_file_read(content, size, &file, &error) == CORVANA_OK) {
      print_file(file);
    } else {
      fprintf(stderr, "%s: %s\n", paths[i], error.text);
      status = EXIT_FAILURE;
    }
    corvana_file_free(file);
    free(content);
  }
  return status;
}
