// side_by_side RUNS 'COMMAND A' 'COMMAND B': runs both shell commands in turn, once each to warm up
// and then RUNS times, and prints the medians of their wall seconds, the peak memory of A's largest
// process in KiB, and the median ratio of wall seconds.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct cost {
  double wall;
  long peak_kib;
};

cost run(const char* command) {
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl("/bin/sh", "sh", "-c", command, static_cast<char*>(nullptr));
    ::_exit(127);
  }
  int status = 0;
  rusage used = {};
  if (child == -1 || ::wait4(child, &status, 0, &used) == -1 || status != 0) {
    std::fprintf(stderr, "failed: %s\n", command);
    std::exit(1);
  }
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
  return {wall.count(), used.ru_maxrss};
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc == 4 ? std::atoi(argv[1]) : 0;
  if (runs < 1) return 2;
  std::vector<double> wall_a, wall_b, ratios;
  long peak = 0;
  run(argv[2]);
  run(argv[3]);
  for (int i = 0; i < runs; ++i) {
    const cost a = run(argv[2]);
    const cost b = run(argv[3]);
    wall_a.push_back(a.wall);
    wall_b.push_back(b.wall);
    ratios.push_back(a.wall / b.wall);
    peak = std::max(peak, a.peak_kib);
  }
  std::printf("%.4f %.4f %ld %.2f\n", median(wall_a), median(wall_b), peak, median(ratios));
}
