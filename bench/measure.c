// measure RUNS PROGRAM [ARGUMENT...] runs a program RUNS times, its output thrown away, and prints
// on one line: user and system CPU of all runs together (microseconds) and the highest peak of
// resident memory of any run (KB). The kernel counts the memory of whoever starts a process towards
// that process's peak, so this starter is small; started by an interpreter, every small program
// would seem as large as the interpreter.
#define _GNU_SOURCE
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>

extern char** environ;

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
  long long cpu = 0;
  long peak = 0;
  for (int run = atoi(argv[1]); run > 0; --run) {
    pid_t child;
    int status;
    struct rusage used;
    if (posix_spawnp(&child, argv[2], &files, NULL, argv + 2, environ) != 0) return 127;
    if (wait4(child, &status, 0, &used) != child || status != 0) return 1;
    cpu += (used.ru_utime.tv_sec + used.ru_stime.tv_sec) * 1000000LL;
    cpu += used.ru_utime.tv_usec + used.ru_stime.tv_usec;
    if (used.ru_maxrss > peak) peak = used.ru_maxrss;
  }
  printf("%lld %ld\n", cpu, peak);
  return 0;
}
